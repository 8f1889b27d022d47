// Object paths: the host, namespace, class and key bindings that name a CIM object, and their text form
// [//host/][namespace:]Class[.key=value,...]. Paths and key bindings are plain values; keys are kept sorted by name.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

class CIMValue;

namespace objects {
struct Access;
}

/// One key of an object path: a name, a type and the value as text. Threads: as for CIMObjectPath.
class PEGASUS_COMMON_LINKAGE CIMKeyBinding {
 public:
  /// What the text of a value means.
  enum Type { BOOLEAN, STRING, NUMERIC, REFERENCE };

  /// A null name, type BOOLEAN and an empty value.
  CIMKeyBinding() = default;
  /// The text is not checked against the type here; a path checks the reference keys it is given.
  CIMKeyBinding(const CIMName& name, const String& value, Type type);
  /// Type and text from a value: TypeMismatchException for arrays, objects and instances; a NULL gives an empty text.
  CIMKeyBinding(const CIMName& name, const CIMValue& value);

  /// The name of the key property; null for a default-constructed binding.
  const CIMName& getName() const;
  /// Any name is taken, the null name too.
  void setName(const CIMName& name);
  /// The value as text: not quoted, not escaped.
  const String& getValue() const;
  /// The text is not checked against the type here.
  void setValue(const String& value);
  /// The type of the value.
  Type getType() const;
  /// The text stays as it is.
  void setType(Type type);
  /// True when the key's type and value are those `value` would give. Never throws for a type no key can have.
  Boolean equal(CIMValue value);

 private:
  friend struct objects::Access;

  CIMName name_;
  String value_;
  Type type_ = BOOLEAN;
};

/// Same name (ignoring ASCII case) and type; numbers by value, booleans ignoring case, references as paths.
PEGASUS_COMMON_LINKAGE Boolean operator==(const CIMKeyBinding& x, const CIMKeyBinding& y);

/// The name of a class or an instance. Threads: copies are independent and may be used on several threads at a time;
/// one object may be read by several.
class PEGASUS_COMMON_LINKAGE CIMObjectPath {
 public:
  /// An empty path: no host, null namespace, null class, no keys.
  CIMObjectPath() = default;
  /// Parses the text form; MalformedObjectNameException tells what is wrong with it.
  CIMObjectPath(const String& objectName);
  /// MalformedObjectNameException when the host is not legal or the value of a REFERENCE key is no path.
  CIMObjectPath(const String& host, const CIMNamespaceName& nameSpace, const CIMName& className,
                const Array<CIMKeyBinding>& keyBindings = Array<CIMKeyBinding>());
  /// Parses like the constructor; on an exception the path stays as it was.
  CIMObjectPath& operator=(const String& objectName);

  /// Back to an empty path.
  void clear();
  /// As the constructors of the same arguments; on an exception the path stays as it was.
  void set(const String& host, const CIMNamespaceName& nameSpace, const CIMName& className,
           const Array<CIMKeyBinding>& keyBindings = Array<CIMKeyBinding>());
  /// As the constructor of the same argument; on an exception the path stays as it was.
  void set(const String& objectName);

  /// Host name or address, with `:` and a port if it has one; empty when there is none.
  const String& getHost() const;
  /// MalformedObjectNameException when the host is not legal; the empty text removes the host.
  void setHost(const String& host);
  /// Null when the path has none.
  const CIMNamespaceName& getNameSpace() const;
  /// The null name takes the namespace away.
  void setNameSpace(const CIMNamespaceName& nameSpace);
  /// Null for an empty path.
  const CIMName& getClassName() const;
  /// Any name is taken, the null name too.
  void setClassName(const CIMName& className);
  /// The keys in the order of their names, ignoring ASCII case.
  const Array<CIMKeyBinding>& getKeyBindings() const;
  /// Keeps the keys sorted; MalformedObjectNameException when the value of a REFERENCE key is no path.
  void setKeyBindings(const Array<CIMKeyBinding>& keyBindings);

  /// The text form; keys come in sorted order, so it may differ from a text that was parsed.
  String toString() const;
  /// Same host, namespace, class and keys by meaning.
  Boolean identical(const CIMObjectPath& x) const;
  /// Equal for identical paths.
  Uint32 makeHashCode() const;

 private:
  friend struct objects::Access;

  String host_;
  CIMNamespaceName nameSpace_;
  CIMName className_;
  Array<CIMKeyBinding> keyBindings_;
};

/// The same as identical().
PEGASUS_COMMON_LINKAGE Boolean operator==(const CIMObjectPath& x, const CIMObjectPath& y);
/// The opposite of ==.
PEGASUS_COMMON_LINKAGE Boolean operator!=(const CIMObjectPath& x, const CIMObjectPath& y);

}  // namespace Pegasus
