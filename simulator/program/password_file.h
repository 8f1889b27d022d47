// Reads the password of the served user from a file, so that it never stands in an argument list.
#pragma once

#include <string>

namespace Orvane::simulator {

/// The first line of the file, without its line end.
/// @throws std::runtime_error with one clear sentence when the file cannot be read, is no regular file, is readable or
/// writable by group or others, or its first line is empty. The text never holds the password.
std::string ReadPasswordFile(const std::string& path);

}  // namespace Orvane::simulator
