// Where the management module is and who asks: options first, then the environment, then, for the password, a terminal.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

namespace Orvane::cli {

struct Connection {
  std::string host;
  std::uint16_t port = 0;  ///< 0: HTTPS on 5989, then HTTP on 5988.
  std::string user;
  std::string password;
};

/// What the command line says about the connection.
struct ConnectionOptions {
  std::optional<std::string> host;
  std::optional<std::uint16_t> port;
  std::optional<std::string> user;
  std::optional<std::string> passwordFile;
  bool passwordFromStdin = false;
};

/// The world outside, so that tests need no real one.
struct Surroundings {
  /// Value of an environment variable; nothing when unset.
  std::function<std::optional<std::string>(const char* name)> environment;
  std::istream* input;
  /// Asks a person for the password; empty when no terminal is there to ask at.
  std::function<std::string(const std::string& question)> ask;
};

/// The process's own environment, standard input and terminal.
Surroundings ProcessSurroundings();

/// Completes @p options from the environment (ORVANE_HOST, ORVANE_PORT, ORVANE_USER, ORVANE_PASSWORD; empty ones count
/// as unset). A host in square brackets loses them. The password is taken from the first of: file, standard input,
/// environment, terminal.
/// @throws Failure kUsage when something is missing or no good; kInterrupted when the question was interrupted.
Connection ResolveConnection(const ConnectionOptions& options, const Surroundings& surroundings);

}  // namespace Orvane::cli
