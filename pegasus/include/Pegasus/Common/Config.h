// Integer types, namespace macros and the "not found" index that every header of the CIM client uses. The macros an
// including source may define for the platform or for optional interfaces are accepted and have no effect here.
#pragma once

#include <cstdint>

/// Opens and closes the namespace of the CIM client.
#define PEGASUS_NAMESPACE_BEGIN namespace Pegasus {
#define PEGASUS_NAMESPACE_END }
/// Written with a semicolon after it, like a using directive.
#define PEGASUS_USING_PEGASUS using namespace Pegasus
#define PEGASUS_USING_STD using namespace std

/// What searches return when there is no match; needs the namespace in scope.
#define PEG_NOT_FOUND Uint32(-1)

namespace std {}

namespace Pegasus {

using Boolean = bool;
using Uint8 = unsigned char;
using Sint8 = signed char;
using Uint16 = unsigned short;      // NOLINT(google-runtime-int): the interface fixes these types
using Sint16 = signed short;        // NOLINT(google-runtime-int)
using Uint32 = unsigned int;        // NOLINT(google-runtime-int)
using Sint32 = signed int;          // NOLINT(google-runtime-int)
using Uint64 = unsigned long long;  // NOLINT(google-runtime-int)
using Sint64 = long long;           // NOLINT(google-runtime-int)
using Real32 = float;
using Real64 = double;

static_assert(sizeof(Uint16) == 2 && sizeof(Uint32) == 4 && sizeof(Uint64) == 8, "unexpected integer widths");

}  // namespace Pegasus
