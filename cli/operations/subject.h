// What an operation works on, as the inventory tells it: which module it is and which versions it has.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/firmware_columns.h"
#include "cli/operations/operation.h"
#include "cli/target.h"

namespace Orvane::cli {

struct Subject {
  std::string label;                        ///< "switch in bay 3"
  std::string product;                      ///< What it is; empty when the chassis does not tell.
  std::optional<FirmwareColumns> versions;  ///< Nothing for nodes.
};

/// Looks for what @p operation works on. Texts are raw, as the chassis sent them.
/// @throws Failure kNotFound when it is not there; what Target throws when the chassis cannot be read.
Subject FindSubject(Target& target, const Operation& operation, const OperationOptions& options);

/// The versions that differ between two readings, or are equal, one line for each kind of image: ("active", "7.1 ->
/// 7.2"), ("boot", "3.2, unchanged"). Kinds without an image in either are left out. Raw texts.
std::vector<std::pair<std::string, std::string>> CompareVersions(const FirmwareColumns& before,
                                                                 const FirmwareColumns& after);

/// One line for each kind of image that is there: ("active", "7.1").
std::vector<std::pair<std::string, std::string>> ListVersions(const FirmwareColumns& versions);

bool operator==(const FirmwareColumns& one, const FirmwareColumns& other);

}  // namespace Orvane::cli
