// The conversation that a real CIM server had about a small chassis, played again over HTTP and HTTPS: the exported
// operations must return exactly what that chassis holds, and ask nothing that was not asked then.
#include "testing/capture_replay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/cmm.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "testing/scoped_log.h"

namespace Orvane::testing {
namespace {

using nlohmann::json;
using ::testing::IsEmpty;

const std::string kRecording = std::string(ORVANE_TEST_DATA) + "/chassis-capture";

json ToJson(const Physicallnfo& physical) {
  return {{"SlotNumber", physical.SlotNumber},
          {"UUID", physical.UUID},
          {"PosId", physical.PosId},
          {"VpdId", physical.VpdId},
          {"Manufacturer", physical.Manufacturer},
          {"SubSystemManufacturer", physical.SubSystemManufacturer},
          {"ProductName", physical.ProductName},
          {"PartNumber", physical.PartNumber},
          {"SKU", physical.SKU},
          {"SerialNumber", physical.SerialNumber}};
}

json ToJson(const FirmwareIdentity& image) {
  return {{"VersionString", image.VersionString},
          {"MajorVersion", image.MajorVersion},
          {"MinorVersion", image.MinorVersion},
          {"RevisionNumber", image.RevisionNumber},
          {"BuildNumber", image.BuildNumber},
          {"IsNotBootRom", image.IsNotBootRom},
          {"ElementSoftwareStatus", image.ElementSoftwareStatus},
          {"ElementName", image.ElementName},
          {"TargetTypes", image.TargetTypes},
          {"FullVersionString", image.FullVersionString},
          {"Classifications", image.Classifications},
          {"ClassificationDescriptions", image.ClassificationDescriptions},
          {"ModuleFirmwareKey", image.ModuleFirmwareKey}};
}

json ToJson(const IPInfo& ip) {
  return {{"ProtocolIFType", ip.ProtocolIFType},
          {"AddressOrigin", ip.AddressOrigin},
          {"Name", ip.Name},
          {"IPv4Address", ip.IPv4Address},
          {"SubnetMask", ip.SubnetMask},
          {"IPv6Address", ip.IPv6Address},
          {"IPv6SubnetPrefixLength", ip.IPv6SubnetPrefixLength}};
}

template <typename Record>
json ArrayOf(const std::vector<Record>& records) {
  json out = json::array();
  for (const Record& record : records) out.push_back(ToJson(record));
  return out;
}

json ToJson(CMMDataList& list) {
  json out = json::array();
  for (std::size_t i = 0; i < list.Size(); ++i) {
    const CMMData& cmm = list.Get(i);
    out.push_back({{"Physical", ToJson(cmm.Physical)},
                   {"Firmwares", ArrayOf(cmm.Firmwares)},
                   {"IPs", ArrayOf(cmm.IPs)},
                   {"NotPrimary", cmm.NotPrimary},
                   {"Name", cmm.Name}});
  }
  return out;
}

json ToJson(CIMIODataList& list) {
  json out = json::array();
  for (std::size_t i = 0; i < list.Size(); ++i) {
    const CIMIOData& module = list.Get(i);
    out.push_back({{"IsPassThru", module.IsPassThru},
                   {"Label", module.Label},
                   {"Physical", ToJson(module.Physical)},
                   {"IPs", ArrayOf(module.IPs)},
                   {"Firmwares", ArrayOf(module.Firmwares)}});
  }
  return out;
}

/// A number that the server did not give is null in what is expected: the record may hold anything there.
void ForgetUnsetNumbers(json& actual, const json& expected) {
  if (expected.is_null()) {
    actual = nullptr;
  } else if (expected.is_object() && actual.is_object()) {
    for (const auto& [key, value] : expected.items()) {
      if (actual.contains(key)) ForgetUnsetNumbers(actual[key], value);
    }
  } else if (expected.is_array() && actual.is_array() && actual.size() == expected.size()) {
    for (std::size_t i = 0; i < expected.size(); ++i) ForgetUnsetNumbers(actual[i], expected[i]);
  }
}

class Replay : public ::testing::TestWithParam<bool> {
 protected:
  Replay()
      : expected(json::parse(std::ifstream(kRecording + "/expected-records.json"))),
        server(kRecording, GetParam()),
        inventory("127.0.0.1", server.Port(), "USERID", "s3cret"),
        imp("127.0.0.1", server.Port(), "USERID", "s3cret") {}
  ~Replay() override {
    EXPECT_THAT(server.Unmatched(), IsEmpty());
    EXPECT_THAT(server.Different(), IsEmpty()) << "a request is not written as the recorded one";
  }

  template <typename List>
  void ExpectList(int result, List& list, const json& what) {
    EXPECT_EQ(result, what.at("rc").get<int>());
    json actual = ToJson(list);
    ForgetUnsetNumbers(actual, what.at("list"));
    EXPECT_EQ(actual.dump(1), what.at("list").dump(1));
  }
  /// Requests of the recording that were made for @p step.
  static std::size_t RecordedFor(const std::string& step) {
    std::size_t count = 0;
    for (const json& entry : json::parse(std::ifstream(kRecording + "/index.json")))
      count += entry.at("step_of").get<std::string>() == step ? 1U : 0U;
    return count;
  }

  json expected;
  CaptureReplay server;
  CMMInventory inventory;
  CMMTarnInventoryImp imp;
  ScopedLog log;
};

TEST_P(Replay, RecordingIsComplete) { EXPECT_EQ(server.Recorded(), 48U); }

TEST_P(Replay, IsCMM) { EXPECT_EQ(inventory.IsCMM(), expected.at("IsCMM").get<bool>()); }

TEST_P(Replay, CollectCMMData) {
  CMMDataList list;
  const int result = imp.collectCMMData(list);
  ExpectList(result, list, expected.at("collectCMMData"));
  EXPECT_EQ(server.Summaries().size(), RecordedFor("collectCMMData"));
}

TEST_P(Replay, GetCMMData) {
  CMMDataList list;
  const int result = inventory.GetCMMData(list);
  ExpectList(result, list, expected.at("GetCMMData"));
}

TEST_P(Replay, GetChassisInfo) {
  ChassisInfo info;
  const json& what = expected.at("GetChassisInfo");
  EXPECT_EQ(inventory.GetChassisInfo(info), what.at("rc").get<int>());
  const json actual = {{"Name", info.Name},
                       {"ElementName", info.ElementName},
                       {"Model", info.Model},
                       {"PartNumber", info.PartNumber},
                       {"SerialNumber", info.SerialNumber}};
  EXPECT_EQ(actual, what.at("info"));
  EXPECT_EQ(server.Summaries().size(), 1U);
}

TEST_P(Replay, GetIOModuleData) {
  CIMIODataList list;
  const int result = inventory.GetIOModuleData(list);
  ExpectList(result, list, expected.at("GetIOModuleDataByBayID").at("0"));
  EXPECT_EQ(server.Summaries().size(), RecordedFor("GetIOModuleData"));
}

TEST_P(Replay, GetIOModuleDataByBayID) {
  for (const auto& [bay, what] : expected.at("GetIOModuleDataByBayID").items()) {
    SCOPED_TRACE(bay);
    CIMIODataList list;
    const int result = inventory.GetIOModuleDataByBayID(std::stoi(bay), list);
    ExpectList(result, list, what);
  }
}

TEST_P(Replay, CollectPassThruModuleData) {
  CIMIODataList list;
  const int result = imp.collectPassThruModuleData(list);
  ExpectList(result, list, expected.at("collectPassThruModuleData"));
  EXPECT_EQ(server.Summaries().size(), RecordedFor("collectPassThruModuleData"));
}

TEST_P(Replay, GetPassThruData) {
  for (const auto& [bay, what] : expected.at("GetPassThruData").items()) {
    SCOPED_TRACE(bay);
    CIMIODataList list;
    const int result = inventory.GetPassThruData(std::stoi(bay), list);
    ExpectList(result, list, what);
  }
}

// Bay 2 was not asked for when the conversation was recorded.
TEST_P(Replay, GetSwitchType) {
  std::size_t asked = 0;
  for (const auto& [bay, kind] : expected.at("GetSwitchType").items()) {
    if (bay == "2") continue;
    EXPECT_EQ(inventory.GetSwitchType(std::stoi(bay)), kind.get<int>()) << bay;
    ++asked;
  }
  EXPECT_EQ(asked, 6U);
}

TEST_P(Replay, PrimaryCmmAsATarget) {
  const Pegasus::CIMInstance target = imp.GetTargetInstance(0, 0);
  ASSERT_FALSE(target.isUninitialized());
  EXPECT_STREQ(target.getPath().toString().getCString(),
               "VORTA_CMMComputerSystem.CreationClassName=\"VORTA_CMMComputerSystem\",Name=\"cmm01\"");
}

TEST_P(Replay, SwitchIsNoPassThruTarget) {
  EXPECT_TRUE(imp.GetTargetInstance(4, 2).isUninitialized());
  EXPECT_THAT(log.Texts(1), ::testing::Contains("not find intereting instance"));
}

TEST_P(Replay, SwitchAsATarget) {
  const Pegasus::CIMInstance target = imp.GetTargetInstance(3, 1);
  ASSERT_FALSE(target.isUninitialized());
  EXPECT_STREQ(target.getPath().toString().getCString(),
               "//vm/root/cimv2:VORTA_IOModuleComputerSystem.CreationClassName=\"VORTA_IOModuleComputerSystem\","
               "Name=\"iomodule03\"");
}

INSTANTIATE_TEST_SUITE_P(Transport, Replay, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& param) { return param.param ? "Https" : "Http"; });

}  // namespace
}  // namespace Orvane::testing
