// Well made answers with content that nobody expects: the version of an image with every odd value, as the inventory
// shows it. Prints lines of the table of faults.
#include <algorithm>
#include <iostream>

#include "cmm/tests/inventory_fixture.h"

namespace Orvane::testing {
namespace {

/// A version that is not there at all.
const CimValue kAbsent = {};

struct VersionRow {
  const char* name;
  CimValue version;
  std::string shown;
  std::string full;
};

void PrintTo(const VersionRow& row, std::ostream* out) { *out << row.name; }

class OddVersion : public InventoryTest, public ::testing::WithParamInterface<VersionRow> {};

TEST_P(OddVersion, ReachesTheInventoryWhole) {
  const VersionRow& row = GetParam();
  CimObjectSpec image = CimObjectSpec("CIM_SoftwareIdentity")
                            .Key("InstanceID", "x")
                            .With("TargetTypes", CimStringArray({"Firmware:CMM"}))
                            .With("MajorVersion", CimUint16(2))
                            .With("MinorVersion", CimUint16(3))
                            .With("RevisionNumber", CimUint16(4));
  if (!row.version.type.empty()) image.With("VersionString", row.version);
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  server.OnAssociators(SystemPath("cmm01"), kInstalledIdentity, kIdentity, Objects({image}));
  CMMDataList list;
  EXPECT_EQ(inventory.GetCMMData(list), 0);
  ASSERT_EQ(list.Size(), 1U);
  ASSERT_EQ(list.Get(0).Firmwares.size(), 1U);
  const FirmwareIdentity& firmware = list.Get(0).Firmwares[0];
  EXPECT_EQ(firmware.VersionString, row.shown);
  EXPECT_EQ(firmware.FullVersionString, row.full);
  for (const Log::Record& record : log.Records()) {
    EXPECT_EQ(record.text.find("s3cret"), std::string::npos);
    EXPECT_EQ(record.text.find("VVNFUklEOnMzY3JldA"), std::string::npos) << "the same in Base64";
  }
  std::cout << "fault | Inventory | " << row.name << " | version of " << firmware.VersionString.size()
            << " characters, full version of " << firmware.FullVersionString.size() << " | | | "
            << (HasFailure() ? "FAILED" : "ok") << '\n';
}

/// With the parts of the version behind it, and cut where the full version ends.
VersionRow Whole(const char* name, const std::string& text) {
  constexpr std::size_t kLongest = 255;
  return {name, CimString(text), text, text.empty() ? text : (text + "-2.3.4").substr(0, kLongest)};
}

INSTANTIATE_TEST_SUITE_P(
    Content, OddVersion,
    ::testing::Values(
        Whole("VersionOf0Characters", ""), Whole("VersionOf248Characters", std::string(248, 'v')),
        Whole("VersionOf249Characters", std::string(249, 'v')), Whole("VersionOf250Characters", std::string(250, 'v')),
        Whole("VersionOf254Characters", std::string(254, 'v')), Whole("VersionOf255Characters", std::string(255, 'v')),
        Whole("VersionOf256Characters", std::string(256, 'v')), Whole("VersionOfAMegabyte", std::string(1 << 20, 'v')),
        Whole("VersionWithFormats", "%s%n%d%100$s%99999999d{}{0}%"), VersionRow{"VersionAbsent", kAbsent, "", ""},
        VersionRow{"VersionNull", CimNull("string"), "", ""},
        VersionRow{"VersionThatIsANumber", CimUint16(7), "7", "7-2.3.4"},
        VersionRow{"VersionThatIsAnArray", CimStringArray({"a", "b"}), "a b ", "a b -2.3.4"}),
    [](const auto& row) { return std::string(row.param.name); });

class OddAnswer : public InventoryTest {};

TEST_F(OddAnswer, VersionTwiceCostsTheImagesAndNothingElse) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  server.OnAssociators(SystemPath("cmm01"), kInstalledIdentity, kIdentity,
                       Objects({CimObjectSpec("CIM_SoftwareIdentity")
                                    .Key("InstanceID", "x")
                                    .With("VersionString", "1")
                                    .With("VersionString", "2")}));
  CMMDataList list;
  EXPECT_EQ(imp.collectCMMData(list), 3);
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_EQ(list.Get(0).Name, "cmm01");
  EXPECT_TRUE(list.Get(0).Firmwares.empty());
  const std::vector<std::string> errors = log.Texts(1);
  EXPECT_TRUE(std::any_of(errors.begin(), errors.end(), [](const std::string& text) {
    return text.find("duplicate property") != std::string::npos;
  }));
  std::cout << "fault | Inventory | VersionTwice | the CMM without images | | | " << (HasFailure() ? "FAILED" : "ok")
            << '\n';
}

}  // namespace
}  // namespace Orvane::testing
