// Writes instances, classes and their parts as CIM-XML elements.
#include <string>
#include <string_view>

#include "Pegasus/Common/CIMFlavor.h"
#include "Pegasus/Common/CIMMethod.h"
#include "Pegasus/Common/CIMParameter.h"
#include "wire/xml_writer.h"

namespace Pegasus::wire {
namespace {

void AppendAttribute(std::string& out, std::string_view name, const String& value) {
  out.append(" ").append(name).append("=\"");
  AppendEscaped(out, value);
  out += '"';
}

void AppendOrigin(std::string& out, const CIMName& classOrigin, bool propagated) {
  if (!classOrigin.isNull()) AppendAttribute(out, "CLASSORIGIN", classOrigin.getString());
  if (propagated) out += " PROPAGATED=\"true\"";
}

template <typename Owner>
void AppendQualifiers(std::string& out, const Owner& owner) {
  for (Uint32 i = 0; i < owner.getQualifierCount(); ++i) AppendQualifier(out, owner.getQualifier(i));
}

template <typename Owner>
void AppendProperties(std::string& out, const Owner& owner) {
  for (Uint32 i = 0; i < owner.getPropertyCount(); ++i) AppendProperty(out, owner.getProperty(i));
}

void AppendParameter(std::string& out, const CIMConstParameter& parameter) {
  const bool isReference = parameter.getType() == CIMTYPE_REFERENCE;
  std::string_view tag = "PARAMETER";
  if (isReference) {
    tag = parameter.isArray() ? "PARAMETER.REFARRAY" : "PARAMETER.REFERENCE";
  } else if (parameter.isArray()) {
    tag = "PARAMETER.ARRAY";
  }
  out.append("<").append(tag);
  AppendAttribute(out, "NAME", parameter.getName().getString());
  if (isReference) {
    if (!parameter.getReferenceClassName().isNull()) {
      AppendAttribute(out, "REFERENCECLASS", parameter.getReferenceClassName().getString());
    }
  } else {
    out.append(" TYPE=\"").append(WireType(parameter.getType())).append("\"");
    out.append(EmbeddedAttributes(parameter.getType()));
  }
  if (parameter.isArray() && parameter.getArraySize() != 0) {
    out.append(" ARRAYSIZE=\"").append(std::to_string(parameter.getArraySize())).append("\"");
  }
  out += ">\n";
  AppendQualifiers(out, parameter);
  out.append("</").append(tag).append(">\n");
}

void AppendMethod(std::string& out, const CIMConstMethod& method) {
  out += "<METHOD";
  AppendAttribute(out, "NAME", method.getName().getString());
  out.append(" TYPE=\"").append(WireType(method.getType())).append("\"");
  AppendOrigin(out, method.getClassOrigin(), method.getPropagated());
  out += ">\n";
  AppendQualifiers(out, method);
  for (Uint32 i = 0; i < method.getParameterCount(); ++i) AppendParameter(out, method.getParameter(i));
  out += "</METHOD>\n";
}

}  // namespace

void AppendQualifier(std::string& out, const CIMConstQualifier& qualifier) {
  out += "<QUALIFIER";
  AppendAttribute(out, "NAME", qualifier.getName().getString());
  out.append(" TYPE=\"").append(WireType(qualifier.getType())).append("\"");
  if (qualifier.getPropagated()) out += " PROPAGATED=\"true\"";
  const CIMFlavor& flavor = qualifier.getFlavor();
  if (!flavor.hasFlavor(CIMFlavor::OVERRIDABLE)) out += " OVERRIDABLE=\"false\"";
  if (!flavor.hasFlavor(CIMFlavor::TOSUBCLASS)) out += " TOSUBCLASS=\"false\"";
  if (flavor.hasFlavor(CIMFlavor::TRANSLATABLE)) out += " TRANSLATABLE=\"true\"";
  out += ">\n";
  AppendValue(out, qualifier.getValue());
  out += "</QUALIFIER>\n";
}

void AppendProperty(std::string& out, const CIMConstProperty& property) {
  const CIMType type = property.getType();
  std::string_view tag = "PROPERTY";
  if (type == CIMTYPE_REFERENCE) {
    tag = "PROPERTY.REFERENCE";
  } else if (property.isArray()) {
    tag = "PROPERTY.ARRAY";
  }
  out.append("<").append(tag);
  AppendAttribute(out, "NAME", property.getName().getString());
  out += ' ';
  if (type == CIMTYPE_REFERENCE) {
    if (!property.getReferenceClassName().isNull()) {
      AppendAttribute(out, "REFERENCECLASS", property.getReferenceClassName().getString());
    }
    AppendOrigin(out, property.getClassOrigin(), property.getPropagated());
  } else if (property.isArray()) {
    out.append(" TYPE=\"").append(WireType(type)).append("\"");
    if (property.getArraySize() != 0) {
      out.append(" ARRAYSIZE=\"").append(std::to_string(property.getArraySize())).append("\"");
    }
    AppendOrigin(out, property.getClassOrigin(), property.getPropagated());
  } else {
    AppendOrigin(out, property.getClassOrigin(), property.getPropagated());
    out.append(" TYPE=\"").append(WireType(type)).append("\"");
  }
  out.append(EmbeddedAttributes(type)).append(">\n");
  AppendQualifiers(out, property);
  AppendValue(out, property.getValue());
  out.append("</").append(tag).append(">\n");
}

void AppendInstance(std::string& out, const CIMConstInstance& instance) {
  out += "<INSTANCE";
  AppendAttribute(out, "CLASSNAME", instance.getClassName().getString());
  out += " >\n";
  AppendQualifiers(out, instance);
  AppendProperties(out, instance);
  out += "</INSTANCE>\n";
}

void AppendInstance(std::string& out, const CIMInstance& instance) { AppendInstance(out, CIMConstInstance(instance)); }

void AppendClass(std::string& out, const CIMConstClass& cimClass) {
  out += "<CLASS";
  AppendAttribute(out, "NAME", cimClass.getClassName().getString());
  out += ' ';
  if (!cimClass.getSuperClassName().isNull()) {
    AppendAttribute(out, "SUPERCLASS", cimClass.getSuperClassName().getString());
    out += ' ';
  }
  out += ">\n";
  AppendQualifiers(out, cimClass);
  AppendProperties(out, cimClass);
  for (Uint32 i = 0; i < cimClass.getMethodCount(); ++i) AppendMethod(out, cimClass.getMethod(i));
  out += "</CLASS>\n";
}

void AppendClass(std::string& out, const CIMClass& cimClass) { AppendClass(out, CIMConstClass(cimClass)); }

void AppendObject(std::string& out, const CIMObject& object) {
  if (object.isClass()) {
    AppendClass(out, CIMClass(object));
    return;
  }
  if (object.isUninitialized()) throw UninitializedObjectException();
  AppendInstance(out, CIMInstance(object));
}

}  // namespace Pegasus::wire
