// The recorded answers are chunked. A MESSAGE ID of the recorded length goes in place; any other length needs new
// chunks.
#include "testing/capture_replay.h"

#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "testing/cim_request.h"

namespace Orvane::testing {

namespace {

constexpr char kIdMark[] = "<MESSAGE ID=\"";

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("recording: cannot read " + path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::size_t IdBegin(const std::string& text) {
  const std::size_t mark = text.find(kIdMark);
  if (mark == std::string::npos) throw std::runtime_error("recording: no MESSAGE ID");
  return mark + sizeof kIdMark - 1;
}

std::string WithId(std::string text, const std::string& id) {
  const std::size_t begin = IdBegin(text);
  return text.replace(begin, text.find('"', begin) - begin, id);
}

/// Joins the chunks of a body and drops the trailer.
std::string Unchunk(const std::string& chunked) {
  std::string body;
  std::size_t at = 0;
  while (true) {
    const std::size_t line = chunked.find("\r\n", at);
    if (line == std::string::npos) throw std::runtime_error("recording: broken chunks");
    const std::size_t size = std::stoul(chunked.substr(at, line - at), nullptr, 16);
    if (size == 0) return body;
    body += chunked.substr(line + 2, size);
    at = line + 2 + size + 2;
  }
}

std::string OneChunk(const std::string& body) {
  char size[32];
  std::snprintf(size, sizeof size, "%zx", body.size());
  return std::string(size) + "\r\n" + body + "\r\n0\r\n\r\n";
}

std::string Answer(const std::string& recorded, const std::string& id) {
  const std::size_t begin = IdBegin(recorded);
  if (recorded.find('"', begin) - begin == id.size()) return WithId(recorded, id);
  const std::size_t body = recorded.find("\r\n\r\n") + 4;
  return recorded.substr(0, body) + OneChunk(WithId(Unchunk(recorded.substr(body)), id));
}

}  // namespace

CaptureReplay::CaptureReplay(const std::string& directory, bool tls) {
  for (const nlohmann::json& entry : nlohmann::json::parse(ReadFile(directory + "/index.json"))) {
    char number[16];
    std::snprintf(number, sizeof number, "%03d", entry.at("n").get<int>());
    const std::string base = directory + "/" + number;
    const std::string request = ReadFile(base + ".request.http");
    const std::size_t end = request.find("\r\n\r\n");
    if (end == std::string::npos) throw std::runtime_error("recording: no HTTP request in " + base);
    HttpExchange exchange;
    exchange.head = request.substr(0, end);
    exchange.body = request.substr(end + 4);
    exchanges_.emplace(ParseCimRequest(exchange).Summary(),
                       Exchange{WithId(exchange.body, ""), ReadFile(base + ".response.http")});
    ++recorded_;
  }
  HttpListener::Options options;
  if (tls) options.certificate = MakeSelfSignedCertificate();
  listener_ = std::make_unique<HttpListener>(
      std::move(options), [this](const HttpExchange& exchange) { return Handle(exchange); },
      [](HttpListener::Change, unsigned) {});
}

CaptureReplay::~CaptureReplay() { listener_.reset(); }

HttpReply CaptureReplay::Handle(const HttpExchange& exchange) {
  const CimRequest request = ParseCimRequest(exchange);
  const std::string summary = request.Summary();
  const std::lock_guard<std::mutex> lock(mutex_);
  summaries_.push_back(summary);
  const auto found = exchanges_.find(summary);
  if (found == exchanges_.end()) {
    unmatched_.push_back(summary);
    return {"HTTP/1.1 501 Not Implemented\r\nContent-Length: 0\r\n\r\n", HttpReply::After::kKeep};
  }
  if (WithId(exchange.body, "") != found->second.requestBody) different_.push_back(exchange.body);
  return {Answer(found->second.response, request.messageId), HttpReply::After::kKeep};
}

std::vector<std::string> CaptureReplay::Summaries() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return summaries_;
}

std::vector<std::string> CaptureReplay::Unmatched() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return unmatched_;
}

std::vector<std::string> CaptureReplay::Different() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return different_;
}

}  // namespace Orvane::testing
