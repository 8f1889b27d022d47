// A CIM server that answers as the test wrote down, on a real socket over HTTP or HTTPS, and keeps a journal of what it
// saw.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "testing/cim_request.h"
#include "testing/cim_xml.h"
#include "testing/http_listener.h"

namespace Orvane::testing {

/// One scripted answer. Made by the functions below.
struct CimAnswer {
  enum class Kind { kObjects, kMethodResult, kCimError, kHttpStatus, kBody, kRaw, kClose, kHang };
  Kind kind = Kind::kObjects;
  std::vector<CimObjectSpec> objects;
  std::optional<CimValue> returnValue;
  std::vector<std::pair<std::string, CimValue>> outParameters;
  unsigned code = 0;
  std::string text;         ///< error description, HTTP reason
  std::string body;         ///< HTTP body, or the raw bytes
  std::string headers;      ///< further header lines, each ended by CR LF
  bool thenRefuse = false;  ///< before it is sent, the server stops to accept connections
  bool thenClose = false;   ///< it announces the end of its connection, and the server closes it
};

/// The objects (or their names, for the operations that return names). GetInstance takes the first.
CimAnswer Objects(std::vector<CimObjectSpec> objects);
CimAnswer NoObjects();
/// Result of a method; without a return value none is written.
CimAnswer MethodResult(std::optional<CimValue> returnValue,
                       std::vector<std::pair<std::string, CimValue>> outParameters = {});
/// An ERROR element inside an HTTP 200.
CimAnswer CimError(unsigned code, const std::string& description);
/// A bare HTTP answer with an HTML body.
CimAnswer HttpStatus(unsigned status, const std::string& reason,
                     const std::string& body = "<html><body>error</body></html>", const std::string& headers = "");
/// HTTP 200 with CIM headers and this body; "@ID@" in it becomes the request's message id.
CimAnswer Body(const std::string& body);
/// These bytes instead of an HTTP answer; then the connection is closed.
CimAnswer Raw(const std::string& bytes);
/// The connection is closed without an answer.
CimAnswer Close();
/// This answer is the last thing: further connections are refused.
CimAnswer ThenRefuse(CimAnswer answer);
/// As Objects(), MethodResult(), CimError() and Body() answers are sent, but the connection ends with it, as announced.
CimAnswer ThenClose(CimAnswer answer);
/// No answer until the client closes or the server is destroyed.
CimAnswer Hang();

class CimServer {
 public:
  struct Options {
    std::string address = "127.0.0.1";
    std::uint16_t port = 0;
    bool tls = false;
    std::string user;  ///< set: Basic authentication is asked for
    std::string password;
  };
  enum class EventKind { kOpened, kWrongProtocol, kClosed, kRequest };
  struct Event {
    EventKind kind;
    unsigned connection;
    std::size_t request;  ///< index into Requests(), for kRequest
  };

  /// Listens when it returns. Unscripted operations that return lists answer with an empty one, ModifyInstance with
  /// success, GetInstance with CIM error 6, methods with CIM error 17.
  CimServer();
  explicit CimServer(Options options);
  ~CimServer();
  CimServer(const CimServer&) = delete;
  CimServer& operator=(const CimServer&) = delete;

  std::uint16_t Port() const { return listener_->Port(); }

  /// Scripts. @p object is a path text with sorted keys, a class name, or empty for any; empty classes stand for any.
  /// Several answers come one after the other and the last repeats. Of two scripts that fit, the later one holds. May
  /// be called at any time.
  template <typename... Answers>
  CimServer& OnEnumerate(const std::string& className, Answers... answers) {
    return On({"EnumerateInstances", className, "", "", "", {std::move(answers)...}, 0});
  }
  template <typename... Answers>
  CimServer& OnEnumerateNames(const std::string& className, Answers... answers) {
    return On({"EnumerateInstanceNames", className, "", "", "", {std::move(answers)...}, 0});
  }
  template <typename... Answers>
  CimServer& OnAssociators(const std::string& object, const std::string& assocClass, const std::string& resultClass,
                           Answers... answers) {
    return On({"Associators", object, assocClass, resultClass, "", {std::move(answers)...}, 0});
  }
  template <typename... Answers>
  CimServer& OnAssociatorNames(const std::string& object, const std::string& assocClass, const std::string& resultClass,
                               Answers... answers) {
    return On({"AssociatorNames", object, assocClass, resultClass, "", {std::move(answers)...}, 0});
  }
  template <typename... Answers>
  CimServer& OnGetInstance(const std::string& object, Answers... answers) {
    return On({"GetInstance", object, "", "", "", {std::move(answers)...}, 0});
  }
  template <typename... Answers>
  CimServer& OnModify(const std::string& object, Answers... answers) {
    return On({"ModifyInstance", object, "", "", "", {std::move(answers)...}, 0});
  }
  template <typename... Answers>
  CimServer& OnInvoke(const std::string& method, Answers... answers) {
    return On({"InvokeMethod", "", "", "", method, {std::move(answers)...}, 0});
  }
  /// Every operation that no later script answers.
  template <typename... Answers>
  CimServer& OnAnything(Answers... answers) {
    return On({"", "", "", "", "", {std::move(answers)...}, 0});
  }

  std::vector<Event> Events() const;
  std::vector<CimRequest> Requests() const;
  /// The journal as lines: "connect", "disconnect" and the summaries of the requests that the script answered.
  /// Connections that spoke the wrong protocol are left out.
  std::vector<std::string> Conversation() const;
  /// As Conversation, without connects and disconnects.
  std::vector<std::string> Summaries() const;
  /// Connections that are open now, those with the wrong protocol included.
  unsigned OpenConnections() const;
  /// Waits until @p count requests were seen. @return false after @p milliseconds.
  bool WaitForRequests(std::size_t count, unsigned milliseconds = 10000) const;
  /// Waits until no connection is open. @return false after @p milliseconds.
  bool WaitUntilAllClosed(unsigned milliseconds = 10000) const;
  void ForgetJournal();

 private:
  struct Script {
    std::string operation;
    std::string object;
    std::string assocClass;
    std::string resultClass;
    std::string method;
    std::vector<CimAnswer> answers;
    std::size_t used;
  };

  CimServer& On(Script script);
  CimAnswer Select(const CimRequest& request);
  HttpReply Handle(const HttpExchange& exchange);

  Options options_;
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  std::vector<Script> scripts_;
  std::vector<CimRequest> requests_;
  std::vector<Event> events_;
  unsigned open_ = 0;
  std::unique_ptr<HttpListener> listener_;  // last: its threads use what stands above
};

}  // namespace Orvane::testing
