// Fault documents: what each member means, and what is said about documents that break a rule.
#include "orvane/simulator/fault_plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <variant>

#include "faults/fault.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Pair;

Fault Only(const std::string& fault) {
  const FaultPlan plan = ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[)" + fault + "]}");
  return plan.Faults().at(0);
}

Fault WithRequest(const std::string& request) {
  return Only(R"({"request":)" + request + R"(,"effect":{"kind":"dropBeforeAnswer"}})");
}

template <typename Kind>
Kind OnTheWire(const std::string& effect) {
  return std::get<Kind>(std::get<WireEffect>(Only(R"({"request":{},"effect":)" + effect + "}").effect));
}

template <typename Kind>
Kind InTheChassis(const std::string& effect) {
  return std::get<Kind>(std::get<ChassisEffect>(Only(R"({"request":{},"effect":)" + effect + "}").effect));
}

TEST(FaultPlan, IsEmptyByDefault) { EXPECT_THAT(FaultPlan().Faults(), IsEmpty()); }

TEST(FaultPlan, KeepsTheOrderOfTheDocument) {
  const FaultPlan plan = ParseFaultPlan("f.json", R"({"$schema":"x","formatVersion":1,"faults":[
          {"comment":"one","request":{"occurrence":1},"effect":{"kind":"dropBeforeAnswer"}},
          {"request":{"occurrence":2},"effect":{"kind":"dropBeforeAnswer"}}]})");
  ASSERT_EQ(plan.Faults().size(), 2U);
  EXPECT_EQ(plan.Faults()[0].request.from, 1U);
  EXPECT_EQ(plan.Faults()[1].request.from, 2U);
}

TEST(FaultPlan, ARequestWithoutMembersIsEveryRequest) {
  const Fault fault = WithRequest("{}");
  EXPECT_EQ(fault.request.operation, "");
  EXPECT_EQ(fault.request.className, "");
  EXPECT_EQ(fault.request.method, "");
  EXPECT_EQ(fault.request.from, 1U);
  EXPECT_EQ(fault.request.to, UINT64_MAX);
  EXPECT_EQ(fault.when.after, milliseconds(0));
  EXPECT_FALSE(fault.when.during.has_value());
  EXPECT_FALSE(fault.when.afterState.has_value());
}

TEST(FaultPlan, ReadsWhichRequestIsMeant) {
  const Fault fault = WithRequest(R"({"operation":"EnumerateInstances","class":"cim_chassis","occurrence":3})");
  EXPECT_EQ(fault.request.operation, "EnumerateInstances");
  EXPECT_EQ(fault.request.className, "cim_chassis");
  EXPECT_EQ(fault.request.from, 3U);
  EXPECT_EQ(fault.request.to, 3U);
}

TEST(FaultPlan, AMethodImpliesTheOperation) {
  const Fault fault = WithRequest(R"({"method":"InstallFromURI","occurrence":{"from":2,"to":4}})");
  EXPECT_EQ(fault.request.operation, "InvokeMethod");
  EXPECT_EQ(fault.request.method, "InstallFromURI");
  EXPECT_EQ(fault.request.from, 2U);
  EXPECT_EQ(fault.request.to, 4U);
}

TEST(FaultPlan, EveryOccurrenceCanBeSaidInWords) {
  const Fault fault = WithRequest(R"({"occurrence":"every"})");
  EXPECT_EQ(fault.request.from, 1U);
  EXPECT_EQ(fault.request.to, UINT64_MAX);
}

TEST(FaultPlan, ReadsTheCircumstances) {
  const auto when = [](const std::string& text) {
    return Only(R"({"request":{},"effect":{"kind":"dropBeforeAnswer"},"when":)" + text + "}").when;
  };
  EXPECT_EQ(when(R"({"afterSeconds":60})").after, seconds(60));
  EXPECT_EQ(when(R"({"during":"jobRunning"})").during, ChassisState::kJobRunning);
  EXPECT_EQ(when(R"({"after":"cmmRebooting"})").afterState, ChassisState::kCmmRebooting);
  EXPECT_EQ(when(R"({"during":"moduleRestarting"})").during, ChassisState::kModuleRestarting);
}

TEST(FaultPlan, ReadsTheEffectsOnTheWire) {
  const auto refuse = OnTheWire<Refuse>(R"({"kind":"refuse","seconds":7,"answerFirst":true})");
  EXPECT_EQ(refuse.duration, seconds(7));
  EXPECT_TRUE(refuse.answerFirst);
  EXPECT_FALSE(OnTheWire<Refuse>(R"({"kind":"refuse","seconds":7})").answerFirst);
  OnTheWire<DropBeforeAnswer>(R"({"kind":"dropBeforeAnswer"})");
  EXPECT_EQ(OnTheWire<DropInAnswer>(R"({"kind":"dropInAnswer","afterBytes":9})").bodyBytes, 9U);
  EXPECT_EQ(OnTheWire<Delay>(R"({"kind":"delay","milliseconds":250})").duration, milliseconds(250));
  const auto status = OnTheWire<AnswerHttpStatus>(
      R"({"kind":"httpStatus","status":503,"reason":"Busy","headers":{"Retry-After":"9"},"body":"<html/>"})");
  EXPECT_EQ(status.status, 503);
  EXPECT_EQ(status.reason, "Busy");
  EXPECT_THAT(status.headers, ElementsAre(Pair("Retry-After", "9")));
  EXPECT_EQ(status.body, "<html/>");
  const auto error = OnTheWire<AnswerCimError>(R"({"kind":"cimError","code":2,"description":"no"})");
  EXPECT_EQ(error.code, 2);
  EXPECT_EQ(error.description, "no");
  EXPECT_EQ(OnTheWire<MalformedBody>(R"({"kind":"malformedBody","body":"<"})").text, "<");
  EXPECT_FALSE(OnTheWire<MalformedBody>(R"({"kind":"malformedBody"})").text.has_value());
  EXPECT_EQ(OnTheWire<TruncatedBody>(R"({"kind":"truncatedBody","bytes":40})").bytes, 40U);
}

TEST(FaultPlan, ReadsTheEffectsOnTheChassis) {
  EXPECT_TRUE(InTheChassis<JobStuck>(R"({"kind":"jobStuck","state":"new"})").inNew);
  EXPECT_FALSE(InTheChassis<JobStuck>(R"({"kind":"jobStuck","state":"running"})").inNew);
  EXPECT_FALSE(InTheChassis<JobStuck>(R"({"kind":"jobStuck"})").inNew);
  InTheChassis<JobVanished>(R"({"kind":"jobVanished"})");
  EXPECT_EQ(InTheChassis<JobFails>(R"({"kind":"jobFails","text":"File does not exist"})").text, "File does not exist");
  InTheChassis<CmmStaysDown>(R"({"kind":"cmmStaysDown"})");
  InTheChassis<TwoPrimaries>(R"({"kind":"twoPrimaries"})");
  const auto gone = InTheChassis<TargetGone>(R"({"kind":"targetGone","target":"passThru","bay":4})");
  EXPECT_EQ(gone.kind, TargetKind::kPassThru);
  EXPECT_EQ(gone.bay, 4U);
  for (const auto& [name, kind] : {std::pair("cmm", TargetKind::kCmm), std::pair("switch", TargetKind::kSwitch),
                                   std::pair("node", TargetKind::kNode)}) {
    EXPECT_EQ(InTheChassis<TargetGone>(R"({"kind":"targetGone","bay":1,"target":")" + std::string(name) + "\"}").kind,
              kind);
  }
}

TEST(FaultPlan, HasABoundForWhatGoesIntoTheHead) {
  constexpr std::size_t kLongest = 16384;
  const auto plan = [](const std::string& reason, const std::string& name, const std::string& content) {
    return R"({"formatVersion":1,"faults":[{"request":{},"effect":{"kind":"httpStatus","status":500,"reason":")" +
           reason + R"(","headers":{")" + name + R"(":")" + content + R"("}}}]})";
  };
  const std::string longest(kLongest, 'x');
  EXPECT_EQ(ParseFaultPlan("f.json", plan(longest, longest, longest)).Faults().size(), 1U);
  for (const std::string& text :
       {plan(longest + "x", "X", ""), plan("", longest + "x", ""), plan("", "X", longest + "x")}) {
    try {
      ParseFaultPlan("f.json", text);
      FAIL() << "was taken";
    } catch (const ModelError& error) {
      EXPECT_THAT(error.what(), EndsWith(": must not be longer than 16384 bytes"));
    }
  }
}

struct BadPlan {
  const char* name;
  /// The document; one that begins with an element of "faults" stands for a whole one around it.
  const char* text;
  const char* reason;
};

void PrintTo(const BadPlan& bad, std::ostream* out) { *out << bad.name; }

class BadFaultPlan : public testing::TestWithParam<BadPlan> {};

TEST_P(BadFaultPlan, NamesDocumentPointerAndReason) {
  try {
    ParseFaultPlan("f.json", GetParam().text);
    FAIL() << "was taken";
  } catch (const ModelError& error) {
    EXPECT_EQ(error.what(), std::string("f.json: ") + GetParam().reason);
  }
}

#define FAULTS(text) "{\"formatVersion\":1,\"faults\":[" text "]}"
#define REQUEST(text) FAULTS("{\"request\":" text ",\"effect\":{\"kind\":\"twoPrimaries\"}}")
#define EFFECT(text) FAULTS("{\"request\":{},\"effect\":" text "}")

constexpr BadPlan kBadPlans[] = {
    {"NoObject", "[]", "/: must be an object"},
    {"NoVersion", R"({"faults":[]})", R"(/: the member "formatVersion" is missing)"},
    {"OtherVersion", R"({"formatVersion":2,"faults":[]})", "/formatVersion: must be from 1 to 1"},
    {"NoFaults", R"({"formatVersion":1})", R"(/: the member "faults" is missing)"},
    {"UnknownMember", R"({"formatVersion":1,"faults":[],"fault":1})", "/fault: unknown member"},
    {"FaultsNoArray", R"({"formatVersion":1,"faults":{}})", "/faults: must be an array"},
    {"FaultNoObject", FAULTS("7"), "/faults/0: must be an object"},
    {"NoRequest", FAULTS(R"({"effect":{"kind":"twoPrimaries"}})"), R"(/faults/0: the member "request" is missing)"},
    {"NoEffect", FAULTS(R"({"request":{}})"), R"(/faults/0: the member "effect" is missing)"},
    {"SecondFault", FAULTS(R"({"request":{},"effect":{"kind":"twoPrimaries"}},{"request":{},"efect":{}})"),
     "/faults/1/efect: unknown member"},
    {"TwinMember", FAULTS(R"({"request":{},"request":{}})"), "/faults/0/request: stands twice in one object"},
    {"CommentNoText", FAULTS(R"({"comment":1,"request":{},"effect":{"kind":"twoPrimaries"}})"),
     "/faults/0/comment: must be a string"},
    {"UnknownOperation", REQUEST(R"({"operation":"DeleteInstance"})"),
     "/faults/0/request/operation: the operation 'DeleteInstance' is not known"},
    {"UnknownClass", REQUEST(R"({"class":"CIM_Chasis"})"),
     "/faults/0/request/class: the class 'CIM_Chasis' is not known"},
    {"ClassOfTwoLines", REQUEST(R"({"class":"a\r\nb\u0000c\u007f"})"),
     R"(/faults/0/request/class: the class 'a\u000D\u000Ab\u0000c\u007F' is not known)"},
    {"MemberOfTwoLines", REQUEST(R"({"a\nb":1})"), R"(/faults/0/request/a\u000Ab: unknown member)"},
    {"UnknownMethod", REQUEST(R"({"method":"InstallFromUri2"})"),
     "/faults/0/request/method: no class has the method 'InstallFromUri2'"},
    {"MethodOfAnotherClass", REQUEST(R"({"class":"CIM_Chassis","method":"InstallFromURI"})"),
     "/faults/0/request/method: the class 'CIM_Chassis' does not have the method 'InstallFromURI'"},
    {"MethodOfAnotherOperation", REQUEST(R"({"operation":"GetInstance","method":"InstallFromURI"})"),
     "/faults/0/request/method: only requests of the operation InvokeMethod have a method"},
    {"OccurrenceZero", REQUEST(R"({"occurrence":0})"), "/faults/0/request/occurrence: must be from 1 to 1000000"},
    {"OccurrenceInOtherWords", REQUEST(R"({"occurrence":"all"})"),
     R"(/faults/0/request/occurrence: must be a number, "every", or an object with "from" and "to")"},
    {"OccurrenceNoNumber", REQUEST(R"({"occurrence":1.5})"), "/faults/0/request/occurrence: must be an integer"},
    {"OccurrenceWithoutEnd", REQUEST(R"({"occurrence":{"from":1}})"),
     R"(/faults/0/request/occurrence: the member "to" is missing)"},
    {"OccurrenceBackwards", REQUEST(R"({"occurrence":{"from":3,"to":2}})"),
     R"(/faults/0/request/occurrence/to: must not be below "from")"},
    {"UnknownState", FAULTS(R"({"request":{},"when":{"during":"sleeping"},"effect":{"kind":"twoPrimaries"}})"),
     "/faults/0/when/during: must be one of jobRunning, cmmRebooting, moduleRestarting"},
    {"UnknownKind", EFFECT(R"({"kind":"explode"})"),
     "/faults/0/effect/kind: must be one of refuse, dropBeforeAnswer, dropInAnswer, delay, httpStatus, cimError, "
     "malformedBody, truncatedBody, jobStuck, jobVanished, jobFails, cmmStaysDown, twoPrimaries, targetGone"},
    {"EffectNoObject", EFFECT(R"("refuse")"), "/faults/0/effect: must be an object"},
    {"NoKind", EFFECT("{}"), R"(/faults/0/effect: the member "kind" is missing)"},
    {"MemberOfAnotherKind", EFFECT(R"({"kind":"refuse","seconds":1,"status":503})"),
     "/faults/0/effect/status: unknown member"},
    {"RefusalWithoutEnd", EFFECT(R"({"kind":"refuse"})"), R"(/faults/0/effect: the member "seconds" is missing)"},
    {"DelayTooLong", EFFECT(R"({"kind":"delay","milliseconds":600001})"),
     "/faults/0/effect/milliseconds: must be from 1 to 600000"},
    {"StatusTooLow", EFFECT(R"({"kind":"httpStatus","status":199})"),
     "/faults/0/effect/status: must be from 200 to 599"},
    {"ReasonOfTwoLines", EFFECT(R"({"kind":"httpStatus","status":500,"reason":"a\r\nb"})"),
     "/faults/0/effect/reason: must not hold control characters"},
    {"HeaderOfTwoLines", EFFECT(R"({"kind":"httpStatus","status":500,"headers":{"A":"a\nb"}})"),
     "/faults/0/effect/headers/A: must not hold control characters"},
    {"HeaderWithoutName", EFFECT(R"({"kind":"httpStatus","status":500,"headers":{"":"a"}})"),
     "/faults/0/effect/headers/: is no name of a header"},
    {"HeaderWithABlank", EFFECT(R"({"kind":"httpStatus","status":500,"headers":{"A b":"a"}})"),
     "/faults/0/effect/headers/A b: is no name of a header"},
    {"HeaderOfTheServer", EFFECT(R"({"kind":"httpStatus","status":500,"headers":{"content-length":"7"}})"),
     "/faults/0/effect/headers/content-length: is a header that the server sets itself"},
    {"NegativeBytes", EFFECT(R"({"kind":"truncatedBody","bytes":-1})"),
     "/faults/0/effect/bytes: must be from 0 to 16777216"},
    {"NoText", EFFECT(R"({"kind":"jobFails","text":""})"), "/faults/0/effect/text: must not be empty"},
    {"StuckInNoState", EFFECT(R"({"kind":"jobStuck","state":"ended"})"),
     "/faults/0/effect/state: must be one of new, running"},
    {"UnknownTarget", EFFECT(R"({"kind":"targetGone","target":"fan","bay":1})"),
     "/faults/0/effect/target: must be one of cmm, switch, passThru, node"},
    {"NoBay", EFFECT(R"({"kind":"targetGone","target":"cmm","bay":0})"), "/faults/0/effect/bay: must be from 1 to 99"},
};

#undef EFFECT
#undef REQUEST
#undef FAULTS

INSTANTIATE_TEST_SUITE_P(Documents, BadFaultPlan, testing::ValuesIn(kBadPlans),
                         [](const testing::TestParamInfo<BadPlan>& bad) { return bad.param.name; });

}  // namespace
}  // namespace Orvane::simulator
