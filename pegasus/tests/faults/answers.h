// Answers of servers for the tests of faults, right and wrong ones, and the actions that send them.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "testing/raw_server.h"

namespace Pegasus::test {

using Orvane::testing::RawAction;
using Orvane::testing::RawActions;

inline std::string Times(std::size_t count, const std::string& text) {
  std::string result;
  result.reserve(count * text.size());
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

inline const std::string kXmlBegin =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
    "<MESSAGE ID=\"@ID@\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n";
inline const std::string kXmlStart = kXmlBegin + "<IMETHODRESPONSE NAME=\"EnumerateInstances\">\n";
inline const std::string kXmlEnd = "</IMETHODRESPONSE>\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";

inline std::string Xml(const std::string& content) { return kXmlStart + content + kXmlEnd; }

/// An instance with that path and that content.
inline std::string XmlInstance(const std::string& path, const std::string& content) {
  return "<VALUE.NAMEDINSTANCE>\n" + path + "\n<INSTANCE CLASSNAME=\"CIM_Foo\">\n" + content +
         "</INSTANCE>\n</VALUE.NAMEDINSTANCE>\n";
}

/// An answer of one instance with that content.
inline std::string XmlWithInstance(const std::string& content) {
  return Xml("<IRETURNVALUE>\n" + XmlInstance("<INSTANCENAME CLASSNAME=\"CIM_Foo\"/>", content) + "</IRETURNVALUE>\n");
}

/// An answer of one instance whose string property is `value`, as it stands in the document.
inline std::string XmlWithValue(const std::string& value) {
  return XmlWithInstance("<PROPERTY NAME=\"S\" TYPE=\"string\"><VALUE>" + value + "</VALUE></PROPERTY>\n");
}

inline const std::string kEmptyResult = Xml("<IRETURNVALUE>\n</IRETURNVALUE>\n");

/// What a method answers that returns 0.
inline const std::string kMethodResult =
    kXmlBegin +
    "<METHODRESPONSE NAME=\"M\">\n<RETURNVALUE PARAMTYPE=\"uint32\">\n<VALUE>0</VALUE>\n</RETURNVALUE>\n"
    "</METHODRESPONSE>\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";

/// The head of a successful answer, with `lines` (each with its end) among its headers.
inline std::string Head(const std::string& lines) {
  return "HTTP/1.1 200 OK\r\nContent-Type: application/xml; charset=utf-8\r\n" + lines +
         "CIMOperation: MethodResponse\r\n\r\n";
}

inline const std::string kChunked = "Transfer-Encoding: chunked\r\n";

/// A chunk in hexadecimal length; the message id in it always has four digits here, as its mark has.
inline std::string Chunk(const std::string& bytes) {
  constexpr std::size_t kBase = 16;
  std::string digits;
  for (std::size_t rest = bytes.size(); rest != 0; rest /= kBase) {
    digits.insert(0, 1, "0123456789abcdef"[rest % kBase]);
  }
  return digits + "\r\n" + bytes + "\r\n";
}

inline const std::string kLastChunk = "0\r\n\r\n";

/// A complete answer; chunked, so that no length has to be told before the message id is known.
inline std::string Answer(const std::string& body, const std::string& lines = {}) {
  return Head(kChunked + lines) + (body.empty() ? body : Chunk(body)) + kLastChunk;
}

/// An answer that is an error of HTTP; `lines` are its headers, each with its end.
inline std::string Error(const std::string& statusAndReason, const std::string& lines, const std::string& body = {}) {
  return "HTTP/1.1 " + statusAndReason + "\r\n" + lines + "\r\n" + body;
}

inline const std::string kNoBody = "Content-Length: 0\r\n";
inline const std::string kChallenge = "WWW-Authenticate: Basic realm=\"cmm\"\r\n";

inline RawActions Sends(const std::string& bytes) { return {RawAction::Send(bytes)}; }

inline RawActions SendsThenCloses(const std::string& bytes) { return {RawAction::Send(bytes), RawAction::Close()}; }

/// What was sent has been read before the connection is reset under it.
inline RawActions SendsThenResets(const std::string& bytes) {
  constexpr std::chrono::milliseconds kEnoughToRead{100};
  return {RawAction::Send(bytes), RawAction::Sleep(kEnoughToRead), RawAction::Reset()};
}

/// Byte by byte, with that pause behind each.
inline RawActions Trickles(const std::string& bytes, std::chrono::milliseconds pause) {
  RawActions actions;
  for (const char byte : bytes) {
    actions.push_back(RawAction::Send(std::string(1, byte)));
    actions.push_back(RawAction::Sleep(pause));
  }
  return actions;
}

}  // namespace Pegasus::test
