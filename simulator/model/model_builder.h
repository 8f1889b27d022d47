// Turns a model document into the CIM instances of a chassis.
#pragma once

#include <memory>
#include <string>

#include "cim/object_store.h"

namespace Orvane::simulator {

/// @param file  what the messages call the document
/// @throws ModelError (file, JSON pointer, reason) for the first rule of the format that the text breaks
std::shared_ptr<const ObjectStore> BuildModel(const std::string& file, const std::string& text);

}  // namespace Orvane::simulator
