// The documents about packages: the schema and the reader agree, and the command that the description gives makes a
// package that can be installed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "behaviour/package.h"
#include "living_chassis.h"

namespace Orvane::simulator::tests {
namespace {

using Json = nlohmann::json;

const Json& Schema() {
  static const Json schema = [] {
    std::ifstream file(std::string(ORVANE_DOCS) + "/firmware-package.schema.json");
    return Json::parse(file);
  }();
  return schema;
}

Json Good() { return Json::parse(MakePackage("switch", "7.3")); }

testing::AssertionResult Takes(const Json& document) {
  try {
    ReadPackage(document.dump());
    return testing::AssertionSuccess() << "taken: " << document;
  } catch (const InstallError& error) {
    return testing::AssertionFailure() << error.what() << ": " << document;
  }
}

Json With(const std::string& name, const Json& value) {
  Json document = Good();
  document[name] = value;
  return document;
}

TEST(PackageSchema, KnowsTheMembersThatTheReaderTakes) {
  EXPECT_EQ(Schema().at("additionalProperties"), false);
  EXPECT_TRUE(Takes(Good()));
  EXPECT_FALSE(Takes(With("another", 1)));
  for (const auto& [name, rule] : Schema().at("properties").items()) {
    const bool isNumber = rule.value("type", "") == "integer";
    const Json value = Good().contains(name)   ? Good().at(name)
                       : rule.contains("enum") ? rule.at("enum").at(0)
                       : isNumber              ? Json(5)
                                               : Json("text");
    EXPECT_TRUE(Takes(With(name, value))) << name;
  }
}

TEST(PackageSchema, RequiresWhatTheReaderRequires) {
  const std::set<std::string> required = Schema().at("required");
  for (const auto& [name, rule] : Schema().at("properties").items()) {
    Json document = Good();
    document.erase(name);
    EXPECT_EQ(static_cast<bool>(Takes(document)), required.count(name) == 0) << name;
  }
}

TEST(PackageSchema, HasTheReadersTypesValuesAndLimits) {
  for (const auto& [name, rule] : Schema().at("properties").items()) {
    for (const Json& value : {Json(), Json(true), Json(1.5), Json::array(), Json::object()}) {
      EXPECT_FALSE(Takes(With(name, value))) << name << " " << value;
    }
    if (rule.contains("const")) {
      EXPECT_FALSE(Takes(With(name, rule.at("const").get<int>() + 1))) << name;
    }
    if (rule.contains("enum")) {
      for (const Json& value : rule.at("enum")) EXPECT_TRUE(Takes(With(name, value))) << name;
      EXPECT_FALSE(Takes(With(name, "another"))) << name;
    }
    if (rule.contains("minimum")) {
      const int lowest = rule.at("minimum");
      const int highest = rule.at("maximum");
      EXPECT_TRUE(Takes(With(name, lowest)));
      EXPECT_TRUE(Takes(With(name, highest)));
      EXPECT_FALSE(Takes(With(name, lowest - 1))) << name;
      EXPECT_FALSE(Takes(With(name, highest + 1))) << name;
      EXPECT_FALSE(Takes(With(name, "1"))) << name;
    }
    if (rule.contains("minLength")) {
      const std::size_t longest = rule.at("maxLength");
      EXPECT_FALSE(Takes(With(name, ""))) << name;
      EXPECT_TRUE(Takes(With(name, std::string(longest, '1'))));
      EXPECT_FALSE(Takes(With(name, std::string(longest + 1, '1')))) << name;
    }
    if (rule.value("type", "") == "string") {
      EXPECT_FALSE(Takes(With(name, 7))) << name;
    }
  }
}

TEST(PackageReader, TakesTheChecksumInAnyCase) {
  std::string upper = Good().at("sha256");
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  EXPECT_TRUE(Takes(With("sha256", upper)));
}

TEST(PackageReader, TakesAnEmptyPayload) {
  Json document = With("payload", "");
  document["sha256"] = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";
  EXPECT_TRUE(Takes(document));
}

using PackageDescription = LivingChassis;

TEST_F(PackageDescription, MakesAPackageThatCanBeInstalled) {
  std::ifstream file(std::string(ORVANE_DOCS) + "/simulator.md");
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const std::size_t start = text.find("\nprintf '{\"orvane_package\"") + 1;
  ASSERT_NE(start, 0U);
  const std::string command = text.substr(start, text.find('\n', start) - start);
  std::string directory = testing::TempDir() + "orvane-docs-XXXXXX";
  ASSERT_NE(::mkdtemp(directory.data()), nullptr);
  std::ofstream(directory + "/firmware.bin") << std::string(1000, '\xE9');
  ASSERT_EQ(std::system(("cd '" + directory + "' && " + command).c_str()), 0);

  const CimOutcome outcome = Install(Switch(1), "file://" + directory + "/switch.pkg");
  Pass(120);

  EXPECT_EQ(Job(outcome.job), "7 Flash Completed with no apparent errors");
  EXPECT_EQ(Version("VORTA:iom01:main2"), "7.3");
}

}  // namespace
}  // namespace Orvane::simulator::tests
