// Reads the text form of object paths: [//host/][namespace:]Class[.key=value{,key=value}].
#include "objects/path_parser.h"

#include <Pegasus/Common/CIMObjectPath.h>

#include <utility>

#include "base/name_access.h"
#include "objects/host_name.h"
#include "objects/internal.h"

namespace Pegasus::objects {
namespace {

constexpr Uint64 kLargestNegative = Uint64{1} << 63U;

int DigitValue(Uint16 unit) {
  if (unit >= '0' && unit <= '9') {
    return unit - '0';
  }
  if (unit >= 'a' && unit <= 'f') {
    return unit - 'a' + 10;
  }
  if (unit >= 'A' && unit <= 'F') {
    return unit - 'A' + 10;
  }
  return 16;
}

class PathParser {
 public:
  PathParser(const String& text, ParsedPath& path) : units_(text.getChar16Data()), size_(text.size()), path_(path) {}

  std::optional<String> Run() {
    if (Unit(0) == '/' && Unit(1) == '/') {
      if (auto wrong = ReadHost()) {
        return wrong;
      }
    }
    if (auto wrong = ReadNamespace()) {
      return wrong;
    }
    if (auto wrong = ReadClass()) {
      return wrong;
    }
    while (position_ < size_) {
      if (auto wrong = ReadKey()) {
        return wrong;
      }
    }
    return std::nullopt;
  }

 private:
  /// 0 beyond the end.
  Uint16 Unit(Uint32 index) const { return index < size_ ? static_cast<Uint16>(units_[index]) : Uint16{0}; }

  Uint32 Find(Uint16 unit, Uint32 from) const {
    while (from < size_ && static_cast<Uint16>(units_[from]) != unit) {
      ++from;
    }
    return from;
  }

  String Text(Uint32 from, Uint32 to) const { return {units_ + from, to - from}; }

  std::optional<String> ReadHost() {
    const Uint32 slash = Find('/', 2);
    if (slash == size_) {
      return "missing slash after hostname";
    }
    path_.host = Text(2, slash);
    if (!IsValidHost(path_.host)) {
      return "invalid hostname";
    }
    position_ = slash + 1;
    return std::nullopt;
  }

  std::optional<String> ReadNamespace() {
    const bool hasHost = path_.host.size() != 0;
    const Uint32 colon = Find(':', position_);
    if (colon == size_ || Find('.', position_) < colon) {  // a colon behind the dot belongs to a key
      return hasHost ? std::optional<String>("host specified, missing namespace") : std::nullopt;
    }
    const String name = Text(position_, colon);
    if (!CIMNamespaceName::legal(name) || (hasHost && Unit(position_) == '/')) {
      return "invalid namespace name";
    }
    path_.nameSpace = CIMNamespaceName(name);
    position_ = colon + 1;
    return std::nullopt;
  }

  std::optional<String> ReadClass() {
    const Uint32 dot = Find('.', position_);
    String name = Text(position_, dot);
    if (!CIMName::legal(name)) {
      return "class name " + name + " not a legal CIM name";
    }
    path_.className = internal::NameAccess::MakeName(std::move(name));
    position_ = dot + 1;
    return std::nullopt;
  }

  std::optional<String> ReadKey() {
    const Uint32 equals = Find('=', position_);
    if (equals == size_) {
      return "invalid key-value pair, missing equal sign";
    }
    String name = Text(position_, equals);
    if (!CIMName::legal(name)) {
      return "invalid key-value pair, invalid key name:" + name;
    }
    position_ = equals + 1;
    String value;
    CIMKeyBinding::Type type = CIMKeyBinding::STRING;
    auto wrong = Unit(position_) == '"' ? ReadQuotedValue(value, type) : ReadBareValue(value, type);
    if (wrong) {
      return wrong;
    }
    path_.keys.append(
        Access::MakeKeyBindingUnchecked(internal::NameAccess::MakeName(std::move(name)), std::move(value), type));
    if (position_ < size_) {
      if (Unit(position_) != ',') {
        return "invalid key-value pair, next key-value pair has to start with comma";
      }
      ++position_;
    }
    return std::nullopt;
  }

  std::optional<String> ReadQuotedValue(String& value, CIMKeyBinding::Type& type) {
    ++position_;
    for (;;) {
      const Uint32 start = position_;
      while (position_ < size_ && Unit(position_) != '"' && Unit(position_) != '\\') {
        ++position_;
      }
      value.append(units_ + start, position_ - start);
      if (position_ == size_) {
        return "invalid key-value pair, missing quote in key value";
      }
      if (Unit(position_) == '"') {
        ++position_;
        break;
      }
      const Uint16 escaped = Unit(position_ + 1);
      if (escaped != '"' && escaped != '\\') {
        return "invalid key-value pair, malformed value";
      }
      value.append(Char16(escaped));
      position_ += 2;
    }
    type = CIMKeyBinding::STRING;
    ParsedPath target;
    if (!ParsePath(value, target) && target.keys.size() != 0) {
      type = CIMKeyBinding::REFERENCE;
      value = Access::MakePathUnchecked(std::move(target.host), std::move(target.nameSpace),
                                        std::move(target.className), std::move(target.keys))
                  .toString();
    }
    return std::nullopt;
  }

  std::optional<String> ReadBareValue(String& value, CIMKeyBinding::Type& type) {
    const Uint32 end = Find(',', position_);
    value = Text(position_, end);
    position_ = end;
    for (const char* word : {"TRUE", "FALSE"}) {
      if (String::equalNoCase(value, word)) {
        value = word;
        type = CIMKeyBinding::BOOLEAN;
        return std::nullopt;
      }
    }
    if (!ParseKeyNumber(value)) {
      return "invalid key-value pair, invalid number value " + value;
    }
    type = CIMKeyBinding::NUMERIC;
    return std::nullopt;
  }

  const Char16* units_;
  Uint32 size_;
  ParsedPath& path_;
  Uint32 position_ = 0;
};

}  // namespace

std::optional<String> ParsePath(const String& text, ParsedPath& path) { return PathParser(text, path).Run(); }

std::optional<KeyNumber> ParseKeyNumber(const String& text) {
  const Uint32 size = text.size();
  const Char16* const units = text.getChar16Data();
  Uint32 position = size > 0 && units[0] == '-' ? 1 : 0;
  KeyNumber number{position == 1, 0};
  Uint64 base = 10;
  if (size > position + 1 && units[position] == '0') {
    if (units[position + 1] != 'x' && units[position + 1] != 'X') {
      return std::nullopt;
    }
    base = 16;
    position += 2;
  }
  if (position == size) {
    return std::nullopt;
  }
  const Uint64 limit = number.negative ? kLargestNegative : ~Uint64{0};
  for (; position < size; ++position) {
    const auto digit = static_cast<Uint64>(DigitValue(units[position]));
    if (digit >= base || number.magnitude > (limit - digit) / base) {
      return std::nullopt;
    }
    number.magnitude = number.magnitude * base + digit;
  }
  return number;
}

}  // namespace Pegasus::objects
