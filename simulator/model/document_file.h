// Gets the text of a document that is to be checked, model or faults, out of its file.
#pragma once

#include <string>

namespace Orvane::simulator {

/// @throws ModelError naming the file when it cannot be read, holds no text or more than 64 MiB
std::string ReadDocumentFile(const std::string& path);

}  // namespace Orvane::simulator
