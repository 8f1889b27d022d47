// Walks over the tokens of a response: tests, expectations and the errors for what was not expected. All decoders of
// this folder read through it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "wire/xml_scanner.h"

namespace Pegasus::wire {

/// A cursor over the tokens with one token in view. Its views stay valid while it lives.
class XmlReader {
 public:
  /// Takes the text over and looks at its first token.
  explicit XmlReader(std::string&& text) : scanner_(std::move(text)) { scanner_.Next(); }

  /// Tells whether the token in view opens an element of this name.
  bool AtStart(std::string_view name) const {
    return scanner_.Current() == XmlScanner::Token::kStart && Equals(scanner_.Text(), name);
  }
  bool AtStart() const { return scanner_.Current() == XmlScanner::Token::kStart; }
  bool AtClose() const { return scanner_.Current() == XmlScanner::Token::kClose; }
  bool AtDeclaration() const { return scanner_.Current() == XmlScanner::Token::kDeclaration; }
  bool AtText() const {
    return scanner_.Current() == XmlScanner::Token::kText || scanner_.Current() == XmlScanner::Token::kCData;
  }
  bool AtEmptyTag() const { return AtStart() && scanner_.IsEmptyTag(); }
  /// Name of the element or the text in view.
  std::string_view Text() const { return scanner_.Text(); }

  /// The start tag in view.
  const XmlScanner::StartTag& Tag() const { return scanner_.Tag(); }
  const std::vector<XmlScanner::Attribute>& Attributes() const { return scanner_.Attributes(); }
  /// An attribute of the element in view.
  std::optional<std::string_view> FindAttribute(std::string_view name) const;
  /// An attribute that has to be there; `element` is for the message.
  std::string_view NeedAttribute(std::string_view element, std::string_view name) const;
  /// The value of a true/false attribute.
  bool BooleanAttribute(std::string_view element, std::string_view name, bool defaultValue) const;

  /// Takes the token in view.
  void Next() {
    consumed_ = scanner_.Position();
    scanner_.Next();
  }
  /// Takes the closing tag of `element`, which has to be in view.
  void Leave(std::string_view element) {
    if (!AtClose()) FailClose(element);
    Next();
  }
  /// As Next and Leave, in the hope that a start tag spelt as `tag` was comes next; see XmlScanner::NextIs.
  bool NextIs(const XmlScanner::StartTag& tag) {
    consumed_ = scanner_.Position();
    return scanner_.NextIs(tag);
  }
  bool LeaveTo(std::string_view element, const XmlScanner::StartTag& tag) {
    NeedClose(element);
    return NextIs(tag);
  }
  /// Fails as Leave does, without taking anything, unless the closing tag is in view.
  void NeedClose(std::string_view element) const {
    if (!AtClose()) FailClose(element);
  }
  /// Takes the text or CDATA in view; empty when there is none.
  std::string_view TakeText();
  /// Takes a whole element that holds nothing but text.
  std::string_view TakeTextElement(std::string_view element);

  /// The token in view is not what it should be.
  [[noreturn]] void FailValidation(const std::string& detail) const;
  /// An attribute of the element in view has no acceptable meaning.
  [[noreturn]] void FailAttribute(std::string_view detail) const;
  /// What was taken last has no acceptable meaning.
  [[noreturn]] void FailSemantic(std::string_view detail) const;

 private:
  [[noreturn]] void FailClose(std::string_view element) const;

  XmlScanner scanner_;
  const char* consumed_ = nullptr;
};

/// Compares without regard to ASCII case.
bool EqualNoCase(std::string_view a, std::string_view b);

}  // namespace Pegasus::wire
