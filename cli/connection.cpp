// Everything that is missing is named together with both ways to give it.
#include "cli/connection.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iostream>
#include <limits>

#include "cli/failure.h"
#include "cli/password.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

[[noreturn]] void Refuse(const std::string& sentence) { throw Failure(ExitStatus::kUsage, kNoLibraryCode, sentence); }

std::optional<std::string> Given(const std::optional<std::string>& option, const char* variable,
                                 const Surroundings& surroundings) {
  if (option) return option;
  auto value = surroundings.environment(variable);
  if (value && value->empty()) value.reset();
  return value;
}

std::uint16_t ParsePort(const std::string& text) {
  unsigned value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || value > std::numeric_limits<std::uint16_t>::max()) {
    Refuse("ORVANE_PORT is \"" + Neutralise(text) + "\"; it takes a number from 0 to 65535");
  }
  return static_cast<std::uint16_t>(value);
}

std::string WithoutBrackets(const std::string& host) {
  const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
  return bracketed ? host.substr(1, host.size() - 2) : host;
}

// The usual slip. Of an address without brackets nobody can tell a port behind it; it has several colons.
bool EndsInAPort(const std::string& host) {
  return host.find("]:") != std::string::npos || std::count(host.begin(), host.end(), ':') == 1;
}

std::string ResolvePassword(const ConnectionOptions& options, const Surroundings& surroundings,
                            const Connection& connection) {
  if (options.passwordFile) return ReadPasswordFile(*options.passwordFile);
  if (options.passwordFromStdin) return ReadPasswordLine(*surroundings.input);
  if (const auto value = Given(std::nullopt, "ORVANE_PASSWORD", surroundings)) return *value;
  if (surroundings.ask) {
    return surroundings.ask("Password of " + Neutralise(connection.user) + " at " + Neutralise(connection.host) + ": ");
  }
  Refuse("no password: use --password-file, --password-stdin or ORVANE_PASSWORD");
}

}  // namespace

Surroundings ProcessSurroundings() {
  Surroundings surroundings;
  surroundings.environment = [](const char* name) -> std::optional<std::string> {
    const char* value = std::getenv(name);
    if (value == nullptr) return std::nullopt;
    return std::string(value);
  };
  surroundings.input = &std::cin;
  if (isatty(STDIN_FILENO) == 1) {
    surroundings.ask = [](const std::string& question) { return AskPassword(STDIN_FILENO, std::cerr, question); };
  }
  return surroundings;
}

Connection ResolveConnection(const ConnectionOptions& options, const Surroundings& surroundings) {
  Connection connection;
  const auto host = Given(options.host, "ORVANE_HOST", surroundings);
  if (!host || host->empty()) {
    Refuse("no host: use --host or ORVANE_HOST for a management module, or --simulate for the simulator");
  }
  // A URL may hold a password, which must not come back in a sentence about the host.
  if (host->find_first_of("/@") != std::string::npos) {
    Refuse("the host has to be a name or an address alone, without a scheme, a user or a path");
  }
  if (EndsInAPort(*host)) {
    Refuse("the host \"" + Neutralise(*host) + "\" has to stand without a port; that goes to --port or ORVANE_PORT");
  }
  connection.host = WithoutBrackets(*host);
  if (options.port) {
    connection.port = *options.port;
  } else if (const auto port = Given(std::nullopt, "ORVANE_PORT", surroundings)) {
    connection.port = ParsePort(*port);
  }
  const auto user = Given(options.user, "ORVANE_USER", surroundings);
  if (!user || user->empty()) Refuse("no user: use --user or ORVANE_USER");
  connection.user = *user;
  connection.password = ResolvePassword(options, surroundings, connection);
  return connection;
}

}  // namespace Orvane::cli
