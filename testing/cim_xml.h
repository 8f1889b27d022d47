// CIM objects as a test describes them, and their CIM-XML. A writer of its own, so that a mistake in the client's
// writer or reader cannot hide behind the same mistake here.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvane::testing {

struct CimPath;

/// One value: scalar, array or NULL, as the texts that stand in the VALUE elements.
struct CimValue {
  std::string type;  ///< CIM type name, e.g. "uint16"; "reference" for paths
  bool isArray = false;
  bool isNull = false;
  std::vector<std::string> texts;            ///< one for a scalar, any number for an array; UTF-8, not yet escaped
  std::shared_ptr<const CimPath> reference;  ///< set for a reference that is not NULL
};

/// One key of a path.
struct CimKey {
  std::string name;
  std::string text;
  std::string type = "string";               ///< "string", "numeric" or "boolean"
  std::shared_ptr<const CimPath> reference;  ///< set: a reference key, text and type are unused
};

/// An instance path. Host and namespace are empty unless a test needs them.
struct CimPath {
  std::string className;
  std::vector<CimKey> keys;
  std::string nameSpace;
  std::string host;
};

CimValue CimString(std::string text);
CimValue CimStringArray(std::vector<std::string> texts);
CimValue CimUint16(unsigned value);
CimValue CimUint16Array(std::initializer_list<unsigned> values);
CimValue CimBoolean(bool value);
CimValue CimDateTime(std::string text);
CimValue CimReference(CimPath path);
CimValue CimNull(std::string type, bool isArray = false);
/// A scalar of any type with any text, fitting or not.
CimValue CimTyped(std::string type, std::string text);

/// An instance: class, keys and properties in the order in which they are written.
struct CimObjectSpec {
  CimObjectSpec() = default;
  explicit CimObjectSpec(std::string name) : className(std::move(name)) {}

  /// Adds a string key and the property of the same name.
  CimObjectSpec& Key(const std::string& name, const std::string& text);
  CimObjectSpec& With(const std::string& name, CimValue value);
  CimObjectSpec& With(const std::string& name, const std::string& text) { return With(name, CimString(text)); }

  CimPath Path() const { return {className, keys, {}, {}}; }

  std::string className;
  std::vector<CimKey> keys;
  std::vector<std::pair<std::string, CimValue>> properties;
};

/// Escapes markup, quotes and control characters.
std::string XmlEscape(const std::string& text);

/// The path as text: `Class.A="x",B=5`, keys sorted by name, behind `//host/namespace:` when it has them.
std::string PathText(const CimPath& path);

void AppendInstanceName(std::string& out, const CimPath& path);
void AppendLocalNamespacePath(std::string& out, const std::string& nameSpace);
/// INSTANCEPATH with host and namespace.
void AppendInstancePath(std::string& out, const CimPath& path, const std::string& host, const std::string& nameSpace);
void AppendInstance(std::string& out, const CimObjectSpec& object);
/// VALUE, VALUE.ARRAY or VALUE.REFERENCE; nothing for NULL.
void AppendValue(std::string& out, const CimValue& value);

}  // namespace Orvane::testing
