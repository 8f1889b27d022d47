// The schema of fault plans, their loader and their document say the same: examples are loaded, and documents that
// break a rule somewhere are taken or refused by schema and loader alike.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/simulator/simulator.h>

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "tests/json_schema.h"
#include "tests/process.h"

namespace Orvane::tests {
namespace {

using nlohmann::json;
using Pointer = json::json_pointer;
using ::testing::IsEmpty;

std::string Source(const std::string& path) { return ReadFile(std::string(ORVANE_SOURCE_DIR "/") + path); }

const json& Schema() {
  static const json schema = json::parse(Source("docs/fault-plan.schema.json"));
  return schema;
}

// The reason why the loader refuses a document; empty when it takes it.
std::string RefusalOf(const json& document) {
  try {
    simulator::ParseFaultPlan("plan.json", document.dump());
    return {};
  } catch (const simulator::ModelError& error) {
    return error.what();
  }
}

// The blocks of the document that are marked as JSON.
std::vector<json> Examples() {
  const std::string text = Source("docs/faults.md");
  const std::string start = "```json\n";
  std::vector<json> examples;
  for (std::size_t place = text.find(start); place != std::string::npos; place = text.find(start, place)) {
    place += start.size();
    examples.push_back(json::parse(text.substr(place, text.find("```", place) - place)));
  }
  return examples;
}

// What follows a heading of the document, up to the next one.
std::string Section(const std::string& heading) {
  const std::string text = "\n" + Source("docs/faults.md");
  const std::size_t start = text.find("\n### " + heading + "\n");
  if (start == std::string::npos) return {};
  return text.substr(start, text.find("\n#", start + 1) - start);
}

std::vector<std::string> Kinds() {
  std::vector<std::string> kinds;
  for (const json& choice : Schema()["$defs"]["effect"]["oneOf"]) {
    kinds.push_back(Schema().at(Pointer(choice["$ref"].get<std::string>().substr(1)))["properties"]["kind"]["const"]);
  }
  return kinds;
}

TEST(FaultDocument, ExamplesAreLoadedAndFollowTheSchema) {
  const std::vector<json> examples = Examples();
  EXPECT_GT(examples.size(), Kinds().size());
  for (const json& example : examples) {
    EXPECT_EQ(RefusalOf(example), "") << example;
    EXPECT_THAT(CheckSchema(Schema(), example), IsEmpty()) << example;
  }
}

TEST(FaultDocument, ShowsEveryKindInItsSection) {
  EXPECT_EQ(Kinds().size(), 14U);
  for (const std::string& kind : Kinds()) {
    EXPECT_THAT(Section(kind), ::testing::HasSubstr("\"kind\": \"" + kind + "\"")) << kind;
  }
}

TEST(FaultDocument, NamesEveryMemberThatThereIs) {
  const std::string text = Source("docs/faults.md");
  for (const auto& [name, definition] : Schema()["$defs"].items()) {
    const json properties = definition.value("properties", json::object());
    for (const auto& [member, rule] : properties.items()) {
      EXPECT_TRUE(text.find('`' + member + '`') != std::string::npos ||
                  text.find('"' + member + '"') != std::string::npos)
          << name << ": " << member;
    }
  }
}

// A plan that uses every member of the format.
json WholePlan() {
  return json::parse(R"({
    "$schema": "x", "formatVersion": 1, "faults": [
      {"comment": "x", "request": {"operation": "InvokeMethod", "class": "CIM_SoftwareInstallationService",
                                   "method": "InstallFromURI", "occurrence": {"from": 1, "to": 1000000}},
       "when": {"afterSeconds": 0, "during": "jobRunning", "after": "cmmRebooting"},
       "effect": {"kind": "refuse", "seconds": 1, "answerFirst": true}},
      {"request": {"occurrence": 1}, "effect": {"kind": "dropBeforeAnswer"}},
      {"request": {"occurrence": "every"}, "effect": {"kind": "dropInAnswer", "afterBytes": 0}},
      {"request": {}, "effect": {"kind": "delay", "milliseconds": 1}},
      {"request": {}, "effect": {"kind": "httpStatus", "status": 200, "reason": "", "headers": {"A": "b"}, "body": ""}},
      {"request": {}, "effect": {"kind": "cimError", "code": 1, "description": ""}},
      {"request": {}, "effect": {"kind": "malformedBody", "body": ""}},
      {"request": {}, "effect": {"kind": "truncatedBody", "bytes": 0}},
      {"request": {}, "effect": {"kind": "jobStuck", "state": "new"}},
      {"request": {}, "effect": {"kind": "jobVanished"}},
      {"request": {}, "effect": {"kind": "jobFails", "text": "x"}},
      {"request": {}, "effect": {"kind": "cmmStaysDown"}},
      {"request": {}, "effect": {"kind": "twoPrimaries"}},
      {"request": {}, "effect": {"kind": "targetGone", "target": "cmm", "bay": 1}}]})");
}

// The same, each with one of the faults.
std::vector<json> Plans() {
  const json whole = WholePlan();
  std::vector<json> plans;
  for (const json& fault : whole["faults"]) {
    plans.push_back(whole);
    plans.back()["faults"] = json::array({fault});
  }
  return plans;
}

void Visit(const json& node, const Pointer& place, const std::function<void(const Pointer&, const json&)>& visitor) {
  visitor(place, node);
  if (!node.is_structured()) return;
  for (const auto& [name, member] : node.items()) {
    Visit(member, node.is_array() ? place / std::stoul(name) : place / name, visitor);
  }
}

// What only the words of the schema can say: which classes there are, and which methods they have.
bool IsBeyondTheRules(const Pointer& place, const json& value) {
  if (place.empty() || !value.is_string()) return false;
  const bool isName = place.back() == "class" || place.back() == "method";
  return isName && !value.get<std::string>().empty();
}

class Comparison {
 public:
  void Compare(const json& document, const std::string& what) {
    const std::vector<std::string> faults = CheckSchema(Schema(), document);
    const std::string refusal = RefusalOf(document);
    EXPECT_EQ(refusal.empty(), faults.empty())
        << what << ": loader: " << refusal << "; schema: " << ::testing::PrintToString(faults);
    ++(refusal.empty() ? taken_ : refused_);
  }

  int taken_ = 0;
  int refused_ = 0;
};

TEST(FaultSchema, TheWholePlanUsesEveryMemberOfTheFormat) {
  const json plan = WholePlan();
  EXPECT_THAT(CheckSchema(Schema(), plan), IsEmpty());
  EXPECT_EQ(RefusalOf(plan), "");
  std::set<std::string> used;
  Visit(plan, Pointer(), [&](const Pointer& place, const json&) {
    if (!place.empty()) used.insert(place.back());
  });
  Visit(Schema(), Pointer(), [&](const Pointer& place, const json& node) {
    if (place.empty() || place.back() != "properties") return;
    for (const auto& [name, rule] : node.items()) EXPECT_EQ(used.count(name), 1U) << name;
  });
  for (const std::string& kind : Kinds()) {
    EXPECT_NE(plan.dump().find("\"kind\":\"" + kind + "\""), std::string::npos) << kind;
  }
}

TEST(FaultSchema, OtherValuesAreTakenOrRefusedByBoth) {
  const std::vector<std::int64_t> numbers = {-1,
                                             0,
                                             1,
                                             2,
                                             99,
                                             100,
                                             199,
                                             200,
                                             599,
                                             600,
                                             65535,
                                             65536,
                                             86400,
                                             86401,
                                             600000,
                                             600001,
                                             1000000,
                                             1000001,
                                             1 << 24,
                                             (1 << 24) + 1,
                                             31536000,
                                             31536001,
                                             std::int64_t{1} << 40,
                                             INT64_MIN};
  std::vector<json> values = {json(),
                              true,
                              1.5,
                              "",
                              "text",
                              "every",
                              "new",
                              "running",
                              "cmm",
                              "switch",
                              "passThru",
                              "node",
                              json::array(),
                              json::object(),
                              "jobRunning",
                              "cmmRebooting",
                              "moduleRestarting",
                              "GetInstance",
                              "InvokeMethod",
                              UINT64_MAX};
  for (const std::string& kind : Kinds()) values.emplace_back(kind);
  for (const std::int64_t number : numbers) values.emplace_back(number);
  Comparison comparison;
  for (const json& plan : Plans()) {
    Visit(plan, Pointer(), [&](const Pointer& place, const json&) {
      for (const json& value : values) {
        if (IsBeyondTheRules(place, value)) continue;
        json document = plan;
        // The end of a range follows its beginning, or words forbid what no rule does.
        if (!place.empty() && place.back() == "to") document[place.parent_pointer() / "from"] = 1;
        // A method that no operation forbids.
        if (!place.empty() && place.back() == "operation") document[place.parent_pointer()].erase("method");
        document[place] = value;
        comparison.Compare(document, place.to_string() + " = " + value.dump());
      }
    });
  }
  EXPECT_GT(comparison.taken_, 100);
  EXPECT_GT(comparison.refused_, 1000);
}

TEST(FaultSchema, MembersThatAreMissingAreMissedByBoth) {
  Comparison comparison;
  for (const json& plan : Plans()) {
    Visit(plan, Pointer(), [&](const Pointer& place, const json& node) {
      if (!node.is_object()) return;
      for (const auto& [name, member] : node.items()) {
        json document = plan;
        document[place].erase(name);
        comparison.Compare(document, place.to_string() + " without " + name);
      }
    });
  }
  EXPECT_GT(comparison.taken_, 10);
  EXPECT_GT(comparison.refused_, 30);
}

TEST(FaultSchema, MembersOfOtherPlacesAreRefusedByBoth) {
  json members = {{"another", "x"}};
  Visit(WholePlan(), Pointer(), [&](const Pointer&, const json& node) {
    if (node.is_object()) members.update(node);
  });
  Comparison comparison;
  for (const json& plan : Plans()) {
    Visit(plan, Pointer(), [&](const Pointer& place, const json& node) {
      if (!node.is_object()) return;
      for (const auto& [name, member] : members.items()) {
        if (node.contains(name) || IsBeyondTheRules(place / name, member)) continue;
        json document = plan;
        document[place][name] = member;
        comparison.Compare(document, place.to_string() + "/" + name + " = " + member.dump());
      }
    });
  }
  EXPECT_GT(comparison.refused_, 500);
}

}  // namespace
}  // namespace Orvane::tests
