// The schema and the loader say the same: a document is made from every place of the schema, for every rule that
// stands there, and the loader must take or refuse it accordingly. So neither can change without the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "model/model_builder.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

using Json = nlohmann::json;
using Pointer = Json::json_pointer;

Json ReadJson(const char* path) {
  std::ifstream file(path);
  return Json::parse(file);
}

const Json& Schema() {
  static const Json schema = ReadJson(ORVANE_MODEL_SCHEMA);
  return schema;
}

// The rule itself, for a rule that refers to another place.
const Json& Resolve(const Json& rule) {
  if (!rule.contains("$ref")) return rule;
  return Resolve(Schema().at(Pointer(rule.at("$ref").get<std::string>().substr(1))));
}

bool IsObject(const Json& rule) { return rule.value("type", Json()) == "object"; }
bool IsClosedObject(const Json& rule) { return IsObject(rule) && rule.value("additionalProperties", Json()) == false; }

// The smallest value that a rule allows.
Json Smallest(const Json& reference) {
  const Json& rule = Resolve(reference);
  if (rule.contains("const")) return rule.at("const");
  if (rule.contains("enum")) return rule.at("enum").at(0);
  const std::string type = rule.at("type");
  if (type == "integer") return rule.at("minimum");
  if (type == "boolean") return false;
  if (type == "array") return Json::array();
  if (type == "string") return rule.contains("minLength") ? "x" : "";
  Json object = Json::object();
  for (const Json& name : rule.value("required", Json::array())) {
    object[name.get<std::string>()] = Smallest(rule.at("properties").at(name.get<std::string>()));
  }
  // What the words of the schema ask for and its rules cannot: a known class with its keys.
  if (object.contains("class")) object = {{"class", "CIM_RedundancySet"}, {"properties", {{"InstanceID", "x"}}}};
  return object;
}

struct Place {
  std::string pointer;  // in a document
  const Json* rule;
  Json document;  // a good one that has this place
};

// Every place that a document can have, lists with one element.
void Collect(const Json& reference, const std::string& pointer, Json document, std::vector<Place>& places) {
  const Json& rule = Resolve(reference);
  if (!document.contains(Pointer(pointer))) document[Pointer(pointer)] = Smallest(rule);
  places.push_back({pointer, &rule, document});
  if (rule.value("type", Json()) == "array") Collect(rule.at("items"), pointer + "/0", document, places);
  if (!rule.contains("properties") || !IsObject(rule)) return;
  for (const auto& [name, member] : rule.at("properties").items()) {
    Collect(member, pointer + "/" + name, document, places);
  }
}

const std::vector<Place>& Places() {
  static const std::vector<Place> places = [] {
    std::vector<Place> collected;
    Collect(Schema(), "", Smallest(Schema()), collected);
    return collected;
  }();
  return places;
}

testing::AssertionResult Takes(const Json& document) {
  try {
    BuildModel("m.json", document.dump());
    return testing::AssertionSuccess() << "taken: " << document;
  } catch (const ModelError& error) {
    return testing::AssertionFailure() << error.what() << ": " << document;
  }
}

Json With(const Place& place, const Json& value) {
  Json document = place.document;
  document[Pointer(place.pointer)] = value;
  return document;
}

bool HasType(const Json& value, const std::string& type) {
  if (type == "integer") return value.is_number_integer();
  if (type == "number") return value.is_number();
  if (type == "boolean") return value.is_boolean();
  if (type == "string") return value.is_string();
  if (type == "array") return value.is_array();
  if (type == "null") return value.is_null();
  return type == "object" && value.is_object();
}

bool HasTypeOf(const Json& value, const Json& rule) {
  if (!rule.contains("type")) return true;
  const Json& types = rule.at("type");
  if (types.is_string()) return HasType(value, types);
  return std::any_of(types.begin(), types.end(), [&](const Json& type) { return HasType(value, type); });
}

// What is wrong with a value, place by place; empty when it fits.
void Validate(const Json& value, const Json& reference, const std::string& pointer, std::vector<std::string>& faults) {
  const Json& rule = Resolve(reference);
  const auto fault = [&](const std::string& reason) { faults.push_back(pointer + ": " + reason); };
  if (!HasTypeOf(value, rule)) return fault("type");
  if (rule.contains("const") && value != rule.at("const")) fault("const");
  if (rule.contains("enum") && std::count(rule.at("enum").begin(), rule.at("enum").end(), value) == 0) fault("enum");
  if (rule.contains("minimum") && value.get<double>() < rule.at("minimum").get<double>()) fault("minimum");
  if (rule.contains("maximum") && value.get<double>() > rule.at("maximum").get<double>()) fault("maximum");
  if (rule.contains("minLength") && value.get<std::string>().size() < rule.at("minLength").get<std::size_t>()) {
    fault("minLength");
  }
  for (const Json& name : rule.value("required", Json::array())) {
    if (!value.contains(name.get<std::string>())) fault("required " + name.get<std::string>());
  }
  if (value.is_array() && rule.contains("items")) {
    for (std::size_t i = 0; i < value.size(); ++i) {
      Validate(value[i], rule.at("items"), pointer + "/" + std::to_string(i), faults);
    }
  }
  if (!value.is_object()) return;
  const Json properties = rule.value("properties", Json::object());
  for (const auto& [name, member] : value.items()) {
    if (properties.contains(name)) {
      Validate(member, properties.at(name), pointer + "/" + name, faults);
    } else if (IsClosedObject(rule)) {
      fault("unknown member " + name);
    }
  }
}

TEST(Schema, EveryPlaceIsTakenByTheLoader) {
  EXPECT_GT(Places().size(), 100U);
  for (const Place& place : Places()) EXPECT_TRUE(Takes(place.document)) << place.pointer;
}

TEST(Schema, UsesNoRuleThatTheseTestsDoNotKnow) {
  const std::set<std::string> known = {
      "$schema", "title",   "description", "type",    "required", "const",     "enum", "properties",
      "items",   "minimum", "maximum",     "default", "$defs",    "minLength", "$ref", "additionalProperties"};
  for (const Place& place : Places()) {
    for (const auto& [name, value] : place.rule->items()) EXPECT_EQ(known.count(name), 1U) << name;
  }
}

TEST(Schema, EveryDefinitionIsUsed) {
  const std::string text = Schema().dump();
  for (const auto& [name, definition] : Schema().at("$defs").items()) {
    EXPECT_NE(text.find("\"#/$defs/" + name + "\""), std::string::npos) << name;
  }
}

TEST(Schema, OtherTypesAreRefusedByTheLoader) {
  for (const Place& place : Places()) {
    for (const Json& value : {Json(), Json(true), Json(7), Json(1.5), Json("text"), Json::array(), Json::object()}) {
      if (place.pointer.empty() || HasTypeOf(value, *place.rule)) continue;
      EXPECT_FALSE(Takes(With(place, value))) << place.pointer << " = " << value;
    }
  }
}

TEST(Schema, TheLoaderHasTheSameLimits) {
  std::size_t limits = 0;
  for (const Place& place : Places()) {
    if (!place.rule->contains("minimum")) continue;
    const auto lowest = place.rule->at("minimum").get<std::int64_t>();
    const auto highest = place.rule->at("maximum").get<std::int64_t>();
    const bool isBay = place.pointer.size() > 4 && place.pointer.substr(place.pointer.size() - 4) == "/bay";
    Place wide = place;
    // The highest bay is there only when the chassis has that many.
    if (isBay) wide.document["bays"] = {{"cmm", highest}, {"iomodule", highest}, {"node", highest}};
    EXPECT_TRUE(Takes(With(wide, lowest))) << place.pointer;
    EXPECT_TRUE(Takes(With(wide, highest))) << place.pointer;
    EXPECT_FALSE(Takes(With(wide, lowest - 1))) << place.pointer;
    EXPECT_FALSE(Takes(With(wide, highest + 1))) << place.pointer;
    ++limits;
  }
  EXPECT_GT(limits, 30U);
}

TEST(Schema, TheLoaderHasTheSameValuesAndLengths) {
  for (const Place& place : Places()) {
    if (place.rule->contains("enum")) {
      for (const Json& value : place.rule->at("enum")) EXPECT_TRUE(Takes(With(place, value))) << place.pointer;
      EXPECT_FALSE(Takes(With(place, "another"))) << place.pointer;
    }
    if (place.rule->contains("const")) {
      EXPECT_FALSE(Takes(With(place, place.rule->at("const").get<int>() + 1)));
    }
    if (place.rule->contains("minLength")) {
      EXPECT_FALSE(Takes(With(place, ""))) << place.pointer;
    }
  }
}

TEST(Schema, RequiredMembersAreRequiredByTheLoader) {
  for (const Place& place : Places()) {
    if (!place.document.at(Pointer(place.pointer)).is_object()) continue;
    const Json& object = place.document.at(Pointer(place.pointer));
    const std::set<std::string> required = place.rule->value("required", std::set<std::string>());
    for (const std::string& name : required) {
      Json without = object;
      without.erase(name);
      EXPECT_FALSE(Takes(With(place, without))) << place.pointer << " without " << name;
    }
  }
}

// The loader's members are not listed anywhere outside its code, so every name that the schema knows in any place is
// tried in all the others, with a value that is good in its own place; and a name that nobody knows.
TEST(Schema, TheLoaderTakesNoOtherMembers) {
  std::map<std::string, std::set<Json>> valuesByName = {{"another", {Json("x")}}};
  for (const Place& place : Places()) {
    if (!place.rule->contains("properties")) continue;
    for (const auto& [name, member] : place.rule->at("properties").items()) valuesByName[name].insert(Smallest(member));
  }
  std::size_t tried = 0;
  for (const Place& place : Places()) {
    if (!place.rule->contains("properties")) continue;
    EXPECT_TRUE(IsClosedObject(*place.rule)) << place.pointer;
    for (const auto& [name, values] : valuesByName) {
      if (place.rule->at("properties").contains(name)) continue;
      for (const Json& value : values) {
        Json object = place.document.at(Pointer(place.pointer));
        object[name] = value;
        EXPECT_FALSE(Takes(With(place, object))) << place.pointer << "/" << name;
        ++tried;
      }
    }
  }
  EXPECT_GT(tried, 500U);
}

TEST(Schema, TheBuiltInModelFollowsIt) {
  std::vector<std::string> faults;
  Validate(ReadJson(ORVANE_BUILT_IN_MODEL), Schema(), "", faults);
  EXPECT_EQ(faults, std::vector<std::string>());
}

TEST(Schema, TheWalkerFindsFaults) {
  const Json bad = Json::parse(R"({"formatVersion":2,"chassis":{"name":1,"x":1},"cmms":[{"bay":0}],"nodes":[
      {"bay":100,"powerState":"up","firmware":[{"id":""},{}]}]})");
  std::vector<std::string> faults;
  Validate(bad, Schema(), "", faults);
  const std::set<std::string> expected = {"/formatVersion: const",
                                          "/chassis/name: type",
                                          "/chassis: unknown member x",
                                          "/cmms/0/bay: minimum",
                                          "/nodes/0/bay: maximum",
                                          "/nodes/0/powerState: enum",
                                          "/nodes/0/firmware/0/id: minLength",
                                          "/nodes/0/firmware/1: required id"};
  EXPECT_EQ(std::set<std::string>(faults.begin(), faults.end()), expected);
}

}  // namespace
}  // namespace Orvane::simulator
