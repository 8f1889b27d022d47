// The frame of responses.
#include "wire/response_envelope.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "Pegasus/Client/CIMClientException.h"
#include "Pegasus/Common/Exception.h"
#include "wire/scalar_text.h"

namespace Pegasus::wire {
namespace {

constexpr std::string_view kIntrinsicAnswer = "IMETHODRESPONSE";
constexpr std::string_view kExtrinsicAnswer = "METHODRESPONSE";

/// The operations a server may name in its answer; any other name is no CIM-XML.
constexpr std::array<std::string_view, 23> kOperations = {
    "GetClass",         "GetInstance",         "DeleteClass",        "DeleteInstance",
    "CreateClass",      "CreateInstance",      "ModifyClass",        "ModifyInstance",
    "EnumerateClasses", "EnumerateClassNames", "EnumerateInstances", "EnumerateInstanceNames",
    "ExecQuery",        "Associators",         "AssociatorNames",    "References",
    "ReferenceNames",   "GetProperty",         "SetProperty",        "GetQualifier",
    "SetQualifier",     "DeleteQualifier",     "EnumerateQualifiers"};

bool IsKnownOperation(std::string_view name) {
  return std::any_of(kOperations.begin(), kOperations.end(),
                     [name](std::string_view operation) { return EqualNoCase(operation, name); });
}

/// `1.` and digits.
bool IsSupportedVersion(std::string_view version) {
  constexpr std::string_view kMajor = "1.";
  return version.size() > kMajor.size() && version.substr(0, kMajor.size()) == kMajor &&
         version.find_first_not_of("0123456789", kMajor.size()) == std::string_view::npos;
}

String MakeString(const std::string& text) { return ToString(text); }

}  // namespace

void ResponseEnvelope::OpenMessage() {
  if (!reader_.AtDeclaration() || reader_.Text() != "xml") {
    reader_.FailValidation("Expected <?xml ... ?> style declaration");
  }
  reader_.Next();
  if (!reader_.AtStart("CIM")) reader_.FailValidation("Expected open of CIM element");
  reader_.NeedAttribute("CIM", "CIMVERSION");
  reader_.NeedAttribute("CIM", "DTDVERSION");
  reader_.Next();
  if (!reader_.AtStart("MESSAGE")) reader_.FailValidation("Expected open of MESSAGE element");
  const auto id = reader_.FindAttribute("ID");
  if (!id) reader_.FailValidation("Invalid or missing MESSAGE.ID attribute");
  receivedId_ = *id;
  const auto version = reader_.FindAttribute("PROTOCOLVERSION");
  if (!version) reader_.FailValidation("Invalid or missing MESSAGE.PROTOCOLVERSION attribute");
  if (!IsSupportedVersion(*version)) {
    throw CIMClientResponseException(
        MakeString("Received unsupported protocol version \"" + std::string(*version) + "\", expected \"1.[0-9]+\""));
  }
  reader_.Next();
  if (!reader_.AtStart("SIMPLERSP")) reader_.FailValidation("Expected open of SIMPLERSP element");
  reader_.Next();
}

std::string ResponseEnvelope::ReadAnswerName(std::string_view element) {
  answerElement_ = element;
  std::string name(reader_.NeedAttribute(element, "NAME"));
  if (element == kIntrinsicAnswer && !IsKnownOperation(name)) {
    reader_.FailValidation("Unrecognized IMethodResponse name \"" + name + "\"");
  }
  reader_.Next();
  return name;
}

void ResponseEnvelope::FailType() const {
  CheckMessageId();
  throw CIMClientResponseException(String("Mismatched response message type."));
}

bool ResponseEnvelope::OpenIntrinsic(std::string_view operation) {
  OpenMessage();
  if (reader_.AtStart(kExtrinsicAnswer)) {
    ReadAnswerName(kExtrinsicAnswer);
    FailType();
  }
  if (!reader_.AtStart(kIntrinsicAnswer)) {
    reader_.FailValidation("expected METHODRESPONSE or IMETHODRESPONSE element");
  }
  if (!EqualNoCase(ReadAnswerName(kIntrinsicAnswer), operation)) FailType();
  return CheckError();
}

bool ResponseEnvelope::OpenExtrinsic() {
  OpenMessage();
  if (reader_.AtStart(kIntrinsicAnswer)) {
    ReadAnswerName(kIntrinsicAnswer);
    FailType();
  }
  if (!reader_.AtStart(kExtrinsicAnswer)) {
    reader_.FailValidation("expected METHODRESPONSE or IMETHODRESPONSE element");
  }
  ReadAnswerName(kExtrinsicAnswer);
  return CheckError();
}

bool ResponseEnvelope::CheckError() {
  if (!reader_.AtStart("ERROR")) return true;
  const auto codeText = reader_.FindAttribute("CODE");
  Uint32 code = 0;
  if (codeText) {
    const char* const end = codeText->data() + codeText->size();
    const auto [last, error] = std::from_chars(codeText->data(), end, code);
    if (error != std::errc() || last != end) reader_.FailValidation("missing ERROR.CODE attribute");
  } else {
    reader_.FailValidation("missing ERROR.CODE attribute");
  }
  const String description = ToString(reader_.FindAttribute("DESCRIPTION").value_or(std::string_view()));
  reader_.Next();
  while (reader_.AtStart("INSTANCE")) decoder_.ReadInstance();
  reader_.Leave("ERROR");
  Close();
  if (code != 0) throw CIMException(static_cast<CIMStatusCode>(code), description);
  return false;
}

void ResponseEnvelope::Close() {
  reader_.Leave(answerElement_);
  reader_.Leave("SIMPLERSP");
  reader_.Leave("MESSAGE");
  // Whatever follows the document is not looked at.
  reader_.NeedClose("CIM");
  CheckMessageId();
}

void ResponseEnvelope::CheckMessageId() const {
  const std::string expected = std::to_string(messageId_);
  if (receivedId_ == expected) return;
  throw CIMClientResponseException(
      MakeString("Mismatched response message ID:  Got \"" + receivedId_ + "\", expected \"" + expected + "\"."));
}

}  // namespace Pegasus::wire
