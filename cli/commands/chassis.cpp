// orvane chassis: what the chassis is.
#include "cli/commands/commands.h"
#include "cli/table.h"

namespace Orvane::cli {

Outcome RunChassis(Target& target) {
  const ChassisInfo chassis = ReadChassis(target);
  Outcome outcome;
  outcome.data["chassis"] = ToJson(chassis);
  outcome.text = FieldList({{"Name", chassis.Name},
                            {"Element name", chassis.ElementName},
                            {"Model", chassis.Model},
                            {"Part number", chassis.PartNumber},
                            {"Serial number", chassis.SerialNumber}});
  return outcome;
}

}  // namespace Orvane::cli
