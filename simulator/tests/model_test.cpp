// The model: what the built-in chassis holds, and the message for each way in which a document can be wrong.
#include <gtest/gtest.h>

#include <string>

#include "cim/object_store.h"
#include "model/model_builder.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

std::string TextOf(const Instance& instance, const char* property) {
  const Value* const value = instance.Find(property);
  return value == nullptr || value->isNull ? std::string() : value->texts.at(0);
}

TEST(BuiltInModel, HoldsTheWholeChassis) {
  const Model model = BuiltInModel();
  const ObjectStore& store = *model.Contents();

  EXPECT_EQ(store.Enumerate("VORTA_CMMComputerSystem").size(), 2U);
  EXPECT_EQ(store.Enumerate("VORTA_IOModuleComputerSystem").size(), 4U);
  EXPECT_EQ(store.Enumerate("VORTA_PassThroughModule").size(), 2U);
  EXPECT_EQ(store.Enumerate("VORTA_ComputerSystem").size(), 14U);
  EXPECT_EQ(store.Enumerate("CIM_ComputerSystem").size(), 20U);
  EXPECT_EQ(store.Enumerate("CIM_Chassis").size(), 1U);
  EXPECT_EQ(store.Enumerate("CIM_PowerManagementService").size(), 14U);
  EXPECT_EQ(store.Enumerate("CIM_Slot").size(), 26U);
  EXPECT_EQ(store.Enumerate("CIM_PackageInSlot").size(), 22U);
}

TEST(BuiltInModel, HasOneSpareCmm) {
  const Model model = BuiltInModel();
  const auto spares = model.Contents()->Enumerate("CIM_IsSpare");
  ASSERT_EQ(spares.size(), 1U);
  EXPECT_EQ(spares[0]->Find("Antecedent")->references.at(0).keys.at("Name").text, "cmm02");
}

TEST(BuiltInModel, HasBootRomAndOtherImages) {
  const Model model = BuiltInModel();
  std::size_t boot = 0;
  std::size_t other = 0;
  for (const Instance* image : model.Contents()->Enumerate("CIM_SoftwareIdentity")) {
    (TextOf(*image, "ClassificationDescriptions").find("Boot ROM") != std::string::npos ? boot : other) += 1;
  }
  EXPECT_EQ(boot, 6U);
  EXPECT_EQ(other, 29U);  // 3 of each CMM, 2 of each switch but one, 1 of each other module and node
}

struct BadModel {
  const char* name;
  const char* text;
  const char* message;
};

// Printed by GoogleTest in place of the bytes.
void PrintTo(const BadModel& bad, std::ostream* out) { *out << bad.name; }

class ModelErrors : public testing::TestWithParam<BadModel> {};

TEST_P(ModelErrors, NameFilePointerAndReason) {
  try {
    BuildModel("m.json", GetParam().text);
    FAIL() << "the model was taken";
  } catch (const ModelError& error) {
    EXPECT_EQ(std::string(error.what()).substr(0, std::string(GetParam().message).size()), GetParam().message);
  }
}

constexpr BadModel kBadModels[] = {
    {"NotJson", "{", "m.json: /: is not JSON: byte 2: "},
    {"NotJsonInside", R"({"formatVersion":1,"cmms":[{"bay":1},{"bay":]})",
     "m.json: /cmms/1/bay: is not JSON: byte 45: "},
    {"NumberTooLarge", R"({"formatVersion":1e999})", "m.json: /formatVersion: "},
    {"SchemaNoText", R"({"$schema":1,"formatVersion":1,"chassis":{}})", "m.json: /$schema: must be a string"},
    {"NegativeDuration", R"({"formatVersion":1,"chassis":{},"timing":{"cmmInstall":-1}})",
     "m.json: /timing/cmmInstall: must be from 0 to 86400"},
    {"UnknownPlaceOfImages", R"({"formatVersion":1,"chassis":{},"switches":[{"bay":1,"installAs":"current"}]})",
     "m.json: /switches/0/installAs: must be \"fallback\" or \"next\""},
    {"StateTooLarge", R"({"formatVersion":1,"chassis":{},"cmms":[{"bay":1,"requestedStates":[65536]}]})",
     "m.json: /cmms/0/requestedStates/0: must be from 0 to 65535"},
    {"NoObject", "[]", "m.json: /: must be an object"},
    {"TwinMember", R"({"formatVersion":1,"formatVersion":1})", "m.json: /formatVersion: stands twice in one object"},
    {"NestedTwinMember", R"({"formatVersion":1,"chassis":{"name":"c"},"cmms":[{"bay":1},{"a/b":[1],"a/b":2}]})",
     "m.json: /cmms/1/a~1b: stands twice in one object"},
    {"NoVersion", R"({"chassis":{}})", "m.json: /: the member \"formatVersion\" is missing"},
    {"OtherVersion", R"({"formatVersion":2,"chassis":{}})", "m.json: /formatVersion: must be from 1 to 1"},
    {"NoChassis", R"({"formatVersion":1})", "m.json: /: the member \"chassis\" is missing"},
    {"UnknownMember", R"({"formatVersion":1,"chassis":{},"blades":[]})", "m.json: /blades: unknown member"},
    {"UnknownNestedMember", R"({"formatVersion":1,"chassis":{"a/b~":1}})", "m.json: /chassis/a~1b~0: unknown member"},
    {"TextExpected", R"({"formatVersion":1,"chassis":{"name":7}})", "m.json: /chassis/name: must be a string"},
    {"ArrayExpected", R"({"formatVersion":1,"chassis":{},"cmms":{}})", "m.json: /cmms: must be an array"},
    {"BayMissing", R"({"formatVersion":1,"chassis":{},"cmms":[{}]})", "m.json: /cmms/0: the member \"bay\" is missing"},
    {"BayNoInteger", R"({"formatVersion":1,"chassis":{},"cmms":[{"bay":1.5}]})",
     "m.json: /cmms/0/bay: must be an integer"},
    {"BayTooHigh", R"({"formatVersion":1,"chassis":{},"cmms":[{"bay":3}]})",
     "m.json: /cmms/0/bay: must be from 1 to 2"},
    {"BayNegative", R"({"formatVersion":1,"chassis":{},"nodes":[{"bay":-1}]})",
     "m.json: /nodes/0/bay: must be from 1 to 16"},
    {"BayTwice", R"({"formatVersion":1,"chassis":{},"nodes":[{"bay":4},{"bay":4}]})",
     "m.json: /nodes/1/bay: the bay node04 is taken already"},
    {"BaySharedByKinds", R"({"formatVersion":1,"chassis":{},"switches":[{"bay":2}],"passThrus":[{"bay":2}]})",
     "m.json: /passThrus/0/bay: the bay iomodule02 is taken already"},
    {"TooManyBays", R"({"formatVersion":1,"chassis":{},"bays":{"node":100}})",
     "m.json: /bays/node: must be from 0 to 99"},
    {"SpareNoBoolean", R"({"formatVersion":1,"chassis":{},"cmms":[{"bay":1,"spare":"yes"}]})",
     "m.json: /cmms/0/spare: must be true or false"},
    {"PowerState", R"({"formatVersion":1,"chassis":{},"nodes":[{"bay":1,"powerState":"up"}]})",
     "m.json: /nodes/0/powerState: must be \"on\" or \"off\""},
    {"VersionOutOfRange",
     R"({"formatVersion":1,"chassis":{},"cmms":[{"bay":1,"firmware":[{"id":"a","majorVersion":65536}]}]})",
     "m.json: /cmms/0/firmware/0/majorVersion: must be from 0 to 65535"},
    {"FirmwareTwice", R"({"formatVersion":1,"chassis":{},"cmms":[{"bay":1,"firmware":[{"id":"a"},{"id":"a"}]}]})",
     "m.json: /cmms/0/firmware/1/id: \"a\" stands here for the second time"},
    {"StatusOfCmmImage", R"({"formatVersion":1,"chassis":{},"cmms":[{"bay":1,"firmware":[{"id":"a","status":[2]}]}]})",
     "m.json: /cmms/0/firmware/0/status: only switches and pass-through modules tell the status of an image"},
    {"EndpointOfPassThru", R"({"formatVersion":1,"chassis":{},"passThrus":[{"bay":1,"endpoints":[]}]})",
     "m.json: /passThrus/0/endpoints: unknown member"},
    {"NoIPv4",
     R"({"formatVersion":1,"chassis":{},"cmms":[{"bay":1,"endpoints":[{"name":"e","ipv4Address":"1.2.3"}]}]})",
     "m.json: /cmms/0/endpoints/0/ipv4Address: is no IPv4 address"},
    {"NoIPv6", R"({"formatVersion":1,"chassis":{},"cmms":[{"bay":1,"endpoints":[{"name":"e","ipv6Address":"::g"}]}]})",
     "m.json: /cmms/0/endpoints/0/ipv6Address: is no IPv6 address"},
    {"ExtraClass", R"({"formatVersion":1,"chassis":{},"extraInstances":[{"class":"X","properties":{}}]})",
     "m.json: /extraInstances/0/class: there is no such class"},
    {"ExtraProperty",
     R"({"formatVersion":1,"chassis":{},"extraInstances":[{"class":"CIM_Slot","properties":{"X":1}}]})",
     "m.json: /extraInstances/0/properties/X: the class CIM_Slot has no such property"},
    {"ExtraPropertyTwice",
     R"({"formatVersion":1,"chassis":{},"extraInstances":[{"class":"CIM_Slot","properties":{"Tag":"a","tag":"b"}}]})",
     "m.json: /extraInstances/0/properties/tag: the property stands here for the second time"},
    {"ExtraType",
     R"({"formatVersion":1,"chassis":{},"extraInstances":[{"class":"CIM_Slot","properties":{"Tag":"t","Number":-1}}]})",
     "m.json: /extraInstances/0/properties/Number: is no uint16"},
    {"ExtraKey", R"({"formatVersion":1,"chassis":{},"extraInstances":[{"class":"CIM_Slot","properties":{}}]})",
     "m.json: /extraInstances/0: The key 'Tag' is missing"},
};

INSTANTIATE_TEST_SUITE_P(Documents, ModelErrors, testing::ValuesIn(kBadModels),
                         [](const testing::TestParamInfo<BadModel>& bad) { return bad.param.name; });

TEST(LoadModel, NamesTheFileThatCannotBeRead) {
  try {
    LoadModel("/nonexistent/m.json");
    FAIL() << "the file was read";
  } catch (const ModelError& error) {
    EXPECT_STREQ(error.what(), "/nonexistent/m.json: cannot be read: No such file or directory");
  }
}

TEST(LoadModel, ReadsTheBuiltInDocumentAsAFile) {
  EXPECT_EQ(LoadModel(ORVANE_BUILT_IN_MODEL).Contents()->Size(), BuiltInModel().Contents()->Size());
}

TEST(ExtraInstances, AreServedLikeOthers) {
  const Model model = BuildModel("m.json", R"({"formatVersion":1,"chassis":{},"extraInstances":[
      {"class":"cim_slot","properties":{"Tag":"odd/iomodule01","Number":1,"ConnectorType":[2,3],"Powered":true}}]})");
  const auto slots = model.Contents()->Enumerate("CIM_Slot");
  ASSERT_EQ(slots.size(), 27U);
  EXPECT_EQ(TextOf(*slots.back(), "Powered"), "TRUE");
  EXPECT_EQ(TextOf(*slots.back(), "CreationClassName"), "CIM_Slot");
}

TEST(LoadModel, NamesADirectory) {
  try {
    LoadModel("/");
    FAIL() << "a directory was read";
  } catch (const ModelError& error) {
    EXPECT_STREQ(error.what(), "/: cannot be read: Is a directory");
  }
}

TEST(LoadModel, EndsAtADeviceThatDoesNot) {
  try {
    LoadModel("/dev/zero");
    FAIL() << "a device was read";
  } catch (const ModelError& error) {
    EXPECT_STREQ(error.what(), "/dev/zero: is larger than 67108864 bytes");
  }
}

TEST(ExtraInstances, RefuseAValueOfAnyDepth) {
  constexpr std::size_t kDepth = 200000;
  const std::string text =
      R"({"formatVersion":1,"chassis":{},"extraInstances":[{"class":"CIM_Slot","properties":{"Tag":)" +
      std::string(kDepth, '[') + std::string(kDepth, ']') + "}}]}";
  try {
    BuildModel("m.json", text);
    FAIL() << "the model was taken";
  } catch (const ModelError& error) {
    EXPECT_STREQ(error.what(), "m.json: /extraInstances/0/properties/Tag: is no string");
  }
}

}  // namespace
}  // namespace Orvane::simulator
