// Turns a model document into the CIM instances of a chassis and the way it behaves.
#pragma once

#include <string>

#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {

/// @param file  what the messages call the document
/// @throws ModelError (file, JSON pointer, reason) for the first rule of the format that the text breaks
Model BuildModel(const std::string& file, const std::string& text);

}  // namespace Orvane::simulator
