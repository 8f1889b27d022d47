// Takes the bytes of an HTTP response as they come and tells when it is complete. Lenient where servers are sloppy
// (bare line feeds, folded lines, a connection closed early), strict where a guess could mistake one answer for
// another (lengths).
#include "transport/http_response.h"

#include <Pegasus/Client/CIMClientException.h>

#include <algorithm>
#include <charconv>

#include "base/limits.h"
#include "transport/text.h"

namespace Pegasus::transport {

namespace {

constexpr Uint32 kBadRequest = 400;
constexpr Uint32 kNotImplemented = 501;
constexpr Uint32 kNoContent = 204;

[[noreturn]] void ThrowMalformed() {
  throw CIMClientMalformedHTTPException(String("Malformed HTTP response message."));
}

[[noreturn]] void ThrowBadRequest(const char* detail) {
  throw CIMClientHTTPErrorException(kBadRequest, String("Bad Request"), String(), String(detail));
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// The whole of `text` as a number of that base.
bool ParseNumber(std::string_view text, int base, std::uint64_t& number) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  return !text.empty() && error == std::errc() && stop == end;
}

}  // namespace

void Headers::Extend(std::string_view more) {
  if (lines_.empty()) return;
  lines_.back().value += ' ';
  lines_.back().value += more;
}

const std::string* Headers::Find(std::string_view name) const {
  const auto found = std::find_if(lines_.begin(), lines_.end(),
                                  [name](const Header& header) { return EqualIgnoringCase(header.name, name); });
  return found == lines_.end() ? nullptr : &found->value;
}

const std::string* Headers::FindPrefixed(std::string_view name) const {
  constexpr std::size_t kPrefix = 3;
  const auto matches = [name](const Header& header) {
    const std::string_view text = header.name;
    if (EqualIgnoringCase(text, name)) return true;
    return text.size() == name.size() + kPrefix && IsDigit(text[0]) && IsDigit(text[1]) && text[2] == '-' &&
           EqualIgnoringCase(text.substr(kPrefix), name);
  };
  const auto found = std::find_if(lines_.begin(), lines_.end(), matches);
  return found == lines_.end() ? nullptr : &found->value;
}

std::size_t Headers::CountOf(std::string_view name) const {
  return static_cast<std::size_t>(std::count_if(
      lines_.begin(), lines_.end(), [name](const Header& header) { return EqualIgnoringCase(header.name, name); }));
}

bool ResponseReader::Take(std::string_view bytes) {
  started_ = started_ || !bytes.empty();
  try {
    TakeParts(bytes);
  } catch (const Exception&) {
    if (!OnlyErrorBodyMissing()) throw;
    response_.closesConnection = true;
    state_ = State::kDone;
  }
  return state_ == State::kDone;
}

void ResponseReader::TakeParts(std::string_view bytes) {
  while (!bytes.empty() && state_ != State::kDone) {
    switch (state_) {
      case State::kHead:
      case State::kChunkSize:
      case State::kChunkEnd:
      case State::kTrailers:
        TakeLines(bytes);
        break;
      case State::kCounted:
      case State::kChunkData:
        TakeCounted(bytes);
        break;
      case State::kUntilClose:
        AppendBody(bytes);
        bytes = {};
        break;
      case State::kDone:
        break;
    }
  }
}

void ResponseReader::End() {
  response_.closesConnection = true;
  // A line that the end of the connection cut off is dropped, but for a status line that is all there.
  if (state_ == State::kHead && !haveStatusLine_) ParseStatusLine(line_);
  state_ = State::kDone;
}

HttpResponse ResponseReader::Abandon() {
  response_.closesConnection = true;
  return std::move(response_);
}

void ResponseReader::TakeLines(std::string_view& bytes) {
  const std::size_t end = bytes.find('\n');
  const std::size_t taken = end == std::string_view::npos ? bytes.size() : end + 1;
  const bool chunkLine = state_ == State::kChunkSize || state_ == State::kChunkEnd;
  lineBytes_ += taken;
  if (lineBytes_ > (chunkLine ? limits::kChunkLineBytes : limits::kHeadBytes)) ThrowMalformed();
  line_.append(bytes.substr(0, taken));
  bytes.remove_prefix(taken);
  if (end == std::string_view::npos) return;

  line_.pop_back();
  if (!line_.empty() && line_.back() == '\r') line_.pop_back();
  const std::string line = std::move(line_);
  line_.clear();
  OnLine(line);
}

void ResponseReader::TakeCounted(std::string_view& bytes) {
  const std::size_t taken = static_cast<std::size_t>(std::min<std::uint64_t>(missing_, bytes.size()));
  const std::string_view part = bytes.substr(0, taken);
  bytes.remove_prefix(taken);
  AppendBody(part);
  missing_ -= taken;
  if (missing_ == 0 && state_ != State::kDone) state_ = state_ == State::kCounted ? State::kDone : State::kChunkEnd;
}

void ResponseReader::OnLine(std::string_view line) {
  switch (state_) {
    case State::kHead:
      OnHeadLine(line);
      break;
    case State::kChunkSize:
      OnChunkSize(line);
      break;
    case State::kChunkEnd:
      if (!line.empty()) ThrowBadRequest("missing chunk end");
      lineBytes_ = 0;
      state_ = State::kChunkSize;
      break;
    case State::kTrailers:
      if (line.empty()) {
        state_ = State::kDone;
      } else {
        AddHeaderLine(response_.trailers, line);
      }
      break;
    default:
      break;
  }
}

void ResponseReader::OnHeadLine(std::string_view line) {
  if (!haveStatusLine_) {
    haveStatusLine_ = true;
    ParseStatusLine(line);
    if (line.empty()) {
      // An empty first line is the whole head; what comes behind it belongs to no response.
      response_.closesConnection = true;
      state_ = State::kDone;
    }
  } else if (line.empty()) {
    OnHeadEnd();
  } else {
    AddHeaderLine(response_.headers, line);
  }
}

void ResponseReader::OnChunkSize(std::string_view line) {
  const std::string_view digits = Trim(line.substr(0, line.find(';')));
  if (!ParseNumber(digits, 16, missing_)) ThrowBadRequest("missing chunk extension");
  lineBytes_ = 0;
  state_ = missing_ == 0 ? State::kTrailers : State::kChunkData;
}

void ResponseReader::ParseStatusLine(std::string_view line) {
  constexpr std::string_view kProtocol = "HTTP/";
  constexpr std::size_t kStatusDigits = 3;
  if (line.substr(0, kProtocol.size()) != kProtocol) return;
  const std::size_t first = line.find(' ');
  if (first == std::string_view::npos) return;
  const std::size_t second = line.find(' ', first + 1);
  if (second == std::string_view::npos) return;
  const std::string_view code = line.substr(first + 1, second - first - 1);
  std::uint64_t status = 0;
  if (code.size() != kStatusDigits || !ParseNumber(code, 10, status)) return;
  response_.statusLineValid = true;
  response_.status = static_cast<std::uint32_t>(status);
  response_.reason = std::string(Trim(line.substr(second + 1)));
}

void ResponseReader::AddHeaderLine(Headers& headers, std::string_view line) {
  if (line.front() == ' ' || line.front() == '\t') {
    headers.Extend(Trim(line));
    return;
  }
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos || headers.Count() == limits::kHeaders) ThrowMalformed();
  headers.Add(std::string(Trim(line.substr(0, colon))), std::string(Trim(line.substr(colon + 1))));
}

void ResponseReader::OnHeadEnd() {
  lineBytes_ = 0;
  constexpr std::uint32_t kHundred = 100;
  if (response_.statusLineValid && response_.status / kHundred == 1) {
    response_ = HttpResponse();
    haveStatusLine_ = false;
    return;
  }
  response_.headComplete = true;
  const std::string* connection = response_.headers.Find("Connection");
  response_.closesConnection = connection != nullptr && EqualIgnoringCase(*connection, "close");
  Frame();
}

void ResponseReader::Frame() {
  const bool error = response_.status >= kFirstErrorStatus;
  const std::string* encoding = response_.headers.Find("Transfer-Encoding");
  const std::string* length = response_.headers.Find("Content-Length");
  const bool lengthUsable =
      response_.headers.CountOf("Content-Length") <= 1 && (length == nullptr || ParseNumber(*length, 10, missing_));
  const bool encodingUsable = encoding == nullptr || *encoding == "chunked";
  if (error && !(lengthUsable && encodingUsable)) {
    // The status says enough; where its body ends cannot be told, so the connection ends with it.
    response_.closesConnection = true;
    state_ = State::kDone;
    return;
  }
  if (!lengthUsable) {
    ThrowBadRequest(response_.headers.CountOf("Content-Length") > 1 ? "Duplicate Content-Length header detected"
                                                                    : "Invalid Content-Length header detected");
  }
  if (!encodingUsable) {
    throw CIMClientHTTPErrorException(kNotImplemented, String("Not Implemented"), String(),
                                      String("unimplemented transfer-encoding value"));
  }
  if (encoding != nullptr) {
    state_ = State::kChunkSize;
  } else if (length != nullptr) {
    state_ = missing_ == 0 ? State::kDone : State::kCounted;
  } else {
    const bool bodyless = error || response_.status == kNoContent;
    state_ = bodyless ? State::kDone : State::kUntilClose;
  }
}

void ResponseReader::AppendBody(std::string_view bytes) {
  if (response_.status >= kFirstErrorStatus) {
    dropped_ += bytes.size();
    if (dropped_ > limits::kErrorBodyBytes) {
      response_.closesConnection = true;
      state_ = State::kDone;
    }
    return;
  }
  std::string& body = response_.body;
  const std::size_t needed = body.size() + bytes.size();
  if (needed > limits::kBodyBytes) {
    throw CIMClientMalformedHTTPException(String("The HTTP response body is too large."));
  }
  if (needed > body.capacity()) {
    // Grows with the bytes that came; what is promised only keeps the last step from reaching beyond it.
    std::size_t capacity = std::max(needed, std::min(body.capacity() * 2, limits::kBodyBytes));
    if (state_ == State::kCounted && missing_ < capacity - body.size()) {
      capacity = body.size() + static_cast<std::size_t>(missing_);
    }
    // Into an empty string, as a full one makes room for twice of what it has at least.
    std::string larger;
    larger.reserve(capacity);
    larger += body;
    body.swap(larger);
  }
  body.append(bytes);
}

}  // namespace Pegasus::transport
