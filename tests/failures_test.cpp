// What goes wrong outside the command: each cause has one clear sentence and its exit status, in every form of output.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "testing/cim_server.h"
#include "tests/json_schema.h"
#include "tests/process.h"

namespace Orvane::tests {
namespace {

using nlohmann::json;
using Orvane::testing::CimError;
using Orvane::testing::CimServer;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

using Words = std::vector<std::string>;

constexpr const char* kPassword = "s3cret";

// A port of 127.0.0.1 where nobody listens, kept by a bound socket that never listens.
class ClosedPort {
 public:
  ClosedPort() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(socket_, reinterpret_cast<const sockaddr*>(&address), size) == 0 &&
        getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
      number_ = ntohs(address.sin_port);
    }
  }
  ~ClosedPort() { close(socket_); }
  ClosedPort(const ClosedPort&) = delete;
  ClosedPort& operator=(const ClosedPort&) = delete;
  int Number() const { return number_; }

 private:
  int socket_;
  int number_ = 0;
};

Result Ask(const std::string& host, int port, Words command) {
  command.insert(command.begin(), {"--host", host, "--port", std::to_string(port), "--user", "USERID"});
  return RunOrvane({command, {{"ORVANE_PASSWORD", kPassword}}, ""});
}

void ExpectOneSentence(const Result& result, int status, const std::string& part) {
  EXPECT_EQ(result.status, status) << result.errors;
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, AllOf(HasSubstr("orvane: "), HasSubstr(part), Not(HasSubstr(kPassword))));
  EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
}

const std::vector<Words> kCommands = {{"inventory"},
                                      {"chassis"},
                                      {"cmm", "list"},
                                      {"switch", "list"},
                                      {"switch", "list", "--bay", "1"},
                                      {"passthru", "list"},
                                      {"passthru", "list", "--bay", "1"},
                                      {"bay", "type", "1"},
                                      {"bay", "same", "1"},
                                      {"equipment"}};

std::string NameOf(const ::testing::TestParamInfo<Words>& info) {
  std::string name;
  for (const std::string& word : info.param) {
    for (const char c : word) name += c == '-' ? '_' : c;
    name += '_';
  }
  return name + "x";
}

class EveryCommand : public ::testing::TestWithParam<Words> {};
INSTANTIATE_TEST_SUITE_P(Commands, EveryCommand, ::testing::ValuesIn(kCommands), NameOf);

TEST_P(EveryCommand, TellsARefusedConnection) {
  const ClosedPort port;

  ExpectOneSentence(Ask("127.0.0.1", port.Number(), GetParam()), 3,
                    "no connection to 127.0.0.1:" + std::to_string(port.Number()));
}

TEST(Ipv6, StandsInBracketsBesideAPort) {
  for (const char* host : {"::1", "[::1]"}) {
    ExpectOneSentence(Ask(host, 1, {"chassis"}), 3, "no connection to [::1]:1; is the management module up");
  }
}

TEST_P(EveryCommand, TellsANameWithoutAddress) {
  ExpectOneSentence(Ask("no-such-host.invalid", 5989, GetParam()), 3,
                    "the host name \"no-such-host.invalid\" has no address");
}

TEST_P(EveryCommand, TellsAServerThatIsNoCimServer) {
  CimServer server;
  server.OnAnything(Orvane::testing::HttpStatus(404, "Not Found"));

  ExpectOneSentence(Ask("127.0.0.1", server.Port(), GetParam()), 4, "not as a CIM server");
}

TEST_P(EveryCommand, TellsACimServerWithoutChassis) {
  CimServer server;

  ExpectOneSentence(Ask("127.0.0.1", server.Port(), GetParam()), 4, "is a CIM server, but it manages no chassis");
}

TEST_P(EveryCommand, TellsACimServerThatKnowsNoneOfTheClasses) {
  CimServer server;
  server.OnAnything(CimError(5, "CIM_ERR_INVALID_CLASS: The specified class does not exist"));

  ExpectOneSentence(Ask("127.0.0.1", server.Port(), GetParam()), 4, "is a CIM server, but it manages no chassis");
}

TEST_P(EveryCommand, TellsARefusedUser) {
  CimServer::Options options;
  options.user = "USERID";
  options.password = "another";
  CimServer server(options);

  ExpectOneSentence(Ask("127.0.0.1", server.Port(), GetParam()), 5, "refused the user \"USERID\" or the password");
}

TEST_P(EveryCommand, TellsAServerThatIsNotReady) {
  CimServer server;
  server.OnAnything(Orvane::testing::HttpStatus(503, "Service Unavailable"));

  ExpectOneSentence(Ask("127.0.0.1", server.Port(), GetParam()), 4, "is not ready");
}

TEST_P(EveryCommand, TellsAVanishingServer) {
  CimServer server;
  server.OnAnything(Orvane::testing::Close());

  ExpectOneSentence(Ask("127.0.0.1", server.Port(), GetParam()), 3, "closed the connection without an answer");
}

TEST_P(EveryCommand, PrintsOneDocumentForAFailureToo) {
  const ClosedPort port;
  Words command = GetParam();
  command.insert(command.end(), {"-o", "json"});

  const Result result = Ask("127.0.0.1", port.Number(), command);

  EXPECT_EQ(result.status, 3);
  const json document = json::parse(result.output);
  const json schema = json::parse(ReadFile(ORVANE_SOURCE_DIR "/docs/output.schema.json"));
  EXPECT_THAT(CheckSchema(schema, document), IsEmpty());
  EXPECT_NE(document["code"], 0);
  EXPECT_EQ("orvane: " + document["message"].get<std::string>() + "\n", result.errors);
}

struct OddServer {
  const char* name;
  Orvane::testing::CimAnswer answer;
  int status;
  const char* part;
};

void PrintTo(const OddServer& server, std::ostream* out) { *out << server.name; }

class OddServers : public ::testing::TestWithParam<OddServer> {};

TEST_P(OddServers, GetTheirSentence) {
  CimServer server;
  server.OnAnything(GetParam().answer);

  ExpectOneSentence(Ask("127.0.0.1", server.Port(), {"inventory"}), GetParam().status, GetParam().part);
}

INSTANTIATE_TEST_SUITE_P(
    Answers, OddServers,
    ::testing::Values(
        OddServer{"Forbidden", Orvane::testing::HttpStatus(403, "Forbidden"), 5, "refused the user"},
        OddServer{"InternalError", Orvane::testing::HttpStatus(500, "Internal Server Error"), 4, "not as a CIM server"},
        OddServer{"HtmlPage", Orvane::testing::HttpStatus(200, "OK"), 4, "not as a CIM server"},
        OddServer{"HtmlWithCimHeaders", Orvane::testing::Body("<html><body>login</body></html>"), 4,
                  "not as a CIM server"},
        OddServer{"EmptyBody", Orvane::testing::Body(""), 4, "not as a CIM server"},
        OddServer{"NoHttp", Orvane::testing::Raw("SSH-2.0-OpenSSH_9.2\r\n"), 4, "not as a CIM server"},
        OddServer{"AccessDenied", CimError(2, "CIM_ERR_ACCESS_DENIED: not for you"), 5, "refused the user"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(Failures, ACimErrorCannotForgeALineOnTheTerminal) {
  CimServer server;
  server.OnAnything(CimError(1, "first\nsecond\x1B[2J"));

  const Result result = Ask("127.0.0.1", server.Port(), {"chassis"});

  EXPECT_NE(result.status, 0);
  EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
  EXPECT_THAT(result.errors, Not(HasSubstr("\x1B")));
}

struct WrongUsage {
  const char* name;
  Invocation run;
  const char* part;
};

void PrintTo(const WrongUsage& usage, std::ostream* out) { *out << usage.name; }

class Usage : public ::testing::TestWithParam<WrongUsage> {};

TEST_P(Usage, WrongOneEndsWith2AndSaysWhatIsWrong) {
  const Result result = RunOrvane(GetParam().run);

  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, AllOf(StartsWith("orvane: "), HasSubstr(GetParam().part)));
}

const Words kAccess = {"--host", "127.0.0.1", "--port", "1", "--user", "USERID", "chassis"};

Words With(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

INSTANTIATE_TEST_SUITE_P(
    Table, Usage,
    ::testing::Values(
        WrongUsage{"NoCommand", {{}, {}, ""}, "subcommand is required"},
        WrongUsage{"UnknownCommand", {{"--simulate", "explode"}, {}, ""}, "explode"},
        WrongUsage{"HalfACommand", {{"--simulate", "cmm"}, {}, ""}, "subcommand is required"},
        WrongUsage{"NoPackage", {{"--simulate", "cmm", "update", "--yes"}, {}, ""}, "--package"},
        WrongUsage{"PasswordAsOption", {With(kAccess, {"--password", "x"}), {}, ""}, "--password"},
        WrongUsage{"NoHost", {{"chassis"}, {}, ""}, "--host"},
        WrongUsage{"NoUser", {{"--host", "127.0.0.1", "chassis"}, {}, ""}, "--user"},
        WrongUsage{"NoPassword", {kAccess, {}, ""}, "--password-file"},
        WrongUsage{"EmptyStdin", {With(kAccess, {"--password-stdin"}), {}, ""}, "standard input holds no password"},
        WrongUsage{"BadPort",
                   {{"--host", "127.0.0.1", "--port", "70000", "chassis"}, {}, ""},
                   "--port: Value 70000 not in range"},
        WrongUsage{"PortBehindTheHost",
                   {{"--host", "cmm1:5989", "chassis"}, {}, ""},
                   "the host \"cmm1:5989\" has to stand without a port; that goes to --port"},
        WrongUsage{"PortBehindAnAddress", {{"--host", "[::1]:5989", "chassis"}, {}, ""}, "without a port"},
        WrongUsage{"BadPortInEnvironment",
                   {{"--host", "127.0.0.1", "chassis"}, {{"ORVANE_PORT", "https"}}, ""},
                   "ORVANE_PORT is \"https\""},
        WrongUsage{"SimulateAndHost", {{"--simulate", "--host", "h", "chassis"}, {}, ""}, "--host"},
        WrongUsage{"BayZero", {{"--simulate", "bay", "type", "0"}, {}, ""}, "BAY"},
        WrongUsage{"BayNoNumber", {{"--simulate", "bay", "type", "one"}, {}, ""}, "BAY"},
        WrongUsage{"NoBay", {{"--simulate", "bay", "same"}, {}, ""}, "BAY"},
        WrongUsage{"UnknownKind", {{"--simulate", "equipment", "--kind", "fan"}, {}, ""}, "--kind"},
        WrongUsage{"UnknownOutput", {{"--simulate", "-o", "xml", "chassis"}, {}, ""}, "--output"},
        WrongUsage{"LogLevel5", {{"--simulate", "--log-level", "5", "chassis"}, {}, ""}, "--log-level"},
        WrongUsage{"NoModelFile", {{"--simulate=/nonexistent.json", "chassis"}, {}, ""}, "/nonexistent.json"},
        WrongUsage{"NoPasswordFile",
                   {With(kAccess, {"--password-file", "/nonexistent"}), {}, ""},
                   "/nonexistent cannot be read"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(PasswordFile, ReadableByOthersIsRefused) {
  const Folder folder;
  for (const mode_t mode : {0640U, 0604U, 0644U}) {
    const std::string file = folder.Write("password", "hidden\n", mode);

    const Result result = RunOrvane({With(kAccess, {"--password-file", file}), {}, ""});

    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, AllOf(HasSubstr(file), HasSubstr("can be read by others"), HasSubstr("chmod 600")));
    EXPECT_THAT(result.errors, Not(HasSubstr("hidden")));
  }
}

TEST(PasswordOption, IsRefusedWithoutShowingItsValue) {
  for (const Words& option : {Words{"--password", "hidden"}, Words{"--password=hidden"}}) {
    const Result result = RunOrvane({With(kAccess, option), {}, ""});

    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, AllOf(HasSubstr("\"--password\""), Not(HasSubstr("hidden"))));
  }
}

TEST(Help, GoesToStandardOutput) {
  const Result result = RunOrvane({{"--help"}, {}, ""});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  for (const char* word : {"inventory", "chassis", "cmm", "switch", "passthru", "bay", "equipment", "--simulate"}) {
    EXPECT_THAT(result.output, HasSubstr(word));
  }
}

}  // namespace
}  // namespace Orvane::tests
