// Which requests meet a fault: by operation, class, method, occurrence, time and state, and how they are counted.
#include "faults/fault_matcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace Orvane::simulator {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Moment kQuiet{};

FaultMatcher Matcher(const std::string& request, const std::string& when = "{}") {
  return FaultMatcher(ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[{"request":)" + request + R"(,"when":)" +
                                                   when + R"(,"effect":{"kind":"dropBeforeAnswer"}}]})"));
}

const RequestFacts kEnumerate{"EnumerateInstances", "CIM_Chassis", ""};
const RequestFacts kInstall{"InvokeMethod", "VORTA_CMMSoftwareInstallationService", "InstallFromURI"};

// The occurrences, out of so many, that meet the fault.
std::vector<int> Met(FaultMatcher& matcher, int requests, const RequestFacts& request, const Moment& moment = kQuiet) {
  std::vector<int> met;
  for (int i = 1; i <= requests; ++i) {
    if (!matcher.Meet(request, moment).empty()) met.push_back(i);
  }
  return met;
}

Moment At(ChassisState state, std::uint64_t begun, std::uint64_t ended) {
  Moment moment;
  moment.states.at(static_cast<std::size_t>(state)) = {begun, ended};
  return moment;
}

TEST(FaultMatcher, WithoutFaultsIsEmpty) {
  FaultMatcher matcher{FaultPlan()};
  EXPECT_TRUE(matcher.IsEmpty());
  EXPECT_THAT(matcher.Meet(kEnumerate, kQuiet), IsEmpty());
}

TEST(FaultMatcher, ARuleWithoutNamesFitsEveryRequest) {
  FaultMatcher matcher = Matcher("{}");
  EXPECT_FALSE(matcher.IsEmpty());
  EXPECT_EQ(matcher.Meet(kEnumerate, kQuiet).size(), 1U);
  EXPECT_EQ(matcher.Meet(kInstall, kQuiet).size(), 1U);
}

TEST(FaultMatcher, NamesMustFitInAnyCase) {
  FaultMatcher matcher = Matcher(R"({"operation":"EnumerateInstances","class":"cim_CHASSIS"})");
  EXPECT_EQ(matcher.Meet(kEnumerate, kQuiet).size(), 1U);
  EXPECT_THAT(matcher.Meet({"EnumerateInstanceNames", "CIM_Chassis", ""}, kQuiet), IsEmpty());
  EXPECT_THAT(matcher.Meet({"EnumerateInstances", "VORTA_Chassis", ""}, kQuiet), IsEmpty());
}

TEST(FaultMatcher, AMethodIsMetByItsNameAlone) {
  FaultMatcher matcher = Matcher(R"({"method":"InstallFromURI"})");
  EXPECT_EQ(matcher.Meet(kInstall, kQuiet).size(), 1U);
  EXPECT_THAT(matcher.Meet({"InvokeMethod", "VORTA_CMMComputerSystem", "RequestStateChange"}, kQuiet), IsEmpty());
}

TEST(FaultMatcher, CountsTheNthOccurrence) {
  FaultMatcher matcher = Matcher(R"({"occurrence":3})");
  EXPECT_THAT(Met(matcher, 6, kEnumerate), ElementsAre(3));
}

TEST(FaultMatcher, CountsFromTo) {
  FaultMatcher matcher = Matcher(R"({"occurrence":{"from":2,"to":4}})");
  EXPECT_THAT(Met(matcher, 6, kEnumerate), ElementsAre(2, 3, 4));
}

TEST(FaultMatcher, EveryOccurrenceIsTheDefault) {
  FaultMatcher matcher = Matcher(R"({"class":"CIM_Chassis"})");
  EXPECT_THAT(Met(matcher, 3, kEnumerate), ElementsAre(1, 2, 3));
}

TEST(FaultMatcher, OtherRequestsDoNotCount) {
  FaultMatcher matcher = Matcher(R"({"class":"CIM_Chassis","occurrence":2})");
  matcher.Meet(kInstall, kQuiet);
  EXPECT_THAT(Met(matcher, 3, kEnumerate), ElementsAre(2));
}

TEST(FaultMatcher, RequestsUnderOtherCircumstancesDoNotCount) {
  FaultMatcher matcher = Matcher(R"({"occurrence":2})", R"({"during":"jobRunning"})");
  EXPECT_THAT(Met(matcher, 5, kEnumerate), IsEmpty());
  EXPECT_THAT(Met(matcher, 3, kEnumerate, At(ChassisState::kJobRunning, 1, 0)), ElementsAre(2));
}

TEST(FaultMatcher, WaitsForItsTime) {
  FaultMatcher matcher = Matcher("{}", R"({"afterSeconds":60})");
  Moment moment;
  moment.now = seconds(60) - std::chrono::milliseconds(1);
  EXPECT_THAT(matcher.Meet(kEnumerate, moment), IsEmpty());
  moment.now = seconds(60);
  EXPECT_EQ(matcher.Meet(kEnumerate, moment).size(), 1U);
}

TEST(FaultMatcher, DuringAStateMeansThatOneHasNotEnded) {
  FaultMatcher matcher = Matcher("{}", R"({"during":"cmmRebooting"})");
  EXPECT_THAT(matcher.Meet(kEnumerate, kQuiet), IsEmpty());
  EXPECT_EQ(matcher.Meet(kEnumerate, At(ChassisState::kCmmRebooting, 1, 0)).size(), 1U);
  EXPECT_THAT(matcher.Meet(kEnumerate, At(ChassisState::kCmmRebooting, 2, 2)), IsEmpty());
  EXPECT_EQ(matcher.Meet(kEnumerate, At(ChassisState::kCmmRebooting, 3, 2)).size(), 1U);
  EXPECT_THAT(matcher.Meet(kEnumerate, At(ChassisState::kModuleRestarting, 1, 0)), IsEmpty());
}

TEST(FaultMatcher, AfterAStateMeansThatOneHasEnded) {
  FaultMatcher matcher = Matcher("{}", R"({"after":"moduleRestarting"})");
  EXPECT_THAT(matcher.Meet(kEnumerate, kQuiet), IsEmpty());
  EXPECT_THAT(matcher.Meet(kEnumerate, At(ChassisState::kModuleRestarting, 1, 0)), IsEmpty());
  EXPECT_EQ(matcher.Meet(kEnumerate, At(ChassisState::kModuleRestarting, 1, 1)).size(), 1U);
  EXPECT_EQ(matcher.Meet(kEnumerate, At(ChassisState::kModuleRestarting, 2, 1)).size(), 1U);
}

TEST(FaultMatcher, EveryFaultCountsOnItsOwn) {
  FaultMatcher matcher(ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[
      {"request":{"occurrence":2},"effect":{"kind":"dropBeforeAnswer"}},
      {"request":{"class":"CIM_Chassis","occurrence":1},"effect":{"kind":"twoPrimaries"}},
      {"request":{"occurrence":{"from":2,"to":3}},"effect":{"kind":"cmmStaysDown"}}]})"));
  EXPECT_THAT(matcher.Meet(kInstall, kQuiet), IsEmpty());
  const auto second = matcher.Meet(kEnumerate, kQuiet);
  ASSERT_EQ(second.size(), 3U);
  EXPECT_EQ(second[0]->request.from, 2U);
  EXPECT_EQ(second[1]->request.className, "CIM_Chassis");
  EXPECT_EQ(matcher.Meet(kEnumerate, kQuiet).size(), 1U);
  EXPECT_THAT(matcher.Meet(kEnumerate, kQuiet), IsEmpty());
}

TEST(FaultMatcher, CountsRequestsOfSeveralThreadsOnceEach) {
  FaultMatcher matcher = Matcher(R"({"occurrence":{"from":101,"to":250}})");
  std::vector<std::size_t> met(4);
  std::vector<std::thread> threads;
  threads.reserve(met.size());
  for (std::size_t& count : met) {
    threads.emplace_back([&matcher, &count] {
      for (int i = 0; i < 100; ++i) count += matcher.Meet(kEnumerate, kQuiet).size();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(met[0] + met[1] + met[2] + met[3], 150U);
}

TEST(FactsOfARequest, NameTheClassWhereverItStands) {
  Request request;
  request.name = "EnumerateInstances";
  request.parameters["ClassName"].className = "A";
  EXPECT_EQ(FactsOf(request).className, "A");
  EXPECT_EQ(FactsOf(request).operation, "EnumerateInstances");
  EXPECT_EQ(FactsOf(request).method, "");

  request = {};
  request.name = "GetInstance";
  request.parameters["instancename"].path = ObjectPath{"B", {}};
  EXPECT_EQ(FactsOf(request).className, "B");

  request = {};
  request.name = "Associators";
  request.parameters["ObjectName"].path = ObjectPath{"C", {}};
  request.parameters["ResultClass"].className = "X";
  EXPECT_EQ(FactsOf(request).className, "C");

  request = {};
  request.name = "ModifyInstance";
  request.parameters["ModifiedInstance"].instance = SentInstance{{"D", {}}, "D", {}};
  EXPECT_EQ(FactsOf(request).className, "D");

  request = {};
  request.name = "EnumerateInstances";
  request.parameters["ClassName"];
  EXPECT_EQ(FactsOf(request).className, "");
}

TEST(FactsOfARequest, NameMethodAndClassOfItsTarget) {
  Request request;
  request.isIntrinsic = false;
  request.name = "RequestStateChange";
  request.target.className = "E";
  const RequestFacts facts = FactsOf(request);
  EXPECT_EQ(facts.operation, "InvokeMethod");
  EXPECT_EQ(facts.className, "E");
  EXPECT_EQ(facts.method, "RequestStateChange");
}

}  // namespace
}  // namespace Orvane::simulator
