// The value helpers beside the session: text, first property and number of CIM values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "cmm/inventory_update/cmm_peg_client.h"
#include "cmm/inventory_update/cmm_util.h"
#include "testing/scoped_log.h"

namespace Orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedLog;

constexpr char kBadCast[] = "bad lexical cast: source type value could not be interpreted as target";

Pegasus::CIMValue Text(const std::string& text) { return Pegasus::CIMValue(Pegasus::String(text.c_str())); }

Pegasus::CIMInstance Module() {
  Pegasus::CIMInstance instance{Pegasus::CIMName("CIM_Slot")};
  instance.addProperty(Pegasus::CIMProperty(Pegasus::CIMName("Tag"), Text("iomodule 1")));
  instance.addProperty(Pegasus::CIMProperty(Pegasus::CIMName("Number"), Pegasus::CIMValue(Pegasus::Uint16(7))));
  return instance;
}

TEST(ToStdString, OfAnEmptyString) { EXPECT_EQ(ToStdString(Pegasus::String()), ""); }

TEST(ToStdString, KeepsTheText) { EXPECT_EQ(ToStdString(Pegasus::String(" a\tb\n\"c\" ")), " a\tb\n\"c\" "); }

TEST(ToStdString, GivesUtf8) {
  const Pegasus::Char16 units[] = {0x00e4, 0x20ac, 0xd83d, 0xde00};

  EXPECT_EQ(ToStdString(Pegasus::String(units, 4)), "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80");
}

TEST(ToStdString, KeepsAMegabyte) {
  const std::string text(1024 * 1024, 'x');

  EXPECT_EQ(ToStdString(Pegasus::String(text.c_str())), text);
}

TEST(CIMValueToInt, OfANullValueIsMinusOneWithoutALine) {
  const ScopedLog log;

  EXPECT_EQ(CIMValueToInt(Pegasus::CIMValue()), -1);
  EXPECT_EQ(CIMValueToInt(Pegasus::CIMValue(Pegasus::CIMTYPE_STRING, false)), -1);

  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST(CIMValueToInt, ReadsTheWholeText) {
  EXPECT_EQ(CIMValueToInt(Text("0")), 0);
  EXPECT_EQ(CIMValueToInt(Text("-12")), -12);
  EXPECT_EQ(CIMValueToInt(Text("2147483647")), std::numeric_limits<int>::max());
  EXPECT_EQ(CIMValueToInt(Text("-2147483648")), std::numeric_limits<int>::min());
}

TEST(CIMValueToInt, ReadsTheTextOfANumber) { EXPECT_EQ(CIMValueToInt(Pegasus::CIMValue(Pegasus::Uint16(10))), 10); }

class CIMValueToIntNoNumber : public ::testing::TestWithParam<const char*> {};

TEST_P(CIMValueToIntNoNumber, IsMinusOneWithAWarning) {
  const ScopedLog log;

  EXPECT_EQ(CIMValueToInt(Text(GetParam())), -1);

  EXPECT_THAT(log.Texts(2), ElementsAre(std::string(kBadCast) + ". String: [" + GetParam() + "]"));
  EXPECT_EQ(log.Records().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Texts, CIMValueToIntNoNumber,
                         ::testing::Values("", " ", "x", "5 ", " 5", "5x", "0x5", "5.0", "1,2", "2147483648",
                                           "-2147483649", "\xc3\xa4"));

TEST(CIMValueToInt, OfAOneElementArrayIsNoNumber) {
  const ScopedLog log;

  EXPECT_EQ(CIMValueToInt(Pegasus::CIMValue(Pegasus::Array<Pegasus::Uint16>(1, 4))), -1);

  EXPECT_THAT(log.Texts(2), ElementsAre(std::string(kBadCast) + ". String: [4 ]"));
}

TEST(GetFirstPropertyValue, GivesTheTextAsAString) {
  const Pegasus::CIMValue value = GetFirstPropertyValue(Module(), Pegasus::CIMName("Number"));

  EXPECT_EQ(value.getType(), Pegasus::CIMTYPE_STRING);
  EXPECT_FALSE(value.isArray());
  EXPECT_EQ(ToStdString(value.toString()), "7");
}

TEST(GetFirstPropertyValue, IgnoresTheCaseOfTheName) {
  EXPECT_EQ(ToStdString(GetFirstPropertyValue(Module(), Pegasus::CIMName("tAG")).toString()), "iomodule 1");
}

TEST(GetFirstPropertyValue, IsNullWithoutTheProperty) {
  const ScopedLog log;

  EXPECT_TRUE(GetFirstPropertyValue(Module(), Pegasus::CIMName("Name")).isNull());

  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST(GetFirstPropertyValue, OfANullPropertyIsAnEmptyText) {
  Pegasus::CIMInstance instance = Module();
  instance.addProperty(
      Pegasus::CIMProperty(Pegasus::CIMName("Name"), Pegasus::CIMValue(Pegasus::CIMTYPE_STRING, false)));

  const Pegasus::CIMValue value = GetFirstPropertyValue(instance, Pegasus::CIMName("Name"));

  EXPECT_FALSE(value.isNull());
  EXPECT_EQ(ToStdString(value.toString()), "");
}

TEST(GetFirstPropertyValue, LogsAnExceptionAndIsNull) {
  const ScopedLog log;

  EXPECT_TRUE(GetFirstPropertyValue(Pegasus::CIMInstance(), Pegasus::CIMName("Name")).isNull());

  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus Exception: uninitialized object"));
  ASSERT_EQ(log.Records().size(), 1u);
  EXPECT_EQ(log.Records()[0].file, "cmm/inventory_update/cmm_peg_client");
}

TEST(TwoDigits, WritesAZeroBelowTen) {
  EXPECT_EQ(TwoDigits(3), "03");
  EXPECT_EQ(TwoDigits(0), "00");
  EXPECT_EQ(TwoDigits(10), "10");
  EXPECT_EQ(TwoDigits(123), "123");
}

TEST(NodeName, HasAZeroForBays1To9Only) {
  EXPECT_EQ(NodeName(1), "node01");
  EXPECT_EQ(NodeName(9), "node09");
  EXPECT_EQ(NodeName(0), "node0");
  EXPECT_EQ(NodeName(10), "node10");
  EXPECT_EQ(NodeName(-1), "node-1");
}

TEST(StatusName, IsThatOfDmtfOrNothing) {
  EXPECT_STREQ(StatusName(Pegasus::CIM_ERR_FAILED), "CIM_ERR_FAILED");
  EXPECT_STREQ(StatusName(Pegasus::CIM_ERR_METHOD_NOT_FOUND), "CIM_ERR_METHOD_NOT_FOUND");
  EXPECT_STREQ(StatusName(Pegasus::CIM_ERR_NO_SUCH_PROPERTY), "");
}

TEST(JobIdOf, CutsTheFirstKeyOutOfAReference) {
  EXPECT_EQ(JobIdOf("root/cimv2:CIM_ConcreteJob.InstanceID=\"JOB_17\""), "JOB_17");
  EXPECT_EQ(JobIdOf("CIM_ConcreteJob.InstanceID=\"JOB_17\",Name=\"n\""), "JOB_17");
}

TEST(JobIdOf, BeginsAtTheSecondCharacterWithoutAnEqualsSign) { EXPECT_EQ(JobIdOf("\"JOB_17\""), "JOB_17"); }

TEST(JobIdOf, RunsToTheEndWithoutAQuote) { EXPECT_EQ(JobIdOf("CIM_ConcreteJob.InstanceID='JOB_17"), "JOB_17"); }

TEST(JobIdOf, IsEmptyForTextsThatHoldNone) {
  EXPECT_EQ(JobIdOf(""), "");
  EXPECT_EQ(JobIdOf("x"), "");
  EXPECT_EQ(JobIdOf("InstanceID="), "");
  EXPECT_EQ(JobIdOf("InstanceID=\""), "");
}

}  // namespace
}  // namespace Orvane
