// Decodes the elements that name things: classes, instances, namespaces and hosts.
#pragma once

#include <string_view>

#include "Pegasus/Common/CIMName.h"
#include "Pegasus/Common/CIMObjectPath.h"
#include "base/pool.h"
#include "wire/name_cache.h"
#include "wire/xml_reader.h"

namespace Pegasus::wire {

/// Decoder of paths; every Read function expects its element in view and takes it.
class PathDecoder {
 public:
  /// The texts of keys go into the pool.
  PathDecoder(XmlReader& reader, NameCache& names, internal::Pool& pool)
      : reader_(reader), names_(names), pool_(pool) {}

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
  internal::Pool& pool_;
  /// Keys of the name read last; the next one usually has as many.
  Uint32 lastKeyCount_ = 0;
  unsigned referenceNesting_ = 0;
};

}  // namespace Pegasus::wire
