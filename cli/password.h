// Where a password may come from: a file only its owner can read, standard input, or a terminal without echo.
// There is no option that takes the password itself, since other users could read it in the list of processes.
#pragma once

#include <iosfwd>
#include <string>

namespace Orvane::cli {

/// The first line of @p path, without its line end.
/// @throws Failure (kUsage) when the file cannot be read, is no regular file, is readable by its group or by others,
///   or has an empty first line.
std::string ReadPasswordFile(const std::string& path);

/// The first line of @p input, without its line end.
/// @throws Failure (kUsage) when there is none or it is empty.
std::string ReadPasswordLine(std::istream& input);

/// Writes @p question to @p prompt and reads a line from the terminal @p fd with echo off. The terminal is as before
/// when this returns, also after an interruption.
/// @throws Failure kUsage when nothing was typed, kInterrupted when a signal (Ctrl-C) came.
std::string AskPassword(int fd, std::ostream& prompt, const std::string& question);

}  // namespace Orvane::cli
