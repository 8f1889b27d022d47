// The command against the simulator: what each one prints, as a table and as JSON, and what it ends with.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/json_schema.h"
#include "tests/process.h"

namespace Orvane::tests {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;

using Words = std::vector<std::string>;

const json& Schema() {
  static const json schema = json::parse(ReadFile(ORVANE_SOURCE_DIR "/docs/output.schema.json"));
  return schema;
}

const json& BuiltInModel() {
  static const json model = json::parse(ReadFile(ORVANE_SOURCE_DIR "/simulator/model/built_in_model.json"));
  return model;
}

std::vector<int> BaysOf(const std::string& kind) {
  std::vector<int> bays;
  for (const json& module : BuiltInModel().at(kind)) bays.push_back(module.at("bay"));
  return bays;
}

int FirstBayOf(const std::string& kind) { return BaysOf(kind).front(); }

int EmptyIoBay() {
  std::vector<int> used = BaysOf("switches");
  for (const int bay : BaysOf("passThrus")) used.push_back(bay);
  int bay = 1;
  while (std::find(used.begin(), used.end(), bay) != used.end()) ++bay;
  return bay;
}

Result Simulated(Words command) {
  command.insert(command.begin(), "--simulate");
  return RunOrvane({command, {}, ""});
}

json SimulatedJson(Words command, int status = 0) {
  command.insert(command.end(), {"-o", "json"});
  const Result result = Simulated(command);
  EXPECT_EQ(result.status, status) << result.errors;
  json document = json::parse(result.output);
  EXPECT_THAT(CheckSchema(Schema(), document), IsEmpty());
  return document;
}

TEST(Inventory, ShowsEveryModuleOfTheModel) {
  const Result result = Simulated({"inventory"});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, HasSubstr(BuiltInModel()["chassis"]["serialNumber"].get<std::string>()));
  EXPECT_THAT(result.output, HasSubstr(BuiltInModel()["cmms"][0]["package"]["serialNumber"].get<std::string>()));
  for (const char* kind : {"switches", "passThrus"}) {
    for (const json& module : BuiltInModel().at(kind)) {
      EXPECT_THAT(result.output, HasSubstr(module["package"]["serialNumber"].get<std::string>()));
      EXPECT_THAT(result.output, HasSubstr(module["package"]["partNumber"].get<std::string>()));
    }
  }
  EXPECT_THAT(result.output, HasSubstr("CMM standby"));
}

TEST(Inventory, FitsOnOneScreen) {
  const std::string output = Simulated({"inventory"}).output;

  EXPECT_LE(std::count(output.begin(), output.end(), '\n'), 40);
  EXPECT_THAT(output, Not(HasSubstr(" \n")));
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 120U) << line;
}

TEST(Inventory, JsonHoldsTheWholeChassis) {
  const json document = SimulatedJson({"inventory"});

  EXPECT_EQ(document["operation"], "inventory");
  EXPECT_EQ(document["code"], 0);
  EXPECT_EQ(document["data"]["chassis"]["name"], BuiltInModel()["chassis"]["name"]);
  EXPECT_EQ(document["data"]["cmms"].size(), 1U);
  EXPECT_EQ(document["data"]["switches"].size(), BaysOf("switches").size());
  EXPECT_EQ(document["data"]["pass_thrus"].size(), BaysOf("passThrus").size());
  EXPECT_EQ(document["data"]["equipment"]["node"], json(BaysOf("nodes")));
}

// A chassis where some requests fail.
Result Faulty(const std::string& faults, Words command) {
  const Folder folder;
  const std::string file = folder.Write("faults.json", R"({"formatVersion": 1, "faults": [)" + faults + "]}", 0644);
  command.insert(command.begin(), {"--faults", file});
  return Simulated(command);
}

constexpr const char* kUnreadableSwitches =
    R"({"request": {"operation": "Associators", "class": "VORTA_IOModuleComputerSystem"},
        "effect": {"kind": "cimError", "code": 1}})";

TEST(PartialInventory, NamesTheBaysOfModulesThatCouldNotBeRead) {
  const Result result = Faulty(kUnreadableSwitches, {"inventory"});

  EXPECT_EQ(result.status, 0);
  std::string warnings;
  for (const int bay : BaysOf("switches")) {
    warnings += "orvane: warning: the module in bay " + std::to_string(bay) +
                " is there, but its details could not be read (--log-level 1 shows why)\n";
    EXPECT_THAT(result.output, HasSubstr("\n" + std::to_string(bay) + "    I/O module    -"));
  }
  EXPECT_EQ(result.errors, warnings);
  EXPECT_THAT(result.output, HasSubstr(BuiltInModel()["passThrus"][0]["package"]["serialNumber"].get<std::string>()));
}

TEST(PartialInventory, SaysThatTheCmmsCouldNotBeRead) {
  const Result result = Faulty(R"({"request": {"operation": "Associators", "class": "VORTA_CMMComputerSystem"},
                                   "effect": {"kind": "cimError", "code": 1}})",
                               {"inventory"});

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("orvane: warning: reading the CMMs failed with code 3"));
  EXPECT_THAT(result.output, Not(HasSubstr("standby")));
  EXPECT_THAT(result.output, HasSubstr(BuiltInModel()["switches"][0]["package"]["serialNumber"].get<std::string>()));
}

TEST(PartialInventory, SaysThatAChassisIsNotDescribed) {
  const Result result = Faulty(R"({"request": {"operation": "EnumerateInstances", "class": "CIM_Chassis"},
                                   "effect": {"kind": "cimError", "code": 1}})",
                               {"inventory"});

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("orvane: warning: reading the chassis failed"));
  EXPECT_THAT(result.output, HasSubstr("Chassis  -\n"));
}

TEST(PartialInventory, OfTheSwitchListWarnsOfTheOnesLeftOut) {
  const Result result = Faulty(R"({"request": {"operation": "Associators", "class": "VORTA_IOModuleComputerSystem",
                             "occurrence": {"from": 1, "to": 3}},
                 "effect": {"kind": "cimError", "code": 1}})",
                               {"switch", "list"});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors,
            "orvane: warning: a switch is left out: its details could not be read (--log-level 1 shows why)\n");
}

TEST(PartialInventory, OfOneSwitchSaysWhyItIsNotThere) {
  const Result result = Faulty(kUnreadableSwitches, {"switch", "list", "--bay", "1"});

  EXPECT_EQ(result.status, 4);
  EXPECT_THAT(result.errors, HasSubstr("the details of a switch could not be read"));
}

TEST(Inventory, TwoRunsPrintTheSame) { EXPECT_EQ(Simulated({"inventory"}).output, Simulated({"inventory"}).output); }

TEST(Chassis, ShowsTheFields) {
  const Result result = Simulated({"chassis"});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr(BuiltInModel()["chassis"]["model"].get<std::string>()));
}

TEST(Chassis, JsonConformsToTheSchema) {
  EXPECT_EQ(SimulatedJson({"chassis"})["data"]["chassis"]["part_number"], BuiltInModel()["chassis"]["partNumber"]);
}

TEST(CmmList, HoldsThePrimaryInDetailAndEveryBay) {
  const json document = SimulatedJson({"cmm", "list"});

  EXPECT_EQ(document["operation"], "cmm list");
  ASSERT_EQ(document["data"]["cmms"].size(), 1U);
  EXPECT_EQ(document["data"]["cmms"][0]["not_primary"], 0);
  EXPECT_EQ(document["data"]["bays"], json(BaysOf("cmms")));
}

TEST(SwitchList, HoldsEverySwitch) {
  EXPECT_EQ(SimulatedJson({"switch", "list"})["data"]["switches"].size(), BaysOf("switches").size());
}

TEST(SwitchList, OfOneBayHoldsThatSwitch) {
  const int bay = BaysOf("switches").back();
  const json document = SimulatedJson({"switch", "list", "--bay", std::to_string(bay)});

  ASSERT_EQ(document["data"]["switches"].size(), 1U);
  EXPECT_EQ(document["data"]["switches"][0]["physical"]["slot_number"], bay);
}

TEST(SwitchList, OfAnEmptyBayEndsWith4) {
  const std::string bay = std::to_string(EmptyIoBay());
  const Result result = Simulated({"switch", "list", "--bay", bay});

  EXPECT_EQ(result.status, 4);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "orvane: no switch in bay " + bay + "\n");
}

TEST(PassThruList, HoldsThePassThruModulesOfAllBays) {
  const json document = SimulatedJson({"passthru", "list"});

  std::vector<int> bays;
  for (const json& module : document["data"]["pass_thrus"]) bays.push_back(module["physical"]["slot_number"]);
  EXPECT_EQ(bays, BaysOf("passThrus"));
}

TEST(PassThruList, OfABayWithASwitchEndsWith4) {
  const json document =
      SimulatedJson({"passthru", "list", "--bay", std::to_string(FirstBayOf("switches"))}, /*status=*/4);

  EXPECT_EQ(document["code"], 5);
  EXPECT_EQ(document["data"], json::object());
}

TEST(BayType, NamesTheKind) {
  EXPECT_EQ(Simulated({"bay", "type", std::to_string(FirstBayOf("switches"))}).output, "switch\n");
  EXPECT_EQ(Simulated({"bay", "type", std::to_string(FirstBayOf("passThrus"))}).output, "pass-through\n");
}

TEST(BayType, OfAnEmptyBayEndsWith4) {
  const json document = SimulatedJson({"bay", "type", std::to_string(EmptyIoBay())}, /*status=*/4);

  EXPECT_EQ(document["code"], 3);
}

TEST(BayType, JsonConformsToTheSchema) {
  EXPECT_EQ(SimulatedJson({"bay", "type", std::to_string(FirstBayOf("switches"))})["data"]["type"], "switch");
}

TEST(BaySame, NamesTheBaysOfEqualSwitches) {
  const int bay = FirstBayOf("switches");
  const json& switches = BuiltInModel()["switches"];
  std::vector<int> same;
  for (const json& module : switches) {
    const bool equal = module["package"]["posId"] == switches[0]["package"]["posId"] &&
                       module["package"]["vpdId"] == switches[0]["package"]["vpdId"];
    if (module["bay"] != bay && equal) same.push_back(module["bay"]);
  }

  EXPECT_EQ(SimulatedJson({"bay", "same", std::to_string(bay)})["data"]["bays"], json(same));
}

TEST(BaySame, WithoutAnyIsDoneWithNothing) {
  json model = BuiltInModel();
  model["switches"].erase(model["switches"].begin() + 1, model["switches"].end());
  const Folder folder;
  const std::string file = folder.Write("model.json", model.dump(), 0644);

  const Result result =
      RunOrvane({{"--simulate=" + file, "bay", "same", std::to_string(FirstBayOf("switches"))}, {}, ""});

  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, HasSubstr("orvane: note: no other switch"));
}

TEST(BaySame, OfABayWithoutASwitchIsNotFound) {
  for (const int bay : {EmptyIoBay(), FirstBayOf("passThrus")}) {
    const Result result = Simulated({"bay", "same", std::to_string(bay)});

    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.errors, "orvane: no switch in bay " + std::to_string(bay) + "\n");
  }
}

TEST(Version, IsPrinted) {
  const Result result = RunOrvane({{"--version"}, {}, ""});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, MatchesRegex("orvane [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(StandardOutput, ThatIsFullOrClosedIsTold) {
  for (const char* words : {"--simulate chassis", "--simulate chassis -o json", "--help"}) {
    EXPECT_EQ(
        RunProgram("/bin/sh", {{"-c", "\"$0\" " + std::string(words) + " >/dev/full", ORVANE_COMMAND}, {}, ""}).status,
        1)
        << words;
  }
  EXPECT_THAT(RunProgram("/bin/sh", {{"-c", "\"$0\" --simulate chassis >/dev/full", ORVANE_COMMAND}, {}, ""}).errors,
              HasSubstr("orvane: the result cannot be written to standard output: No space left on device\n"));
  EXPECT_EQ(RunProgram("/bin/sh", {{"-c", "\"$0\" --simulate chassis >&-", ORVANE_COMMAND}, {}, ""}).status, 1);
}

TEST(Equipment, OfOneKindHoldsThatKindOnly) {
  const json document = SimulatedJson({"equipment", "--kind", "node"});

  EXPECT_EQ(document["data"]["equipment"], json({{"node", BaysOf("nodes")}}));
}

TEST(Equipment, HoldsEveryKind) {
  const json document = SimulatedJson({"equipment"});

  EXPECT_EQ(document["data"]["equipment"]["cmm"], json(BaysOf("cmms")));
  EXPECT_EQ(document["data"]["equipment"]["switch"].size(), BaysOf("switches").size() + BaysOf("passThrus").size());
}

TEST(Options, MayStandBehindTheCommand) {
  const Result result = RunOrvane({{"cmm", "list", "--simulate", "--output", "json"}, {}, ""});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(json::parse(result.output)["operation"], "cmm list");
}

TEST(Options, SimulateTakesAModelFile) {
  json model = BuiltInModel();
  model["chassis"]["serialNumber"] = "OTHERCHASSIS";
  const Folder folder;
  const std::string path = folder.Write("model.json", model.dump(), 0644);

  const Result result = RunOrvane({{"--simulate=" + path, "chassis"}, {}, ""});

  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("OTHERCHASSIS"));
}

TEST(Options, ABadModelEndsWith2AndNamesTheFile) {
  const Folder folder;
  const std::string path = folder.Write("model.json", R"({"formatVersion": "one"})", 0644);

  const Result result = RunOrvane({{"--simulate=" + path, "chassis"}, {}, ""});

  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, HasSubstr(path));
}

TEST(LogLevel, ShowsTheLinesOfTheLibraryOnStandardError) {
  const Result result = Simulated({"--log-level", "3", "chassis"});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.errors, HasSubstr(" 3 cmm/inventory_update/cmm_peg_client:"));
  EXPECT_THAT(result.errors, HasSubstr(" Connect CIMOM . H:127.0.0.1 P:"));
  EXPECT_THAT(result.output, Not(HasSubstr("CIMOM")));
}

TEST(LogLevel, OfTheEnvironmentIsObeyed) {
  const Result result = RunOrvane({{"--simulate", "chassis"}, {{"ORVANE_LOG_LEVEL", "3"}}, ""});

  EXPECT_THAT(result.errors, HasSubstr("Connect CIMOM"));
}

TEST(LogLevel, IsSilentUnlessAskedFor) { EXPECT_EQ(Simulated({"chassis"}).errors, ""); }

TEST(LogFile, TakesTheLinesInsteadOfStandardError) {
  const Folder folder;
  const std::string path = folder.Path("orvane.log");

  const Result result = Simulated({"--log-level", "3", "--log-file", path, "chassis"});

  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(ReadFile(path), HasSubstr("Connect CIMOM"));
}

TEST(LogFile, ThatCannotBeOpenedIsReportedOnceAndTheCommandGoesOn) {
  const Result result = Simulated({"--log-level", "1", "--log-file", "/nonexistent/orvane.log", "chassis"});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.errors, HasSubstr("/nonexistent/orvane.log"));
}

class SimulatorOutside : public ::testing::Test {
 protected:
  Invocation Access(Words command) const {
    command.insert(command.begin(),
                   {"--host", "127.0.0.1", "--port", simulator_.HttpsPort(), "--user", SimulatorProgram::kUser});
    return {command, {}, ""};
  }
  SimulatorProgram simulator_;
};

TEST_F(SimulatorOutside, IsReadWithAPasswordOfTheEnvironment) {
  Invocation run = Access({"chassis"});
  run.environment["ORVANE_PASSWORD"] = SimulatorProgram::kPassword;

  EXPECT_EQ(RunOrvane(run).status, 0);
}

TEST_F(SimulatorOutside, IsReadWithEverythingFromTheEnvironment) {
  const Result result = RunOrvane({{"chassis"},
                                   {{"ORVANE_HOST", "127.0.0.1"},
                                    {"ORVANE_PORT", simulator_.HttpsPort()},
                                    {"ORVANE_USER", SimulatorProgram::kUser},
                                    {"ORVANE_PASSWORD", SimulatorProgram::kPassword}},
                                   ""});

  EXPECT_EQ(result.status, 0) << result.errors;
}

TEST_F(SimulatorOutside, IsReadWithAPasswordFile) {
  const Folder folder;
  const std::string file = folder.Write("password", std::string(SimulatorProgram::kPassword) + "\n", 0600);

  EXPECT_EQ(RunOrvane(Access({"--password-file", file, "chassis"})).status, 0);
}

TEST_F(SimulatorOutside, IsReadWithAPasswordFromStandardInput) {
  Invocation run = Access({"--password-stdin", "chassis"});
  run.input = std::string(SimulatorProgram::kPassword) + "\n";

  EXPECT_EQ(RunOrvane(run).status, 0);
}

TEST_F(SimulatorOutside, IsReadWithAPasswordTypedWithoutEcho) {
  const Result result =
      RunOrvaneOnTerminal(Access({"chassis"}), "Password", std::string(SimulatorProgram::kPassword) + "\n");

  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_THAT(result.output, HasSubstr("Password of USERID at 127.0.0.1: "));
  EXPECT_THAT(result.output, Not(HasSubstr(SimulatorProgram::kPassword)));
}

TEST_F(SimulatorOutside, AnInterruptedQuestionEndsWith130) {
  EXPECT_EQ(RunOrvaneOnTerminal(Access({"chassis"}), "Password", "\x03").status, 130);
}

TEST_F(SimulatorOutside, IsReadOverPlainHttpAfterHttpsFailedWithoutAWarning) {
  const Result result = RunOrvane(
      {{"--host", "127.0.0.1", "--port", simulator_.HttpPort(), "--user", SimulatorProgram::kUser, "inventory"},
       {{"ORVANE_PASSWORD", SimulatorProgram::kPassword}},
       ""});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
}

TEST_F(SimulatorOutside, RefusesAWrongPasswordWhichIsNeverAnEmptyChassis) {
  for (const Words& command :
       {Words{"inventory"}, Words{"chassis"}, Words{"cmm", "list"}, Words{"switch", "list"},
        Words{"switch", "list", "--bay", "1"}, Words{"passthru", "list"}, Words{"passthru", "list", "--bay", "1"},
        Words{"bay", "type", "1"}, Words{"bay", "same", "1"}, Words{"equipment"}}) {
    Invocation run = Access(command);
    run.environment["ORVANE_PASSWORD"] = "wrong secret";

    const Result result = RunOrvane(run);

    EXPECT_EQ(result.status, 5) << command[0];
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr("refused the user \"USERID\" or the password")) << command[0];
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_THAT(result.errors, Not(HasSubstr("wrong secret")));
  }
}

}  // namespace
}  // namespace Orvane::tests
