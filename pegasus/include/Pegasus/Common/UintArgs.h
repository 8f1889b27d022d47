// Declares the optional numbers that pulled enumerations take. No operation of this client does, so the names are all
// that sources need.
#pragma once

#include <Pegasus/Common/Linkage.h>

namespace Pegasus {

class Uint32Arg;
class Uint64Arg;

}  // namespace Pegasus
