// Turns the body of a CIM-XML response into values or into the exception the response stands for. One function per
// operation; all of them are pure functions of the bytes and the id of the request that was answered.
#pragma once

#include <cstdint>
#include <string>

#include "Pegasus/Common/Array.h"
#include "Pegasus/Common/CIMClass.h"
#include "Pegasus/Common/CIMInstance.h"
#include "Pegasus/Common/CIMObject.h"
#include "Pegasus/Common/CIMObjectPath.h"
#include "Pegasus/Common/CIMParamValue.h"
#include "Pegasus/Common/CIMValue.h"

namespace Pegasus::wire {

/// All readers take over `body` (the complete, unframed HTTP body), which they parse in place. They throw
/// CIMException for an ERROR element, CIMClientXmlException when the text is not the expected XML, and
/// CIMClientResponseException when the XML is fine but its content is not; nothing else.
Array<CIMInstance> ReadEnumerateInstances(std::string&& body, std::uint32_t messageId);

Array<CIMObjectPath> ReadEnumerateInstanceNames(std::string&& body, std::uint32_t messageId);

/// The path of the result holds the class name only.
CIMInstance ReadGetInstance(std::string&& body, std::uint32_t messageId);

void ReadModifyInstance(std::string&& body, std::uint32_t messageId);

Array<CIMObject> ReadAssociators(std::string&& body, std::uint32_t messageId);

Array<CIMObjectPath> ReadAssociatorNames(std::string&& body, std::uint32_t messageId);

CIMClass ReadGetClass(std::string&& body, std::uint32_t messageId);

/// Returns the method's value, a NULL boolean when the response has none. `outParameters` is replaced on success and
/// left alone when an exception is thrown.
CIMValue ReadInvokeMethod(std::string&& body, std::uint32_t messageId, Array<CIMParamValue>& outParameters);

}  // namespace Pegasus::wire
