// The CIM values, paths and instances that the simulator keeps. Values stay in the text form of CIM-XML: the simulator
// stores and hands out, it does not calculate, and a text that was checked once needs no conversion later.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane::simulator {

enum class CimType {
  kBoolean,
  kUint8,
  kUint16,
  kUint32,
  kUint64,
  kSint8,
  kSint16,
  kSint32,
  kSint64,
  kReal32,
  kReal64,
  kChar16,
  kDateTime,
  kString,
  kReference,
};

/// The name of the type as CIM-XML writes it ("uint16").
std::string_view TypeName(CimType type);

/// Compares names of classes, properties, keys, methods: without case, ASCII letters only.
bool EqualNames(std::string_view a, std::string_view b);
std::string LowerCase(std::string_view text);

/// Whether a text is a legal value of a type other than reference: numbers in range and without leading zeros, TRUE or
/// FALSE in any case, 25-character date-times, one character for char16, any text for string.
bool IsLegalText(CimType type, std::string_view text);

/// The one spelling of a legal text: booleans in capitals, numbers decimal and without a plus sign; others unchanged.
std::string CanonicalText(CimType type, std::string_view text);

struct LessName {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};
/// Names that are equal in any case are one.
using NameSet = std::set<std::string, LessName>;

struct ObjectPath;

/// The value of a key: a text, or the path of a reference key.
struct KeyValue {
  std::string text;
  std::shared_ptr<const ObjectPath> reference;
};

/// Class and keys of an object; all objects live in the one namespace that is served.
struct ObjectPath {
  std::string className;
  std::map<std::string, KeyValue, LessName> keys;
};

/// The value of a property: NULL, a scalar (one text or reference) or an array.
struct Value {
  bool isNull = true;
  std::vector<std::string> texts;
  std::vector<ObjectPath> references;

  static Value Text(std::string text);
  static Value Texts(std::vector<std::string> texts);
  static Value Reference(ObjectPath path);
};

}  // namespace Orvane::simulator
