// nginx cannot let the system pick its port and tell it, so a port that was free a moment ago is tried, and another one
// should somebody else have taken it in between.
#include "tests/nginx.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "simulator/tests/loopback_client.h"
#include "testing/certificate.h"

extern char** environ;

namespace Orvane::tests {
namespace {

constexpr auto kPatience = std::chrono::seconds(10);
constexpr auto kLookAround = std::chrono::milliseconds(5);
constexpr int kAttempts = 5;
constexpr const char* kIdlePage = "/orvane-test-connections";

// It is a server's program, so the folder may be missing from the path of a common user.
std::string FindNginx() {
  const char* const path = std::getenv("PATH");
  std::istringstream folders((path == nullptr ? std::string() : path) + ":/usr/sbin:/usr/local/sbin:/sbin");
  std::string folder;
  while (std::getline(folders, folder, ':')) {
    std::string program = folder + "/nginx";
    if (!folder.empty() && ::access(program.c_str(), X_OK) == 0) return program;
  }
  throw std::runtime_error("this test needs nginx, which is not installed: run scripts/install-dependencies test");
}

std::uint16_t FreePort() {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const anyAddress = reinterpret_cast<sockaddr*>(&address);
  const bool bound = ::bind(socket, anyAddress, size) == 0 && ::getsockname(socket, anyAddress, &size) == 0;
  ::close(socket);
  if (!bound) throw std::runtime_error("no port for nginx");
  return ntohs(address.sin_port);
}

// One process without workers, so that nothing is left when it is ended, whatever way.
std::string Configuration(const Nginx::Options& options, std::uint16_t port) {
  std::string text =
      "daemon off;\nmaster_process off;\npid nginx.pid;\nerror_log error.log info;\n"
      "events { worker_connections 256; }\n"
      "http {\n"
      "log_format proof '$connection $connection_requests $status $ssl_protocol $ssl_session_reused "
      "$sent_http_transfer_encoding $body_bytes_sent $request_time $upstream_status';\n"
      "access_log access.log proof;\n"
      "client_body_temp_path body; proxy_temp_path proxy; fastcgi_temp_path fastcgi; uwsgi_temp_path uwsgi; "
      "scgi_temp_path scgi;\n"
      "server {\n"
      "listen 127.0.0.1:" +
      std::to_string(port) + (options.tls ? " ssl" : "") + ";\n";
  if (options.tls) {
    text += "ssl_certificate certificate.pem;\nssl_certificate_key key.pem;\nssl_session_cache shared:proof:1m;\n";
    text += "ssl_protocols " + options.tlsVersions + ";\n";
  }
  text += options.server + "\nlocation = " + kIdlePage + " { stub_status; access_log off; }\n";
  text += "location / { proxy_pass " + options.upstream + "; }\n}\n}\n";
  return text;
}

std::uint64_t Milliseconds(const std::string& seconds) {
  constexpr double kPerSecond = 1000.0;
  return static_cast<std::uint64_t>(std::llround(std::stod(seconds) * kPerSecond));
}

ProxiedAnswer ReadLine(const std::string& line) {
  std::istringstream fields(line);
  ProxiedAnswer answer;
  std::string resumed;
  std::string seconds;
  fields >> answer.connection >> answer.requestOfConnection >> answer.status >> answer.tlsVersion >> resumed >>
      answer.transferEncoding >> answer.bytes >> seconds >> answer.upstreamStatus;
  if (!fields) throw std::runtime_error("not a line of nginx's log: " + line);
  answer.resumed = resumed == "r";
  answer.milliseconds = Milliseconds(seconds);
  return answer;
}

}  // namespace

Nginx::Nginx(const Options& options) : tls_(options.tls) {
  const std::string program = FindNginx();
  if (options.tls) {
    const testing::Certificate certificate = testing::MakeSelfSignedCertificate();
    folder_.Write("certificate.pem", certificate.certificatePem, 0600);
    folder_.Write("key.pem", certificate.privateKeyPem, 0600);
  }
  for (int attempt = 1;; ++attempt) {
    port_ = FreePort();
    folder_.Write("nginx.conf", Configuration(options, port_), 0600);
    Start(program);
    if (IsUp()) return;
    Stop();
    const std::string errors = ReadFile(folder_.Path("error.log"));
    if (attempt == kAttempts || errors.find("Address already in use") == std::string::npos) {
      throw std::runtime_error("nginx does not start:\n" + errors);
    }
  }
}

Nginx::~Nginx() { Stop(); }

void Nginx::Start(const std::string& program) {
  std::vector<std::string> arguments = {program, "-p", folder_.Path(""), "-c", "nginx.conf", "-e", "error.log"};
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  // Or it would keep the ports of chassis that are gone.
  ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
  const int failed = ::posix_spawn(&id_, argv[0], &actions, nullptr, argv.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::system_error(failed, std::generic_category(), "cannot start " + program);
}

// The file with its process id is written once the configuration was taken and the port is its own.
bool Nginx::IsUp() {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!std::filesystem::exists(folder_.Path("nginx.pid"))) {
    if (::waitpid(id_, nullptr, WNOHANG) == id_) {
      id_ = -1;
      return false;
    }
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(kLookAround);
  }
  return true;
}

template <typename Client>
std::string Nginx::PageOf() const {
  Client client(port_);
  client.Send(std::string("GET ") + kIdlePage + " HTTP/1.0\r\n\r\n");
  return client.ReadUntil("Waiting");
}

void Nginx::Stop() {
  if (id_ <= 0) return;
  ::kill(id_, SIGTERM);
  const auto end = std::chrono::steady_clock::now() + kPatience;
  pid_t ended = 0;
  while ((ended = ::waitpid(id_, nullptr, WNOHANG)) == 0 && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(kLookAround);
  }
  if (ended == 0) {
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
  id_ = -1;
}

bool Nginx::WaitUntilIdle() const { return WaitForPage("Active connections: 1 "); }

bool Nginx::WaitForPage(const std::string& text) const {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < end) {
    const std::string page = tls_ ? PageOf<simulator::tests::TlsClient>() : PageOf<simulator::tests::PlainClient>();
    if (page.find(text) != std::string::npos) return true;
    std::this_thread::sleep_for(kLookAround);
  }
  return false;
}

std::vector<ProxiedAnswer> Nginx::StopAndReadLog() {
  // An answer is logged a moment after its last byte has gone; the one that is written then is the page itself.
  if (!WaitForPage("Reading: 0 Writing: 1 ")) throw std::runtime_error("nginx has not done with its last request");
  Stop();
  std::istringstream lines(ReadFile(folder_.Path("access.log")));
  std::vector<ProxiedAnswer> answers;
  std::string line;
  while (std::getline(lines, line)) answers.push_back(ReadLine(line));
  return answers;
}

}  // namespace Orvane::tests
