// Sources that include the array's class text by this name find it in Array.h, where it is one template for all
// element types.
#pragma once

#include <Pegasus/Common/Array.h>
