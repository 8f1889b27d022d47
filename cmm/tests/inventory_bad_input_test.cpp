// Servers that refuse, vanish or answer nonsense: every exported operation ends with its code, closes its connection
// and loses nothing that the caller already had.
#include <atomic>
#include <csignal>
#include <functional>
#include <memory>
#include <thread>

#include "cmm/tests/inventory_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct BadAnswer {
  const char* name;
  std::function<CimAnswer()> make;
  const char* message;  ///< of the exception, as it is logged
};

std::string Envelope(const std::string& inside) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
         "<MESSAGE ID=\"@ID@\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n" +
         inside + "</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";
}

const BadAnswer kBadAnswers[] = {
    {"Http401", [] { return HttpStatus(401, "Unauthorized"); }, "HTTP Error (401 Unauthorized)."},
    {"Http403", [] { return HttpStatus(403, "Forbidden"); }, "HTTP Error (403 Forbidden)."},
    {"Http404", [] { return HttpStatus(404, "Not Found"); }, "HTTP Error (404 Not Found)."},
    {"Http500", [] { return HttpStatus(500, "Internal Server Error"); }, "HTTP Error (500 Internal Server Error)."},
    {"Http503", [] { return HttpStatus(503, "Service Unavailable"); }, "HTTP Error (503 Service Unavailable)."},
    {"EmptyBody", [] { return Body(""); }, "Expected <?xml ... ?> style declaration"},
    {"Html", [] { return Body("<html><body>Login</body></html>"); }, "Expected <?xml ... ?> style declaration"},
    {"PlainText", [] { return Body("not XML at all"); }, ""},
    {"Truncated", [] { return Body(Envelope("<IMETHODRESPONSE NAME=\"EnumerateInstances\">\n").substr(0, 170)); }, ""},
    {"TruncatedInAnInstance",
     [] {
       return Body(
           "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE "
           "ID=\"@ID@\" "
           "PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<IMETHODRESPONSE "
           "NAME=\"EnumerateInstances\">\n<IRETURNVALUE>\n<VALUE.NAMEDINSTANCE>\n<INSTANCENAME CLASSNAME=\"CIM_Ch");
     },
     ""},
    {"AnswerOfAnotherOperation",
     [] { return Body(Envelope("<IMETHODRESPONSE NAME=\"AssociatorNames\">\n</IMETHODRESPONSE>\n")); },
     "Mismatched response message type."},
    {"MethodResponse", [] { return Body(Envelope("<METHODRESPONSE NAME=\"X\">\n</METHODRESPONSE>\n")); }, ""},
    {"WrongKindInside",
     [] {
       return Body(
           Envelope("<IMETHODRESPONSE NAME=\"EnumerateInstances\">\n<IRETURNVALUE>\n<CLASS NAME=\"CIM_X\">\n</CLASS>\n"
                    "</IRETURNVALUE>\n</IMETHODRESPONSE>\n"));
     },
     "got CLASS instead"},
    {"WrongMessageId",
     [] {
       return Body(
           "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE "
           "ID=\"1\" "
           "PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<IMETHODRESPONSE NAME=\"EnumerateInstances\">\n</IMETHODRESPONSE>\n"
           "</SIMPLERSP>\n</MESSAGE>\n</CIM>\n");
     },
     "Mismatched response message ID"},
    {"NoCimOperationHeader",
     [] { return Raw("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\nContent-Length: 0\r\n\r\n"); },
     "Missing CIMOperation HTTP header"},
    {"NotHttp", [] { return Raw("220 smtp.example ESMTP ready\r\n"); }, "Malformed HTTP response message."},
    {"ClosedWithoutAnswer", [] { return Close(); }, "Connection closed by CIM Server."},
    {"ClosedInsideTheHeader", [] { return Raw("HTTP/1.1 200 OK\r\nContent-Ty"); }, ""},
};

class BadAnswers : public InventoryTest, public ::testing::WithParamInterface<BadAnswer> {};

TEST_P(BadAnswers, EndEveryOperationWithItsCode) {
  server.OnAnything(GetParam().make());
  CMMDataList cmms;
  ChassisInfo info;
  info.Name = "before";
  CIMIODataList modules;
  std::vector<int> bays{7};
  EXPECT_FALSE(inventory.IsCMM());
  EXPECT_EQ(inventory.GetCMMData(cmms), 3);
  EXPECT_EQ(inventory.GetChassisInfo(info), 3);
  const std::vector<std::string> errors = log.Texts(1);
  ASSERT_FALSE(errors.empty());
  EXPECT_THAT(errors.back(), HasSubstr(GetParam().message));
  EXPECT_FALSE(errors.back().empty());
  EXPECT_EQ(inventory.GetIOModuleData(modules), 3);
  EXPECT_EQ(inventory.GetIOModuleDataByBayID(3, modules), 3);
  EXPECT_EQ(inventory.GetPassThruData(2, modules), 2);
  EXPECT_EQ(inventory.GetSwitchType(3), 3);
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 3);
  EXPECT_EQ(inventory.GetManagedEquipmentInfo(0), "");
  EXPECT_TRUE(imp.GetTargetInstance(0, 0).isUninitialized());
  EXPECT_EQ(cmms.Size(), 0U);
  EXPECT_EQ(modules.Size(), 0U);
  EXPECT_EQ(info.Name, "before");
  EXPECT_THAT(bays, ElementsAre(7));
  EXPECT_TRUE(server.WaitUntilAllClosed()) << "no connection outlives a call";
}

INSTANTIATE_TEST_SUITE_P(Kinds, BadAnswers, ::testing::ValuesIn(kBadAnswers),
                         [](const ::testing::TestParamInfo<BadAnswer>& param) {
                           return std::string(param.param.name);
                         });

class BadInput : public InventoryTest {};

TEST_F(BadInput, RefusedConnectionGivesOneEverywhere) {
  CMMInventory nobody("127.0.0.1", 1, "USERID", "s3cret");
  CMMDataList cmms;
  ChassisInfo info;
  CIMIODataList modules;
  std::vector<int> bays;
  EXPECT_FALSE(nobody.IsCMM());
  EXPECT_EQ(nobody.GetCMMData(cmms), 1);
  EXPECT_EQ(nobody.GetChassisInfo(info), 1);
  EXPECT_EQ(nobody.GetIOModuleData(modules), 1);
  EXPECT_EQ(nobody.GetPassThruData(2, modules), 1);
  EXPECT_EQ(nobody.CollectSameTypeModuleBayID(2, bays), 1);
  EXPECT_EQ(nobody.GetSwitchType(2), 3);
  EXPECT_EQ(nobody.GetManagedEquipmentInfo(1), "");
}

TEST_F(BadInput, HostThatIsNoNameIsLoggedAsSuch) {
  CMMInventory nowhere("no such host", 5989, "USERID", "s3cret");
  ChassisInfo info;
  EXPECT_EQ(nowhere.GetChassisInfo(info), 1);
  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus InvalidLocatorException: Invalid locator: no such host:5989",
                                        "Pegasus InvalidLocatorException: Invalid locator: no such host:5989"));
}

TEST_F(BadInput, ServerThatVanishesDuringACollectionEndsIt) {
  auto doomed = std::make_unique<CimServer>(HttpsServer());
  doomed->OnEnumerate("CIM_ComputerSystem", Objects({System("iomodule03", {12})}));
  doomed->OnAssociators("", kSystemPackage, kPhysicalPackage, Hang());
  CMMInventory orphan("127.0.0.1", doomed->Port(), "USERID", "s3cret");
  CIMIODataList modules;
  int result = -1;
  std::thread collector([&] { result = orphan.GetIOModuleData(modules); });
  EXPECT_TRUE(doomed->WaitForRequests(2));
  doomed.reset();
  collector.join();
  EXPECT_EQ(result, 0) << "the module is dropped, the collection goes on";
  EXPECT_EQ(modules.Size(), 0U);
  const std::vector<std::string> errors = log.Texts(1);
  EXPECT_THAT(errors.front(), "Pegasus Exception: Connection closed by CIM Server.");
  EXPECT_THAT(errors, ::testing::Contains("perform func[collectPhysicalInfo] failedreturn code: 3"));
}

TEST_F(BadInput, SilentServerThatGivesUpEndsTheCall) {
  auto silent = std::make_unique<CimServer>(HttpsServer());
  silent->OnAnything(Hang());
  CMMInventory patient("127.0.0.1", silent->Port(), "USERID", "s3cret");
  ChassisInfo info;
  int result = -1;
  std::thread caller([&] { result = patient.GetChassisInfo(info); });
  EXPECT_TRUE(silent->WaitForRequests(1));
  silent.reset();
  caller.join();
  EXPECT_EQ(result, 3);
  EXPECT_THAT(log.Texts(1), ElementsAre("Connection closed by CIM Server."));
}

TEST_F(BadInput, ADeadConnectionRaisesNoSigpipe) {
  struct sigaction before {};
  ASSERT_EQ(sigaction(SIGPIPE, nullptr, &before), 0);
  EXPECT_EQ(before.sa_handler, SIG_DFL);
  server.OnAnything(Close());
  ChassisInfo info;
  for (int i = 0; i < 5; ++i) EXPECT_EQ(inventory.GetChassisInfo(info), 3);
  struct sigaction after {};
  ASSERT_EQ(sigaction(SIGPIPE, nullptr, &after), 0);
  EXPECT_EQ(after.sa_handler, SIG_DFL) << "the library leaves the process's handlers alone";
}

TEST_F(BadInput, DuplicateBays) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("a", {12}), System("b", {12})}));
  ScriptIOModule("a", "3");
  ScriptIOModule("b", "3");
  CIMIODataList all;
  EXPECT_EQ(inventory.GetIOModuleData(all), 0);
  EXPECT_THAT(Bays(all), ElementsAre(3, 3));
  CIMIODataList one;
  EXPECT_EQ(inventory.GetIOModuleDataByBayID(3, one), 0);
  EXPECT_THAT(Bays(one), ElementsAre(3));
  std::vector<int> bays;
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 5) << "both stand in the bay that was asked for";
}

struct NumberCase {
  const char* name;
  const char* text;
};
class SlotNumbers : public InventoryTest, public ::testing::WithParamInterface<NumberCase> {};

TEST_P(SlotNumbers, ThatAreNoNumbersDropTheModule) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("bad", {12}), System("good", {12})}));
  ScriptIOModule("bad", GetParam().text);
  ScriptIOModule("good", "4");
  CIMIODataList list;
  EXPECT_EQ(inventory.GetIOModuleData(list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(4));
  EXPECT_THAT(log.Texts(1),
              ElementsAre("Unknown exception occurred", "perform func[collectPhysicalInfo] failedreturn code: 4"));
}

INSTANTIATE_TEST_SUITE_P(Texts, SlotNumbers,
                         ::testing::Values(NumberCase{"Empty", ""}, NumberCase{"Word", "three"},
                                           NumberCase{"Trailing", "3a"}, NumberCase{"Hex", "0x3"},
                                           NumberCase{"Blank", "3 "}, NumberCase{"Decimal", "3.0"},
                                           NumberCase{"TooLarge", "2147483648"}, NumberCase{"TooSmall", "-2147483649"}),
                         [](const ::testing::TestParamInfo<NumberCase>& param) {
                           return std::string(param.param.name);
                         });

TEST_F(BadInput, SlotWithoutANumberDropsTheModule) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("bad", {12}), System("null", {12})}));
  ScriptIOModule("bad", "1");
  ScriptIOModule("null", "2");
  server.OnAssociators(PackagePath("bad"), kPackageInSlot, "CIM_Slot",
                       Objects({CimObjectSpec("CIM_Slot").Key("Tag", "x")}));
  server.OnAssociators(PackagePath("null"), kPackageInSlot, "CIM_Slot",
                       Objects({CimObjectSpec("CIM_Slot").Key("Tag", "x").With("Number", CimNull("uint16"))}));
  CIMIODataList list;
  EXPECT_EQ(inventory.GetIOModuleData(list), 0);
  EXPECT_EQ(list.Size(), 0U);
  EXPECT_EQ(log.Texts(1).size(), 4U);
}

TEST_F(BadInput, ClassifcationsThatAreNoNumbersReadMinusOne) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  server.OnAssociators(
      "", kInstalledIdentity, kIdentity,
      Objects({Image("a").With("Classifcations", "many"), Image("b").With("Classifcations", CimNull("uint16")),
               Image("c").With("Classifcations", CimUint16Array({10})), Image("d").With("Classifcations", "10")}));
  CMMDataList list;
  EXPECT_EQ(inventory.GetCMMData(list), 0);
  ASSERT_EQ(list.Size(), 1U);
  const std::vector<FirmwareIdentity>& images = list.Get(0).Firmwares;
  ASSERT_EQ(images.size(), 4U);
  EXPECT_EQ(images[0].Classifications, -1);
  EXPECT_EQ(images[1].Classifications, -1);
  EXPECT_EQ(images[2].Classifications, -1) << "an array prints with a blank behind the element";
  EXPECT_EQ(images[3].Classifications, 10);
  const std::string prefix = "bad lexical cast: source type value could not be interpreted as target. String: [";
  EXPECT_THAT(log.Texts(2), ElementsAre(prefix + "many]", prefix + "]", prefix + "10 ]"));
}

TEST_F(BadInput, TenThousandSystems) {
  std::vector<CimObjectSpec> systems;
  systems.reserve(10001);
  for (int i = 0; i < 10000; ++i)
    systems.push_back(CimObjectSpec("VORTA_ComputerSystem").Key("Name", i % 2 == 0 ? "node07" : "other"));
  server.OnEnumerate("VORTA_ComputerSystem", Objects(systems));
  std::string expected = "7";
  for (int i = 1; i < 5000; ++i) expected += ",7";
  EXPECT_EQ(inventory.GetManagedEquipmentInfo(4), expected);
  EXPECT_TRUE(log.Has(3, "the size of insts_CmptSys is 10000"));
}

struct TextCase {
  const char* name;
  std::string text;
};
class OddTexts : public InventoryTest, public ::testing::WithParamInterface<TextCase> {};

TEST_P(OddTexts, ReachTheRecordAsTheyAre) {
  const std::string& text = GetParam().text;
  server.OnEnumerate("CIM_Chassis", Objects({CimObjectSpec("CIM_Chassis")
                                                 .Key("Tag", "c")
                                                 .With("Name", text)
                                                 .With("Model", "plain")
                                                 .With("SerialNumber", text)}));
  ChassisInfo info;
  EXPECT_EQ(inventory.GetChassisInfo(info), 0);
  EXPECT_EQ(info.Name, text);
  EXPECT_EQ(info.SerialNumber, text);
  EXPECT_EQ(info.Model, "plain");
  EXPECT_THAT(log.Texts(1), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Texts, OddTexts,
                         ::testing::Values(TextCase{"Control", "a\x01\x02\t\n\r\x1b[31mb\x7f"},
                                           TextCase{"Quotes", "\"a\" 'b' <c> & \\d"},
                                           TextCase{"NonAscii", "Gehäuse Größe µ 机箱 \xF0\x9F\x94\xA7"},
                                           TextCase{"OneMegabyte", std::string(1 << 20, 'x')},
                                           TextCase{"Blanks", " two  blanks "}),
                         [](const ::testing::TestParamInfo<TextCase>& param) { return std::string(param.param.name); });

TEST_F(BadInput, OddNamesMakeTheRoundTripAsKeys) {
  const std::string name = "io\"module\\ <3> \xC3\xA4 & 'x'";
  server.OnEnumerate("CIM_ComputerSystem", Objects({System(name, {12})}));
  server.OnAssociators("", kSystemPackage, kPhysicalPackage, Objects({Package("p")}));
  server.OnAssociators("", kPackageInSlot, "CIM_Slot", Objects({Slot("s", "3")}));
  server.OnAssociators("", kElementIdentity, kIdentity, Objects({Image("i")}));
  server.OnAssociators("", kAccessPoint, kEndpoint, Objects({Endpoint("e", "10.0.0.1", "")}));
  CIMIODataList list;
  EXPECT_EQ(inventory.GetIOModuleData(list), 0);
  EXPECT_EQ(list.Size(), 1U);
  const CimPath path = System(name, {12}).Path();
  EXPECT_EQ(server.Requests().at(1).objectText, PathText(path));
}

TEST_F(BadInput, SeparateInventoriesWorkSideBySide) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  constexpr int kThreads = 4;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  std::atomic<int> good{0};
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      CMMInventory own("127.0.0.1", server.Port(), "USERID", "s3cret");
      for (int i = 0; i < 5; ++i) {
        CMMDataList list;
        if (own.GetCMMData(list) == 0 && list.Size() == 1 && list.Get(0).Name == "cmm01") ++good;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, 20);
}

}  // namespace
}  // namespace Orvane::testing
