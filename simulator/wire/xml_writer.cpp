// One newline behind every element that holds elements, none inside the text of a VALUE.
#include "wire/xml_writer.h"

#include <array>

namespace Orvane::simulator {

namespace {

constexpr std::array<std::string_view, 2> kNameSpaceParts = {"root", "cimv2"};

void AppendAttribute(std::string& out, std::string_view name, std::string_view value) {
  out += ' ';
  out += name;
  out += "=\"";
  AppendEscaped(out, value);
  out += '"';
}

void AppendNameSpace(std::string& out) {
  out += "<LOCALNAMESPACEPATH>\n";
  for (const std::string_view part : kNameSpaceParts) {
    out += "<NAMESPACE";
    AppendAttribute(out, "NAME", part);
    out += "/>\n";
  }
  out += "</LOCALNAMESPACEPATH>\n";
}

void AppendReference(std::string& out, const ObjectPath& path) {
  out += "<VALUE.REFERENCE>\n";
  AppendInstanceName(out, path);
  out += "</VALUE.REFERENCE>\n";
}

std::string_view KeyKind(const PropertyDeclaration* key) {
  if (key == nullptr || key->type == CimType::kString || key->type == CimType::kDateTime ||
      key->type == CimType::kChar16) {
    return "string";
  }
  return key->type == CimType::kBoolean ? "boolean" : "numeric";
}

std::string_view PropertyElement(const PropertyDeclaration& property) {
  if (property.type == CimType::kReference) return "PROPERTY.REFERENCE";
  return property.isArray ? "PROPERTY.ARRAY" : "PROPERTY";
}

bool IsShown(const PropertyDeclaration& property, const Selection& selection) {
  if (selection.onlyOf != nullptr && selection.onlyOf->FindProperty(property.name) == nullptr) return false;
  return !selection.properties || selection.properties->count(property.name) != 0;
}

void AppendPropertyStart(std::string& out, const PropertyDeclaration& property, const ClassDeclaration& owner,
                         bool classOrigin) {
  out += '<';
  out += PropertyElement(property);
  AppendAttribute(out, "NAME", property.name);
  if (property.type == CimType::kReference) {
    AppendAttribute(out, "REFERENCECLASS", property.referenceClass);
  } else {
    AppendAttribute(out, "TYPE", TypeName(property.type));
  }
  if (classOrigin) AppendAttribute(out, "CLASSORIGIN", property.originClass);
  if (property.originClass != owner.name) AppendAttribute(out, "PROPAGATED", "true");
  out += ">\n";
}

void AppendPropertyEnd(std::string& out, const PropertyDeclaration& property) {
  out += "</";
  out += PropertyElement(property);
  out += ">\n";
}

void AppendQualifier(std::string& out, std::string_view name, bool value) {
  out += "<QUALIFIER";
  AppendAttribute(out, "NAME", name);
  out += " TYPE=\"boolean\" OVERRIDABLE=\"false\">\n<VALUE>";
  out += value ? "TRUE" : "FALSE";
  out += "</VALUE>\n</QUALIFIER>\n";
}

void AppendParameter(std::string& out, const ParameterDeclaration& parameter, bool qualifiers) {
  const bool isReference = parameter.type == CimType::kReference;
  const std::string element =
      isReference ? "PARAMETER.REFERENCE" : (parameter.isArray ? "PARAMETER.ARRAY" : "PARAMETER");
  out += "<" + element;
  AppendAttribute(out, "NAME", parameter.name);
  AppendAttribute(out, isReference ? "REFERENCECLASS" : "TYPE",
                  isReference ? parameter.referenceClass : TypeName(parameter.type));
  out += ">\n";
  if (qualifiers) {
    AppendQualifier(out, "IN", !parameter.isOut);
    AppendQualifier(out, "OUT", parameter.isOut);
  }
  out += "</" + element + ">\n";
}

void AppendMethod(std::string& out, const MethodDeclaration& method, const ClassDeclaration& owner, bool classOrigin,
                  bool qualifiers) {
  out += "<METHOD";
  AppendAttribute(out, "NAME", method.name);
  AppendAttribute(out, "TYPE", "uint32");
  if (classOrigin) AppendAttribute(out, "CLASSORIGIN", method.originClass);
  if (method.originClass != owner.name) AppendAttribute(out, "PROPAGATED", "true");
  out += ">\n";
  for (const ParameterDeclaration& parameter : method.parameters) AppendParameter(out, parameter, qualifiers);
  out += "</METHOD>\n";
}

std::string Frame(std::string_view messageId, std::string_view element, std::string_view name,
                  const std::function<void(std::string&)>& content) {
  std::string out =
      "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE";
  AppendAttribute(out, "ID", messageId);
  out += " PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<";
  out += element;
  AppendAttribute(out, "NAME", name);
  out += ">\n";
  content(out);
  out += "</";
  out += element;
  out += ">\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";
  return out;
}

}  // namespace

void AppendEscaped(std::string& out, std::string_view text) {
  constexpr unsigned char kFirstPrintable = 0x20;
  constexpr unsigned char kDelete = 0x7F;
  for (const char c : text) {
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
      default: {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < kFirstPrintable || byte == kDelete) {
          out += "&#" + std::to_string(byte) + ";";
        } else {
          out += c;
        }
      }
    }
  }
}

void AppendInstanceName(std::string& out, const ObjectPath& path) {
  out += "<INSTANCENAME";
  AppendAttribute(out, "CLASSNAME", path.className);
  out += ">\n";
  const ClassDeclaration* const declaration = FindClass(path.className);
  for (const auto& [name, value] : path.keys) {
    out += "<KEYBINDING";
    AppendAttribute(out, "NAME", name);
    out += ">\n";
    if (value.reference) {
      AppendReference(out, *value.reference);
    } else {
      out += "<KEYVALUE";
      AppendAttribute(out, "VALUETYPE", KeyKind(declaration == nullptr ? nullptr : declaration->FindProperty(name)));
      out += '>';
      AppendEscaped(out, value.text);
      out += "</KEYVALUE>\n";
    }
    out += "</KEYBINDING>\n";
  }
  out += "</INSTANCENAME>\n";
}

void AppendInstancePath(std::string& out, const ObjectPath& path, std::string_view host) {
  out += "<INSTANCEPATH>\n<NAMESPACEPATH>\n<HOST>";
  AppendEscaped(out, host);
  out += "</HOST>\n";
  AppendNameSpace(out);
  out += "</NAMESPACEPATH>\n";
  AppendInstanceName(out, path);
  out += "</INSTANCEPATH>\n";
}

void AppendValue(std::string& out, const Value& value, bool isArray) {
  if (value.isNull) return;
  const bool isReference = !value.references.empty();
  if (isArray) out += isReference ? "<VALUE.REFARRAY>\n" : "<VALUE.ARRAY>\n";
  for (const ObjectPath& path : value.references) AppendReference(out, path);
  for (const std::string& text : value.texts) {
    out += "<VALUE>";
    AppendEscaped(out, text);
    out += "</VALUE>\n";
  }
  if (isArray) out += isReference ? "</VALUE.REFARRAY>\n" : "</VALUE.ARRAY>\n";
}

void AppendInstance(std::string& out, const Instance& instance, const Selection& selection) {
  out += "<INSTANCE";
  AppendAttribute(out, "CLASSNAME", instance.declaration->name);
  out += ">\n";
  for (std::size_t i = 0; i < instance.values.size(); ++i) {
    const PropertyDeclaration& property = instance.declaration->properties[i];
    if (!IsShown(property, selection)) continue;
    AppendPropertyStart(out, property, *instance.declaration, selection.classOrigin);
    AppendValue(out, instance.values[i], property.isArray);
    AppendPropertyEnd(out, property);
  }
  out += "</INSTANCE>\n";
}

void AppendClass(std::string& out, const ClassDeclaration& declaration, const Selection& selection, bool localOnly,
                 bool qualifiers) {
  out += "<CLASS";
  AppendAttribute(out, "NAME", declaration.name);
  if (!declaration.superclass.empty()) AppendAttribute(out, "SUPERCLASS", declaration.superclass);
  out += ">\n";
  if (qualifiers && declaration.isAssociation) AppendQualifier(out, "Association", true);
  for (const PropertyDeclaration& property : declaration.properties) {
    if (!IsShown(property, selection) || (localOnly && property.originClass != declaration.name)) continue;
    AppendPropertyStart(out, property, declaration, selection.classOrigin);
    if (qualifiers && property.isKey) AppendQualifier(out, "Key", true);
    if (!property.defaultText.empty()) AppendValue(out, Value::Text(std::string(property.defaultText)), false);
    AppendPropertyEnd(out, property);
  }
  for (const MethodDeclaration& method : declaration.methods) {
    if (localOnly && method.originClass != declaration.name) continue;
    AppendMethod(out, method, declaration, selection.classOrigin, qualifiers);
  }
  out += "</CLASS>\n";
}

std::string WriteIntrinsicAnswer(std::string_view messageId, std::string_view name,
                                 const std::function<void(std::string&)>& content) {
  return Frame(messageId, "IMETHODRESPONSE", name, content);
}

std::string WriteExtrinsicAnswer(std::string_view messageId, std::string_view name,
                                 const std::function<void(std::string&)>& content) {
  return Frame(messageId, "METHODRESPONSE", name, content);
}

void AppendError(std::string& out, int code, std::string_view description) {
  out += "<ERROR";
  AppendAttribute(out, "CODE", std::to_string(code));
  AppendAttribute(out, "DESCRIPTION", description);
  out += "/>\n";
}

}  // namespace Orvane::simulator
