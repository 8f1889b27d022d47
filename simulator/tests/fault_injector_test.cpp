// What becomes of a request that meets faults: whether it is carried out, what its answer says, how it is delivered,
// and what happens to the chassis before.
#include "faults/fault_injector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

constexpr const char* kOperation = "EnumerateInstanceNames";

// Notes what is asked of it, and how many requests had been carried out by then.
class NotingChassis : public FaultyChassis {
 public:
  explicit NotingChassis(const Operations& operations) : operations_(operations) {}

  Moment Look() override { return {}; }
  void Begin(const ChassisEffect& effect, const RequestFacts& request) override {
    begun_.push_back(std::to_string(effect.index()) + " " + request.operation + " after " +
                     std::to_string(operations_.Count(kOperation)));
  }
  void End() override { ended_.push_back(operations_.Count(kOperation)); }

  std::vector<std::string> begun_;
  std::vector<std::uint64_t> ended_;

 private:
  const Operations& operations_;
};

class Injector : public testing::Test {
 protected:
  HttpReply Answer(const std::string& effects) {
    std::string faults;
    for (std::size_t start = 0; start < effects.size();) {
      const std::size_t end = std::min(effects.find('\n', start), effects.size());
      faults += (faults.empty() ? "" : ",") + (R"({"request":{},"effect":)" + effects.substr(start, end - start)) + "}";
      start = end + 1;
    }
    FaultInjector injector(ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[)" + faults + "]}"), chassis_,
                           operations_);
    return injector.Answer(Call());
  }

  static Request Call() {
    Request request;
    request.messageId = "7";
    request.name = kOperation;
    request.nameSpace = "root/cimv2";
    request.parameters["ClassName"].className = "CIM_Chassis";
    return request;
  }

  std::uint64_t CarriedOut() const { return operations_.Count(kOperation); }

  SharedStore store_{*BuiltInModel().Contents()};
  Operations operations_{store_, "cmm"};
  NotingChassis chassis_{operations_};
  SharedStore otherStore_{*BuiltInModel().Contents()};
  const std::string undisturbed_ = Operations(otherStore_, "cmm").Answer(Call());
};

TEST_F(Injector, WithoutFaultsAnswersAsEver) {
  const HttpReply reply = Answer("");
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.body, undisturbed_);
  EXPECT_EQ(reply.delivery.form, Delivery::Form::kWhole);
  EXPECT_EQ(reply.delivery.delay, milliseconds(0));
  EXPECT_FALSE(reply.delivery.refusal.has_value());
  EXPECT_EQ(CarriedOut(), 1U);
}

TEST_F(Injector, RefusesWithoutCarryingOut) {
  const HttpReply reply = Answer(R"({"kind":"refuse","seconds":30})");
  EXPECT_EQ(reply.delivery.form, Delivery::Form::kNothing);
  EXPECT_EQ(reply.delivery.refusal, milliseconds(30000));
  EXPECT_EQ(CarriedOut(), 0U);
}

TEST_F(Injector, RefusesAfterTheAnswer) {
  const HttpReply reply = Answer(R"({"kind":"refuse","seconds":30,"answerFirst":true})");
  EXPECT_EQ(reply.body, undisturbed_);
  EXPECT_EQ(reply.delivery.form, Delivery::Form::kWhole);
  EXPECT_EQ(reply.delivery.refusal, milliseconds(30000));
  EXPECT_EQ(CarriedOut(), 1U);
}

TEST_F(Injector, CarriesOutWhatIsDroppedAfterwards) {
  EXPECT_EQ(Answer(R"({"kind":"dropBeforeAnswer"})").delivery.form, Delivery::Form::kNothing);
  EXPECT_EQ(CarriedOut(), 1U);
  const HttpReply cut = Answer(R"({"kind":"dropInAnswer","afterBytes":25})");
  EXPECT_EQ(cut.delivery.form, Delivery::Form::kCut);
  EXPECT_EQ(cut.delivery.bodyBytes, 25U);
  EXPECT_EQ(cut.body, undisturbed_);
  EXPECT_EQ(CarriedOut(), 2U);
}

TEST_F(Injector, AnswersAnHttpStatusInstead) {
  const HttpReply reply = Answer(
      R"({"kind":"httpStatus","status":503,"reason":"Busy","headers":{"Retry-After":"9","X-A":"b"},"body":"later"})");
  EXPECT_EQ(reply.status, 503);
  EXPECT_EQ(reply.reason, "Busy");
  EXPECT_THAT(reply.headers, ElementsAre(Pair("Retry-After", "9"), Pair("X-A", "b")));
  EXPECT_EQ(reply.body, "later");
  EXPECT_EQ(CarriedOut(), 0U);
}

TEST_F(Injector, AnswersACimErrorInstead) {
  const HttpReply reply = Answer(R"({"kind":"cimError","code":2,"description":"<not you>"})");
  EXPECT_EQ(reply.status, 200);
  EXPECT_THAT(reply.body, HasSubstr(R"(<ERROR CODE="2" DESCRIPTION="&lt;not you&gt;"/>)"));
  EXPECT_THAT(reply.body, HasSubstr(R"(<IMETHODRESPONSE NAME="EnumerateInstanceNames">)"));
  EXPECT_EQ(CarriedOut(), 1U);
}

TEST_F(Injector, AnswersXmlThatIsNotWellFormed) {
  const std::string body = Answer(R"({"kind":"malformedBody"})").body;
  EXPECT_THAT(body, HasSubstr("<SIMPLERSP>"));
  EXPECT_THAT(body, Not(HasSubstr("</SIMPLERSP>")));
  EXPECT_THAT(body, HasSubstr("</SIMPLEREQ>"));
  EXPECT_EQ(Answer(R"({"kind":"malformedBody","body":"<a><b></a>"})").body, "<a><b></a>");
  EXPECT_EQ(CarriedOut(), 2U);
}

TEST_F(Injector, AnswersTheBeginningOnly) {
  const HttpReply reply = Answer(R"({"kind":"truncatedBody","bytes":50})");
  EXPECT_EQ(reply.body, undisturbed_.substr(0, 50));
  EXPECT_EQ(reply.delivery.form, Delivery::Form::kWhole);
  EXPECT_EQ(CarriedOut(), 1U);
}

TEST_F(Injector, LeavesOutTheEndOfTheLastTagAtLeast) {
  EXPECT_THAT(undisturbed_, EndsWith("</CIM>\n"));
  EXPECT_EQ(Answer(R"({"kind":"truncatedBody","bytes":16777216})").body,
            undisturbed_.substr(0, undisturbed_.size() - 2));
}

TEST_F(Injector, AddsUpDelaysToABound) {
  const HttpReply reply = Answer("{\"kind\":\"delay\",\"milliseconds\":100}\n{\"kind\":\"delay\",\"milliseconds\":50}");
  EXPECT_EQ(reply.delivery.delay, milliseconds(150));
  EXPECT_EQ(reply.body, undisturbed_);
  EXPECT_EQ(
      Answer("{\"kind\":\"delay\",\"milliseconds\":600000}\n{\"kind\":\"delay\",\"milliseconds\":1}").delivery.delay,
      milliseconds(600000));
}

TEST_F(Injector, LetsTheFirstOfSeveralEffectsDecide) {
  const HttpReply reply = Answer(
      "{\"kind\":\"delay\",\"milliseconds\":100}\n{\"kind\":\"httpStatus\",\"status\":500}\n"
      "{\"kind\":\"cimError\",\"code\":1}");
  EXPECT_EQ(reply.status, 500);
  EXPECT_EQ(reply.delivery.delay, milliseconds(100));
  EXPECT_EQ(CarriedOut(), 0U);
}

TEST_F(Injector, ChangesTheChassisBeforeTheRequestAndClosesAfterIt) {
  const HttpReply reply = Answer("{\"kind\":\"twoPrimaries\"}\n{\"kind\":\"cmmStaysDown\"}");
  EXPECT_EQ(reply.body, undisturbed_);
  EXPECT_THAT(chassis_.begun_, ElementsAre(StartsWith(std::to_string(ChassisEffect(TwoPrimaries{}).index()) + " "),
                                           EndsWith(std::string(kOperation) + " after 0")));
  EXPECT_THAT(chassis_.ended_, ElementsAre(1U));
}

TEST_F(Injector, ChangesTheChassisAlsoWhenTheAnswerIsLost) {
  Answer("{\"kind\":\"dropBeforeAnswer\"}\n{\"kind\":\"twoPrimaries\"}");
  EXPECT_EQ(chassis_.begun_.size(), 1U);
  EXPECT_EQ(CarriedOut(), 1U);
}

TEST_F(Injector, LeavesTheChassisAloneForRequestsWithoutFaults) {
  FaultInjector injector(ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[
      {"request":{"occurrence":2},"effect":{"kind":"twoPrimaries"}}]})"),
                         chassis_, operations_);
  EXPECT_EQ(injector.Answer(Call()).body, undisturbed_);
  EXPECT_THAT(chassis_.begun_, IsEmpty());
}

TEST_F(Injector, CarriesOutInTheOrderInWhichItCounts) {
  FaultInjector injector(ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[
      {"request":{"occurrence":{"from":11,"to":30}},"effect":{"kind":"httpStatus","status":503}}]})"),
                         chassis_, operations_);
  std::vector<std::thread> threads;
  std::vector<int> refused(4);
  threads.reserve(refused.size());
  for (int& count : refused) {
    threads.emplace_back([&] {
      for (int i = 0; i < 10; ++i) count += injector.Answer(Call()).status == 503 ? 1 : 0;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(refused[0] + refused[1] + refused[2] + refused[3], 20);
  EXPECT_EQ(CarriedOut(), 20U);
}

}  // namespace
}  // namespace Orvane::simulator
