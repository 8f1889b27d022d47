// The outcome of single requests of the pass-through reboot, reseat and verification, apart from how they are sent.
#pragma once

#include <Pegasus/Client/CIMClient.h>

#include <functional>
#include <optional>

namespace Orvane::passthru {

/// Runs the request for a state change, logs what the module said to it, and gives the operation's code.
/// @return  0  asked for, whatever the module said, also when it was gone before it could answer in time
///          4  a CIM error that has a name here, or any other error
int OutcomeOfStateChange(const std::function<Pegasus::CIMValue()>& request);

/// Looks the module up once and tells how its self test stands.
/// @return   0  completed
///          19, 20, 22, 23, 27  a CIM error of the lookup
///          24  not found
///          nothing when it is not completed yet
std::optional<int> OutcomeOfSelfTest(const std::function<Pegasus::CIMInstance()>& lookUp);

}  // namespace Orvane::passthru
