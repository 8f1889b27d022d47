// The expectations that are not on the fast path, and the errors.
#include "wire/xml_reader.h"

#include <algorithm>

namespace Pegasus::wire {
namespace {

char FoldCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string AttributeName(std::string_view element, std::string_view name) {
  return std::string(element).append(".").append(name);
}

}  // namespace

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return FoldCase(x) == FoldCase(y); });
}

std::optional<std::string_view> XmlReader::FindAttribute(std::string_view name) const {
  for (const XmlScanner::Attribute& attribute : scanner_.Attributes()) {
    if (attribute.name == name) return attribute.value;
  }
  return std::nullopt;
}

std::string_view XmlReader::NeedAttribute(std::string_view element, std::string_view name) const {
  const auto value = FindAttribute(name);
  if (!value) FailValidation("missing " + AttributeName(element, name) + " attribute");
  return *value;
}

bool XmlReader::BooleanAttribute(std::string_view element, std::string_view name, bool defaultValue) const {
  const auto value = FindAttribute(name);
  if (!value) return defaultValue;
  if (EqualNoCase(*value, "true")) return true;
  if (EqualNoCase(*value, "false")) return false;
  FailAttribute("Invalid " + AttributeName(element, name) + " attribute value");
}

std::string_view XmlReader::TakeText() {
  if (!AtText()) return {};
  const std::string_view text = scanner_.Text();
  Next();
  return text;
}

std::string_view XmlReader::TakeTextElement(std::string_view element) {
  std::string_view text = scanner_.TryPlainText();
  if (text.data() == nullptr) {
    Next();
    text = TakeText();
  }
  Leave(element);
  return text;
}

void XmlReader::FailValidation(const std::string& detail) const {
  scanner_.Fail(XmlError::kValidation, scanner_.Position(), detail);
}

void XmlReader::FailAttribute(std::string_view detail) const {
  scanner_.Fail(XmlError::kSemantic, scanner_.Position(), detail);
}

void XmlReader::FailSemantic(std::string_view detail) const {
  scanner_.Fail(XmlError::kSemantic, consumed_ != nullptr ? consumed_ : scanner_.Position(), detail);
}

void XmlReader::FailClose(std::string_view element) const {
  std::string detail("Expected close of ");
  detail.append(element).append(" element, got ").append(scanner_.Text().substr(0, 300)).append(" instead");
  FailValidation(detail);
}

}  // namespace Pegasus::wire
