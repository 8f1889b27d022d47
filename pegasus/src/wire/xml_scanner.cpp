// The tokenizer. The buffer ends with a NUL byte and holds none before, so that loops stop there by themselves.
#include "wire/xml_scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "Pegasus/Client/CIMClientException.h"
#include "Pegasus/Common/String.h"
#include "base/limits.h"

namespace Pegasus::wire {
namespace {

enum CharClass : unsigned char { kOther = 0, kSpace = 1, kNameStart = 2, kNamePart = 4 };

constexpr std::array<unsigned char, 256> MakeCharClasses() {
  std::array<unsigned char, 256> classes{};
  for (const char c : {' ', '\t', '\r', '\n'}) classes[static_cast<unsigned char>(c)] = kSpace;
  for (unsigned c = 'a'; c <= 'z'; ++c) classes[c] = kNameStart | kNamePart;
  for (unsigned c = 'A'; c <= 'Z'; ++c) classes[c] = kNameStart | kNamePart;
  for (unsigned c = 0x80; c <= 0xFF; ++c) classes[c] = kNameStart | kNamePart;
  for (unsigned c = '0'; c <= '9'; ++c) classes[c] = kNamePart;
  classes['_'] = classes[':'] = kNameStart | kNamePart;
  classes['-'] = classes['.'] = kNamePart;
  return classes;
}

constexpr std::array<unsigned char, 256> kCharClasses = MakeCharClasses();

bool Is(char c, CharClass charClass) { return (kCharClasses[static_cast<unsigned char>(c)] & charClass) != 0; }

std::string_view ErrorText(XmlError error) {
  switch (error) {
    case XmlError::kBadOpeningElement:
      return "Bad opening element";
    case XmlError::kBadClosingElement:
      return "Bad closing element";
    case XmlError::kBadAttributeName:
      return "Bad attribute name";
    case XmlError::kExpectedEqualSign:
      return "Exepected equal sign";
    case XmlError::kBadAttributeValue:
      return "Bad attribute value";
    case XmlError::kMinusMinusInComment:
      return "A \"--\" sequence found within comment";
    case XmlError::kUnterminatedComment:
      return "Unterminated comment";
    case XmlError::kUnterminatedCData:
      return "Unterminated CDATA block";
    case XmlError::kMalformedReference:
      return "Malformed reference";
    case XmlError::kExpectedCommentOrCData:
      return "Expected a comment or CDATA following \"<!\" sequence";
    case XmlError::kStartEndMismatch:
      return "Closing element does not match opening element";
    case XmlError::kUnclosedTags:
      return "One or more tags are still open";
    case XmlError::kValidation:
      return "Validation error";
    case XmlError::kSemantic:
      return "Semantic error";
  }
  return "XML error";
}

/// Shortens a text for a message, at the border of a UTF-8 sequence.
std::string_view CutForMessage(std::string_view text) {
  constexpr std::size_t kMaxDetail = 300;
  if (text.size() <= kMaxDetail) return text;
  std::size_t size = kMaxDetail;
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) --size;
  return text.substr(0, size);
}

bool StartsWith(const char* at, const char* end, std::string_view prefix) {
  return static_cast<std::size_t>(end - at) >= prefix.size() && std::memcmp(at, prefix.data(), prefix.size()) == 0;
}

struct Entity {
  std::string_view text;
  char character;
};

constexpr std::array<Entity, 5> kEntities = {
    {{"lt;", '<'}, {"gt;", '>'}, {"amp;", '&'}, {"quot;", '"'}, {"apos;", '\''}}};

}  // namespace

XmlScanner::XmlScanner(std::string&& text) : buffer_(std::move(text)) {
  begin_ = buffer_.data();
  end_ = begin_ + std::min(buffer_.find('\0'), buffer_.size());
  cursor_ = begin_;
  attributes_.reserve(8);
  open_.reserve(32);
}

void XmlScanner::Fail(XmlError error, const char* position, std::string_view detail) const {
  const std::ptrdiff_t line = 1 + std::count(static_cast<const char*>(begin_), position, '\n') + hiddenLines_;
  std::string message(ErrorText(error));
  message.append(": on line ").append(std::to_string(line));
  if (!detail.empty()) message.append(": ").append(CutForMessage(detail));
  throw CIMClientXmlException(String(message.data(), static_cast<Uint32>(message.size())));
}

void XmlScanner::Next() {
  if (closePending_) {
    closePending_ = false;
    token_ = Token::kClose;
    text_ = open_.back();
    open_.pop_back();
    return;
  }
  for (;;) {
    SkipWhiteSpace();
    if (cursor_ == end_) {
      if (!open_.empty()) Fail(XmlError::kUnclosedTags, cursor_);
      token_ = Token::kEnd;
      text_ = {};
      return;
    }
    if (*cursor_ != '<') return ScanText();
    if (!StartsWith(cursor_, end_, "<!--")) return ScanMarkup();
    SkipComment();
  }
}

bool XmlScanner::NextIs(const StartTag& tag) {
  if (!closePending_ && !tag.bytes.empty()) {
    SkipWhiteSpace();
    if (StartsWith(cursor_, end_, tag.bytes)) {
      cursor_ += tag.bytes.size();
      attributes_.clear();
      closePending_ = tag.bytes[tag.bytes.size() - 2] == '/';
      tag_ = tag;
      Open(tag.name);
      return true;
    }
  }
  Next();
  return false;
}

void XmlScanner::ScanMarkup() {
  switch (cursor_[1]) {
    case '/':
      return ScanClose();
    case '?':
      return ScanDeclaration();
    case '!':
      if (StartsWith(cursor_, end_, "<![CDATA[")) return ScanCData();
      if (StartsWith(cursor_, end_, "<!DOCTYPE")) {
        token_ = Token::kDoctype;
        text_ = "DOCTYPE";
        cursor_ += 9;
        return;
      }
      Fail(XmlError::kExpectedCommentOrCData, cursor_);
    default:
      return ScanStart();
  }
}

void XmlScanner::SkipWhiteSpace() {
  char* at = cursor_;
  while (Is(*at, kSpace)) ++at;
  cursor_ = at;
}

std::string_view XmlScanner::ScanName(XmlError error) {
  char* at = cursor_;
  if (!Is(*at, kNameStart)) Fail(error, cursor_);
  do {
    ++at;
  } while (Is(*at, kNamePart));
  const std::string_view name(cursor_, static_cast<std::size_t>(at - cursor_));
  cursor_ = at;
  return name;
}

void XmlScanner::ScanStart() {
  const char* const begin = cursor_++;
  const std::string_view name = ScanName(XmlError::kBadOpeningElement);
  attributes_.clear();
  tagDecoded_ = false;
  if (*cursor_ != '>') {
    if (*cursor_ != '/' && !Is(*cursor_, kSpace)) Fail(XmlError::kBadOpeningElement, cursor_);
    ScanAttributes();
    if (*cursor_ == '/') {
      ++cursor_;
      closePending_ = true;
    }
    if (*cursor_ != '>') Fail(XmlError::kBadOpeningElement, cursor_);
  }
  ++cursor_;
  tag_ = tagDecoded_ ? StartTag() : StartTag{{begin, static_cast<std::size_t>(cursor_ - begin)}, name};
  Open(name);
}

void XmlScanner::Open(std::string_view name) {
  if (open_.size() == limits::kElementNesting) {
    Fail(XmlError::kValidation, cursor_, "elements are nested too deeply");
  }
  open_.push_back(name);
  token_ = Token::kStart;
  text_ = name;
}

void XmlScanner::ScanDeclaration() {
  cursor_ += 2;
  text_ = ScanName(XmlError::kBadOpeningElement);
  attributes_.clear();
  ScanAttributes();
  if (!StartsWith(cursor_, end_, "?>")) Fail(XmlError::kBadOpeningElement, cursor_);
  cursor_ += 2;
  token_ = Token::kDeclaration;
}

void XmlScanner::ScanAttributes() {
  for (SkipWhiteSpace(); *cursor_ != '>' && *cursor_ != '/' && *cursor_ != '?'; SkipWhiteSpace()) {
    if (cursor_ == end_) Fail(XmlError::kBadOpeningElement, cursor_);
    ScanAttribute();
  }
}

void XmlScanner::ScanAttribute() {
  const std::string_view name = ScanName(XmlError::kBadAttributeName);
  SkipWhiteSpace();
  if (*cursor_ != '=') {
    Fail(Is(*cursor_, kNameStart) || *cursor_ == '?' || cursor_ == end_ ? XmlError::kBadAttributeName
                                                                        : XmlError::kExpectedEqualSign,
         cursor_);
  }
  ++cursor_;
  SkipWhiteSpace();
  const char quote = *cursor_;
  if (quote != '"' && quote != '\'') Fail(XmlError::kBadAttributeValue, cursor_);
  char* const begin = ++cursor_;
  bool hasReference = false;
  char* end = begin;
  for (; *end != quote && *end != '\0'; ++end) hasReference |= *end == '&';
  if (*end == '\0') Fail(XmlError::kBadAttributeValue, end);
  cursor_ = end + 1;
  if (hasReference) {
    tagDecoded_ = true;
    attributes_.push_back({name, DecodeReferences(begin, end)});
  } else {
    attributes_.push_back({name, {begin, static_cast<std::size_t>(end - begin)}});
  }
}

void XmlScanner::ScanClose() {
  cursor_ += 2;
  std::string_view name;
  if (!open_.empty() && StartsWith(cursor_, end_, open_.back()) && cursor_[open_.back().size()] == '>') {
    name = open_.back();
    cursor_ += name.size() + 1;
  } else {
    name = ScanName(XmlError::kBadClosingElement);
    SkipWhiteSpace();
    if (*cursor_ != '>') Fail(XmlError::kBadClosingElement, cursor_);
    ++cursor_;
    if (open_.empty() || open_.back() != name) Fail(XmlError::kStartEndMismatch, cursor_);
  }
  open_.pop_back();
  token_ = Token::kClose;
  text_ = name;
}

void XmlScanner::ScanText() {
  char* const begin = cursor_;
  const auto length = static_cast<std::size_t>(end_ - begin);
  auto* const next = static_cast<char*>(std::memchr(begin, '<', length));
  cursor_ = next != nullptr ? next : end_;
  char* end = cursor_;
  while (Is(end[-1], kSpace)) --end;
  const auto size = static_cast<std::size_t>(end - begin);
  token_ = Token::kText;
  text_ = std::memchr(begin, '&', size) != nullptr ? DecodeReferences(begin, end) : std::string_view(begin, size);
}

std::string_view XmlScanner::TryPlainText() {
  if (closePending_) return {};
  char* const begin = cursor_;
  const auto* const end = static_cast<const char*>(std::memchr(begin, '<', static_cast<std::size_t>(end_ - begin)));
  if (end == nullptr || end == begin || Is(*begin, kSpace) || Is(end[-1], kSpace)) return {};
  const auto size = static_cast<std::size_t>(end - begin);
  if (std::memchr(begin, '&', size) != nullptr) return {};
  const std::string_view name = open_.back();
  if (end[1] != '/' || !StartsWith(end + 2, end_, name) || end[2 + name.size()] != '>') return {};
  cursor_ = begin + size + name.size() + 3;
  open_.pop_back();
  token_ = Token::kClose;
  text_ = name;
  return {begin, size};
}

void XmlScanner::ScanCData() {
  constexpr std::string_view kOpen = "<![CDATA[";
  const std::string_view rest(cursor_ + kOpen.size(), static_cast<std::size_t>(end_ - cursor_) - kOpen.size());
  const std::size_t size = rest.find("]]>");
  if (size == std::string_view::npos) Fail(XmlError::kUnterminatedCData, end_);
  cursor_ += kOpen.size() + size + 3;
  token_ = Token::kCData;
  text_ = rest.substr(0, size);
}

void XmlScanner::SkipComment() {
  const std::string_view rest(cursor_ + 4, static_cast<std::size_t>(end_ - cursor_) - 4);
  const std::size_t size = rest.find("--");
  if (size == std::string_view::npos || size + 2 == rest.size()) Fail(XmlError::kUnterminatedComment, end_);
  cursor_ += 4 + size + 2;
  if (*cursor_ != '>') Fail(XmlError::kMinusMinusInComment, cursor_);
  ++cursor_;
}

std::string_view XmlScanner::DecodeReferences(char* begin, char* end) {
  const std::ptrdiff_t linesBefore = std::count(begin, end, '\n');
  const char* from = begin;
  char* to = begin;
  while (from != end) {
    if (*from != '&') {
      *to++ = *from++;
      continue;
    }
    const char c = DecodeReference(from, end);
    if (c == '\0') break;
    *to++ = c;
  }
  // What is left of the raw text must not be taken for a part of the document when lines are counted.
  std::fill(to, end, ' ');
  hiddenLines_ += linesBefore - std::count(begin, end, '\n');
  return {begin, static_cast<std::size_t>(to - begin)};
}

char XmlScanner::DecodeReference(const char*& from, const char* end) const {
  const char* const position = from++;
  if (from != end && *from == '#') {
    ++from;
    const bool isHex = from != end && *from == 'x';
    if (isHex) ++from;
    unsigned value = 0;
    const auto [last, error] = std::from_chars(from, end, value, isHex ? 16 : 10);
    // Peers escape single bytes this way; a reference to anything above has never been valid in this protocol.
    if (error != std::errc() || last == end || *last != ';' || value > 0xFF) {
      Fail(XmlError::kMalformedReference, position);
    }
    from = last + 1;
    return static_cast<char>(value);
  }
  for (const Entity& entity : kEntities) {
    if (StartsWith(from, end, entity.text)) {
      from += entity.text.size();
      return entity.character;
    }
  }
  Fail(XmlError::kMalformedReference, position);
}

}  // namespace Pegasus::wire
