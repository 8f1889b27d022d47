// What the types of values and objects accept and refuse at compile time, so that code written against them also
// compiles with another implementation of the interface.
#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>
#include <Pegasus/Common/CIMParamValue.h>
#include <Pegasus/Common/CIMProperty.h>
#include <Pegasus/Common/CIMPropertyList.h>
#include <Pegasus/Common/CIMValue.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

namespace Pegasus {
namespace {

template <typename T, typename = void>
struct CanGet : std::false_type {};
template <typename T>
struct CanGet<T, std::void_t<decltype(std::declval<const CIMValue&>().get(std::declval<T&>()))>> : std::true_type {};

static_assert(!std::is_constructible_v<CIMValue, std::string>);
static_assert(!std::is_constructible_v<CIMValue, unsigned long>);  // NOLINT(google-runtime-int)
static_assert(!std::is_constructible_v<CIMValue, std::size_t>);
static_assert(!std::is_constructible_v<CIMValue, long>);  // NOLINT(google-runtime-int)
static_assert(std::is_convertible_v<int, CIMValue>);
static_assert(std::is_convertible_v<unsigned, CIMValue>);
static_assert(std::is_convertible_v<String, CIMValue>);
static_assert(std::is_convertible_v<Array<Uint16>, CIMValue>);
static_assert(std::is_convertible_v<CIMInstance, CIMValue>);
static_assert(!CanGet<long>::value);  // NOLINT(google-runtime-int)
static_assert(!CanGet<std::string>::value);
static_assert(CanGet<int>::value);
static_assert(!std::is_constructible_v<CIMObjectPath, std::string>);
static_assert(std::is_convertible_v<String, CIMObjectPath>);
static_assert(!std::is_convertible_v<CIMObject, CIMInstance>);
static_assert(std::is_constructible_v<CIMInstance, CIMObject>);
static_assert(!std::is_convertible_v<CIMObject, CIMClass>);
static_assert(std::is_constructible_v<CIMClass, CIMObject>);
static_assert(std::is_convertible_v<CIMName, CIMInstance>);
static_assert(std::is_convertible_v<CIMInstance, CIMObject>);
static_assert(std::is_convertible_v<CIMClass, CIMObject>);
static_assert(std::is_convertible_v<CIMProperty, CIMConstProperty>);
static_assert(!std::is_convertible_v<CIMConstProperty, CIMProperty>);
static_assert(std::is_assignable_v<CIMConstProperty&, CIMProperty>);
static_assert(std::is_same_v<decltype(std::declval<const CIMInstance&>().getProperty(0)), CIMConstProperty>);
static_assert(std::is_same_v<decltype(std::declval<CIMInstance&>().getProperty(0)), CIMProperty>);
static_assert(std::is_convertible_v<Array<CIMName>, CIMPropertyList>);
static_assert(CIMKeyBinding::BOOLEAN == 0 && CIMKeyBinding::STRING == 1 && CIMKeyBinding::NUMERIC == 2 &&
              CIMKeyBinding::REFERENCE == 3);
static_assert(CIMTYPE_BOOLEAN == 0 && CIMTYPE_STRING == 12 && CIMTYPE_INSTANCE == 16);

TEST(Overloads, ALiteralIsABoolean) {
  const char* const literal = "text";
  const CIMValue value(literal);
  EXPECT_EQ(value.getType(), CIMTYPE_BOOLEAN);
  EXPECT_TRUE(value.toString() == "TRUE");
  const CIMProperty property(CIMName("a"), CIMValue(literal));
  EXPECT_EQ(property.getType(), CIMTYPE_BOOLEAN);
}

TEST(Overloads, NumbersKeepTheirType) {
  EXPECT_EQ(CIMValue(5).getType(), CIMTYPE_SINT32);
  EXPECT_EQ(CIMValue(5U).getType(), CIMTYPE_UINT32);
  EXPECT_EQ(CIMValue(5ULL).getType(), CIMTYPE_UINT64);
  EXPECT_EQ(CIMValue(0.5).getType(), CIMTYPE_REAL64);
  int read = 0;
  CIMValue(7).get(read);
  EXPECT_EQ(read, 7);
}

}  // namespace
}  // namespace Pegasus
