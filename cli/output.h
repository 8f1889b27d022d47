// The JSON document that a command prints: operation, code, message, data. docs/output.schema.json describes it.
#pragma once

#include <string>

#include "cli/failure.h"
#include "cli/outcome.h"

namespace Orvane::cli {

/// The document of a command that was carried out. Valid UTF-8, whatever the chassis sent; ends with a line end.
std::string JsonText(const std::string& operation, const Outcome& outcome);

/// The document of a command that failed; its data is empty.
std::string JsonText(const std::string& operation, const Failure& failure);

}  // namespace Orvane::cli
