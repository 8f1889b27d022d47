// Declares the language list that some CIM operations take. No operation of this client does, so the name is all that
// sources need.
#pragma once

#include <Pegasus/Common/Linkage.h>

namespace Pegasus {

class ContentLanguageList;

}  // namespace Pegasus
