// The built-in chassis, compiled in as the text of its JSON document, so that the simulator needs no file to start.
#pragma once

namespace Orvane::simulator {

/// The document model/built_in_model.json, NUL-terminated.
extern const char* const kBuiltInModelText;

}  // namespace Orvane::simulator
