// Tables and the rows of modules in them.
#include "cli/table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/firmware_columns.h"
#include "cli/module_table.h"

namespace Orvane::cli {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

TEST(Table, AlignsColumnsWithoutTrailingBlanks) {
  Table table({{"A", 0}, {"LONG TITLE", 0}});
  table.AddRow({{"first cell"}, {"x"}});
  table.AddRow({{"東京"}, {"y"}});

  EXPECT_EQ(table.Text(),
            "A           LONG TITLE\n"
            "first cell  x\n"
            "東京        y\n");
}

TEST(Table, ShowsCellsOfSeveralLines) {
  Table table({{"A", 0}, {"B", 0}});
  table.AddRow({{"1"}, {"x", "y"}});

  EXPECT_EQ(table.Text(), "A  B\n1  x\n   y\n");
}

TEST(Table, ShowsNothingAsADash) {
  Table table({{"A", 0}, {"B", 0}, {"C", 0}});
  table.AddRow({{" "}, {}});

  EXPECT_EQ(table.Text(), "A  B  C\n-  -  -\n");
}

TEST(Table, CutsLongCellsAndNeutralisesThem) {
  Table table({{"A", 6}});
  table.AddRow({{"123456789"}});
  table.AddRow({{"\x1B"}});

  EXPECT_EQ(table.Text(), "A\n12345…\n\\x1B\n");
}

FirmwareIdentity Image(const std::string& version, const std::string& status, const std::string& name = "") {
  FirmwareIdentity image;
  image.IsNotBootRom = true;
  image.VersionString = version;
  image.ElementSoftwareStatus = status;
  image.ElementName = name;
  return image;
}

TEST(SortFirmwares, GoesByTheStatusOfAModulesImage) {
  const auto columns = SortFirmwares({Image("1.0", "2 "), Image("0.9", "4 "), Image("1.1", "3 "), Image("1.2", "6 "),
                                      Image("1.3", "7 "), Image("1.4", "4 3 ")});

  EXPECT_THAT(columns.active, ElementsAre("1.0"));
  EXPECT_THAT(columns.fallback, ElementsAre("0.9", "1.1 next", "1.2 installed", "1.3 status 7", "1.4 next"));
}

TEST(SortFirmwares, ReadsTheStatusAsNumbersAndNotAsCharacters) {
  EXPECT_THAT(SortFirmwares({Image("1.0", "32 ")}).active, IsEmpty());
}

TEST(SortFirmwares, PutsBootRomsApartWhateverTheirStatus) {
  FirmwareIdentity boot = Image("7.1", "2 ");
  boot.IsNotBootRom = false;

  const auto columns = SortFirmwares({boot});

  EXPECT_THAT(columns.boot, ElementsAre("7.1"));
  EXPECT_THAT(columns.active, IsEmpty());
}

TEST(SortFirmwares, GoesByTheNameOfACmmsImageAndAdmitsWhatItDoesNotKnow) {
  const auto columns = SortFirmwares({Image("2.5", "", "CMM active image"), Image("2.4", "", "CMM backup image"),
                                      Image("9.8", "", "CMM image"), Image("2.3", "", "Inactive bank")});

  EXPECT_THAT(columns.active, ElementsAre("2.5", "9.8 ?"));
  EXPECT_THAT(columns.fallback, ElementsAre("2.4", "2.3"));
}

TEST(VersionText, TakesTheFullestVersionThatIsKnown) {
  FirmwareIdentity image;
  EXPECT_EQ(VersionText(image), "");
  image.BuildNumber = "12";
  EXPECT_EQ(VersionText(image), "build 12");
  image.MajorVersion = "7";
  image.MinorVersion = "1";
  EXPECT_EQ(VersionText(image), "7.1 (12)");
  image.VersionString = "14.3";
  EXPECT_EQ(VersionText(image), "14.3 (12)");
  image.FullVersionString = "14.3-7.1.0";
  EXPECT_EQ(VersionText(image), "14.3-7.1.0 (12)");
}

CMMData CmmInBay(int bay) {
  CMMData cmm;
  cmm.Physical.SlotNumber = bay;
  cmm.Name = "cmm0" + std::to_string(bay);
  return cmm;
}

TEST(ModuleTable, CallsACmmWithoutDetailsStandbyBesideAPrimary) {
  ModuleTable table;
  table.AddCmms({CmmInBay(1)}, {"1,2", {1, 2}});

  EXPECT_THAT(table.Text(), HasSubstr("1    CMM primary  cmm01"));
  EXPECT_THAT(table.Text(), HasSubstr("2    CMM standby"));
}

TEST(ModuleTable, DoesNotCallACmmStandbyWhenNoneCouldBeRead) {
  ModuleTable table;
  table.AddCmms({}, {"1,2", {1, 2}});

  EXPECT_THAT(table.Text(), Not(HasSubstr("standby")));
}

TEST(ModuleTable, ShowsNumbersAndImagesBelowEachOther) {
  CIMIOData module;
  module.Physical.SlotNumber = 3;
  module.Physical.ProductName = "Switch";
  module.Physical.SerialNumber = "S1";
  FirmwareIdentity boot = Image("3.2", "");
  boot.IsNotBootRom = false;
  module.Firmwares = {boot, Image("6.9", "4 "), Image("7.1", "2 ")};
  ModuleTable table;
  table.AddModules({module});

  EXPECT_EQ(table.Text(),
            "BAY  KIND    NAME    PART, SERIAL  FIRMWARE      ADDRESSES\n"
            "3    switch  Switch  -             active   7.1  -\n"
            "                     S1            fallback 6.9\n"
            "                                   boot     3.2\n");
}

TEST(ModuleTable, ShowsEveryAddress) {
  CIMIOData module;
  IPInfo both;
  both.IPv4Address = "192.168.0.1";
  both.IPv6Address = "fe80::1";
  module.IPs = {both};
  ModuleTable table;
  table.AddModules({module});

  EXPECT_THAT(table.Text(), HasSubstr("192.168.0.1"));
  EXPECT_THAT(table.Text(), HasSubstr("fe80::1"));
}

}  // namespace
}  // namespace Orvane::cli
