// Records and outcomes as JSON.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/output.h"

namespace Orvane::cli {
namespace {

std::vector<std::string> NamesOf(const Json& object) {
  std::vector<std::string> names;
  for (const auto& [name, value] : object.items()) names.push_back(name);
  return names;
}

TEST(RecordsJson, NamesEveryFieldInTheOrderOfTheRecord) {
  using ::testing::ElementsAre;
  EXPECT_THAT(NamesOf(ToJson(ChassisInfo())),
              ElementsAre("name", "element_name", "model", "part_number", "serial_number"));
  EXPECT_THAT(NamesOf(ToJson(Physicallnfo())),
              ElementsAre("slot_number", "uuid", "pos_id", "vpd_id", "manufacturer", "sub_system_manufacturer",
                          "product_name", "part_number", "sku", "serial_number"));
  EXPECT_THAT(NamesOf(ToJson(IPInfo())), ElementsAre("protocol_if_type", "address_origin", "name", "ipv4_address",
                                                     "subnet_mask", "ipv6_address", "ipv6_subnet_prefix_length"));
  EXPECT_THAT(NamesOf(ToJson(CMMData())), ElementsAre("physical", "firmwares", "ips", "not_primary", "name"));
  EXPECT_THAT(NamesOf(ToJson(CIMIOData())), ElementsAre("is_pass_thru", "label", "physical", "ips", "firmwares"));
}

TEST(RecordsJson, KeepsTextsAsTheyAre) {
  FirmwareIdentity firmware;
  firmware.IsNotBootRom = false;
  firmware.Classifications = 10;
  firmware.TargetTypes = "Firmware:CMM ";

  EXPECT_EQ(ToJson(firmware)["target_types"], "Firmware:CMM ");
  EXPECT_EQ(ToJson(firmware)["is_not_boot_rom"], false);
  EXPECT_EQ(ToJson(firmware)["classifications"], 10);
}

TEST(RecordsJson, WritesNumbersThatAreNotKnownAsNull) {
  Physicallnfo physical;
  physical.SlotNumber = -1;

  EXPECT_TRUE(ToJson(physical)["slot_number"].is_null());
}

TEST(JsonText, IsValidWhateverTheServerSent) {
  Outcome outcome;
  outcome.data["text"] = "\xFF\x1B\n";

  const Json document = Json::parse(JsonText("chassis", outcome));

  EXPECT_EQ(document["data"]["text"], "\xEF\xBF\xBD\x1B\n");
}

TEST(JsonText, OfAFailureHoldsItsCodeAndSentence) {
  const Json document = Json::parse(JsonText("cmm list", Failure(ExitStatus::kFailed, 3, "it broke")));

  EXPECT_EQ(document,
            Json({{"operation", "cmm list"}, {"code", 3}, {"message", "it broke"}, {"data", Json::object()}}));
}

}  // namespace
}  // namespace Orvane::cli
