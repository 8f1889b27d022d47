// What a string throws when it is made from a null pointer. Callers know it as an Exception.
#pragma once

#include <Pegasus/Common/Exception.h>

namespace Pegasus {

/// "null pointer".
class PEGASUS_COMMON_LINKAGE NullPointer : public Exception {
 public:
  NullPointer();
};

}  // namespace Pegasus
