// The border of the library: exported operations end in a code and a log line, whatever was thrown inside.
#pragma once

#include <string>

#include "cmm/inventory_update/cmm_log.h"

namespace Orvane {

/// The message of the exception that is being handled; call it in a catch block only.
std::string CurrentExceptionText();

/// Runs @p operation. An exception that escapes it, of a program's callback for instance, becomes a level-1 line of
/// @p kLogSource, with the name of the operation, and @p fallback.
template <typename Operation>
int ExportedCall(const char* kLogSource, const char* name, int fallback, Operation operation) noexcept {
  try {
    return operation();
  } catch (...) {
    try {
      ORVANE_LOG(kLogError) << name << " ended by an exception: " << CurrentExceptionText();
    } catch (...) {
      // Out of memory for the line: the code has to do.
    }
    return fallback;
  }
}

}  // namespace Orvane
