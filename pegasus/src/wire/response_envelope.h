// Reads the frame of a response: declaration, message, answer element and ERROR. What an operation returns is read by
// a function that the operation gives.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Pegasus/Common/CIMStatusCode.h"
#include "Pegasus/Common/String.h"
#include "wire/object_decoder.h"
#include "wire/xml_reader.h"

namespace Pegasus::wire {

/// One response on its way to becoming a result.
class ResponseEnvelope {
 public:
  /// Takes the body over. `messageId` is the id of the request.
  ResponseEnvelope(std::string&& body, std::uint32_t messageId)
      : pool_(body.size()), reader_(std::move(body)), decoder_(reader_, pool_), messageId_(messageId) {}

  XmlReader& Reader() { return reader_; }
  ObjectDecoder& Decoder() { return decoder_; }

  /// Reads up to the content of the IMETHODRESPONSE of `operation`. Returns false when the answer was an ERROR with
  /// code 0, which counts as success without a result; the whole response is read then. Throws the exception which the
  /// response stands for.
  bool OpenIntrinsic(std::string_view operation);
  /// As OpenIntrinsic, for the METHODRESPONSE of an extrinsic method of any name.
  bool OpenExtrinsic();
  /// Reads the rest of the response, from the closing tag of the answer element on.
  void Close();

 private:
  void OpenMessage();
  /// Reads the name of the answer element in view and goes on to its content.
  std::string ReadAnswerName(std::string_view element);
  [[noreturn]] void FailType() const;
  void CheckMessageId() const;
  /// Reads an ERROR, if there is one, and the rest of the response; returns false then.
  bool CheckError();

  internal::Pool pool_;
  XmlReader reader_;
  ObjectDecoder decoder_;
  std::uint32_t messageId_;
  std::string receivedId_;
  std::string_view answerElement_;
};

}  // namespace Pegasus::wire
