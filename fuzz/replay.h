// Runs a fuzz target over a corpus folder, with any compiler.
#pragma once

#include <ostream>
#include <string>

namespace Orvane::fuzz {

/// Gives each file of a folder to LLVMFuzzerTestOneInput, in the order of their names.
/// @return 0 when all were replayed; 1, with a line about the reason, when the folder holds no file, or anything that
///         cannot be read as one: a replay of less than all would prove less than it says
int Replay(const std::string& folder, std::ostream& out, std::ostream& errors);

}  // namespace Orvane::fuzz
