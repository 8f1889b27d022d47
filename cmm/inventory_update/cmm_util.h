// Small helpers that several operations share: texts of the CIM client, names of bays and nodes as the chassis manager
// writes them, and the identifier in a job reference.
#pragma once

#include <Pegasus/Common/CIMStatusCode.h>
#include <Pegasus/Common/String.h>

#include <string>

namespace Orvane {

/// The text of @p text as UTF-8 bytes.
std::string ToStdString(const Pegasus::String& text);

/// A bay number with at least two digits: "03" for 3, "12" for 12. Below 10 a "0" stands before the number.
std::string TwoDigits(int bayId);

/// "node03" for bay 3, "node10" for bay 10, "node0" for bay 0: only 1 to 9 get the leading zero.
std::string NodeName(int bayId);

/// The name of a CIM status as DMTF spells it ("CIM_ERR_ACCESS_DENIED"); "" for a status that has none here.
const char* StatusName(Pegasus::CIMStatusCode code);

/// The job identifier in a reference to a job: what follows the first "=" and the quote behind it, up to the next
/// quote. Without "=" it begins at the second character; without a quote it runs to the end.
std::string JobIdOf(const std::string& reference);

}  // namespace Orvane
