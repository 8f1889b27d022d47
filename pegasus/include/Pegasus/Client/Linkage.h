// Marks what the client half of the CIM client exports from its shared library. Everything else stays hidden.
#pragma once

#include <Pegasus/Common/Config.h>

#define PEGASUS_CLIENT_LINKAGE __attribute__((visibility("default")))
