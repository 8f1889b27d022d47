// Writes CIM-XML (DSP0201) by plain concatenation.
#include "testing/cim_xml.h"

#include <algorithm>
#include <utility>

namespace Orvane::testing {

CimValue CimTyped(std::string type, std::string text) {
  CimValue value;
  value.type = std::move(type);
  value.texts.push_back(std::move(text));
  return value;
}

CimValue CimString(std::string text) { return CimTyped("string", std::move(text)); }

CimValue CimStringArray(std::vector<std::string> texts) {
  CimValue value;
  value.type = "string";
  value.isArray = true;
  value.texts = std::move(texts);
  return value;
}

CimValue CimUint16(unsigned number) { return CimTyped("uint16", std::to_string(number)); }

CimValue CimUint16Array(std::initializer_list<unsigned> values) {
  CimValue value;
  value.type = "uint16";
  value.isArray = true;
  for (const unsigned number : values) value.texts.push_back(std::to_string(number));
  return value;
}

CimValue CimBoolean(bool value) { return CimTyped("boolean", value ? "TRUE" : "FALSE"); }

CimValue CimDateTime(std::string text) { return CimTyped("datetime", std::move(text)); }

CimValue CimReference(CimPath path) {
  CimValue value;
  value.type = "reference";
  value.reference = std::make_shared<const CimPath>(std::move(path));
  return value;
}

CimValue CimNull(std::string type, bool isArray) {
  CimValue value;
  value.type = std::move(type);
  value.isArray = isArray;
  value.isNull = true;
  return value;
}

CimObjectSpec& CimObjectSpec::Key(const std::string& name, const std::string& text) {
  keys.push_back({name, text, "string", nullptr});
  return With(name, CimString(text));
}

CimObjectSpec& CimObjectSpec::With(const std::string& name, CimValue value) {
  properties.emplace_back(name, std::move(value));
  return *this;
}

std::string XmlEscape(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const auto code = static_cast<unsigned char>(c);
    // A blank at either end would be trimmed by the reader.
    const bool blankAtEnd = c == ' ' && (i == 0 || i + 1 == text.size());
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&apos;";
        break;
      default:
        if (code < 0x20 || code == 0x7F || blankAtEnd) {
          out += "&#" + std::to_string(code) + ";";
        } else {
          out += c;
        }
    }
  }
  return out;
}

namespace {

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + '"';
}

}  // namespace

std::string PathText(const CimPath& path) {
  std::string out;
  if (!path.host.empty()) out += "//" + path.host + "/";
  if (!path.nameSpace.empty()) out += path.nameSpace + ":";
  out += path.className;
  std::vector<CimKey> keys = path.keys;
  std::stable_sort(keys.begin(), keys.end(), [](const CimKey& a, const CimKey& b) { return a.name < b.name; });
  char separator = '.';
  for (const CimKey& key : keys) {
    out += separator;
    separator = ',';
    out += key.name + "=";
    if (key.reference) {
      out += Quoted(PathText(*key.reference));
    } else {
      out += key.type == "string" ? Quoted(key.text) : key.text;
    }
  }
  return out;
}

void AppendLocalNamespacePath(std::string& out, const std::string& nameSpace) {
  out += "<LOCALNAMESPACEPATH>\n";
  std::size_t begin = 0;
  while (begin <= nameSpace.size()) {
    const std::size_t end = std::min(nameSpace.find('/', begin), nameSpace.size());
    out += "<NAMESPACE NAME=\"" + XmlEscape(nameSpace.substr(begin, end - begin)) + "\"/>\n";
    begin = end + 1;
  }
  out += "</LOCALNAMESPACEPATH>\n";
}

namespace {

void AppendReference(std::string& out, const CimPath& path) {
  out += "<VALUE.REFERENCE>\n";
  if (!path.host.empty()) {
    AppendInstancePath(out, path, path.host, path.nameSpace);
  } else if (!path.nameSpace.empty()) {
    out += "<LOCALINSTANCEPATH>\n";
    AppendLocalNamespacePath(out, path.nameSpace);
    AppendInstanceName(out, path);
    out += "</LOCALINSTANCEPATH>\n";
  } else {
    AppendInstanceName(out, path);
  }
  out += "</VALUE.REFERENCE>\n";
}

}  // namespace

void AppendInstanceName(std::string& out, const CimPath& path) {
  out += "<INSTANCENAME CLASSNAME=\"" + XmlEscape(path.className) + "\">\n";
  for (const CimKey& key : path.keys) {
    out += "<KEYBINDING NAME=\"" + XmlEscape(key.name) + "\">\n";
    if (key.reference) {
      AppendReference(out, *key.reference);
    } else {
      out += "<KEYVALUE VALUETYPE=\"" + key.type + "\">" + XmlEscape(key.text) + "</KEYVALUE>\n";
    }
    out += "</KEYBINDING>\n";
  }
  out += "</INSTANCENAME>\n";
}

void AppendInstancePath(std::string& out, const CimPath& path, const std::string& host, const std::string& nameSpace) {
  out += "<INSTANCEPATH>\n<NAMESPACEPATH>\n<HOST>" + XmlEscape(host) + "</HOST>\n";
  AppendLocalNamespacePath(out, nameSpace);
  out += "</NAMESPACEPATH>\n";
  AppendInstanceName(out, path);
  out += "</INSTANCEPATH>\n";
}

void AppendValue(std::string& out, const CimValue& value) {
  if (value.isNull) return;
  if (value.reference) {
    AppendReference(out, *value.reference);
    return;
  }
  if (value.isArray) out += "<VALUE.ARRAY>\n";
  for (const std::string& text : value.texts) {
    out += "<VALUE>";
    out += XmlEscape(text);
    out += "</VALUE>\n";
  }
  if (value.isArray) out += "</VALUE.ARRAY>\n";
}

void AppendInstance(std::string& out, const CimObjectSpec& object) {
  out += "<INSTANCE CLASSNAME=\"" + XmlEscape(object.className) + "\">\n";
  for (const auto& [name, value] : object.properties) {
    const bool reference = value.type == "reference";
    const std::string element = reference ? "PROPERTY.REFERENCE" : value.isArray ? "PROPERTY.ARRAY" : "PROPERTY";
    out += "<" + element + " NAME=\"" + XmlEscape(name) + "\"";
    if (!reference) out += " TYPE=\"" + value.type + "\"";
    out += ">\n";
    AppendValue(out, value);
    out += "</" + element + ">\n";
  }
  out += "</INSTANCE>\n";
}

}  // namespace Orvane::testing
