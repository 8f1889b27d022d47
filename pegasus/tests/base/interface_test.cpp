// What sources may and may not write against the foundation types. Code that compiles here must compile against the
// system's OpenPegasus as well, so what that refuses is refused here too; the compiler checks each line.
#define PEGASUS_PLATFORM_LINUX_X86_64_GNU
#define PEGASUS_HAS_SSL
#define PEGASUS_USE_EXPERIMENTAL_INTERFACES
#define PEGASUS_USE_DEPRECATED_INTERFACES
#include <Pegasus/Client/CIMClientException.h>
#include <Pegasus/Client/Linkage.h>
#include <Pegasus/Common/AcceptLanguageList.h>
#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMDateTime.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/ContentLanguageList.h>
#include <Pegasus/Common/UintArgs.h>
#include <gtest/gtest.h>

#include <iostream>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>

PEGASUS_NAMESPACE_BEGIN
/// Array members may be declared while their elements are incomplete.
struct HoldsIncompleteElements {
  const Array<CIMInstance>* instances;
  Array<CIMInstance> (*enumerate)(const Array<CIMParamValue>&);
};
PEGASUS_NAMESPACE_END

namespace interface {
PEGASUS_USING_STD;
PEGASUS_USING_PEGASUS;

template <typename... T>
using Void = void;

template <typename A, typename B, typename = void>
struct CanAdd : false_type {};
template <typename A, typename B>
struct CanAdd<A, B, Void<decltype(declval<A>() + declval<B>())>> : true_type {};

template <typename A, typename B, typename = void>
struct CanAddTo : false_type {};
template <typename A, typename B>
struct CanAddTo<A, B, Void<decltype(declval<A&>() += declval<B>())>> : true_type {};

template <typename A, typename B, typename = void>
struct CanCompare : false_type {};
template <typename A, typename B>
struct CanCompare<A, B, Void<decltype(declval<A>() == declval<B>()), decltype(declval<A>() != declval<B>())>>
    : true_type {};

template <typename T, typename = void>
struct CanStream : false_type {};
template <typename T>
struct CanStream<T, Void<decltype(declval<ostream&>() << declval<T>())>> : true_type {};

template <typename T, typename = void>
struct CanIterate : false_type {};
template <typename T>
struct CanIterate<T, Void<decltype(begin(declval<T&>()))>> : true_type {};

template <typename T, typename = void>
struct HasIsTimeStamp : false_type {};
template <typename T>
struct HasIsTimeStamp<T, Void<decltype(declval<T>().isTimeStamp())>> : true_type {};

using Text = const char (&)[2];

// Strings
static_assert(is_assignable_v<String&, Text> && is_convertible_v<const char*, String>);
static_assert(CanCompare<String, Text>::value && CanCompare<Text, String>::value);
static_assert(CanAdd<String, Text>::value && CanAdd<Text, String>::value && CanAdd<String, String>::value);
static_assert(!CanAddTo<String, Text>::value && !CanAddTo<String, String>::value && !CanAddTo<String, char>::value);
static_assert(!is_constructible_v<String, std::string> && !is_constructible_v<std::string, String>);
static_assert(!is_convertible_v<CString, std::string> && is_constructible_v<std::string, CString>);
static_assert(is_convertible_v<CString, const char*>);
static_assert(CanStream<String>::value && CanStream<CString>::value);
static_assert(!CanIterate<String>::value);

// Names
static_assert(!CanStream<CIMName>::value && !CanStream<CIMNamespaceName>::value);
static_assert(!is_assignable_v<CIMName&, Text> && !is_assignable_v<CIMNamespaceName&, Text>, "two ways lead there");
static_assert(!is_assignable_v<CIMName&, const char*> && !is_assignable_v<CIMNamespaceName&, const char*>);
static_assert(is_assignable_v<CIMName&, CIMName> && is_assignable_v<CIMName&, String>);
static_assert(is_assignable_v<CIMNamespaceName&, CIMNamespaceName> && is_assignable_v<CIMNamespaceName&, String>);
static_assert(is_convertible_v<const char*, CIMName> && is_convertible_v<String, CIMName>);
static_assert(CanCompare<CIMName, Text>::value && CanCompare<CIMNamespaceName, Text>::value);
static_assert(!is_constructible_v<CIMName, std::string> && !is_convertible_v<CIMName, String>);

// Arrays
static_assert(!CanIterate<Array<Uint16>>::value && !CanIterate<Array<String>>::value);
static_assert(is_constructible_v<Array<Uint16>, Uint32> && is_constructible_v<Array<Uint16>, Uint32, Uint16>);
static_assert(!is_constructible_v<Array<Uint16>, initializer_list<Uint16>>);

// Date-times
static_assert(is_constructible_v<CIMDateTime, int, bool> && is_convertible_v<String, CIMDateTime>);
static_assert(!HasIsTimeStamp<CIMDateTime>::value);

// Exceptions
static_assert(is_constructible_v<Exception, Text> && !is_default_constructible_v<Exception>);
static_assert(is_convertible_v<CIMStatusCode, int> && is_default_constructible_v<CIMException>);
static_assert(is_copy_constructible_v<CIMException> && is_copy_assignable_v<CIMException>);

// Numbers
static_assert(is_same_v<Uint64, unsigned long long> && is_same_v<Sint64, long long> && is_same_v<Boolean, bool>);
static_assert(PEG_NOT_FOUND == 4294967295U && is_same_v<decltype(PEG_NOT_FOUND), Uint32>);

TEST(Interface, TheShortFormsOfCallersWork) {
  const CIMException exception(CIM_ERR_NOT_FOUND);
  const CIMStatusCode code = exception.getCode();
  int number = 0;
  switch (code) {
    case CIM_ERR_NOT_FOUND:
      number = code;
      break;
    default:
      break;
  }
  EXPECT_EQ(number, 6);
  String text;
  text = "x";
  text.append("z");
  const std::string copied(text.getCString());
  EXPECT_EQ(copied, "xz");
  EXPECT_EQ(std::string((const char*)text.getCString()), "xz");
  CIMName name;
  name = CIMName("B");
  EXPECT_TRUE(name.equal("b"));
  const CIMDateTime interval(120, true);
  EXPECT_TRUE(interval.isInterval());
}

}  // namespace interface
