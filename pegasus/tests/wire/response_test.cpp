// Every recorded response whose result depends on its body alone is decoded and compared with what was recorded.
#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "Pegasus/Client/CIMClientException.h"
#include "Pegasus/Common/CIMMethod.h"
#include "Pegasus/Common/Exception.h"
#include "vector_file.h"
#include "wire/recorded.h"
#include "wire/response_reader.h"

namespace Pegasus::wire {
namespace {

using nlohmann::json;
using test::BodyOf;
using test::CaseName;
using test::LoadVectors;
using test::ReadRecorded;
using test::Vector;

constexpr std::uint32_t kMessageId = 1000;

std::string Utf8(const String& text) { return std::string(text.getCString()); }

void AddValue(json& out, const CIMValue& value) {
  out["type"] = cimTypeToString(value.getType());
  out["array"] = value.isArray();
  out["null"] = value.isNull();
  out["value"] = Utf8(value.toString());
}

template <typename Property>
json DescribeProperty(const Property& property) {
  json out;
  const CIMValue& value = property.getValue();
  out["name"] = Utf8(property.getName().getString());
  AddValue(out, value);
  if (property.getArraySize() != 0) out["arraySize"] = property.getArraySize();
  if (value.isArray() && !value.isNull()) out["elements"] = value.getArraySize();
  if (!property.getReferenceClassName().isNull()) {
    out["referenceClass"] = Utf8(property.getReferenceClassName().getString());
  }
  if (!property.getClassOrigin().isNull()) out["classOrigin"] = Utf8(property.getClassOrigin().getString());
  if (property.getPropagated()) out["propagated"] = true;
  if (property.getQualifierCount() != 0) out["qualifiers"] = property.getQualifierCount();
  return out;
}

template <typename Object>
json Describe(const Object& object) {
  json out;
  out["class"] = Utf8(object.getClassName().getString());
  out["path"] = Utf8(object.getPath().toString());
  out["properties"] = json::array();
  for (Uint32 i = 0; i < object.getPropertyCount(); ++i) {
    out["properties"].push_back(DescribeProperty(object.getProperty(i)));
  }
  if (object.getQualifierCount() != 0) out["qualifiers"] = object.getQualifierCount();
  return out;
}

json DescribeObject(const CIMObject& object) {
  json out = Describe(object);
  out["isClass"] = object.isClass();
  return out;
}

json DescribeClass(const CIMClass& cimClass) {
  json out = Describe(cimClass);
  out["superClass"] = Utf8(cimClass.getSuperClassName().getString());
  if (cimClass.getMethodCount() != 0) out["methods"] = cimClass.getMethodCount();
  out["isAssociation"] = cimClass.isAssociation();
  out["isAbstract"] = cimClass.isAbstract();
  out["hasKeys"] = cimClass.hasKeys();
  return out;
}

template <typename Item, typename DescribeItem>
json DescribeList(const char* key, const Array<Item>& items, DescribeItem describe) {
  json out;
  out[key] = json::array();
  for (Uint32 i = 0; i < items.size(); ++i) out[key].push_back(describe(items[i]));
  return out;
}

json DescribePath(const CIMObjectPath& path) { return Utf8(path.toString()); }

json InvokeMethod(std::string&& body) {
  Array<CIMParamValue> parameters;
  parameters.append(CIMParamValue(String("stale"), CIMValue(Uint32(1))));
  const CIMValue value = ReadInvokeMethod(std::move(body), kMessageId, parameters);
  json out;
  AddValue(out["returnValue"], value);
  out["out"] = json::array();
  for (Uint32 i = 0; i < parameters.size(); ++i) {
    json parameter;
    parameter["name"] = Utf8(parameters[i].getParameterName());
    parameter["typed"] = parameters[i].isTyped();
    AddValue(parameter["value"], parameters[i].getValue());
    out["out"].push_back(parameter);
  }
  return out;
}

json Decode(const std::string& operation, std::string&& body) {
  if (operation == "EnumerateInstances") {
    return DescribeList("instances", ReadEnumerateInstances(std::move(body), kMessageId), Describe<CIMInstance>);
  }
  if (operation == "EnumerateInstanceNames") {
    return DescribeList("paths", ReadEnumerateInstanceNames(std::move(body), kMessageId), DescribePath);
  }
  if (operation == "GetInstance") {
    json out;
    out["instance"] = Describe(ReadGetInstance(std::move(body), kMessageId));
    return out;
  }
  if (operation == "Associators") {
    return DescribeList("objects", ReadAssociators(std::move(body), kMessageId), DescribeObject);
  }
  if (operation == "AssociatorNames") {
    return DescribeList("paths", ReadAssociatorNames(std::move(body), kMessageId), DescribePath);
  }
  if (operation == "GetClass") return DescribeClass(ReadGetClass(std::move(body), kMessageId));
  if (operation == "InvokeMethod") return InvokeMethod(std::move(body));
  if (operation == "ModifyInstance") {
    ReadModifyInstance(std::move(body), kMessageId);
    return json{{"ok", true}};
  }
  ADD_FAILURE() << "unknown operation " << operation;
  return {};
}

json DescribeError(const char* className, const Exception& error) {
  json out;
  out["throws"]["class"] = className;
  out["throws"]["message"] = Utf8(error.getMessage());
  return out;
}

/// What decoding returns or throws, in the form of the recordings.
json DecodeOrCatch(const std::string& operation, std::string&& body) {
  try {
    return Decode(operation, std::move(body));
  } catch (const CIMException& error) {
    json out = DescribeError("CIMException", error);
    out["throws"]["cimStatus"] = static_cast<int>(error.getCode());
    return out;
  } catch (const CIMClientXmlException& error) {
    return DescribeError("CIMClientXmlException", error);
  } catch (const CIMClientResponseException& error) {
    return DescribeError("CIMClientResponseException", error);
  }
}

/// The recordings which are about the HTTP around the body; they are replayed through a socket elsewhere.
bool IsAboutHttp(const json& record) {
  const std::string file = record["file"];
  const json& result = record["result"];
  const std::string error = result.contains("throws") ? result["throws"]["class"].get<std::string>() : "";
  return file.rfind("http-", 0) == 0 || error == "CIMClientMalformedHTTPException" ||
         error == "CIMClientHTTPErrorException" || error == "ConnectionTimeoutException";
}

std::vector<Vector> BodyVectors() {
  std::vector<Vector> result;
  for (Vector& vector : LoadVectors("responses/responses.json")) {
    if (!IsAboutHttp(vector.record)) result.push_back(std::move(vector));
  }
  return result;
}

/// How many of the bytes behind an invalid one a message quotes is not fixed.
json WithoutQuotedBytes(json result) {
  if (!result.contains("throws")) return result;
  json& message = result["throws"]["message"];
  const std::string text = message;
  const std::string start = "is not valid UTF-8 encoding:";
  const std::size_t at = text.find(start);
  if (at != std::string::npos) message = text.substr(0, at + start.size());
  return result;
}

class RecordedResponse : public testing::TestWithParam<Vector> {};

TEST_P(RecordedResponse, DecodesAsRecorded) {
  const json& record = GetParam().record;
  std::string body = BodyOf(ReadRecorded("responses/" + record["file"].get<std::string>()));
  const std::size_t id = body.find("@ID@");
  if (id != std::string::npos) body.replace(id, 4, std::to_string(kMessageId));
  const json result = DecodeOrCatch(record["operation"], std::move(body));
  EXPECT_EQ(WithoutQuotedBytes(result).dump(1), WithoutQuotedBytes(record["result"]).dump(1));
}

std::string ResponseName(const testing::TestParamInfo<Vector>& response) {
  return CaseName(response.param.record["file"]);
}

INSTANTIATE_TEST_SUITE_P(Wire, RecordedResponse, testing::ValuesIn(BodyVectors()), ResponseName);

TEST(Response, RecordingsAreDividedBetweenBodyAndHttp) {
  const std::size_t all = LoadVectors("responses/responses.json").size();
  const std::size_t bodies = BodyVectors().size();
  std::cout << bodies << " recorded responses decoded here, " << all - bodies << " about HTTP left to the transport\n";
  EXPECT_GT(bodies, all / 2);
  RecordProperty("body_vectors", static_cast<int>(bodies));
  RecordProperty("http_vectors", static_cast<int>(all - bodies));
}

std::string MethodResponse(const std::string& content) {
  return R"(<?xml version="1.0"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1000" PROTOCOLVERSION="1.0">)"
         R"(<SIMPLERSP><METHODRESPONSE NAME="M">)" +
         content + "</METHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
}

TEST(Response, OutParametersStayWhenTheResponseIsBad) {
  Array<CIMParamValue> parameters;
  parameters.append(CIMParamValue(String("Old"), CIMValue(Uint32(1))));
  EXPECT_THROW(ReadInvokeMethod(MethodResponse(R"(<PARAMVALUE NAME="New"><VALUE>x</VALUE></PARAMVALUE><X/>)"),
                                kMessageId, parameters),
               CIMClientXmlException);
  EXPECT_THROW(
      ReadInvokeMethod(MethodResponse(R"(<PARAMVALUE NAME="New"><VALUE>x</VALUE></PARAMVALUE>)"), 1001, parameters),
      CIMClientResponseException);
  ASSERT_EQ(parameters.size(), 1U);
  EXPECT_EQ(parameters[0].getParameterName(), String("Old"));
  ReadInvokeMethod(MethodResponse(R"(<PARAMVALUE NAME="New"><VALUE>x</VALUE></PARAMVALUE>)"), kMessageId, parameters);
  ASSERT_EQ(parameters.size(), 1U);
  EXPECT_EQ(parameters[0].getParameterName(), String("New"));
}

TEST(Response, ASecondReturnValueIsRefused) {
  Array<CIMParamValue> parameters;
  EXPECT_THROW(ReadInvokeMethod(MethodResponse("<RETURNVALUE><VALUE>1</VALUE></RETURNVALUE>"
                                               "<RETURNVALUE><VALUE>2</VALUE></RETURNVALUE>"),
                                kMessageId, parameters),
               CIMClientXmlException);
}

}  // namespace
}  // namespace Pegasus::wire
