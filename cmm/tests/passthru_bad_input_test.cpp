// Pass-through updates under bad conditions: odd URIs and bays, wrong credentials, callbacks that are missing or throw,
// a CMM that restarts, copies, and threads. Each ends in a code and a line, and leaves nothing open.
#include <stdexcept>
#include <thread>

#include "cmm/tests/passthru_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class PassThruBadInput : public PassThruTest {
 protected:
  PassThruBadInput() {
    ScriptInstall();
    ScriptJob(Job(kFlashed, 7));
    server.OnInvoke("RequestStateChange", MethodResult(Uint32Value(0)));
    server.OnEnumerate(kCapabilities, Objects({Capabilities({11, 32769})}));
  }
};

struct UriCase {
  const char* name;
  std::string uri;
};
class PassThruUri : public PassThruBadInput, public ::testing::WithParamInterface<UriCase> {};

TEST_P(PassThruUri, IsSentAsItIs) {
  SwitchPassThruUpdate odd("127.0.0.1", "USERID", "s3cret", server.Port(), GetParam().uri, 2);
  EXPECT_EQ(odd.StartUpdate(), 0);
  ASSERT_EQ(Invocations().size(), 1U);
  EXPECT_EQ(Invocations()[0].arguments[0].values, std::vector<std::string>{GetParam().uri});
}

INSTANTIATE_TEST_SUITE_P(Uris, PassThruUri,
                         ::testing::Values(UriCase{"Empty", ""}, UriCase{"Long", std::string(65536, 'u')},
                                           UriCase{"Markup", "http://h/a?b=1&c=<2>\"'"},
                                           UriCase{"Blank", "  no uri at all "}, UriCase{"Utf8", "http://h/\xC3\xA9"}),
                         [](const auto& param) { return param.param.name; });

TEST_F(PassThruBadInput, AUriThatIsNoTextEndsWith212) {
  SwitchPassThruUpdate odd("127.0.0.1", "USERID", "s3cret", server.Port(), "\xff\xfe", 2);
  EXPECT_EQ(odd.StartUpdate(), 212);
  EXPECT_THAT(Lines(1), Contains(HasSubstr("unknown error happened when invokeMethod ")));
  EXPECT_THAT(Invocations(), IsEmpty());
}

TEST_F(PassThruBadInput, OddBaysHoldNoModule) {
  for (const int bay : {0, -1, 99}) {
    SwitchPassThruUpdate odd("127.0.0.1", "USERID", "s3cret", server.Port(), kPackageUri, bay);
    EXPECT_EQ(odd.StartUpdate(), 24) << bay;
    EXPECT_EQ(odd.Reboot(bay), 24) << bay;
    EXPECT_EQ(odd.Reseat(bay), 24) << bay;
    EXPECT_EQ(odd.CheckIfRebootSuccess(bay), 24) << bay;
  }
  EXPECT_THAT(Invocations(), IsEmpty());
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(PassThruBadInput, ABayWithASwitchHoldsNoModule) {
  server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, NoObjects());
  server.OnAssociators(PackagePath("p"), kSystemPackage, "CIM_ComputerSystem", Objects({System("switch", {12})}));
  EXPECT_EQ(update.StartUpdate(), 24);
  EXPECT_EQ(update.Reboot(2), 24);
  EXPECT_EQ(update.Reseat(2), 24);
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 24);
  EXPECT_THAT(Invocations(), IsEmpty());
}

// Credentials.

class PassThruPassword : public PassThruTest {
 protected:
  PassThruPassword() : PassThruTest(Guarded()) {
    ScriptInstall();
    ScriptJob(Job(kFlashed, 7));
  }
  static CimServer::Options Guarded() {
    CimServer::Options options = HttpsServer();
    options.user = "USERID";
    options.password = "s3cret";
    return options;
  }
};

TEST_F(PassThruPassword, ThatIsRightWorksOnEveryConnection) {
  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_EQ(Invocations().size(), 1U);
}

TEST_F(PassThruPassword, ThatIsWrongEndsBeforeAnythingIsAskedForAndStaysSecret) {
  WatchEverything();
  SwitchPassThruUpdate wrong("127.0.0.1", "USERID", "wr0ng-word", server.Port(), kPackageUri, 2);
  EXPECT_EQ(wrong.StartUpdate(), 24) << "the bay cannot be read";
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(lines, Contains("1 Error happened when getPassThruData."));
  EXPECT_THAT(lines, Contains("1 unknown error happened when enumerate Instance"));
  EXPECT_THAT(lines, Contains("3 Don't find targetinstance for switch."));
  EXPECT_THAT(lines, Each(Not(HasSubstr("wr0ng-word"))));
  EXPECT_EQ(wrong.Reboot(2), 24);
  EXPECT_EQ(wrong.Reseat(2), 24);
  EXPECT_EQ(wrong.CheckIfRebootSuccess(2), 24);
  EXPECT_THAT(Invocations(), IsEmpty());
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(PassThruBadInput, APasswordThatChangesWhilePollingEndsTheUpdate) {
  server.OnEnumerate(kConcreteJob, Objects({Job(kStarted, 4)}), HttpStatus(401, "Unauthorized"));
  EXPECT_EQ(update.StartUpdate(), 212);
  EXPECT_THAT(Lines(1), ElementsAre("Error happened when getPassThruData.",
                                    "unknown error happened when invokeMethod HTTP Error (401 Unauthorized).",
                                    "PassThru update failed and the return code message is CMM Method Invocation "
                                    "Error occurred"));
}

TEST_F(PassThruBadInput, ACmmThatRestartsWhilePollingEndsTheUpdateAndTheNextOneWorks) {
  server.OnEnumerate(kConcreteJob, Objects({Job(kStarted, 4)}), Close(), Objects({Job(kFlashed, 7)}));
  EXPECT_EQ(update.StartUpdate(), 212);
  EXPECT_THAT(Lines(1), Contains("unknown error happened when invokeMethod Connection closed by CIM Server."));
  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_THAT(Lines(1), ElementsAre("Error happened when getPassThruData."))
      << "the call before left nothing connected";
}

TEST_F(PassThruBadInput, ACmmThatIsAwayGivesOneForEverythingThatGetsSoFar) {
  SwitchPassThruUpdate nobody("127.0.0.1", "USERID", "s3cret", 1, kPackageUri, 2);
  EXPECT_EQ(nobody.StartUpdate(), 1);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(1000, 1000));
  EXPECT_EQ(nobody.Reboot(2), 24) << "the lookup of the bay keeps its errors to itself";
  EXPECT_EQ(nobody.CheckIfRebootSuccess(2), 24);
}

TEST_F(PassThruBadInput, AnObjectMayGoRightAfterAFailedCall) {
  server.OnInvoke("InstallFromURI", CimError(12, "no"));
  {
    SwitchPassThruUpdate brief("127.0.0.1", "USERID", "s3cret", server.Port(), kPackageUri, 2);
    EXPECT_EQ(brief.StartUpdate(), 212);
  }
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

// Callbacks.

TEST_F(PassThruBadInput, WithoutACallbackTextsAreDropped) {
  update.SetLogCallBack(nullptr);
  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_EQ(update.Reboot(2), 0);
  EXPECT_EQ(update.Reseat(2), 0);
  server.OnInvoke("InstallFromURI", CimError(12, "no"));
  EXPECT_EQ(update.StartUpdate(), 212);
  EXPECT_THAT(Lines(), Each(Not(HasSubstr("callback"))));
  SwitchPassThruUpdate fresh("127.0.0.1", "USERID", "s3cret", server.Port(), kPackageUri, 2);
  EXPECT_EQ(fresh.Reboot(2), 0);
}

/// Throws at one text.
class ThrowingCallBack : public LogMessageCallBack {
 public:
  explicit ThrowingCallBack(std::string text) : text_(std::move(text)) {}
  void OnMessage(const std::string& message) override {
    if (message == text_) throw std::runtime_error("callback gave up");
  }

 private:
  std::string text_;
};

struct CallBackCase {
  const char* name;
  const char* text;
  const char* line;
};
class PassThruThrowingCallBack : public PassThruBadInput, public ::testing::WithParamInterface<CallBackCase> {};

TEST_P(PassThruThrowingCallBack, EndsTheUpdateWith212AndALine) {
  server.OnInvoke("InstallFromURI", CimError(12, "no"));  // for the text that only a failure sends
  ThrowingCallBack callback(GetParam().text);
  update.SetLogCallBack(&callback);
  EXPECT_EQ(update.StartUpdate(), 212);
  EXPECT_THAT(Lines(1), Contains(GetParam().line));
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

constexpr char kAtBorder[] = "SwitchPassThruUpdate::StartUpdate ended by an exception: callback gave up";
constexpr char kInside[] = "unknown error happened when invokeMethod callback gave up";
INSTANTIATE_TEST_SUITE_P(Texts, PassThruThrowingCallBack,
                         ::testing::Values(CallBackCase{"Start", "start update pass-through switch", kAtBorder},
                                           CallBackCase{"Install", "start install package", kAtBorder},
                                           CallBackCase{"Apply", "apply update package", kInside},
                                           CallBackCase{"Firmware", "start updating switch firmware!", kInside},
                                           CallBackCase{"Complete", "Complete install package on pass-through switch",
                                                        kInside}),
                         [](const auto& param) { return param.param.name; });

TEST_F(PassThruBadInput, ACallbackThatThrowsEndsAStateChangeWithFour) {
  ThrowingCallBack reboot("start reboot pass-through switch");
  update.SetLogCallBack(&reboot);
  EXPECT_EQ(update.Reboot(2), 4);
  EXPECT_EQ(Lines().back(), "1 SwitchPassThruUpdate::Reboot ended by an exception: callback gave up");
  ThrowingCallBack reseat("Start reseat pass-through switch");
  update.SetLogCallBack(&reseat);
  EXPECT_EQ(update.Reseat(2), 4);
  EXPECT_EQ(Lines().back(), "1 SwitchPassThruUpdate::Reseat ended by an exception: callback gave up");
  EXPECT_THAT(Invocations(), IsEmpty());
}

TEST_F(PassThruBadInput, AWaitThatThrowsEndsTheCheckWithSixteen) {
  onSleep = [](std::size_t) { throw 42; };
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 16);
  EXPECT_EQ(Lines().back(),
            "1 SwitchPassThruUpdate::CheckIfRebootSuccess ended by an exception: exception of an unknown type");
}

// Copies and threads.

TEST_F(PassThruBadInput, CopiesShareOneObjectAndItIsFreedOnce) {
  auto original =
      std::make_unique<SwitchPassThruUpdate>("127.0.0.1", "USERID", "s3cret", server.Port(), kPackageUri, 2);
  SwitchPassThruUpdate copy(*original);
  SwitchPassThruUpdate assigned("127.0.0.1", "other", "other", 1, "other", 99);
  assigned = *original;
  assigned = *&assigned;
  EXPECT_EQ(original->StartUpdate(), 0);
  original.reset();
  EXPECT_EQ(copy.StartUpdate(), 0);
  assigned.SetLogCallBack(this);
  Lines();
  EXPECT_EQ(copy.StartUpdate(), 0);
  EXPECT_THAT(Lines(), Contains("callback start update pass-through switch")) << "set on one, called for the other";
  ASSERT_EQ(Invocations().size(), 3U);
  EXPECT_EQ(Invocations()[1].arguments.size(), 8U);
  EXPECT_EQ(Invocations()[2].arguments.size(), 12U);
}

TEST_F(PassThruBadInput, TwoObjectsWorkOnTwoThreads) {
  const auto updateOften = [this](const std::string& uri) {
    for (int i = 0; i < 5; ++i) {
      SwitchPassThruUpdate own("127.0.0.1", "USERID", "s3cret", server.Port(), uri, 2);
      EXPECT_EQ(own.StartUpdate(), 0);
      EXPECT_EQ(own.Reboot(2), 0);
    }
  };
  std::thread first(updateOften, "http://first");
  std::thread second(updateOften, "http://second");
  first.join();
  second.join();
  EXPECT_EQ(Invocations().size(), 20U);
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

}  // namespace
}  // namespace Orvane::testing
