// The names of the CIM types and of the status codes.
#include <Pegasus/Common/CIMStatusCode.h>
#include <Pegasus/Common/CIMType.h>

#include <array>
#include <cstddef>

namespace Pegasus {

namespace {

constexpr std::array kTypeNames = {"boolean", "uint8",    "sint8",     "uint16", "sint16",  "uint32",
                                   "sint32",  "uint64",   "sint64",    "real32", "real64",  "char16",
                                   "string",  "datetime", "reference", "object", "instance"};
static_assert(kTypeNames.size() == CIMTYPE_INSTANCE + 1);

constexpr std::array kStatusNames = {"CIM_ERR_SUCCESS",
                                     "CIM_ERR_FAILED",
                                     "CIM_ERR_ACCESS_DENIED",
                                     "CIM_ERR_INVALID_NAMESPACE",
                                     "CIM_ERR_INVALID_PARAMETER",
                                     "CIM_ERR_INVALID_CLASS",
                                     "CIM_ERR_NOT_FOUND",
                                     "CIM_ERR_NOT_SUPPORTED",
                                     "CIM_ERR_CLASS_HAS_CHILDREN",
                                     "CIM_ERR_CLASS_HAS_INSTANCES",
                                     "CIM_ERR_INVALID_SUPERCLASS",
                                     "CIM_ERR_ALREADY_EXISTS",
                                     "CIM_ERR_NO_SUCH_PROPERTY",
                                     "CIM_ERR_TYPE_MISMATCH",
                                     "CIM_ERR_QUERY_LANGUAGE_NOT_SUPPORTED",
                                     "CIM_ERR_INVALID_QUERY",
                                     "CIM_ERR_METHOD_NOT_AVAILABLE",
                                     "CIM_ERR_METHOD_NOT_FOUND",
                                     "empty",
                                     "empty",
                                     "CIM_ERR_NAMESPACE_NOT_EMPTY",
                                     "CIM_ERR_INVALID_ENUMERATION_CONTEXT",
                                     "CIM_ERR_INVALID_OPERATION_TIMEOUT",
                                     "CIM_ERR_PULL_HAS_BEEN_ABANDONED",
                                     "CIM_ERR_PULL_CANNOT_BE_ABANDONED",
                                     "CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED",
                                     "CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED",
                                     "CIM_ERR_SERVER_LIMITS_EXCEEDED",
                                     "CIM_ERR_SERVER_IS_SHUTTING_DOWN"};
static_assert(kStatusNames.size() == CIM_ERR_SERVER_IS_SHUTTING_DOWN + 1);

}  // namespace

const char* cimTypeToString(CIMType type) {
  const auto index = static_cast<std::size_t>(type);
  return index < kTypeNames.size() ? kTypeNames[index] : "unknown";
}

const char* cimStatusCodeToString(CIMStatusCode code) {
  return code >= CIM_ERR_SUCCESS && code <= CIM_ERR_SERVER_IS_SHUTTING_DOWN
             ? kStatusNames[static_cast<std::size_t>(code)]
             : "Unrecognized CIM status code";
}

}  // namespace Pegasus
