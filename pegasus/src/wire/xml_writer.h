// Writes CIM objects, paths and values as CIM-XML text. The same text is used inside request bodies, as the text
// form of embedded objects and as the text form of CIMObject and of object and instance values.
#pragma once

#include <string>
#include <string_view>

#include "Pegasus/Common/CIMClass.h"
#include "Pegasus/Common/CIMInstance.h"
#include "Pegasus/Common/CIMName.h"
#include "Pegasus/Common/CIMObject.h"
#include "Pegasus/Common/CIMObjectPath.h"
#include "Pegasus/Common/CIMParamValue.h"
#include "Pegasus/Common/CIMProperty.h"
#include "Pegasus/Common/CIMQualifier.h"
#include "Pegasus/Common/CIMValue.h"
#include "Pegasus/Common/String.h"

namespace Pegasus::wire {

/// Appends `text` (UTF-8) with the markup characters, control characters and the blanks that a reader would trim or
/// fold written as references.
void AppendEscaped(std::string& out, std::string_view text);

/// As above, for a String.
void AppendEscaped(std::string& out, const String& text);

/// Appends `text` as UTF-8 without any escaping.
void AppendUtf8(std::string& out, const String& text);

/// Appends an INSTANCE element with all properties and qualifiers; the path is not part of it. The text ends with a
/// newline. Throws UninitializedObjectException when the object is uninitialized.
void AppendInstance(std::string& out, const CIMConstInstance& instance);
void AppendInstance(std::string& out, const CIMInstance& instance);

/// Appends a CLASS element with its qualifiers, properties and methods; ends with a newline.
void AppendClass(std::string& out, const CIMConstClass& cimClass);
void AppendClass(std::string& out, const CIMClass& cimClass);

/// Appends the INSTANCE or CLASS element of `object`; ends with a newline.
void AppendObject(std::string& out, const CIMObject& object);

/// Appends one PROPERTY, PROPERTY.ARRAY or PROPERTY.REFERENCE element.
void AppendProperty(std::string& out, const CIMConstProperty& property);

/// Appends one QUALIFIER element.
void AppendQualifier(std::string& out, const CIMConstQualifier& qualifier);

/// Appends the VALUE, VALUE.ARRAY, VALUE.REFERENCE or VALUE.REFARRAY element of `value`; nothing for NULL.
void AppendValue(std::string& out, const CIMValue& value);

/// The name of `type` in a TYPE or PARAMTYPE attribute: objects and instances travel as strings.
std::string_view WireType(CIMType type);

/// The attributes, each with a blank before it, which tell that a string holds an object or instance; else empty.
std::string_view EmbeddedAttributes(CIMType type);

/// Appends one PARAMVALUE element.
void AppendParamValue(std::string& out, const CIMParamValue& parameter);

/// Appends a LOCALNAMESPACEPATH element.
void AppendLocalNameSpacePath(std::string& out, const CIMNamespaceName& nameSpace);

/// Appends an INSTANCENAME element with the class and keys of `path`; its host and namespace do not appear.
void AppendInstanceName(std::string& out, const CIMObjectPath& path);

/// Appends a VALUE.REFERENCE element in the shortest form that holds all of `path`.
void AppendReference(std::string& out, const CIMObjectPath& path);

}  // namespace Pegasus::wire
