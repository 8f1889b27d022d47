// Plays the server's side of a recorded CIM-XML conversation: a request that asks the same as a recorded one gets the
// recorded bytes, with the MESSAGE ID of the request put in.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "testing/http_listener.h"

namespace Orvane::testing {

class CaptureReplay {
 public:
  /// @param directory  holds index.json and, for each exchange n, NNN.request.http and NNN.response.http
  /// @param tls        HTTPS instead of HTTP
  /// @throws std::runtime_error  the recording cannot be read.
  CaptureReplay(const std::string& directory, bool tls);
  ~CaptureReplay();
  CaptureReplay(const CaptureReplay&) = delete;
  CaptureReplay& operator=(const CaptureReplay&) = delete;

  std::uint16_t Port() const { return listener_->Port(); }
  /// Number of recorded exchanges.
  std::size_t Recorded() const { return recorded_; }
  /// Requests in order: operation, object and classes.
  std::vector<std::string> Summaries() const;
  /// Requests that the recording does not have; they were answered with HTTP status 501.
  std::vector<std::string> Unmatched() const;
  /// Bodies of the requests that differ from the recorded ones in more than the MESSAGE ID.
  std::vector<std::string> Different() const;

 private:
  struct Exchange {
    std::string requestBody;  ///< with an empty MESSAGE ID
    std::string response;
  };
  HttpReply Handle(const HttpExchange& exchange);

  mutable std::mutex mutex_;
  std::size_t recorded_ = 0;
  std::map<std::string, Exchange> exchanges_;  // by summary; of several equal ones the first
  std::vector<std::string> summaries_;
  std::vector<std::string> unmatched_;
  std::vector<std::string> different_;
  std::unique_ptr<HttpListener> listener_;  // last: its threads use what stands above
};

}  // namespace Orvane::testing
