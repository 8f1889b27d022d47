// Splits the text of a response into XML tokens in one pass over the buffer, which it changes: references are decoded
// in place, so that every token is a view into the buffer. There is no tree, no entity expansion and no recursion.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace Pegasus::wire {

/// What is wrong with a text. The names appear in the messages of CIMClientXmlException.
enum class XmlError {
  kBadOpeningElement,
  kBadClosingElement,
  kBadAttributeName,
  kExpectedEqualSign,
  kBadAttributeValue,
  kMinusMinusInComment,
  kUnterminatedComment,
  kUnterminatedCData,
  kMalformedReference,
  kExpectedCommentOrCData,
  kStartEndMismatch,
  kUnclosedTags,
  kValidation,
  kSemantic,
};

/// Compares with a text known at compile time, which compilers turn into a few instructions: the size they see is that
/// of `known`.
inline bool Equals(std::string_view text, std::string_view known) {
  return text.size() == known.size() && std::memcmp(text.data(), known.data(), known.size()) == 0;
}

/// Tokenizer. Not copyable: its views point into its own buffer.
class XmlScanner {
 public:
  enum class Token { kStart, kClose, kText, kCData, kDeclaration, kDoctype, kEnd };

  struct Attribute {
    std::string_view name;
    std::string_view value;
  };

  /// A start tag as it stands in the text; both empty when decoding has changed the bytes.
  struct StartTag {
    std::string_view bytes;  // from `<` to `>`
    std::string_view name;
  };

  /// Takes the text over. A NUL byte ends it.
  explicit XmlScanner(std::string&& text);
  XmlScanner(const XmlScanner&) = delete;
  XmlScanner& operator=(const XmlScanner&) = delete;
  ~XmlScanner() = default;

  /// Goes on to the next token; comments and the white space between tokens are skipped. An empty-element tag gives a
  /// kStart and a kClose. Throws CIMClientXmlException when the text is not well-formed.
  void Next();

  Token Current() const { return token_; }
  /// The element's name, or the text without the raw white space around it.
  std::string_view Text() const { return text_; }
  /// The attributes of a kStart or kDeclaration.
  const std::vector<Attribute>& Attributes() const { return attributes_; }
  /// Tells whether the current kStart came from an empty-element tag.
  bool IsEmptyTag() const { return closePending_; }

  /// The tag of the current kStart.
  const StartTag& Tag() const { return tag_; }
  /// As Next, in the hope that the next token is a start tag spelt as `tag` was. Then comparing the bytes is all it
  /// takes: the result is true and Attributes is empty, since the caller has seen them.
  bool NextIs(const StartTag& tag);
  /// With a kStart in view: goes on to the closing tag and returns the text before it if there is nothing but text,
  /// and nothing in it to be decoded. Otherwise the result has no data and the kStart stays in view.
  std::string_view TryPlainText();

  /// Position behind the current token, for Fail.
  const char* Position() const { return cursor_; }

  /// Throws CIMClientXmlException for a problem before `position`; `detail` is cut when it is long.
  [[noreturn]] void Fail(XmlError error, const char* position, std::string_view detail = {}) const;

 private:
  void ScanMarkup();
  void ScanDeclaration();
  void ScanStart();
  void Open(std::string_view name);
  void ScanClose();
  void ScanText();
  void ScanCData();
  void SkipComment();
  void ScanAttributes();
  void ScanAttribute();
  void SkipWhiteSpace();
  std::string_view ScanName(XmlError error);
  /// Decodes the references in [begin, end) in place and returns the shortened text.
  std::string_view DecodeReferences(char* begin, char* end);
  /// Decodes the reference at `from`, moves `from` behind it and returns the byte it stands for.
  char DecodeReference(const char*& from, const char* end) const;

  std::string buffer_;
  char* begin_;
  char* end_;
  char* cursor_;
  Token token_ = Token::kEnd;
  bool closePending_ = false;
  std::string_view text_;
  StartTag tag_;
  bool tagDecoded_ = false;
  std::vector<Attribute> attributes_;
  std::vector<std::string_view> open_;
  /// Line ends that decoding removed from the buffer, less those it put there.
  std::ptrdiff_t hiddenLines_ = 0;
};

}  // namespace Pegasus::wire
