// Memory that runs out in the middle of an operation: the one failure that is no exception of the CIM client and can
// happen anywhere. Every operation ends with its code for an unexpected error, its line and a closed connection.
#include <functional>

#include "cmm/tests/inventory_fixture.h"
#include "testing/refused_memory.h"

namespace Orvane::testing {
namespace {

// Smaller allocations always succeed: the buffers of connections, the texts of log lines, the test itself.
constexpr std::size_t kBig = 256 * 1024;

using ::testing::SizeIs;

class OutOfMemory : public InventoryTest {
 protected:
  // Runs `operation` again and again, refusing its first, second, third... big allocation, until a run needs fewer.
  // `check` looks at each run that was refused one.
  void Refuse(const std::function<int()>& operation,
              const std::function<void(int, const std::vector<std::string>&)>& check) {
    constexpr int kMostRuns = 500;
    for (int spared = 0; spared < kMostRuns; ++spared) {
      const std::size_t before = log.Texts(1).size();
      RefuseMemory(kBig, spared);
      const int result = operation();
      const bool refused = StopRefusingMemory();
      ASSERT_TRUE(server.WaitUntilAllClosed());
      if (!refused) {
        EXPECT_GT(spared, 0) << "nothing was refused at all";
        return;
      }
      const std::vector<std::string> all = log.Texts(1);
      check(result, {all.begin() + static_cast<std::ptrdiff_t>(before), all.end()});
    }
    FAIL() << "no end of big allocations";
  }
  // Every refused run gives this code, and these lines first; what follows them is told of the requests thereafter.
  void ExpectEach(const std::function<int()>& operation, int code, const std::vector<std::string>& lines) {
    Refuse(operation, [&](int result, const std::vector<std::string>& logged) {
      EXPECT_EQ(result, code);
      ASSERT_GE(logged.size(), lines.size());
      EXPECT_EQ(std::vector<std::string>(logged.begin(), logged.begin() + static_cast<std::ptrdiff_t>(lines.size())),
                lines);
    });
  }

  const std::string big = std::string(4 * kBig, 'x');
};

TEST_F(OutOfMemory, IsCmmIsFalse) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29}).With("Caption", big)}));
  ExpectEach([&] { return inventory.IsCMM() ? 1 : 0; }, 0, {"Unknown Error during collectCMMData()"});
}

TEST_F(OutOfMemory, CmmCollectionEndsWithTheCodeOfThatMoment) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29}).With("Caption", big)}));
  ScriptCmm("cmm01", "1");
  CMMDataList list;
  ExpectEach([&] { return imp.collectCMMData(list); }, 0, {"Unknown Error during collectCMMData()"});
}

TEST_F(OutOfMemory, ChassisInfoGivesFour) {
  server.OnEnumerate("CIM_Chassis", Objects({CimObjectSpec("CIM_Chassis").Key("Tag", "c").With("Name", big)}));
  ChassisInfo info;
  ExpectEach([&] { return inventory.GetChassisInfo(info); }, 4, {"Unknown Error during GetChassisInfo"});
}

TEST_F(OutOfMemory, IOModulesGiveFour) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("iomodule03", {12}).With("Caption", big)}));
  ScriptIOModule("iomodule03", "3");
  CIMIODataList list;
  ExpectEach([&] { return inventory.GetIOModuleData(list); }, 4,
             {"Unknown Error during collectIOModuleData()", "func[collectIOModuleData] failed. return code: 4"});
}

TEST_F(OutOfMemory, PassThrusGiveFour) {
  server.OnEnumerate("CIM_PassThroughModule", Objects({PassThru("iomodule02").With("Caption", big)}));
  ScriptPassThru("iomodule02", "2");
  CIMIODataList list;
  ExpectEach([&] { return inventory.GetPassThruData(2, list); }, 4,
             {"Unknown Error during collectPassThruModuleData()", "collect PassThru Module Data failed. RC: 4"});
}

TEST_F(OutOfMemory, SwitchTypeGivesThree) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2").With("Caption", big)}));
  ExpectEach([&] { return inventory.GetSwitchType(2); }, 3, {"unexception  Error during getting swith type."});
}

TEST_F(OutOfMemory, SameTypeGivesFour) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("iomodule03", {12}).With("Caption", big)}));
  ScriptIOModule("iomodule03", "3");
  std::vector<int> bays;
  ExpectEach([&] { return inventory.CollectSameTypeModuleBayID(3, bays); }, 4,
             {"Unknown Error during collectIOModuleData()"});
}

TEST_F(OutOfMemory, EquipmentAndTargetEndWithNothing) {
  server.OnEnumerate("VORTA_CMMComputerSystem",
                     Objects({CimObjectSpec("VORTA_CMMComputerSystem").Key("Name", "cmm01").With("Caption", big)}));
  ExpectEach([&] { return static_cast<int>(inventory.GetManagedEquipmentInfo(0).size()); }, 0, {"std::bad_alloc"});
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29}).With("Caption", big)}));
  ExpectEach([&] { return imp.GetTargetInstance(0, 0).isUninitialized() ? 1 : 0; }, 1, {"std::bad_alloc"});
}

// The collectors make several requests: what a refusal hits decides who answers it.

TEST_F(OutOfMemory, AssociatorsThatDoNotFitReadAsNothingThere) {
  PegClientOpt session;
  ASSERT_EQ(session.Connect("127.0.0.1", server.Port(), "USERID", "s3cret"), 0);
  server.OnAssociators("", kIsSpare, kRedundancySet,
                       Objects({CimObjectSpec("CIM_RedundancySet").Key("InstanceID", "set").With("Caption", big)}));
  ExpectEach(
      [&] {
        session.Disconnect();
        if (session.ConnectOnce("127.0.0.1", server.Port(), "USERID", "s3cret", true) != 0) return -1;
        const auto objects = session.Associators("root/cimv2", Pegasus::CIMObjectPath("CIM_ComputerSystem.Name=\"a\""),
                                                 kIsSpare, kRedundancySet);
        session.Disconnect();
        return static_cast<int>(objects.size());
      },
      0, {"Unknown exception in 'Associators' operation."});
}

TEST_F(OutOfMemory, PhysicalInformationGivesFour) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("iomodule03", {12})}));
  ScriptIOModule("iomodule03", "3");
  server.OnAssociators(SystemPath("iomodule03"), kSystemPackage, kPhysicalPackage, NoObjects());
  server.OnAssociatorNames(SystemPath("iomodule03"), kSystemPackage, kPhysicalPackage,
                           Objects({Package("iomodule03")}));
  server.OnGetInstance("", Objects({Package("iomodule03").With("Caption", big)}));
  CIMIODataList list;
  ExpectEach([&] { return imp.collectIOModuleData(list); }, 0,
             {"Unknown exception occurred", "perform func[collectPhysicalInfo] failedreturn code: 4"});
}

TEST_F(OutOfMemory, FirmwareGivesFour) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  server.OnEnumerate(kInstalledIdentity, Objects({CimObjectSpec(kInstalledIdentity).With("Caption", big)}));
  CMMDataList list;
  ExpectEach([&] { return imp.collectCMMData(list); }, 4, {"Unknown exception occurred", "Collect Firmware info"});
  EXPECT_GT(list.Size(), 0U) << "the CMM stays in the list";
}

TEST_F(OutOfMemory, EndpointsGiveFour) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("iomodule03", {12})}));
  ScriptIOModule("iomodule03", "3");
  server.OnAssociators(SystemPath("iomodule03"), kAccessPoint, kEndpoint, Objects({Endpoint(big, "10.0.0.1", "")}));
  CIMIODataList list;
  bool whileReading = false;
  Refuse([&] { return imp.collectIOModuleData(list); },
         [&](int result, const std::vector<std::string>& logged) {
           EXPECT_EQ(result, 0);
           ASSERT_THAT(logged, SizeIs(2));
           if (logged[0] == "Unknown exception occurred when collecting IP Info") {
             whileReading = true;
             EXPECT_EQ(logged[1], "perform func[collectIPInfo] failedreturn code: 4");
           } else {
             EXPECT_EQ(logged[0], "Unknown exception in 'Associators' operation.");
             EXPECT_EQ(logged[1], "perform func[collectIPInfo] failedreturn code: 3");
           }
         });
  EXPECT_TRUE(whileReading);
}

}  // namespace
}  // namespace Orvane::testing
