// Takes the bytes of an HTTP response as they come and tells when it is complete. Knows nothing of sockets: bytes go
// in, and out comes a status, headers, trailers and a body.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Pegasus::transport {

struct Header {
  std::string name;
  std::string value;
};

/// The header lines of a response, in the order in which they came.
class Headers {
 public:
  void Add(std::string name, std::string value) { lines_.push_back({std::move(name), std::move(value)}); }
  std::size_t Count() const { return lines_.size(); }
  /// Joins a folded line to the header before it.
  void Extend(std::string_view more);
  /// The first header of that name, whatever its case; null when there is none.
  const std::string* Find(std::string_view name) const;
  /// As Find, but a name with a two-digit prefix (`73-CIMOperation`) counts too.
  const std::string* FindPrefixed(std::string_view name) const;
  /// How many headers have that name.
  std::size_t CountOf(std::string_view name) const;

 private:
  std::vector<Header> lines_;
};

struct HttpResponse {
  /// False when the first line is not `HTTP/x <status> <reason>`; status and reason mean nothing then.
  bool statusLineValid = false;
  std::uint32_t status = 0;
  std::string reason;
  Headers headers;
  Headers trailers;
  /// Empty for statuses from 300 on, whatever the server sent.
  std::string body;
  /// False when the connection ended inside the headers.
  bool headComplete = false;
  /// True when no further request can be sent over the connection.
  bool closesConnection = false;
};

/// Reads one response. Interim (1xx) responses are skipped.
class ResponseReader {
 public:
  /// Takes the next bytes; those behind the end of the response are dropped.
  /// @return true when the response is complete; a fault behind the head of an error response completes it, as its
  ///         status is known by then
  /// @throws CIMClientHTTPErrorException for lengths and encodings that cannot be followed,
  ///         CIMClientMalformedHTTPException when a limit is passed or a header line is none
  bool Take(std::string_view bytes);

  /// The server has closed the connection: what came is the response.
  void End();

  /// True once any byte of the response has come.
  bool Started() const { return started_; }
  /// True when the headers are complete and their status is that of an error, so only bytes to be dropped are missing.
  bool OnlyErrorBodyMissing() const { return state_ != State::kHead && response_.status >= kFirstErrorStatus; }

  /// Stops waiting for the rest; the connection cannot be used any more.
  HttpResponse Abandon();
  HttpResponse Result() { return std::move(response_); }

 private:
  enum class State { kHead, kCounted, kUntilClose, kChunkSize, kChunkData, kChunkEnd, kTrailers, kDone };

  static constexpr std::uint32_t kFirstErrorStatus = 300;

  void TakeParts(std::string_view bytes);
  void TakeLines(std::string_view& bytes);
  void TakeCounted(std::string_view& bytes);
  void OnLine(std::string_view line);
  void OnHeadLine(std::string_view line);
  void OnChunkSize(std::string_view line);
  void ParseStatusLine(std::string_view line);
  void AddHeaderLine(Headers& headers, std::string_view line);
  void OnHeadEnd();
  void Frame();
  void AppendBody(std::string_view bytes);

  State state_ = State::kHead;
  HttpResponse response_;
  std::string line_;
  std::size_t lineBytes_ = 0;
  bool started_ = false;
  bool haveStatusLine_ = false;
  std::uint64_t missing_ = 0;
  std::uint64_t dropped_ = 0;
};

}  // namespace Pegasus::transport
