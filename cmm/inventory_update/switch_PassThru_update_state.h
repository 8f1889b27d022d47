// The outcome of the request of a pass-through reboot or reseat, apart from how it is sent.
#pragma once

#include <Pegasus/Client/CIMClient.h>

#include <functional>

namespace Orvane::passthru {

/// Runs the request for a state change, logs what the module said to it, and gives the operation's code.
/// @return  0  asked for, whatever the module said, also when it was gone before it could answer in time
///          4  a CIM error that has a name here, or any other error
int OutcomeOfStateChange(const std::function<Pegasus::CIMValue()>& request);

}  // namespace Orvane::passthru
