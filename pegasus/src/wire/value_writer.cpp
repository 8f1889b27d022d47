// Writes values and method parameters as CIM-XML elements.
#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>

#include "wire/xml_writer.h"

namespace Pegasus::wire {
namespace {

std::string RealText(const char* format, double value) {
  // The longest form is a sign, 17 digits, a point and an exponent of three digits.
  char buffer[40];
  const int size = std::snprintf(buffer, sizeof buffer, format, value);
  return std::string(buffer, static_cast<std::size_t>(size));
}

void AppendText(std::string& out, Boolean value) { out += value ? "TRUE" : "FALSE"; }
void AppendText(std::string& out, Real32 value) { out += RealText("%.7e", static_cast<double>(value)); }
void AppendText(std::string& out, Real64 value) { out += RealText("%.16e", value); }
void AppendText(std::string& out, const Char16& value) { AppendEscaped(out, String(&value, 1)); }
void AppendText(std::string& out, const String& value) { AppendEscaped(out, value); }
void AppendText(std::string& out, const CIMDateTime& value) { AppendUtf8(out, value.toString()); }

void AppendText(std::string& out, const CIMObject& value) {
  std::string text;
  AppendObject(text, value);
  AppendEscaped(out, text);
}

void AppendText(std::string& out, const CIMInstance& value) {
  std::string text;
  AppendInstance(text, value);
  AppendEscaped(out, text);
}

template <typename T>
std::enable_if_t<std::is_integral_v<T>> AppendText(std::string& out, T value) {
  out += std::to_string(value);
}

template <typename T>
void AppendScalar(std::string& out, const T& value) {
  if constexpr (std::is_same_v<T, CIMObjectPath>) {
    AppendReference(out, value);
  } else {
    out += "<VALUE>";
    AppendText(out, value);
    out += "</VALUE>\n";
  }
}

template <typename T>
void AppendTyped(std::string& out, const CIMValue& value) {
  if (!value.isArray()) {
    T item{};
    value.get(item);
    AppendScalar(out, item);
    return;
  }
  constexpr std::string_view kTag = std::is_same_v<T, CIMObjectPath> ? "VALUE.REFARRAY" : "VALUE.ARRAY";
  Array<T> items;
  value.get(items);
  out.append("<").append(kTag).append(">\n");
  const Array<T>& view = items;
  for (Uint32 i = 0; i < view.size(); ++i) AppendScalar(out, view[i]);
  out.append("</").append(kTag).append(">\n");
}

}  // namespace

void AppendValue(std::string& out, const CIMValue& value) {
  if (value.isNull()) return;
  switch (value.getType()) {
    case CIMTYPE_BOOLEAN:
      return AppendTyped<Boolean>(out, value);
    case CIMTYPE_UINT8:
      return AppendTyped<Uint8>(out, value);
    case CIMTYPE_SINT8:
      return AppendTyped<Sint8>(out, value);
    case CIMTYPE_UINT16:
      return AppendTyped<Uint16>(out, value);
    case CIMTYPE_SINT16:
      return AppendTyped<Sint16>(out, value);
    case CIMTYPE_UINT32:
      return AppendTyped<Uint32>(out, value);
    case CIMTYPE_SINT32:
      return AppendTyped<Sint32>(out, value);
    case CIMTYPE_UINT64:
      return AppendTyped<Uint64>(out, value);
    case CIMTYPE_SINT64:
      return AppendTyped<Sint64>(out, value);
    case CIMTYPE_REAL32:
      return AppendTyped<Real32>(out, value);
    case CIMTYPE_REAL64:
      return AppendTyped<Real64>(out, value);
    case CIMTYPE_CHAR16:
      return AppendTyped<Char16>(out, value);
    case CIMTYPE_STRING:
      return AppendTyped<String>(out, value);
    case CIMTYPE_DATETIME:
      return AppendTyped<CIMDateTime>(out, value);
    case CIMTYPE_REFERENCE:
      return AppendTyped<CIMObjectPath>(out, value);
    case CIMTYPE_OBJECT:
      return AppendTyped<CIMObject>(out, value);
    case CIMTYPE_INSTANCE:
      return AppendTyped<CIMInstance>(out, value);
  }
}

std::string_view EmbeddedAttributes(CIMType type) {
  switch (type) {
    case CIMTYPE_OBJECT:
      return R"( EmbeddedObject="object" EMBEDDEDOBJECT="object")";
    case CIMTYPE_INSTANCE:
      return R"( EmbeddedObject="instance" EMBEDDEDOBJECT="instance")";
    default:
      return {};
  }
}

std::string_view WireType(CIMType type) {
  return type == CIMTYPE_OBJECT || type == CIMTYPE_INSTANCE ? "string" : cimTypeToString(type);
}

void AppendParamValue(std::string& out, const CIMParamValue& parameter) {
  const CIMValue value = parameter.getValue();
  out += "<PARAMVALUE NAME=\"";
  AppendEscaped(out, parameter.getParameterName());
  out += '"';
  if (parameter.isTyped()) {
    out.append(" PARAMTYPE=\"").append(WireType(value.getType())).append("\"");
    out.append(EmbeddedAttributes(value.getType()));
  }
  out += ">\n";
  AppendValue(out, value);
  out += "</PARAMVALUE>\n";
}

}  // namespace Pegasus::wire
