// CIM values against recorded behaviour: kind and text of a value, which get() accepts it, equality; and what the
// records leave open about embedded objects and arrays.
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>
#include <Pegasus/Common/CIMValue.h>
#include <gtest/gtest.h>

#include <string>

#include "objects/internal.h"
#include "objects/value_content.h"
#include "thrown.h"
#include "value_maker.h"
#include "vector_file.h"

namespace Pegasus {
namespace {

using test::Catch;
using test::ExpectedThrow;
using test::MakeValue;
using test::Thrown;
using test::Utf8;
using test::Vector;

const Thrown kMismatch{"TypeMismatchException", "type mismatch"};

class ValueVector : public testing::TestWithParam<Vector> {};
TEST_P(ValueVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  CIMValue value;
  ASSERT_EQ(Catch([&] { value = MakeValue(record); }), ExpectedThrow(record));
  if (record.contains("throws")) {
    return;
  }
  EXPECT_EQ(value.isNull(), record.at("isNull").get<bool>());
  EXPECT_EQ(value.isArray(), record.at("isArray").get<bool>());
  EXPECT_STREQ(cimTypeToString(value.getType()), record.at("cimType").get<std::string>().c_str());
  EXPECT_EQ(value.getArraySize(), record.at("arraySize").get<Uint32>());
  EXPECT_EQ(Utf8(value.toString()), record.at("toString").get<std::string>());
}
INSTANTIATE_TEST_SUITE_P(Values, ValueVector, testing::ValuesIn(test::LoadVectors("values.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

class ValueGetVector : public testing::TestWithParam<Vector> {};
TEST_P(ValueGetVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  const CIMValue value = MakeValue(record);
  for (const auto& target : record.at("getSucceedsFor")) {
    EXPECT_EQ(Catch([&] { test::GetAs(value, target); }), Thrown()) << target;
  }
  ASSERT_EQ(record.at("otherwiseThrows").size(), 1U);
  const auto& expected = record.at("otherwiseThrows").at(0);
  for (const auto& target : record.at("throwsFor")) {
    EXPECT_EQ(Catch([&] { test::GetAs(value, target); }),
              (Thrown{expected.at("class").get<std::string>(), expected.at("message").get<std::string>()}))
        << target;
  }
}
INSTANTIATE_TEST_SUITE_P(Values, ValueGetVector, testing::ValuesIn(test::LoadVectors("value_get.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

class ValueEqualVector : public testing::TestWithParam<Vector> {};
TEST_P(ValueEqualVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  const CIMValue a = MakeValue(record.at("a"));
  const CIMValue b = MakeValue(record.at("b"));
  EXPECT_EQ(a == b, record.at("equal").get<bool>());
  EXPECT_EQ(a != b, !record.at("equal").get<bool>());
  EXPECT_EQ(a.equal(b), record.at("equal").get<bool>());
  EXPECT_EQ(a.typeCompatible(b), record.at("typeCompatible").get<bool>());
}
INSTANTIATE_TEST_SUITE_P(Values, ValueEqualVector, testing::ValuesIn(test::LoadVectors("value_equal.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

TEST(Value, ClonesInstancesOnTheWayIn) {
  CIMInstance source(CIMName("CIM_Foo"));
  const CIMValue value(source);
  source.addProperty(CIMProperty(CIMName("A"), CIMValue(1U)));
  CIMInstance read;
  value.get(read);
  EXPECT_EQ(read.getPropertyCount(), 0U);
}

TEST(Value, ClonesInstancesOnTheWayOut) {
  const CIMValue value{CIMInstance(CIMName("CIM_Foo"))};
  CIMInstance read;
  value.get(read);
  read.addProperty(CIMProperty(CIMName("A"), CIMValue(1U)));
  value.get(read);
  EXPECT_EQ(read.getPropertyCount(), 0U);
}

TEST(Value, ClonesInstancesInsideArraysBothWays) {
  Array<CIMInstance> source;
  source.append(CIMInstance(CIMName("CIM_Foo")));
  const CIMValue value(source);
  source[0].addProperty(CIMProperty(CIMName("A"), CIMValue(1U)));
  Array<CIMInstance> read;
  value.get(read);
  EXPECT_EQ(read[0].getPropertyCount(), 0U);
  read[0].addProperty(CIMProperty(CIMName("A"), CIMValue(1U)));
  value.get(read);
  EXPECT_EQ(read[0].getPropertyCount(), 0U);
}

TEST(Value, ClonesPropertiesOfEmbeddedInstances) {
  CIMProperty property(CIMName("A"), CIMValue(1U));
  CIMInstance source(CIMName("CIM_Foo"));
  source.addProperty(property);
  const CIMValue value(source);
  property.setValue(CIMValue(2U));
  CIMInstance read;
  value.get(read);
  EXPECT_EQ(Utf8(read.getProperty(0).getValue().toString()), "1");
}

TEST(Value, FailedSetKeepsTheValue) {
  CIMValue value(5U);
  EXPECT_EQ(Catch([&] { value.set(CIMInstance()); }), (Thrown{"UninitializedObjectException", "uninitialized object"}));
  EXPECT_EQ(Utf8(value.toString()), "5");
  EXPECT_EQ(value.getType(), CIMTYPE_UINT32);
}

TEST(Value, ArraysAreIndependentOfTheirSource) {
  Array<Uint16> source(1, 5);
  const CIMValue value(source);
  source[0] = 6;
  EXPECT_EQ(Utf8(value.toString()), "5 ");
  value.get(source);
  source[0] = 7;
  EXPECT_EQ(Utf8(value.toString()), "5 ");
}

TEST(Value, EmptyArrayIsNotNull) {
  const CIMValue value{Array<String>()};
  EXPECT_FALSE(value.isNull());
  EXPECT_EQ(value.getArraySize(), 0U);
  EXPECT_FALSE(value == CIMValue(CIMTYPE_STRING, true));
}

TEST(Value, ClearGivesANullBoolean) {
  CIMValue value(Array<Uint16>(2, 1));
  value.clear();
  EXPECT_TRUE(value.isNull());
  EXPECT_FALSE(value.isArray());
  EXPECT_EQ(value.getType(), CIMTYPE_BOOLEAN);
}

TEST(Value, ArraysOfDifferentLengthOrContentDiffer) {
  EXPECT_FALSE(CIMValue(Array<Uint16>(2, 1)) == CIMValue(Array<Uint16>(3, 1)));
  EXPECT_FALSE(CIMValue(Array<Uint16>(2, 1)) == CIMValue(Array<Uint16>(2, 2)));
  EXPECT_TRUE(CIMValue(Array<Uint16>(2, 1)) == CIMValue(Array<Uint16>(2, 1)));
}

TEST(Value, ComparingAnIntervalWithATimestampThrows) {
  const CIMValue interval(CIMDateTime(120, true));
  const CIMValue timestamp(CIMDateTime(0, false));
  EXPECT_EQ(Catch([&] { (void)(interval == timestamp); }).name, "TypeMismatchException");
}

TEST(Value, OfTheFirstHalfOfASurrogatePairHasNoText) {
  const auto text = [](Uint16 unit) { return Utf8(CIMValue(Char16(unit)).toString()); };
  EXPECT_EQ(text(0xD7FF), "\xED\x9F\xBF");
  EXPECT_EQ(text(0xD800), "");
  EXPECT_EQ(text(0xDBFF), "");
  EXPECT_EQ(text(0xDC00), "\xEF\xBF\xBD");
  EXPECT_EQ(text(0xDFFF), "\xEF\xBF\xBD");
  EXPECT_EQ(text(0xE000), "\xEE\x80\x80");
  Char16 read;
  CIMValue(Char16(0xD800)).get(read);
  EXPECT_EQ(Uint16(read), 0xD800);
}

TEST(Value, DoesNotWiden) {
  Uint32 wide = 3;
  EXPECT_EQ(Catch([&] { CIMValue(Uint16{1}).get(wide); }), kMismatch);
  EXPECT_EQ(wide, 3U);
}

TEST(ValueAccess, TakesContentOverWithoutCopies) {
  CIMInstance instance(CIMName("CIM_Foo"));
  const CIMValue value = objects::Access::MakeInstanceValue(std::move(instance));
  EXPECT_TRUE(instance.isUninitialized());  // NOLINT(bugprone-use-after-move): the emptiness is the promise
  EXPECT_EQ(value.getType(), CIMTYPE_INSTANCE);
  const auto* const held = objects::Access::Peek<CIMInstance>(value);
  ASSERT_NE(held, nullptr);
  EXPECT_EQ(Utf8(held->getClassName().getString()), "CIM_Foo");
  EXPECT_EQ(objects::Access::Peek<CIMInstance>(CIMValue(CIMTYPE_INSTANCE, false)), nullptr);
  EXPECT_EQ(objects::Access::MakeStringValue(String("x")), CIMValue(String("x")));
  EXPECT_EQ(objects::Access::MakeReferenceValue(CIMObjectPath("A.k=1")), CIMValue(CIMObjectPath("A.k=1")));
  EXPECT_EQ(objects::Access::MakeArrayValue(Array<Uint16>(2, 7)), CIMValue(Array<Uint16>(2, 7)));
}

}  // namespace
}  // namespace Pegasus
