// Builds CIM values from the way recorded behaviour writes them down.
#include "value_maker.h"

#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <type_traits>

#include "objects/value_content.h"

namespace Pegasus::test {
namespace {

/// `Class;name=value;...`, all properties strings.
CIMInstance MakeInstance(const std::string& text) {
  const auto end = text.find(';');
  CIMInstance instance(CIMName(text.substr(0, end).c_str()));
  for (auto position = end; position != std::string::npos;) {
    const auto next = text.find(';', position + 1);
    const std::string pair = text.substr(position + 1, next == std::string::npos ? next : next - position - 1);
    const auto equals = pair.find('=');
    instance.addProperty(
        CIMProperty(CIMName(pair.substr(0, equals).c_str()), CIMValue(String(pair.substr(equals + 1).c_str()))));
    position = next;
  }
  return instance;
}

template <typename T>
T MakeElement(const std::string& text) {
  if constexpr (std::is_same_v<T, Boolean>) {
    return text == "true";
  } else if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(std::stod(text));
  } else if constexpr (std::is_unsigned_v<T>) {
    return static_cast<T>(std::stoull(text));
  } else if constexpr (std::is_integral_v<T>) {
    return static_cast<T>(std::stoll(text));
  } else if constexpr (std::is_same_v<T, Char16>) {
    return Char16(static_cast<Uint16>(std::stoul(text)));
  } else if constexpr (std::is_same_v<T, CIMInstance> || std::is_same_v<T, CIMObject>) {
    return MakeInstance(text);
  } else {
    return T(String(text.c_str()));
  }
}

}  // namespace

CIMType TypeOfName(const std::string& name) {
  for (int type = CIMTYPE_BOOLEAN; type <= CIMTYPE_INSTANCE; ++type) {
    if (name == cimTypeToString(static_cast<CIMType>(type))) {
      return static_cast<CIMType>(type);
    }
  }
  throw std::out_of_range(name);
}

CIMValue MakeValue(const std::string& type, bool isArray, const nlohmann::json& input) {
  const CIMType cimType = TypeOfName(type);
  if (input.is_null()) {
    return {cimType, isArray};
  }
  return objects::VisitType(cimType, [&](auto* tag) {
    using T = std::remove_pointer_t<decltype(tag)>;
    if (!isArray) {
      return CIMValue(MakeElement<T>(input.get<std::string>()));
    }
    const auto texts = input.is_array() ? input : nlohmann::json::array({input});
    Array<T> elements;
    for (const auto& text : texts) {
      elements.append(MakeElement<T>(text.get<std::string>()));
    }
    return CIMValue(elements);
  });
}

CIMValue MakeValue(const nlohmann::json& record) {
  return MakeValue(record.at("type").get<std::string>(), record.at("array").get<bool>(), record.at("input"));
}

void GetAs(const CIMValue& value, const std::string& target) {
  const auto bracket = target.find('[');
  objects::VisitType(TypeOfName(target.substr(0, bracket)), [&](auto* tag) {
    using T = std::remove_pointer_t<decltype(tag)>;
    if (bracket != std::string::npos) {
      Array<T> x;
      value.get(x);
    } else {
      T x{};
      value.get(x);
    }
  });
}

TEST(ValueMaker, BuildsWhatTheTextSays) {
  Uint16 number = 0;
  MakeValue("uint16", false, "65535").get(number);
  EXPECT_EQ(number, 65535);
  CIMInstance instance;
  MakeValue("instance", false, "CIM_Foo;A=x;B=").get(instance);
  EXPECT_EQ(instance.getPropertyCount(), 2U);
}

}  // namespace Pegasus::test
