// Chooses the scripted answer and puts it into CIM-XML and HTTP.
#include "testing/cim_server.h"

#include <strings.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <set>
#include <utility>

namespace Orvane::testing {

namespace {

constexpr unsigned kNotFound = 6;
constexpr unsigned kMethodNotFound = 17;
constexpr char kHost[] = "cmm01";

bool SameName(const std::string& a, const std::string& b) { return strcasecmp(a.c_str(), b.c_str()) == 0; }

std::string Base64(const std::string& bytes) {
  constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    unsigned group = 0;
    for (std::size_t k = 0; k < 3; ++k)
      group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    for (std::size_t k = 0; k < 4; ++k) out += i + k <= bytes.size() ? kAlphabet[group >> (18 - 6 * k) & 0x3FU] : '=';
  }
  return out;
}

void AppendObjects(std::string& out, const CimRequest& request, const std::vector<CimObjectSpec>& objects) {
  for (const CimObjectSpec& object : objects) {
    if (request.operation == "EnumerateInstances") {
      out += "<VALUE.NAMEDINSTANCE>\n";
      AppendInstanceName(out, object.Path());
      AppendInstance(out, object);
      out += "</VALUE.NAMEDINSTANCE>\n";
    } else if (request.operation == "EnumerateInstanceNames") {
      AppendInstanceName(out, object.Path());
    } else if (request.operation == "Associators") {
      out += "<VALUE.OBJECTWITHPATH>\n";
      AppendInstancePath(out, object.Path(), kHost, request.nameSpace);
      AppendInstance(out, object);
      out += "</VALUE.OBJECTWITHPATH>\n";
    } else if (request.operation == "AssociatorNames") {
      out += "<OBJECTPATH>\n";
      AppendInstancePath(out, object.Path(), kHost, request.nameSpace);
      out += "</OBJECTPATH>\n";
    } else if (request.operation == "GetInstance") {
      AppendInstance(out, object);
      return;
    }
  }
}

void AppendNamedValue(std::string& out, const std::string& openingTag, const std::string& closingTag,
                      const CimValue& value) {
  out += openingTag + " PARAMTYPE=\"" + value.type + "\">\n";
  AppendValue(out, value);
  out += closingTag;
}

std::string ResponseBody(const CimRequest& request, const CimAnswer& answer) {
  const bool extrinsic = request.operation == "InvokeMethod";
  const std::string element = extrinsic ? "METHODRESPONSE" : "IMETHODRESPONSE";
  std::string out =
      "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE ID=\"" +
      request.messageId + "\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<" + element + " NAME=\"" +
      (extrinsic ? request.method : request.operation) + "\">\n";
  if (answer.kind == CimAnswer::Kind::kCimError) {
    out += "<ERROR CODE=\"" + std::to_string(answer.code) + "\" DESCRIPTION=\"" + XmlEscape(answer.text) + "\"/>\n";
  } else if (extrinsic) {
    if (answer.returnValue) AppendNamedValue(out, "<RETURNVALUE", "</RETURNVALUE>\n", *answer.returnValue);
    for (const auto& [name, value] : answer.outParameters)
      AppendNamedValue(out, "<PARAMVALUE NAME=\"" + XmlEscape(name) + "\"", "</PARAMVALUE>\n", value);
  } else if (request.operation != "ModifyInstance") {
    out += "<IRETURNVALUE>\n";
    AppendObjects(out, request, answer.objects);
    out += "</IRETURNVALUE>\n";
  }
  return out + "</" + element + ">\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";
}

std::string Http(const std::string& statusLine, const std::string& headers, const std::string& body) {
  return "HTTP/1.1 " + statusLine + "\r\n" + headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
         body;
}

HttpReply HttpOk(const std::string& body, bool thenClose) {
  std::string headers = "Content-Type: application/xml; charset=utf-8\r\nCIMOperation: MethodResponse\r\n";
  if (thenClose) headers += "Connection: close\r\n";
  return {Http("200 OK", headers, body), thenClose ? HttpReply::After::kClose : HttpReply::After::kKeep};
}

CimAnswer DefaultAnswer(const CimRequest& request) {
  if (request.operation == "GetInstance") return CimError(kNotFound, "no such instance: " + request.objectText);
  if (request.operation == "InvokeMethod") return CimError(kMethodNotFound, "no such method: " + request.method);
  return NoObjects();
}

}  // namespace

CimAnswer Objects(std::vector<CimObjectSpec> objects) {
  CimAnswer answer;
  answer.objects = std::move(objects);
  return answer;
}

CimAnswer NoObjects() { return {}; }

CimAnswer MethodResult(std::optional<CimValue> returnValue,
                       std::vector<std::pair<std::string, CimValue>> outParameters) {
  CimAnswer answer;
  answer.kind = CimAnswer::Kind::kMethodResult;
  answer.returnValue = std::move(returnValue);
  answer.outParameters = std::move(outParameters);
  return answer;
}

CimAnswer CimError(unsigned code, const std::string& description) {
  CimAnswer answer;
  answer.kind = CimAnswer::Kind::kCimError;
  answer.code = code;
  answer.text = description;
  return answer;
}

CimAnswer HttpStatus(unsigned status, const std::string& reason, const std::string& body, const std::string& headers) {
  CimAnswer answer;
  answer.kind = CimAnswer::Kind::kHttpStatus;
  answer.code = status;
  answer.text = reason;
  answer.body = body;
  answer.headers = headers;
  return answer;
}

CimAnswer Body(const std::string& body) {
  CimAnswer answer;
  answer.kind = CimAnswer::Kind::kBody;
  answer.body = body;
  return answer;
}

CimAnswer Raw(const std::string& bytes) {
  CimAnswer answer;
  answer.kind = CimAnswer::Kind::kRaw;
  answer.body = bytes;
  return answer;
}

CimAnswer Close() {
  CimAnswer answer;
  answer.kind = CimAnswer::Kind::kClose;
  return answer;
}

CimAnswer ThenRefuse(CimAnswer answer) {
  answer.thenRefuse = true;
  return answer;
}

CimAnswer ThenClose(CimAnswer answer) {
  answer.thenClose = true;
  return answer;
}

CimAnswer Hang() {
  CimAnswer answer;
  answer.kind = CimAnswer::Kind::kHang;
  return answer;
}

CimServer::CimServer() : CimServer(Options{}) {}

CimServer::CimServer(Options options) : options_(std::move(options)) {
  HttpListener::Options listenerOptions;
  listenerOptions.address = options_.address;
  listenerOptions.port = options_.port;
  if (options_.tls) listenerOptions.certificate = MakeSelfSignedCertificate();
  listener_ = std::make_unique<HttpListener>(
      std::move(listenerOptions), [this](const HttpExchange& exchange) { return Handle(exchange); },
      [this](HttpListener::Change change, unsigned connection) {
        const std::lock_guard<std::mutex> lock(mutex_);
        switch (change) {
          case HttpListener::Change::kOpened:
            events_.push_back({EventKind::kOpened, connection, 0});
            ++open_;
            break;
          case HttpListener::Change::kWrongProtocol:
            events_.push_back({EventKind::kWrongProtocol, connection, 0});
            break;
          case HttpListener::Change::kClosed:
            events_.push_back({EventKind::kClosed, connection, 0});
            --open_;
            break;
        }
        changed_.notify_all();
      });
}

// The listener goes first and joins its threads, which may ask for it until then.
CimServer::~CimServer() = default;

CimServer& CimServer::On(Script script) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (script.answers.empty()) script.answers.push_back(NoObjects());
  scripts_.push_back(std::move(script));
  return *this;
}

CimAnswer CimServer::Select(const CimRequest& request) {
  const auto fits = [&request](const Script& script) {
    return (script.operation.empty() || script.operation == request.operation) &&
           (script.object.empty() || script.object == request.objectText ||
            SameName(script.object, request.objectClass)) &&
           (script.assocClass.empty() || SameName(script.assocClass, request.assocClass)) &&
           (script.resultClass.empty() || SameName(script.resultClass, request.resultClass)) &&
           (script.method.empty() || script.method == request.method);
  };
  const auto found = std::find_if(scripts_.rbegin(), scripts_.rend(), fits);
  if (found == scripts_.rend()) return DefaultAnswer(request);
  const std::size_t index = std::min(found->used++, found->answers.size() - 1);
  return found->answers[index];
}

HttpReply CimServer::Handle(const HttpExchange& exchange) {
  CimRequest request;
  try {
    request = ParseCimRequest(exchange);
  } catch (const std::exception& error) {
    return {Http("400 Bad Request", "CIMError: request-not-well-formed\r\n", error.what()), HttpReply::After::kKeep};
  }
  request.authorized = options_.user.empty() ||
                       exchange.head.find("Authorization: Basic " + Base64(options_.user + ":" + options_.password)) !=
                           std::string::npos;
  CimAnswer answer;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    events_.push_back({EventKind::kRequest, request.connection, requests_.size()});
    requests_.push_back(request);
    if (request.authorized) answer = Select(request);
    changed_.notify_all();
  }
  if (!request.authorized)
    return {Http("401 Unauthorized", "WWW-Authenticate: Basic realm=\"cmm\"\r\n", ""), HttpReply::After::kKeep};
  if (answer.thenRefuse) listener_->StopAccepting();
  switch (answer.kind) {
    case CimAnswer::Kind::kHttpStatus:
      return {Http(std::to_string(answer.code) + " " + answer.text, "Content-Type: text/html\r\n" + answer.headers,
                   answer.body),
              HttpReply::After::kKeep};
    case CimAnswer::Kind::kBody: {
      std::string body = answer.body;
      constexpr char kPlace[] = "@ID@";
      const std::size_t place = body.find(kPlace);
      if (place != std::string::npos) body.replace(place, sizeof kPlace - 1, request.messageId);
      return HttpOk(body, answer.thenClose);
    }
    case CimAnswer::Kind::kRaw:
      return {answer.body, HttpReply::After::kClose};
    case CimAnswer::Kind::kClose:
      return {"", HttpReply::After::kClose};
    case CimAnswer::Kind::kHang:
      return {"", HttpReply::After::kHang};
    case CimAnswer::Kind::kObjects:
    case CimAnswer::Kind::kMethodResult:
    case CimAnswer::Kind::kCimError:
      break;
  }
  return HttpOk(ResponseBody(request, answer), answer.thenClose);
}

std::vector<CimServer::Event> CimServer::Events() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return events_;
}

std::vector<CimRequest> CimServer::Requests() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

std::vector<std::string> CimServer::Conversation() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::set<unsigned> wrongProtocol;
  for (const Event& event : events_) {
    if (event.kind == EventKind::kWrongProtocol) wrongProtocol.insert(event.connection);
  }
  std::vector<std::string> lines;
  for (const Event& event : events_) {
    if (wrongProtocol.count(event.connection) != 0) continue;
    if (event.kind == EventKind::kOpened) lines.emplace_back("connect");
    if (event.kind == EventKind::kClosed) lines.emplace_back("disconnect");
    if (event.kind == EventKind::kRequest && requests_[event.request].authorized)
      lines.push_back(requests_[event.request].Summary());
  }
  return lines;
}

std::vector<std::string> CimServer::Summaries() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<std::string> lines;
  for (const CimRequest& request : requests_) {
    if (request.authorized) lines.push_back(request.Summary());
  }
  return lines;
}

unsigned CimServer::OpenConnections() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return open_;
}

bool CimServer::WaitForRequests(std::size_t count, unsigned milliseconds) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), [&] { return requests_.size() >= count; });
}

bool CimServer::WaitUntilAllClosed(unsigned milliseconds) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), [&] { return open_ == 0; });
}

void CimServer::ForgetJournal() {
  const std::lock_guard<std::mutex> lock(mutex_);
  requests_.clear();
  events_.clear();
}

}  // namespace Orvane::testing
