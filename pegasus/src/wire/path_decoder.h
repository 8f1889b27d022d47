// Decodes the elements that name things: classes, instances, namespaces and hosts.
#pragma once

#include <string_view>

#include "Pegasus/Common/CIMName.h"
#include "Pegasus/Common/CIMObjectPath.h"
#include "wire/name_cache.h"
#include "wire/xml_reader.h"

namespace Pegasus::wire {

/// Decoder of paths; every Read function expects its element in view and takes it.
class PathDecoder {
 public:
  PathDecoder(XmlReader& reader, NameCache& names) : reader_(reader), names_(names) {}

  /// A name that has to be in an attribute of the element in view.
  const CIMName& NeedName(std::string_view element, std::string_view attribute);
  /// The name spelt `text`, which is the value of the attribute.
  const CIMName& ToName(std::string_view element, std::string_view attribute, std::string_view text);

  CIMObjectPath ReadInstanceName();
  /// An INSTANCEPATH or CLASSPATH; `message` is for anything else.
  CIMObjectPath ReadFullPath(const char* message);
  CIMObjectPath ReadReference();

 private:
  CIMObjectPath ReadClassName();
  CIMKeyBinding ReadKeyBinding();
  CIMKeyBinding ReadKeyValue(CIMName&& name);
  CIMNamespaceName ReadLocalNameSpacePath();
  /// Reads the wrapper `element`: a namespace, with a host when `withHost`, and a class or instance name.
  CIMObjectPath ReadQualifiedPath(std::string_view element, bool withHost, bool isClass);

  XmlReader& reader_;
  NameCache& names_;
  unsigned referenceNesting_ = 0;
};

}  // namespace Pegasus::wire
