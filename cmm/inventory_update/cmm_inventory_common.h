// What the sources of the inventory share: reading CIM properties as text and numbers, and texts that several of them
// log.
#pragma once

#include <Pegasus/Client/CIMClient.h>

#include <cstdlib>
#include <string>

#include "cmm/inventory_update/cmm_peg_client.h"
#include "cmm/inventory_update/cmm_util.h"

namespace Orvane {

// Return codes of the inventory. The collection of pass-through modules has its own code for a CIM error.
constexpr int kOk = 0;
constexpr int kNoConnection = 1;
constexpr int kPassThruCimError = 2;
constexpr int kCimError = 3;
constexpr int kNothingFound = 3;
constexpr int kInvalidBay = 3;
constexpr int kUnexpectedError = 4;
constexpr int kNoModule = 5;

// Texts that more than one source of the inventory logs.
constexpr char kConnectionFailed[] = "Connection is fail, please check your network";
constexpr char kSystemCount[] = "the size of insts_CmptSys is ";

/// What a CIM_Slot of an I/O bay has in its Tag, and a bay's equipment in its name.
constexpr char kIOModuleWord[] = "iomodule";

inline std::string ErrorText(const Pegasus::Exception& error) { return ToStdString(error.getMessage()); }

/// The text of a property; empty when it is absent or NULL, and on a Pegasus exception, which leaves a log line.
inline std::string PropertyText(const Pegasus::CIMInstance& instance, const Pegasus::CIMName& name) {
  return ToStdString(PegClientOpt::GetPropertyValue(instance, name).toString());
}

/// As PropertyText(), but lets exceptions pass.
inline std::string PropertyTextOrThrow(const Pegasus::CIMInstance& instance, const Pegasus::CIMName& name) {
  return ToStdString(PegClientOpt::GetPropertyValueOrThrow(instance, name).toString());
}

/// The object path of @p instance as text; throws for an uninitialised one.
inline std::string PathText(const Pegasus::CIMInstance& instance) { return ToStdString(instance.getPath().toString()); }

inline bool Contains(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

/// atoi's reading: optional blanks and sign, leading digits, 0 when there are none.
inline int LenientInt(const std::string& text) { return static_cast<int>(std::strtol(text.c_str(), nullptr, 10)); }

}  // namespace Orvane
