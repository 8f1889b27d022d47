// Builds CIM values from the way recorded behaviour writes them down: a type name, array or not, and a text per
// element.
#pragma once

#include <Pegasus/Common/CIMValue.h>

#include <nlohmann/json.hpp>
#include <string>

namespace Pegasus::test {

/// The CIM type of that name; std::out_of_range for another text.
CIMType TypeOfName(const std::string& name);

/// Value of `type`; `input` is null, a text or a list of texts.
CIMValue MakeValue(const std::string& type, bool isArray, const nlohmann::json& input);

/// From a record with `type`, `array` and `input`.
CIMValue MakeValue(const nlohmann::json& record);

/// Calls value.get() for the C++ type that `target` names, such as "uint16" or "string[]".
void GetAs(const CIMValue& value, const std::string& target);

}  // namespace Pegasus::test
