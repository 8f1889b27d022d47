// The exceptions: the recorded messages and accessors, and that all are one flat family.
#include <Pegasus/Client/CIMClientException.h>
#include <Pegasus/Common/CIMType.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <type_traits>

#include "thrown.h"
#include "vector_file.h"

namespace Pegasus {
namespace {

using test::TextOf;
using test::Thrown;
using test::Utf8;
using test::Vector;

using Json = nlohmann::json;
using Raise = std::function<void(const Json& args)>;

template <typename Class>
Raise Plain() {
  return [](const Json&) { throw Class(); };
}

template <typename Class>
Raise WithText() {
  return [](const Json& args) { throw Class(TextOf(args.at(0))); };
}

void RaiseCim(const Json& args) {
  const auto code = static_cast<CIMStatusCode>(args.at(0).get<int>());
  if (args.size() == 1) {
    throw CIMException(code);
  }
  throw CIMException(code, TextOf(args.at(1)));
}

void RaiseHttpError(const Json& args) {
  const auto status = args.at(0).get<Uint32>();
  if (args.size() == 3) {
    throw CIMClientHTTPErrorException(status, TextOf(args.at(1)), TextOf(args.at(2)));
  }
  throw CIMClientHTTPErrorException(status, TextOf(args.at(1)), TextOf(args.at(2)), TextOf(args.at(3)));
}

void RaiseTypeMismatch(const Json& args) {
  if (args.empty()) {
    throw TypeMismatchException();
  }
  throw TypeMismatchException(TextOf(args.at(0)));
}

const std::map<std::string, Raise>& Classes() {
  static const std::map<std::string, Raise> kClasses = {
      {"Exception", WithText<Exception>()},
      {"IndexOutOfBoundsException", Plain<IndexOutOfBoundsException>()},
      {"AlreadyExistsException", WithText<AlreadyExistsException>()},
      {"InvalidNameException", WithText<InvalidNameException>()},
      {"InvalidNamespaceNameException", WithText<InvalidNamespaceNameException>()},
      {"UninitializedObjectException", Plain<UninitializedObjectException>()},
      {"TypeMismatchException", RaiseTypeMismatch},
      {"DynamicCastFailedException", Plain<DynamicCastFailedException>()},
      {"InvalidDateTimeFormatException", Plain<InvalidDateTimeFormatException>()},
      {"DateTimeOutOfRangeException", WithText<DateTimeOutOfRangeException>()},
      {"MalformedObjectNameException", WithText<MalformedObjectNameException>()},
      {"BindFailedException", WithText<BindFailedException>()},
      {"InvalidLocatorException", WithText<InvalidLocatorException>()},
      {"CannotCreateSocketException", Plain<CannotCreateSocketException>()},
      {"CannotConnectException", WithText<CannotConnectException>()},
      {"AlreadyConnectedException", Plain<AlreadyConnectedException>()},
      {"NotConnectedException", Plain<NotConnectedException>()},
      {"ConnectionTimeoutException", Plain<ConnectionTimeoutException>()},
      {"InvalidEnumerationContextException", Plain<InvalidEnumerationContextException>()},
      {"SSLException", WithText<SSLException>()},
      {"CIMException", RaiseCim},
      {"CIMClientMalformedHTTPException", WithText<CIMClientMalformedHTTPException>()},
      {"CIMClientXmlException", WithText<CIMClientXmlException>()},
      {"CIMClientResponseException", WithText<CIMClientResponseException>()},
      {"CIMClientHTTPErrorException", RaiseHttpError}};
  return kClasses;
}

class ExceptionVector : public testing::TestWithParam<Vector> {};
TEST_P(ExceptionVector, IsAsRecorded) {
  const Json& record = GetParam().record;
  const auto name = record.at("construct").at("class").get<std::string>();
  ASSERT_TRUE(Classes().count(name) == 1) << name;
  Thrown expected{name, record.value("getMessage", "")};
  if (record.contains("throws")) {
    expected = test::ExpectedThrow(record);
  }
  try {
    Classes().at(name)(record.at("construct").at("args"));
    FAIL() << "nothing was thrown";
  } catch (const CIMException& exception) {
    EXPECT_EQ((Thrown{test::ClassOf(exception), Utf8(exception.getMessage())}), expected);
    EXPECT_EQ(static_cast<int>(exception.getCode()), record.at("getCode").get<int>());
    EXPECT_STREQ(cimStatusCodeToString(exception.getCode()),
                 record.at("cimStatusCodeToString").get<std::string>().c_str());
  } catch (const CIMClientHTTPErrorException& exception) {
    EXPECT_EQ((Thrown{test::ClassOf(exception), Utf8(exception.getMessage())}), expected);
    EXPECT_EQ(exception.getCode(), record.at("getCode").get<Uint32>());
    EXPECT_EQ(Utf8(exception.getCIMError()), record.at("getCIMError").get<std::string>());
    EXPECT_EQ(Utf8(exception.getCIMErrorDetail()), record.at("getCIMErrorDetail").get<std::string>());
  } catch (const Exception& exception) {
    EXPECT_EQ((Thrown{test::ClassOf(exception), Utf8(exception.getMessage())}), expected);
    EXPECT_FALSE(record.contains("getCode"));
  }
}
INSTANTIATE_TEST_SUITE_P(Classes, ExceptionVector, testing::ValuesIn(test::LoadVectors("exceptions.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

TEST(Exceptions, OfATimeOutSaysSo) {
  EXPECT_EQ(Utf8(ConnectionTimeoutException().getMessage()), "connection timed out");
}

TEST(Exceptions, OfAMalformedNameMayCarryAReason) {
  EXPECT_EQ(Utf8(MalformedObjectNameException("CIM_Foo.A", "why").getMessage()),
            "malformed object name: CIM_Foo.A, reason:\"why\"");
}

TEST(Exceptions, OfHttpErrorsAreCopiedWhole) {
  const CIMClientHTTPErrorException original(404, "Not Found", "error", "detail");
  CIMClientHTTPErrorException copy(original);  // NOLINT(performance-unnecessary-copy-initialization): tested here
  CIMClientHTTPErrorException assigned(500);
  EXPECT_EQ(Utf8(assigned.getMessage()), "HTTP Error (500).");
  assigned = copy;
  EXPECT_EQ(assigned.getCode(), 404U);
  EXPECT_EQ(Utf8(assigned.getCIMError()), "error");
  EXPECT_EQ(Utf8(assigned.getCIMErrorDetail()), "detail");
  EXPECT_EQ(assigned.getMessage(), original.getMessage());
}

TEST(Exceptions, OfCimErrorsAreCopiedWhole) {
  const CIMException original(CIM_ERR_NOT_FOUND, "gone");
  CIMException assigned;
  EXPECT_EQ(assigned.getCode(), CIM_ERR_SUCCESS);
  assigned = original;
  EXPECT_EQ(assigned.getCode(), CIM_ERR_NOT_FOUND);
  EXPECT_EQ(assigned.getMessage(), "gone");
}

TEST(Exceptions, AreOneFlatFamilyApartFromTheStandardOnes) {
  EXPECT_FALSE((std::is_base_of_v<std::exception, Exception>));
  EXPECT_FALSE((std::is_base_of_v<CannotConnectException, ConnectionTimeoutException>));
  EXPECT_FALSE((std::is_base_of_v<CIMException, CIMClientHTTPErrorException>));
  EXPECT_FALSE(std::is_default_constructible_v<Exception>);
}

TEST(StatusCodes, HaveNamesFor0To28Only) {
  EXPECT_STREQ(cimStatusCodeToString(static_cast<CIMStatusCode>(18)), "empty");
  EXPECT_STREQ(cimStatusCodeToString(static_cast<CIMStatusCode>(19)), "empty");
  EXPECT_STREQ(cimStatusCodeToString(CIM_ERR_SERVER_IS_SHUTTING_DOWN), "CIM_ERR_SERVER_IS_SHUTTING_DOWN");
  EXPECT_STREQ(cimStatusCodeToString(static_cast<CIMStatusCode>(29)), "Unrecognized CIM status code");
  EXPECT_STREQ(cimStatusCodeToString(static_cast<CIMStatusCode>(-1)), "Unrecognized CIM status code");
}

TEST(Types, HaveTheirCimXmlNamesInOrder) {
  const char* const names[] = {"boolean", "uint8",    "sint8",     "uint16", "sint16",  "uint32",
                               "sint32",  "uint64",   "sint64",    "real32", "real64",  "char16",
                               "string",  "datetime", "reference", "object", "instance"};
  for (int type = CIMTYPE_BOOLEAN; type <= CIMTYPE_INSTANCE; ++type) {
    EXPECT_STREQ(cimTypeToString(static_cast<CIMType>(type)), names[type]);
  }
}

}  // namespace
}  // namespace Pegasus
