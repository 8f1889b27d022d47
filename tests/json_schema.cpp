// A walk over schema and document together; references go to "#/$defs/..." of the same schema.
#include "tests/json_schema.h"

#include <algorithm>
#include <set>

namespace Orvane::tests {
namespace {

using nlohmann::json;

const std::set<std::string> kKeywords = {"$schema", "$id",     "$defs",    "$ref",  "title",   "description",
                                         "type",    "enum",    "required", "items", "const",   "properties",
                                         "allOf",   "if",      "then",     "else",  "minimum", "additionalProperties",
                                         "oneOf",   "maximum", "minLength"};

bool HasType(const json& value, const std::string& type) {
  if (type == "object") return value.is_object();
  if (type == "array") return value.is_array();
  if (type == "string") return value.is_string();
  if (type == "integer") return value.is_number_integer();
  if (type == "boolean") return value.is_boolean();
  if (type == "null") return value.is_null();
  return false;
}

class Checker {
 public:
  explicit Checker(const json& root) : root_(root) {}

  std::vector<std::string> Check(const json& schema, const json& value, const std::string& place) {
    std::vector<std::string> errors;
    const auto add = [&errors](std::vector<std::string> more) {
      errors.insert(errors.end(), more.begin(), more.end());
    };
    for (const auto& [keyword, unused] : schema.items()) {
      if (kKeywords.count(keyword) == 0) errors.push_back("schema: unknown keyword " + keyword);
    }
    if (schema.contains("$ref")) {
      const auto pointer = json::json_pointer(schema["$ref"].get<std::string>().substr(1));
      add(Check(root_.at(pointer), value, place));
    }
    add(CheckValue(schema, value, place));
    if (value.is_object()) add(CheckMembers(schema, value, place));
    if (value.is_array() && schema.contains("items")) {
      for (std::size_t i = 0; i < value.size(); ++i) {
        add(Check(schema["items"], value[i], place + "/" + std::to_string(i)));
      }
    }
    for (const json& part : schema.value("allOf", json::array())) add(Check(part, value, place));
    if (schema.contains("oneOf")) {
      const json& choices = schema["oneOf"];
      const auto fitting = std::count_if(choices.begin(), choices.end(),
                                         [&](const json& choice) { return Check(choice, value, place).empty(); });
      if (fitting != 1) errors.push_back(place + ": fits " + std::to_string(fitting) + " of the choices");
    }
    if (schema.contains("if")) {
      const char* branch = Check(schema["if"], value, place).empty() ? "then" : "else";
      if (schema.contains(branch)) add(Check(schema[branch], value, place));
    }
    return errors;
  }

 private:
  static std::vector<std::string> CheckValue(const json& schema, const json& value, const std::string& place) {
    std::vector<std::string> errors;
    if (schema.contains("type")) {
      const json types = schema["type"].is_array() ? schema["type"] : json::array({schema["type"]});
      const bool fits = std::any_of(types.begin(), types.end(), [&](const json& t) { return HasType(value, t); });
      if (!fits) errors.push_back(place + ": is no " + types.dump());
    }
    if (schema.contains("const") && value != schema["const"]) errors.push_back(place + ": is not the constant");
    if (schema.contains("enum")) {
      const json& allowed = schema["enum"];
      if (std::find(allowed.begin(), allowed.end(), value) == allowed.end()) errors.push_back(place + ": not allowed");
    }
    if (schema.contains("minimum") && value.is_number() && value < schema["minimum"]) {
      errors.push_back(place + ": too small");
    }
    if (schema.contains("maximum") && value.is_number() && value > schema["maximum"]) {
      errors.push_back(place + ": too large");
    }
    if (schema.contains("minLength") && value.is_string() &&
        value.get<std::string>().size() < schema["minLength"].get<std::size_t>()) {
      errors.push_back(place + ": too short");
    }
    return errors;
  }

  std::vector<std::string> CheckMembers(const json& schema, const json& value, const std::string& place) {
    std::vector<std::string> errors;
    const json properties = schema.value("properties", json::object());
    for (const json& name : schema.value("required", json::array())) {
      if (!value.contains(name.get<std::string>())) errors.push_back(place + ": lacks " + name.get<std::string>());
    }
    for (const auto& [name, member] : value.items()) {
      const std::string memberPlace = place + "/" + name;
      if (properties.contains(name)) {
        const auto more = Check(properties[name], member, memberPlace);
        errors.insert(errors.end(), more.begin(), more.end());
        continue;
      }
      const json others = schema.value("additionalProperties", json(true));
      if (others == false) errors.push_back(memberPlace + ": is not in the schema");
      if (others.is_object()) {
        const auto more = Check(others, member, memberPlace);
        errors.insert(errors.end(), more.begin(), more.end());
      }
    }
    return errors;
  }

  const json& root_;
};

}  // namespace

std::vector<std::string> CheckSchema(const json& schema, const json& document) {
  return Checker(schema).Check(schema, document, "");
}

}  // namespace Orvane::tests
