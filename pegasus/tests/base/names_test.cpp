// Names and namespace names: which texts are legal, what they become, and how they compare.
#include <Pegasus/Common/CIMName.h>
#include <gtest/gtest.h>

#include "base/name_access.h"
#include "thrown.h"
#include "vector_file.h"

namespace Pegasus {
namespace {

using test::Catch;
using test::ExpectedThrow;
using test::TextOf;
using test::Thrown;
using test::Utf8;
using test::Vector;

template <typename Name>
void ExpectName(const nlohmann::json& record) {
  const String input = TextOf(record.at("input"));
  EXPECT_EQ(Name::legal(input), record.at("legal").get<bool>());
  Name name;
  EXPECT_EQ(Catch([&] { name = Name(input); }), ExpectedThrow(record));
  EXPECT_EQ(Catch([&] { name = Name(static_cast<const char*>(input.getCString())); }), ExpectedThrow(record));
  EXPECT_EQ(Catch([&] { name = input; }), ExpectedThrow(record));
  if (record.contains("throws")) {
    EXPECT_TRUE(name.isNull());
    return;
  }
  EXPECT_EQ(Utf8(name.getString()), record.at("getString").get<std::string>());
  EXPECT_EQ(name.isNull(), record.at("isNull").get<bool>());
}

class NameVector : public testing::TestWithParam<Vector> {};
TEST_P(NameVector, IsAsRecorded) { ExpectName<CIMName>(GetParam().record); }
INSTANTIATE_TEST_SUITE_P(Names, NameVector, testing::ValuesIn(test::LoadVectors("names.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

class NamespaceVector : public testing::TestWithParam<Vector> {};
TEST_P(NamespaceVector, IsAsRecorded) { ExpectName<CIMNamespaceName>(GetParam().record); }
INSTANTIATE_TEST_SUITE_P(Namespaces, NamespaceVector, testing::ValuesIn(test::LoadVectors("namespaces.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

template <typename Name>
void ExpectComparison(const nlohmann::json& record) {
  bool equal = false;
  bool different = false;
  bool member = false;
  EXPECT_EQ(Catch([&] {
              const Name a(TextOf(record.at("a")));
              const Name b(TextOf(record.at("b")));
              equal = a == b;
              different = a != b;
              member = a.equal(b);
            }),
            ExpectedThrow(record));
  if (!record.contains("throws")) {
    EXPECT_EQ(equal, record.at("equal").get<bool>());
    EXPECT_EQ(different, !equal);
    EXPECT_EQ(member, equal);
  }
}

class NameComparison : public testing::TestWithParam<Vector> {};
TEST_P(NameComparison, IsAsRecorded) {
  const auto& record = GetParam().record;
  if (record.at("kind") == "CIMName") {
    ExpectComparison<CIMName>(record);
  } else {
    ASSERT_EQ(record.at("kind"), "CIMNamespaceName");
    ExpectComparison<CIMNamespaceName>(record);
  }
}
INSTANTIATE_TEST_SUITE_P(Pairs, NameComparison, testing::ValuesIn(test::LoadVectors("name_equal.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

TEST(Names, NullNamesAreEqualAndDifferFromOthers) {
  EXPECT_TRUE(CIMName() == CIMName());
  EXPECT_TRUE(CIMName() != CIMName("A"));
  EXPECT_TRUE(CIMNamespaceName() == CIMNamespaceName());
  EXPECT_TRUE(CIMNamespaceName() != CIMNamespaceName("root"));
}

TEST(Names, CompareWithTextThatIsCheckedFirst) {
  const CIMName name("Name");
  EXPECT_TRUE(name == "NAME");
  EXPECT_TRUE(name.equal("nAME"));
  EXPECT_EQ(Catch([&] { static_cast<void>(name == "1"); }),
            (Thrown{"InvalidNameException", "The CIM name is not valid: 1"}));
}

TEST(Names, ClearGivesTheNullName) {
  CIMName name("A");
  name.clear();
  EXPECT_TRUE(name.isNull());
  EXPECT_EQ(name.getString().size(), 0U);
  CIMNamespaceName nameSpace("root");
  nameSpace.clear();
  EXPECT_TRUE(nameSpace.isNull());
}

TEST(Names, KeepTheirValueWhenAnAssignmentFails) {
  CIMName name("A");
  EXPECT_EQ(Catch([&] { name = String("b c"); }).name, "InvalidNameException");
  EXPECT_EQ(Utf8(name.getString()), "A");
  CIMNamespaceName nameSpace("/root");
  EXPECT_EQ(Catch([&] { nameSpace = String("/"); }).name, "InvalidNamespaceNameException");
  EXPECT_EQ(Utf8(nameSpace.getString()), "root");
}

TEST(Names, AreUnlimitedInLength) {
  const std::string longName(100000, 'x');
  EXPECT_EQ(CIMName(longName.c_str()).getString().size(), 100000U);
}

TEST(Names, RefuseANullPointer) {
  const char* const nothing = nullptr;
  EXPECT_EQ(Catch([&] { CIMName name(nothing); }), (Thrown{"NullPointer", "null pointer"}));
  EXPECT_EQ(Catch([&] { CIMNamespaceName name(nothing); }), (Thrown{"NullPointer", "null pointer"}));
}

TEST(NamespaceNames, RefuseTheRestOfTheIllegalForms) {
  for (const char* text : {"/", "//", "root\\x", "a/1", "a/b c", "/1a"}) {
    EXPECT_FALSE(CIMNamespaceName::legal(text)) << text;
    EXPECT_EQ(Catch([&] { CIMNamespaceName name(text); }),
              (Thrown{"InvalidNamespaceNameException", std::string("invalid CIM namespace name: ") + text}));
  }
}

TEST(NamespaceNames, TheirExceptionIsNoInvalidNameException) {
  EXPECT_FALSE((std::is_base_of_v<InvalidNameException, InvalidNamespaceNameException>));
}

TEST(NameAccess, TakesCheckedTextsAsTheyAre) {
  EXPECT_EQ(Utf8(internal::NameAccess::MakeName("Name").getString()), "Name");
  EXPECT_TRUE(internal::NameAccess::MakeName(String()).isNull());
  EXPECT_EQ(Utf8(internal::NameAccess::MakeNamespaceName("root/a").getString()), "root/a");
}

}  // namespace
}  // namespace Pegasus
