// The readers of the operations' responses.
#include "wire/response_reader.h"

#include <optional>
#include <string_view>
#include <utility>

#include "Pegasus/Client/CIMClientException.h"
#include "Pegasus/Common/Exception.h"
#include "objects/internal.h"
#include "wire/response_envelope.h"
#include "wire/scalar_text.h"

namespace Pegasus::wire {
namespace {

/// Runs `read`; what the content of a response makes the value classes throw says that the response is unusable.
template <typename Read>
auto Guarded(Read read) {
  try {
    return read();
  } catch (const CIMException&) {
    throw;
  } catch (const CIMClientXmlException&) {
    throw;
  } catch (const CIMClientResponseException&) {
    throw;
  } catch (const Exception& error) {
    throw CIMClientResponseException(error.getMessage());
  }
}

/// Reads the response of an operation that returns a list. `readItem` takes one `element`.
template <typename Item, typename ReadItem>
Array<Item> ReadList(std::string&& body, std::uint32_t messageId, std::string_view operation, std::string_view element,
                     ReadItem readItem) {
  return Guarded([&] {
    Array<Item> items;
    ResponseEnvelope envelope(std::move(body), messageId);
    if (!envelope.OpenIntrinsic(operation)) return items;
    XmlReader& reader = envelope.Reader();
    if (reader.AtStart("IRETURNVALUE")) {
      reader.Next();
      while (reader.AtStart(element)) items.append(readItem(envelope));
      reader.Leave("IRETURNVALUE");
    }
    envelope.Close();
    return items;
  });
}

/// Reads the response of an operation that returns one object, which `readItem` takes.
template <typename Item, typename ReadItem>
Item ReadOne(std::string&& body, std::uint32_t messageId, std::string_view operation, ReadItem readItem) {
  return Guarded([&] {
    ResponseEnvelope envelope(std::move(body), messageId);
    if (!envelope.OpenIntrinsic(operation)) return Item();
    XmlReader& reader = envelope.Reader();
    if (!reader.AtStart("IRETURNVALUE")) reader.FailValidation("expected ERROR or IRETURNVALUE element");
    reader.Next();
    Item item = readItem(envelope.Decoder());
    reader.Leave("IRETURNVALUE");
    envelope.Close();
    return item;
  });
}

CIMInstance ReadNamedInstance(ResponseEnvelope& envelope) {
  XmlReader& reader = envelope.Reader();
  reader.Next();
  const CIMObjectPath path = envelope.Decoder().Paths().ReadInstanceName();
  CIMInstance instance = envelope.Decoder().ReadInstance();
  instance.setPath(path);
  reader.Leave("VALUE.NAMEDINSTANCE");
  return instance;
}

CIMObject ReadObjectWithPath(ResponseEnvelope& envelope) {
  XmlReader& reader = envelope.Reader();
  reader.Next();
  const bool isClass = reader.AtStart("CLASSPATH");
  const CIMObjectPath path = envelope.Decoder().Paths().ReadFullPath("Expected INSTANCEPATH or CLASSPATH element");
  CIMObject object = isClass ? CIMObject(envelope.Decoder().ReadClass()) : CIMObject(envelope.Decoder().ReadInstance());
  object.setPath(path);
  reader.Leave("VALUE.OBJECTWITHPATH");
  return object;
}

CIMObjectPath ReadObjectPath(ResponseEnvelope& envelope) {
  XmlReader& reader = envelope.Reader();
  reader.Next();
  CIMObjectPath path = envelope.Decoder().Paths().ReadFullPath("expected INSTANCEPATH or CLASSPATH element");
  reader.Leave("OBJECTPATH");
  return path;
}

/// The type that the PARAMTYPE and EmbeddedObject attributes of the element in view declare, if they do.
std::optional<ValueType> FindParamType(ResponseEnvelope& envelope, std::string_view element) {
  const XmlReader& reader = envelope.Reader();
  const Embedded embedded = envelope.Decoder().FindEmbedded();
  const auto text = reader.FindAttribute("PARAMTYPE");
  if (!text) {
    if (embedded == Embedded::kNone) return std::nullopt;
    return ValueType{CIMTYPE_STRING, embedded};
  }
  const auto type = ParseType(*text);
  if (!type || (embedded != Embedded::kNone && *type != CIMTYPE_STRING)) {
    reader.FailAttribute(std::string("Illegal value for ").append(element).append(".PARAMTYPE attribute"));
  }
  return ValueType{*type, embedded};
}

CIMValue ReadReturnValue(ResponseEnvelope& envelope) {
  constexpr std::string_view kElement = "RETURNVALUE";
  XmlReader& reader = envelope.Reader();
  const ValueType type = FindParamType(envelope, kElement).value_or(ValueType());
  reader.Next();
  CIMValue value;
  if (reader.AtStart("VALUE.REFERENCE")) {
    value = objects::Access::MakeReferenceValue(envelope.Decoder().Paths().ReadReference());
  } else if (reader.AtStart("VALUE")) {
    value = envelope.Decoder().ReadValue(type);
  } else {
    reader.FailValidation("expected VALUE element");
  }
  reader.Leave(kElement);
  return value;
}

CIMParamValue ReadParamValue(ResponseEnvelope& envelope) {
  constexpr std::string_view kElement = "PARAMVALUE";
  XmlReader& reader = envelope.Reader();
  ObjectDecoder& decoder = envelope.Decoder();
  const String name = ToString(reader.NeedAttribute(kElement, "NAME"));
  const std::optional<ValueType> declared = FindParamType(envelope, kElement);
  const ValueType type = declared.value_or(ValueType());
  reader.Next();
  CIMValue value;
  bool isTyped = declared.has_value();
  if (reader.AtStart("VALUE")) {
    value = decoder.ReadValue(type);
  } else if (reader.AtStart("VALUE.ARRAY")) {
    value = decoder.ReadValueArray(type);
  } else if (reader.AtStart("VALUE.REFERENCE")) {
    value = objects::Access::MakeReferenceValue(decoder.Paths().ReadReference());
    isTyped = true;
  } else if (reader.AtStart("VALUE.REFARRAY")) {
    value = decoder.ReadReferenceArray();
    isTyped = true;
  } else {
    isTyped = false;
  }
  reader.Leave(kElement);
  return CIMParamValue(name, value, isTyped);
}

}  // namespace

Array<CIMInstance> ReadEnumerateInstances(std::string&& body, std::uint32_t messageId) {
  return ReadList<CIMInstance>(std::move(body), messageId, "EnumerateInstances", "VALUE.NAMEDINSTANCE",
                               ReadNamedInstance);
}

Array<CIMObjectPath> ReadEnumerateInstanceNames(std::string&& body, std::uint32_t messageId) {
  return ReadList<CIMObjectPath>(
      std::move(body), messageId, "EnumerateInstanceNames", "INSTANCENAME",
      [](ResponseEnvelope& envelope) { return envelope.Decoder().Paths().ReadInstanceName(); });
}

CIMInstance ReadGetInstance(std::string&& body, std::uint32_t messageId) {
  return ReadOne<CIMInstance>(std::move(body), messageId, "GetInstance",
                              [](ObjectDecoder& decoder) { return decoder.ReadInstance(); });
}

void ReadModifyInstance(std::string&& body, std::uint32_t messageId) {
  Guarded([&] {
    ResponseEnvelope envelope(std::move(body), messageId);
    if (!envelope.OpenIntrinsic("ModifyInstance")) return;
    XmlReader& reader = envelope.Reader();
    if (reader.AtStart("IRETURNVALUE")) {
      reader.Next();
      reader.Leave("IRETURNVALUE");
    }
    envelope.Close();
  });
}

Array<CIMObject> ReadAssociators(std::string&& body, std::uint32_t messageId) {
  return ReadList<CIMObject>(std::move(body), messageId, "Associators", "VALUE.OBJECTWITHPATH", ReadObjectWithPath);
}

Array<CIMObjectPath> ReadAssociatorNames(std::string&& body, std::uint32_t messageId) {
  return ReadList<CIMObjectPath>(std::move(body), messageId, "AssociatorNames", "OBJECTPATH", ReadObjectPath);
}

CIMClass ReadGetClass(std::string&& body, std::uint32_t messageId) {
  return ReadOne<CIMClass>(std::move(body), messageId, "GetClass",
                           [](ObjectDecoder& decoder) { return decoder.ReadClass(); });
}

CIMValue ReadInvokeMethod(std::string&& body, std::uint32_t messageId, Array<CIMParamValue>& outParameters) {
  return Guarded([&] {
    Array<CIMParamValue> parameters;
    CIMValue returnValue;
    ResponseEnvelope envelope(std::move(body), messageId);
    if (envelope.OpenExtrinsic()) {
      XmlReader& reader = envelope.Reader();
      for (bool hasReturnValue = false;;) {
        if (reader.AtStart("PARAMVALUE")) {
          parameters.append(ReadParamValue(envelope));
        } else if (!hasReturnValue && reader.AtStart("RETURNVALUE") && !reader.AtEmptyTag()) {
          returnValue = ReadReturnValue(envelope);
          hasReturnValue = true;
        } else {
          break;
        }
      }
      envelope.Close();
    }
    outParameters.swap(parameters);
    return returnValue;
  });
}

}  // namespace Pegasus::wire
