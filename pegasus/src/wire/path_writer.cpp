// Writes namespaces and object paths as CIM-XML elements.
#include <string>
#include <string_view>

#include "wire/xml_writer.h"

namespace Pegasus::wire {
namespace {

std::string_view KeyValueType(CIMKeyBinding::Type type) {
  switch (type) {
    case CIMKeyBinding::BOOLEAN:
      return "boolean";
    case CIMKeyBinding::NUMERIC:
      return "numeric";
    default:
      return "string";
  }
}

void AppendKeyBinding(std::string& out, const CIMKeyBinding& key) {
  out += "<KEYBINDING NAME=\"";
  AppendEscaped(out, key.getName().getString());
  out += "\">\n";
  if (key.getType() == CIMKeyBinding::REFERENCE) {
    AppendReference(out, CIMObjectPath(key.getValue()));
  } else {
    out += "<KEYVALUE VALUETYPE=\"";
    out += KeyValueType(key.getType());
    out += "\">";
    AppendEscaped(out, key.getValue());
    out += "</KEYVALUE>\n";
  }
  out += "</KEYBINDING>\n";
}

}  // namespace

void AppendLocalNameSpacePath(std::string& out, const CIMNamespaceName& nameSpace) {
  const CString utf8 = nameSpace.getString().getCString();
  const std::string_view text(static_cast<const char*>(utf8));
  out += "<LOCALNAMESPACEPATH>\n";
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t slash = text.find('/', begin);
    const std::size_t end = slash == std::string_view::npos ? text.size() : slash;
    if (end != begin) {
      out += "<NAMESPACE NAME=\"";
      AppendEscaped(out, text.substr(begin, end - begin));
      out += "\"/>\n";
    }
    begin = end + 1;
  }
  out += "</LOCALNAMESPACEPATH>\n";
}

void AppendInstanceName(std::string& out, const CIMObjectPath& path) {
  out += "<INSTANCENAME CLASSNAME=\"";
  AppendEscaped(out, path.getClassName().getString());
  out += "\">\n";
  const Array<CIMKeyBinding>& keys = path.getKeyBindings();
  for (Uint32 i = 0; i < keys.size(); ++i) AppendKeyBinding(out, keys[i]);
  out += "</INSTANCENAME>\n";
}

void AppendReference(std::string& out, const CIMObjectPath& path) {
  out += "<VALUE.REFERENCE>\n";
  if (path.getHost().size() != 0) {
    out += "<INSTANCEPATH>\n<NAMESPACEPATH>\n<HOST>";
    AppendEscaped(out, path.getHost());
    out += "</HOST>\n";
    AppendLocalNameSpacePath(out, path.getNameSpace());
    out += "</NAMESPACEPATH>\n";
    AppendInstanceName(out, path);
    out += "</INSTANCEPATH>\n";
  } else if (!path.getNameSpace().isNull()) {
    out += "<LOCALINSTANCEPATH>\n";
    AppendLocalNameSpacePath(out, path.getNameSpace());
    AppendInstanceName(out, path);
    out += "</LOCALINSTANCEPATH>\n";
  } else {
    AppendInstanceName(out, path);
  }
  out += "</VALUE.REFERENCE>\n";
}

}  // namespace Pegasus::wire
