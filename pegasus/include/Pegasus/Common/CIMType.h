// The types of CIM values and their names in CIM-XML.
#pragma once

#include <Pegasus/Common/Linkage.h>

namespace Pegasus {

/// The types, in the order in which they are numbered from 0.
enum CIMType {
  CIMTYPE_BOOLEAN,
  CIMTYPE_UINT8,
  CIMTYPE_SINT8,
  CIMTYPE_UINT16,
  CIMTYPE_SINT16,
  CIMTYPE_UINT32,
  CIMTYPE_SINT32,
  CIMTYPE_UINT64,
  CIMTYPE_SINT64,
  CIMTYPE_REAL32,
  CIMTYPE_REAL64,
  CIMTYPE_CHAR16,
  CIMTYPE_STRING,
  CIMTYPE_DATETIME,
  CIMTYPE_REFERENCE,
  CIMTYPE_OBJECT,
  CIMTYPE_INSTANCE
};

/// Lower-case name such as "uint8" or "instance"; "unknown" for a number outside the enumeration.
PEGASUS_COMMON_LINKAGE const char* cimTypeToString(CIMType type);

}  // namespace Pegasus
