// The connection of the pass-through update's own client: HTTPS before HTTP, the standard ports, the attempts and the
// pauses between them, and the line of each failure.
#include <sys/resource.h>
#include <unistd.h>

#include "cmm/tests/passthru_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr char kEnter[] = "3 Enter TarnPassThruUpdate::installPackage_PassThru.";
constexpr char kConnected[] = "3 Successfully connected to host : 127.0.0.1";

class PassThruConnect : public PassThruTest {
 protected:
  explicit PassThruConnect(CimServer::Options options = HttpsServer()) : PassThruTest(std::move(options)) {
    ScriptInstall();
    ScriptJob(Job(kFlashed, 7));
  }
  int InstallAt(const std::string& host, std::uint16_t port) {
    TarnPassThruUpdate other(host, "USERID", "s3cret", port, kPackageUri, 2);
    return other.installPackage_PassThru(kTargetPassThru, kPackageUri, false);
  }
};

class PassThruConnectHttp : public PassThruConnect {
 protected:
  PassThruConnectHttp() : PassThruConnect(CimServer::Options()) {}
};

TEST_F(PassThruConnect, SpeaksTls) {
  EXPECT_EQ(Install(), 0);
  for (const CimRequest& request : server.Requests()) EXPECT_TRUE(request.tls);
}

TEST_F(PassThruConnectHttp, TakesHttpOnTheSamePortWhenTlsFails) {
  EXPECT_EQ(Install(), 0);
  const std::vector<std::string> lines = Lines();
  ASSERT_GE(lines.size(), 3U);
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 3),
              ElementsAre(kEnter,
                          "1 Pegasus CannotConnectException :Cannot connect to 127.0.0.1:" +
                              std::to_string(server.Port()) + ". Connection failed.",
                          kConnected));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000));
}

TEST_F(PassThruConnect, ARefusedPortIsTriedThreeTimesASecondApart) {
  EXPECT_EQ(InstallAt("127.0.0.1", 1), 1);
  const std::string refused = "1 Pegasus CannotConnectException :Cannot connect to 127.0.0.1:1. Connection failed.";
  EXPECT_THAT(Lines(),
              ElementsAre(kEnter, refused, refused, "sleep 1000", refused, refused, "sleep 1000", refused, refused))
      << "no line of its own for giving up";
}

TEST_F(PassThruConnect, AHostWithoutAnAddressIsTriedAsOften) {
  EXPECT_EQ(InstallAt("no such host", 5989), 1);
  const std::string unknown = "1 Pegasus InvalidLocatorException :Invalid locator: no such host:5989";
  EXPECT_THAT(Lines(),
              ElementsAre(kEnter, unknown, unknown, "sleep 1000", unknown, unknown, "sleep 1000", unknown, unknown));
}

TEST_F(PassThruConnect, AHostThatIsNoTextIsAnUnknownException) {
  EXPECT_EQ(InstallAt("\xff\xfe", 5989), 1);
  const std::vector<std::string> errors = Lines(1);
  EXPECT_EQ(errors.size(), 6U);
  EXPECT_THAT(errors, Each(StartsWith("Unknown Exception: ")));
}

// Leaves no descriptor for a socket until it goes.
class NoDescriptors {
 public:
  NoDescriptors() {
    getrlimit(RLIMIT_NOFILE, &previous_);
    const int next = dup(0);
    close(next);
    rlimit limit = previous_;
    limit.rlim_cur = static_cast<rlim_t>(next);
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &previous_); }
  NoDescriptors(const NoDescriptors&) = delete;
  NoDescriptors& operator=(const NoDescriptors&) = delete;

 private:
  rlimit previous_{};
};

TEST_F(PassThruConnect, WithoutASocketHasItsLine) {
  // The first connect loads what later ones need, for example the resolver's files.
  EXPECT_EQ(InstallAt("127.0.0.1", 1), 1);
  Lines();
  int result = 0;
  {
    const NoDescriptors limit;
    result = InstallAt("127.0.0.1", server.Port());
  }
  EXPECT_EQ(result, 1);
  EXPECT_THAT(Lines(1), Contains("Pegasus CannotCreateSocketException :Cannot create socket"));
}

TEST_F(PassThruConnect, ThatSucceedsTheThirdTimeGoesOn) {
  // A port that is free now and taken when the second pause begins.
  std::uint16_t port = 0;
  {
    const CimServer reserved(HttpsServer());
    port = reserved.Port();
  }
  std::unique_ptr<CimServer> late;
  onSleep = [&late, port](std::size_t index) {
    if (index != 1) return;
    CimServer::Options options = HttpsServer();
    options.port = port;
    late = std::make_unique<CimServer>(options);
    late->OnEnumerate(kInstallationService, CimError(1, "no"));
  };
  EXPECT_EQ(InstallAt("127.0.0.1", port), 27);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(1000, 1000));
}

TEST_F(PassThruConnect, BeforeTheMethodIsTriedThreeTimesToo) {
  // The lookup of the module ends with the server's last answer.
  server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, ThenRefuse(Objects({PassThru("module")})));
  EXPECT_EQ(Install(), 1);
  const std::vector<std::string> lines = Lines();
  const std::string refused =
      "1 Pegasus CannotConnectException :Cannot connect to 127.0.0.1:" + std::to_string(server.Port()) +
      ". Connection failed.";
  EXPECT_THAT(std::vector<std::string>(lines.end() - 8, lines.end()),
              ElementsAre(refused, refused, "sleep 1000", refused, refused, "sleep 1000", refused, refused));
  EXPECT_THAT(Invocations(), IsEmpty());
}

// The standard ports, on a loopback address of their own.

constexpr char kStandardPortsHost[] = "127.0.0.53";

CimServer::Options OnStandardPort(bool tls) {
  CimServer::Options options;
  options.address = kStandardPortsHost;
  options.port = tls ? 5989 : 5988;
  options.tls = tls;
  return options;
}

TEST_F(PassThruConnect, PortZeroIsHttpsOnItsStandardPort) {
  CimServer https(OnStandardPort(true));
  CimServer http(OnStandardPort(false));
  https.OnEnumerate(kInstallationService, CimError(1, "no"));
  EXPECT_EQ(InstallAt(kStandardPortsHost, 0), 27);
  EXPECT_TRUE(http.Requests().empty());
  EXPECT_THAT(Lines(), Contains(std::string("3 Successfully connected to host : ") + kStandardPortsHost));
}

TEST_F(PassThruConnect, PortZeroFallsBackToHttpOnItsStandardPort) {
  CimServer http(OnStandardPort(false));
  http.OnEnumerate(kInstallationService, CimError(1, "no"));
  EXPECT_EQ(InstallAt(kStandardPortsHost, 0), 27);
  EXPECT_THAT(Lines(1), ElementsAre("Pegasus CannotConnectException :Cannot connect to 127.0.0.53:5989. Connection "
                                    "failed.",
                                    "CIM_ERR_FAILED"));
}

}  // namespace
}  // namespace Orvane::testing
