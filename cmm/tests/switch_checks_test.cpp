// The readiness checks of the switch update: EHCM state, deferred updates, and what the log says about a bay.
#include "cmm/tests/switch_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr char kEnumerate[] = "EnumerateInstances VORTA_IOModuleComputerSystem";
constexpr char kSuccess[] = "3 Successfully get the VORTA_IOModuleComputerSystem instance: ";

/// Runs one of the two checks.
struct Check {
  const char* name;
  int (SwitchIOModuleUpdate::*run)(int);
  const char* enter;
  const char* count;
  int notFound;
  bool firstFailureIsLogged;
};
constexpr Check kEhcm = {"Ehcm",
                         &SwitchIOModuleUpdate::EHCMCheck,
                         "3 Enter SwitchIOUpdateByCIM::checkEHCMStatus().",
                         "3 EHCMInstances.size() = ",
                         29,
                         true};
constexpr Check kDeferred = {"Deferred",
                             &SwitchIOModuleUpdate::CheckDeferedUpdateSupported,
                             "3 Enter SwitchIOUpdateByCIM::checkDeferedupdatesupported().",
                             "3 Instances.size() = ",
                             6,
                             false};

class SwitchChecks : public SwitchTest {};

class SwitchCheck : public SwitchTest, public ::testing::WithParamInterface<Check> {
 protected:
  int Run(SwitchIOModuleUpdate& facade, int bay = kBay) { return (facade.*GetParam().run)(bay); }
  /// The lines of a failure; the EHCM check adds one of its own.
  std::vector<std::string> Failure(std::vector<std::string> lines) {
    lines.insert(lines.begin(), GetParam().enter);
    if (GetParam().firstFailureIsLogged) lines.emplace_back("1 checking EHCM state failed.");
    return lines;
  }
};

INSTANTIATE_TEST_SUITE_P(Both, SwitchCheck, ::testing::Values(kEhcm, kDeferred),
                         [](const auto& row) { return row.param.name; });

TEST_P(SwitchCheck, GivesUpAfterThreeConnects) {
  EXPECT_EQ(Run(nobody), 1);

  EXPECT_EQ(Lines(), Failure({kRefusedLine, kRefusedLine, kRefusedLine, kRefusedLine, kRefusedLine, kRefusedLine,
                              "1 Failed to connect to the CMM."}));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(1000u, 1000u));
}

TEST_P(SwitchCheck, AsksForAllPropertiesOfTheClassInItsNamespace) {
  Run(update);

  ASSERT_EQ(server.Requests().size(), 1u);
  const CimRequest request = server.Requests().front();
  EXPECT_EQ(request.operation, "EnumerateInstances");
  EXPECT_EQ(request.nameSpace, "root/cimv2");
  EXPECT_EQ(request.objectClass, kSystemClass);
  for (const char* flag : {"DeepInheritance", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}) {
    EXPECT_EQ(request.body.find(flag), std::string::npos) << flag << ": the default is what is wanted";
  }
}

TEST_P(SwitchCheck, FindsNothingInAnEmptyList) {
  EXPECT_EQ(Run(update), GetParam().notFound);

  EXPECT_EQ(Lines(), Failure({kConnectedLine, kSuccess, std::string(GetParam().count) + "0"}));
  EXPECT_THAT(Conversation(), ElementsAre("connect", kEnumerate, "disconnect"));
}

TEST_P(SwitchCheck, FindsNothingWhenNoNameHoldsTheLabel) {
  server.OnEnumerate(kSystemClass, Objects({IOSystem("IO Module 3"), IOSystem("IO Module 04"), IOSystem("Module 03"),
                                            CimObjectSpec(kSystemClass).Key("Name", "unnamed")}));

  EXPECT_EQ(Run(update), GetParam().notFound);

  EXPECT_EQ(Lines(), Failure({kConnectedLine, kSuccess, std::string(GetParam().count) + "4"}));
}

TEST_P(SwitchCheck, EndsWithAnExceptionsTextAndCode29) {
  server.OnEnumerate(kSystemClass, Close(), HttpStatus(401, "Unauthorized"), Body("no XML"));
  EXPECT_EQ(Run(update), 29);
  EXPECT_EQ(Run(update), 29);
  EXPECT_EQ(Run(update), 29);

  std::vector<std::string> errors = log.Texts(1);
  if (GetParam().firstFailureIsLogged) {
    EXPECT_EQ(std::count(errors.begin(), errors.end(), "checking EHCM state failed."), 3);
    errors.erase(std::remove(errors.begin(), errors.end(), "checking EHCM state failed."), errors.end());
  }
  const std::string line = "Unknown error happened when enumerate VORTA_IOModuleComputerSystem. ";
  EXPECT_THAT(errors, ElementsAre(line + "Connection closed by CIM Server.", line + "HTTP Error (401 Unauthorized).",
                                  ::testing::StartsWith(line + "Validation error: on line 1")));
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

struct StatusRow {
  unsigned code;
  const char* line;  ///< null: none
};

class SwitchCheckStatus : public SwitchTest, public ::testing::WithParamInterface<std::tuple<Check, StatusRow>> {};

TEST_P(SwitchCheckStatus, IsNamedAndGives29) {
  const auto& [check, row] = GetParam();
  server.OnEnumerate(kSystemClass, CimError(row.code, "the server's own text"));

  EXPECT_EQ((update.*check.run)(kBay), 29);

  std::vector<std::string> expected = {check.enter, kConnectedLine};
  if (row.line != nullptr) expected.emplace_back(row.line);
  if (check.firstFailureIsLogged) expected.emplace_back("1 checking EHCM state failed.");
  EXPECT_EQ(Lines(), expected);
  EXPECT_THAT(Conversation(), ElementsAre("connect", kEnumerate, "disconnect"));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SwitchCheckStatus,
    ::testing::Combine(
        ::testing::Values(kEhcm, kDeferred),
        ::testing::Values(StatusRow{1, "1 CIM_ERR_FAILED when enumerate VORTA_IOModuleComputerSystem. "},
                          StatusRow{2, "1 CIM_ERR_ACCESS_DENIED when enumerate VORTA_IOModuleComputerSystem. "},
                          StatusRow{4, "1 CIM_ERR_INVALID_PARAMETER when enumerate VORTA_IOModuleComputerSystem. "},
                          StatusRow{5, "1 CIM_ERR_INVALID_CLASS when enumerate VORTA_IOModuleComputerSystem. "},
                          StatusRow{7, "1 CIM_ERR_NOT_SUPPORTED when enumerate VORTA_IOModuleComputerSystem. "},
                          StatusRow{3, nullptr}, StatusRow{6, nullptr}, StatusRow{16, nullptr},
                          StatusRow{99, nullptr})),
    [](const auto& row) {
      return std::string(std::get<0>(row.param).name) + std::to_string(std::get<1>(row.param).code);
    });

struct LabelRow {
  int bay;
  const char* elementName;
  bool found;
};

class SwitchBayLabel : public SwitchTest, public ::testing::WithParamInterface<LabelRow> {};

TEST_P(SwitchBayLabel, HasTwoDigitsAndStandsAnywhere) {
  server.OnEnumerate(kSystemClass, Objects({DeferredSystem(GetParam().elementName, "1")}));

  EXPECT_EQ(update.CheckDeferedUpdateSupported(GetParam().bay), GetParam().found ? 33 : 6);
}

INSTANTIATE_TEST_SUITE_P(Rows, SwitchBayLabel,
                         ::testing::Values(LabelRow{3, "IO Module 03", true}, LabelRow{12, "IO Module 12", true},
                                           LabelRow{1, "the IO Module 01 of chassis 7", true},
                                           LabelRow{1, "IO Module 012", true}, LabelRow{1, "IO Module 1", false},
                                           LabelRow{1, "io module 01", false}, LabelRow{12, "IO Module 012", false},
                                           LabelRow{0, "IO Module 00", true}, LabelRow{-1, "IO Module 0-1", true},
                                           LabelRow{-1, "IO Module 01", false}, LabelRow{99, "IO Module 99", true},
                                           LabelRow{99, "IO Module 09", false}));

TEST_F(SwitchChecks, TheFirstSwitchOfTheBayDecides) {
  server.OnEnumerate(kSystemClass, Objects({DeferredSystem("IO Module 04", "0"), DeferredSystem("IO Module 03 a", "1"),
                                            DeferredSystem("IO Module 03 b", "0")}));

  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);

  EXPECT_THAT(Lines(), ElementsAre(kDeferred.enter, kConnectedLine, kSuccess, "3 Instances.size() = 3",
                                   "3 ElementName_ = IO Module 03 a", "3 defered = 1"));
  EXPECT_THAT(Conversation(), ElementsAre("connect", kEnumerate, "disconnect"));
}

struct ValueRow {
  const char* value;
  int code;
};

class SwitchDeferredValue : public SwitchTest, public ::testing::WithParamInterface<ValueRow> {};

TEST_P(SwitchDeferredValue, IsReadByItsCharacters) {
  ScriptDeferred(GetParam().value);

  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), GetParam().code);

  EXPECT_EQ(Lines().back(), std::string("3 defered = ") + GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Rows, SwitchDeferredValue,
                         ::testing::Values(ValueRow{"1", 33}, ValueRow{"true", 33}, ValueRow{"2", 33},
                                           ValueRow{"0", 34}, ValueRow{"", 34}, ValueRow{"10", 34},
                                           ValueRow{"a0b", 34}));

TEST_F(SwitchChecks, ADeferredValueThatIsAbsentOrNullIsNone) {
  server.OnEnumerate(kSystemClass, Objects({IOSystem("IO Module 03")}),
                     Objects({IOSystem("IO Module 03").With("DeferredUpdateSupported", CimNull("uint16"))}));

  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 34);
  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 34);

  EXPECT_TRUE(log.Has(3, "defered = "));
}

class SwitchEhcmState : public SwitchTest, public ::testing::WithParamInterface<ValueRow> {};

TEST_P(SwitchEhcmState, OfTheFirstReadingIsReadByItsCharacters) {
  server.OnEnumerate(kSystemClass,
                     Objects({EhcmSystem("IO Module 04", "1"), EhcmSystem("IO Module 03", GetParam().value),
                              EhcmSystem("IO Module 03", "1")}));

  EXPECT_EQ(update.EHCMCheck(kBay), GetParam().code);

  EXPECT_THAT(
      Lines(),
      ElementsAre(kEhcm.enter, kConnectedLine, kSuccess, "3 EHCMInstances.size() = 3", "3 ElementName_ = IO Module 03",
                  std::string("3 EHCMState_ = ") + GetParam().value, "3 FirmwareUpdate_ = maybe",
                  GetParam().code == 0 ? "3 checkEHCMStatus() ends successfully." : "1 checking EHCM state failed."));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
  EXPECT_THAT(Conversation(), ElementsAre("connect", kEnumerate, "disconnect"));
}

INSTANTIATE_TEST_SUITE_P(Rows, SwitchEhcmState,
                         ::testing::Values(ValueRow{"1", 0}, ValueRow{"31", 0}, ValueRow{"0", 30}, ValueRow{"20", 30},
                                           ValueRow{"10", 30}, ValueRow{"", 29}, ValueRow{"3", 29},
                                           ValueRow{"ready", 29}));

class SwitchEhcmBusy : public SwitchTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(SwitchEhcmBusy, WaitsTenSecondsAndReadsAgain) {
  server.OnEnumerate(kSystemClass, Objects({EhcmSystem("IO Module 03", GetParam())}),
                     Objects({EhcmSystem("IO Module 03", "1")}));

  EXPECT_EQ(update.EHCMCheck(kBay), 0);

  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u));
  EXPECT_EQ(server.Requests().size(), 2u);
  EXPECT_THAT(log.Texts(1), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(States, SwitchEhcmBusy, ::testing::Values("2", "5", "12", "51"));

TEST_F(SwitchChecks, EhcmBusyThenReadyStepByStep) {
  const CimAnswer busy = Objects({EhcmSystem("IO Module 03", "5")});
  server.OnEnumerate(kSystemClass, busy, busy, Objects({EhcmSystem("IO Module 03", "1")}));

  EXPECT_EQ(update.EHCMCheck(kBay), 0);

  const auto reading = [](const char* connected, const char* state) {
    return std::vector<std::string>{kEhcm.enter,
                                    connected,
                                    kSuccess,
                                    "3 EHCMInstances.size() = 1",
                                    "3 ElementName_ = IO Module 03",
                                    std::string("3 EHCMState_ = ") + state,
                                    "3 FirmwareUpdate_ = maybe"};
  };
  std::vector<std::string> expected;
  for (const auto& lines : {reading(kConnectedLine, "5"),
                            reading(kAlreadyConnectedLine, "5"),
                            reading(kAlreadyConnectedLine, "1"),
                            {"3 checkEHCMStatus() ends successfully."}}) {
    expected.insert(expected.end(), lines.begin(), lines.end());
  }
  EXPECT_EQ(Lines(), expected);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u)) << "the reading that ends the wait is followed by one too";
}

TEST_F(SwitchChecks, EhcmBusyForGoodGivesUpAfter31FurtherReadings) {
  server.OnEnumerate(kSystemClass, Objects({EhcmSystem("IO Module 03", "2")}));

  EXPECT_EQ(update.EHCMCheck(kBay), 32);

  EXPECT_EQ(server.Requests().size(), 32u);
  EXPECT_EQ(clock.Sleeps(), std::vector<std::uint32_t>(31, 10000u));
  EXPECT_THAT(log.Texts(1), IsEmpty());
  EXPECT_FALSE(log.Has(3, "checkEHCMStatus() ends successfully."));
}

TEST_F(SwitchChecks, EhcmReadyAtTheLastReadingIsInTime) {
  VirtualClock late([this](std::size_t index, std::uint32_t) {
    if (index == 29) server.OnEnumerate(kSystemClass, Objects({EhcmSystem("IO Module 03", "1")}));
  });
  server.OnEnumerate(kSystemClass, Objects({EhcmSystem("IO Module 03", "2")}));

  EXPECT_EQ(update.EHCMCheck(kBay), 0);

  EXPECT_EQ(server.Requests().size(), 32u);
  EXPECT_EQ(late.Sleeps().size(), 31u);
}

/// What comes after busy readings.
struct LateFailure {
  const char* name;
  CimAnswer answer;
};

class SwitchEhcmLateFailure : public SwitchTest,
                              public ::testing::WithParamInterface<std::tuple<LateFailure, unsigned>> {};

TEST_P(SwitchEhcmLateFailure, Is32) {
  const auto& [failure, busyReadings] = GetParam();
  const CimAnswer busy = Objects({EhcmSystem("IO Module 03", "2")});
  if (busyReadings == 1) {
    server.OnEnumerate(kSystemClass, busy, failure.answer);
  } else {
    server.OnEnumerate(kSystemClass, busy, busy, failure.answer);
  }

  EXPECT_EQ(update.EHCMCheck(kBay), 32);

  EXPECT_EQ(clock.Sleeps(), std::vector<std::uint32_t>(busyReadings, 10000u));
  EXPECT_FALSE(log.Has(1, "checking EHCM state failed."));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SwitchEhcmLateFailure,
    ::testing::Combine(::testing::Values(LateFailure{"NotReady", Objects({EhcmSystem("IO Module 03", "0")})},
                                         LateFailure{"UnknownState", Objects({EhcmSystem("IO Module 03", "")})},
                                         LateFailure{"Vanished", NoObjects()},
                                         LateFailure{"CimError", CimError(2, "denied")},
                                         LateFailure{"ClosedConnection", Close()}),
                       ::testing::Values(1u, 2u)),
    [](const auto& row) { return std::string(std::get<0>(row.param).name) + std::to_string(std::get<1>(row.param)); });

TEST_F(SwitchChecks, EhcmLosingTheConnectionWhileBusyIs32) {
  server.OnEnumerate(kSystemClass, ThenRefuse(ThenClose(Objects({EhcmSystem("IO Module 03", "2")}))));

  EXPECT_EQ(update.EHCMCheck(kBay), 32);

  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 1000u, 1000u));
  EXPECT_EQ(log.Texts(1).back(), "Failed to connect to the CMM.");
}

TEST_F(SwitchChecks, NoCheckSendsProgress) {
  ScriptDeferred("1");
  update.CheckDeferedUpdateSupported(kBay);
  update.EHCMCheck(kBay);

  EXPECT_THAT(progress.texts, IsEmpty());
}

class SwitchBayInfo : public SwitchTest {
 protected:
  static CimObjectSpec BuiltImage(const std::string& id, const std::string& description, unsigned build) {
    return CimObjectSpec("CIM_SoftwareIdentity")
        .Key("InstanceID", id)
        .With("ClassificationDescriptions", CimStringArray({description}))
        .With("BuildNumber", CimUint16(build));
  }
  static CimObjectSpec StatusLink(const std::string& image, std::initializer_list<unsigned> status) {
    return CimObjectSpec(kElementIdentity)
        .Key("Antecedent", "CIM_SoftwareIdentity.InstanceID=\"" + image + "\"")
        .With("ElementSoftwareStatus", CimUint16Array(status));
  }
  /// A switch in bay 3 with these images, links to their status, and endpoints.
  void ScriptModule(const std::vector<CimObjectSpec>& images, const std::vector<CimObjectSpec>& links,
                    const std::vector<CimObjectSpec>& endpoints) {
    server.OnEnumerate("CIM_ComputerSystem", Objects({System("other", {12}), System("switch03", {12})}));
    for (const auto& [name, slot] : {std::pair("other", "0"), std::pair("switch03", "3")}) {
      server.OnAssociators(SystemPath(name), kSystemPackage, kPhysicalPackage, Objects({Package(name)}));
      server.OnAssociators(PackagePath(name), kPackageInSlot, "CIM_Slot", Objects({Slot(name, slot)}));
      server.OnAssociators(SystemPath(name), kElementIdentity, kIdentity, Objects(images));
      server.OnAssociators(SystemPath(name), kAccessPoint, kEndpoint, Objects(endpoints));
    }
    server.OnEnumerate(kElementIdentity, Objects(links));
  }
};

TEST_F(SwitchBayInfo, IsLoggedLineByLine) {
  ScriptModule(
      {BuiltImage("img-a", "Main", 11), BuiltImage("img-b", "Main", 12), BuiltImage("img-c", "Main", 13),
       BuiltImage("img-d", "The Boot ROM", 14), BuiltImage("img-e", "Main", 15)},
      {StatusLink("img-a", {4, 6}), StatusLink("img-b", {2, 4}), StatusLink("img-c", {6}), StatusLink("img-d", {2})},
      {Endpoint("eth0", "", ""), Endpoint("eth1", "10.0.0.3", ""), Endpoint("eth2", "10.0.0.4", "fe80::3"),
       Endpoint("eth3", "10.0.0.5", "fe80::4")});

  object.showBayInfo(kBay);

  EXPECT_THAT(Lines(),
              ElementsAre("3 Enter SwitchIOUpdateByCIM::showBayInfo!", "3 Inactive Main Application BuildID is 11",
                          "3 Active Main Application BuildID is12",
                          "3 ElementSoftwareStatus of firmware isn't current or fallback.",
                          "3 ElementSoftwareStatus of firmware isn't current or fallback.",
                          "3 Switch manufacture ID: switch03 maker", "3 Switch io type: switch03 product",
                          "3 l_activeMainBldId: 12", "3 bootBuildID: 14", "3 Switch part Number: switch03 part",
                          "3 Switch fru Number: switch03 sku", "3 Switch VPDID: switch03 vpd",
                          "3 Switch VPDID: switch03 pos", "3 Switch ipAddress: 10.0.0.3", "3 Switch Ipv6: fe80::3"));
  EXPECT_THAT(progress.texts, IsEmpty());
}

TEST_F(SwitchBayInfo, OfSeveralImagesOfAKindTheLastCounts) {
  ScriptModule({BuiltImage("img-a", "Main", 11), BuiltImage("img-b", "Main", 12), BuiltImage("img-c", "Boot ROM", 13),
                BuiltImage("img-d", "Boot ROM", 14)},
               {StatusLink("img-a", {2}), StatusLink("img-b", {2})}, {Endpoint("eth0", "10.0.0.3", "")});

  object.showBayInfo(kBay);

  EXPECT_TRUE(log.Has(3, "Active Main Application BuildID is11"));
  EXPECT_TRUE(log.Has(3, "Active Main Application BuildID is12"));
  EXPECT_TRUE(log.Has(3, "l_activeMainBldId: 12"));
  EXPECT_TRUE(log.Has(3, "bootBuildID: 14"));
}

TEST_F(SwitchBayInfo, WithoutAnIPv6AddressItHasNoSuchLine) {
  ScriptModule({BuiltImage("img-a", "Main", 11)}, {}, {Endpoint("eth0", "", "")});

  object.showBayInfo(kBay);

  EXPECT_EQ(Lines().back(), "3 Switch ipAddress: ");
  EXPECT_TRUE(log.Has(3, "l_activeMainBldId: "));
  EXPECT_TRUE(log.Has(3, "bootBuildID: "));
}

TEST_F(SwitchBayInfo, BayZeroIsTheModuleOfSlotZeroAndNotTheFirst) {
  ScriptModule({BuiltImage("img-a", "Main", 11)}, {}, {Endpoint("eth0", "10.0.0.3", "")});

  object.showBayInfo(0);

  EXPECT_TRUE(log.Has(3, "Switch VPDID: other vpd"));
  EXPECT_FALSE(log.Has(3, "Switch VPDID: switch03 vpd"));
}

TEST_F(SwitchBayInfo, OfTheObjectsBayStandsAtTheHeadOfEveryFlow) {
  ScriptModule({BuiltImage("img-a", "Main", 11)}, {}, {Endpoint("eth0", "10.0.0.3", "")});

  for (const auto& run : {&SwitchIOModuleUpdate::UpdateFirmware, &SwitchIOModuleUpdate::StartUpdate}) {
    const std::size_t before = Lines().size();
    EXPECT_EQ((update.*run)(), 2) << "there is no service that could install";
    const std::vector<std::string> lines = Lines();
    ASSERT_GT(lines.size(), before + 12);
    EXPECT_EQ(lines[before], "3 Enter SwitchIOUpdateByCIM::startUpdate!");
    EXPECT_EQ(lines[before + 1], "3 Enter SwitchIOUpdateByCIM::showBayInfo!");
    EXPECT_EQ(lines[before + 3], "3 Switch manufacture ID: switch03 maker");
    EXPECT_EQ(lines[before + 11], "3 Switch ipAddress: 10.0.0.3");
    EXPECT_EQ(lines[before + 12].rfind("3 SwitchIOUpdateByCIM::updateSingleFirmware", 0), 0u) << lines[before + 12];
  }
}

class SwitchBayInfoMissing : public SwitchBayInfo, public ::testing::WithParamInterface<int> {};

TEST_P(SwitchBayInfoMissing, IsOneErrorLine) {
  ScriptModule({BuiltImage("img-a", "Main", 11)}, {}, {Endpoint("eth0", "10.0.0.3", "")});

  object.showBayInfo(GetParam());

  EXPECT_THAT(Lines(), ElementsAre("3 Enter SwitchIOUpdateByCIM::showBayInfo!",
                                   "1 Failed to collect information of the switch!"));
}

INSTANTIATE_TEST_SUITE_P(Bays, SwitchBayInfoMissing, ::testing::Values(-1, 4, 99));

TEST_F(SwitchBayInfo, AnInventoryThatFailsIsTheSameLine) {
  server.OnAnything(Close());

  object.showBayInfo(kBay);

  EXPECT_EQ(Lines().back(), "1 Failed to collect information of the switch!");
}

}  // namespace
}  // namespace Orvane::testing
