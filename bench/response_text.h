// The responses that the benchmarks decode: made up, in the size and mix of types that chassis answers have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Orvane::bench {

inline constexpr std::uint32_t kMessageId = 1000;

/// The body of an answer to EnumerateInstances with `count` instances of 30 properties each.
inline std::string EnumerationResponse(std::size_t count, std::uint32_t messageId = kMessageId) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE ID=\"" +
      std::to_string(messageId) +
      "\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<IMETHODRESPONSE NAME=\"EnumerateInstances\">\n<IRETURNVALUE>\n";
  const auto scalar = [&text](const std::string& name, const char* type, const std::string& value) {
    text += "<PROPERTY NAME=\"" + name + "\" TYPE=\"" + type + "\">\n<VALUE>" + value + "</VALUE>\n</PROPERTY>\n";
  };
  const auto array = [&text](const std::string& name, const char* type, const std::string& first,
                             const std::string& second) {
    text += "<PROPERTY.ARRAY NAME=\"" + name + "\" TYPE=\"" + type + "\">\n<VALUE.ARRAY>\n<VALUE>" + first +
            "</VALUE>\n<VALUE>" + second + "</VALUE>\n</VALUE.ARRAY>\n</PROPERTY.ARRAY>\n";
  };
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    text += "<VALUE.NAMEDINSTANCE>\n<INSTANCENAME CLASSNAME=\"CIM_ComputerSystem\">\n";
    text += "<KEYBINDING NAME=\"CreationClassName\">\n<KEYVALUE VALUETYPE=\"string\">CIM_ComputerSystem</KEYVALUE>\n";
    text += "</KEYBINDING>\n<KEYBINDING NAME=\"Name\">\n<KEYVALUE VALUETYPE=\"string\">system" + number;
    text += "</KEYVALUE>\n</KEYBINDING>\n</INSTANCENAME>\n<INSTANCE CLASSNAME=\"CIM_ComputerSystem\" >\n";
    scalar("CreationClassName", "string", "CIM_ComputerSystem");
    scalar("Name", "string", "system" + number);
    scalar("ElementName", "string", "Blade in bay " + number);
    scalar("Caption", "string", "Compute node &amp; management controller");
    scalar("Description", "string", "A compute node of the chassis with its own management controller");
    scalar("SerialNumber", "string", "J" + std::to_string(1000000 + i));
    scalar("PartNumber", "string", "94Y4321");
    scalar("Manufacturer", "string", "Example Systems");
    scalar("Model", "string", "7916-AC1");
    scalar("VersionString", "string", "1.20." + number);
    scalar("Status", "string", "OK");
    scalar("InstallDate", "datetime", "20260131235959.000000+000");
    for (const char* name : {"EnabledState", "RequestedState", "EnabledDefault", "HealthState", "PrimaryStatus",
                             "DetailedStatus", "CommunicationStatus"}) {
      scalar(name, "uint16", std::to_string(i % 12));
    }
    scalar("Number", "uint32", number);
    scalar("Generation", "uint64", std::to_string(10000000000U + i));
    scalar("MaximumSpeed", "uint32", "2500");
    scalar("IsManaged", "boolean", "TRUE");
    scalar("HotSwappable", "boolean", "FALSE");
    array("OperationalStatus", "uint16", "2", "5");
    array("StatusDescriptions", "string", "Powered on", "Healthy");
    array("Dedicated", "uint16", "0", "29");
    text += "<PROPERTY NAME=\"LastFailure\" TYPE=\"datetime\">\n</PROPERTY>\n";
    text += "<PROPERTY NAME=\"OtherEnabledState\" TYPE=\"string\">\n</PROPERTY>\n";
    scalar("Location", "string", "Chassis 1, bay " + std::to_string(i % 14 + 1));
    text += "</INSTANCE>\n</VALUE.NAMEDINSTANCE>\n";
  }
  return text + "</IRETURNVALUE>\n</IMETHODRESPONSE>\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";
}

}  // namespace Orvane::bench
