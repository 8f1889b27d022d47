// Checks a JSON document against the part of JSON Schema that this repository's own schemas use. An unknown keyword is
// an error, so that a schema cannot ask for something that is then silently not checked.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Orvane::tests {

/// Every violation as "<place>: <what is wrong>"; empty when @p document conforms to @p schema.
std::vector<std::string> CheckSchema(const nlohmann::json& schema, const nlohmann::json& document);

}  // namespace Orvane::tests
