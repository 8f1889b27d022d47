// Object paths and key bindings against recorded behaviour, and the rules the records leave open: host forms, numbers,
// nested references, failed changes.
#include <Pegasus/Common/CIMObjectPath.h>
#include <Pegasus/Common/CIMValue.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

#include "objects/internal.h"
#include "thrown.h"
#include "value_maker.h"
#include "vector_file.h"

namespace Pegasus {
namespace {

using test::Catch;
using test::ExpectedThrow;
using test::TextOf;
using test::Thrown;
using test::Utf8;
using test::Vector;

const std::map<std::string, CIMKeyBinding::Type> kKeyTypes = {{"boolean", CIMKeyBinding::BOOLEAN},
                                                              {"string", CIMKeyBinding::STRING},
                                                              {"numeric", CIMKeyBinding::NUMERIC},
                                                              {"reference", CIMKeyBinding::REFERENCE}};

void ExpectPath(const CIMObjectPath& path, const nlohmann::json& record) {
  EXPECT_EQ(Utf8(path.getHost()), record.at("host").get<std::string>());
  EXPECT_EQ(Utf8(path.getNameSpace().getString()), record.at("namespace").get<std::string>());
  EXPECT_EQ(Utf8(path.getClassName().getString()), record.at("class").get<std::string>());
  EXPECT_EQ(Utf8(path.toString()), record.at("toString").get<std::string>());
  const auto& keys = record.at("keys");
  ASSERT_EQ(path.getKeyBindings().size(), keys.size());
  for (Uint32 i = 0; i < keys.size(); ++i) {
    const CIMKeyBinding& key = path.getKeyBindings()[i];
    EXPECT_EQ(Utf8(key.getName().getString()), keys[i].at("name").get<std::string>());
    EXPECT_EQ(Utf8(key.getValue()), keys[i].at("value").get<std::string>());
    EXPECT_EQ(key.getType(), kKeyTypes.at(keys[i].at("type").get<std::string>()));
  }
}

class PathParseVector : public testing::TestWithParam<Vector> {};
TEST_P(PathParseVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  const String input = TextOf(record.at("input"));
  CIMObjectPath path;
  CIMObjectPath assigned("CIM_Before.A=1");
  ASSERT_EQ(Catch([&] { path = CIMObjectPath(input); }), ExpectedThrow(record));
  ASSERT_EQ(Catch([&] { assigned = input; }), ExpectedThrow(record));
  if (record.contains("throws")) {
    EXPECT_EQ(Utf8(assigned.toString()), "CIM_Before.A=1");
    return;
  }
  ExpectPath(path, record);
  ExpectPath(assigned, record);
  EXPECT_TRUE(CIMObjectPath(path.toString()) == path);
}
INSTANTIATE_TEST_SUITE_P(Paths, PathParseVector, testing::ValuesIn(test::LoadVectors("paths_parse.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

class PathBuildVector : public testing::TestWithParam<Vector> {};
TEST_P(PathBuildVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  const auto& input = record.at("input");
  Array<CIMKeyBinding> keys;
  for (const auto& key : input.at("keys")) {
    keys.append(CIMKeyBinding(CIMName(TextOf(key.at("name"))), TextOf(key.at("value")),
                              kKeyTypes.at(key.at("type").get<std::string>())));
  }
  const String nameSpaceText = TextOf(input.at("namespace"));
  const String classText = TextOf(input.at("class"));
  const CIMNamespaceName nameSpace = nameSpaceText.size() != 0 ? CIMNamespaceName(nameSpaceText) : CIMNamespaceName();
  const CIMName className = classText.size() != 0 ? CIMName(classText) : CIMName();
  CIMObjectPath path;
  ASSERT_EQ(Catch([&] { path = CIMObjectPath(TextOf(input.at("host")), nameSpace, className, keys); }),
            ExpectedThrow(record));
  if (!record.contains("throws")) {
    ExpectPath(path, record);
  }
}
INSTANTIATE_TEST_SUITE_P(Paths, PathBuildVector, testing::ValuesIn(test::LoadVectors("paths_build.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

class PathEqualVector : public testing::TestWithParam<Vector> {};
TEST_P(PathEqualVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  CIMObjectPath a;
  CIMObjectPath b;
  ASSERT_EQ(Catch([&] {
              a = CIMObjectPath(TextOf(record.at("a")));
              b = CIMObjectPath(TextOf(record.at("b")));
            }),
            ExpectedThrow(record));
  if (record.contains("throws")) {
    return;
  }
  EXPECT_EQ(a == b, record.at("equal").get<bool>());
  EXPECT_EQ(b == a, record.at("equal").get<bool>());
  EXPECT_EQ(a != b, !record.at("equal").get<bool>());
  EXPECT_EQ(a.identical(b), record.at("identical").get<bool>());
  if (a == b) {
    EXPECT_EQ(a.makeHashCode(), b.makeHashCode());
  }
}
INSTANTIATE_TEST_SUITE_P(Paths, PathEqualVector, testing::ValuesIn(test::LoadVectors("paths_equal.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

class KeyFromValueVector : public testing::TestWithParam<Vector> {};
TEST_P(KeyFromValueVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  const CIMValue value = test::MakeValue(record.at("valueType").get<std::string>(), false, record.at("input"));
  CIMKeyBinding key;
  ASSERT_EQ(Catch([&] { key = CIMKeyBinding(CIMName("K"), value); }), ExpectedThrow(record));
  if (record.contains("throws")) {
    return;
  }
  EXPECT_EQ(key.getType(), kKeyTypes.at(record.at("keyType").get<std::string>()));
  EXPECT_EQ(Utf8(key.getValue()), record.at("value").get<std::string>());
}
INSTANTIATE_TEST_SUITE_P(Keys, KeyFromValueVector, testing::ValuesIn(test::LoadVectors("keybinding_from_value.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

class HostForm : public testing::TestWithParam<std::pair<const char*, bool>> {};
TEST_P(HostForm, IsAcceptedOrNot) {
  EXPECT_EQ(objects::Access::ValidHost(GetParam().first), GetParam().second) << GetParam().first;
}
INSTANTIATE_TEST_SUITE_P(Paths, HostForm,
                         testing::ValuesIn(std::vector<std::pair<const char*, bool>>{
                             {"", false},
                             {"cmm", true},
                             {"cmm-01.lab_2", true},
                             {"_x", true},
                             {"3com", true},
                             {"-cmm", false},
                             {"a.-b", false},
                             {"a..b", false},
                             {"a.", false},
                             {"cmm.1", false},
                             {"123", false},
                             {"10.0.0.255", true},
                             {"10.0.0.256", false},
                             {"10.0.0", false},
                             {"10.0.0.1:65535", true},
                             {"10.0.0.1:65536", false},
                             {"cmm:", true},
                             {"cmm:1a", false},
                             {":5989", false},
                             {"cmm:99999999999999999999", false},
                             {"[::1]", true},
                             {"[::1]:5989", true},
                             {"[::1]5989", false},
                             {"[::1", false},
                             {"::1", false},
                             {"[fe80::1]", false},
                             {"[fe80::1%eth0]", true},
                             {"[fe80::1%]", false},
                             {"[2001:db8::1]", true},
                             {"[1.2.3.4]", false},
                             {"h\xC3\xB6st", false}}));

class KeyNumberForm : public testing::TestWithParam<std::pair<const char*, bool>> {};
TEST_P(KeyNumberForm, IsAcceptedOrNot) {
  const std::string text = std::string("C.K=") + GetParam().first;
  EXPECT_EQ(Catch([&] { CIMObjectPath path(text.c_str()); }).name.empty(), GetParam().second) << text;
}
INSTANTIATE_TEST_SUITE_P(Paths, KeyNumberForm,
                         testing::ValuesIn(std::vector<std::pair<const char*, bool>>{{"0", true},
                                                                                     {"-1", true},
                                                                                     {"-", false},
                                                                                     {"00", false},
                                                                                     {"0x", false},
                                                                                     {"-0x10", true},
                                                                                     {"0xffffffffffffffff", true},
                                                                                     {"0x10000000000000000", false},
                                                                                     {"-9223372036854775809", false},
                                                                                     {"5.", false},
                                                                                     {"1 ", false},
                                                                                     {"--1", false}}));

TEST(Path, ReferenceKeysAreNormalisedWhenParsed) {
  const CIMObjectPath path("A.R=\"B.y=1,x=2\"");
  EXPECT_EQ(path.getKeyBindings()[0].getType(), CIMKeyBinding::REFERENCE);
  EXPECT_EQ(Utf8(path.getKeyBindings()[0].getValue()), "B.x=2,y=1");
  EXPECT_EQ(CIMObjectPath("A.R=\"B.c=xyz\"").getKeyBindings()[0].getType(), CIMKeyBinding::STRING);
}

TEST(Path, NestedReferencesRoundTrip) {
  CIMObjectPath path("Leaf.K=\"q\\\"\\\\\"");
  for (const char* className : {"One", "Two", "Three"}) {
    Array<CIMKeyBinding> keys;
    keys.append(CIMKeyBinding(CIMName("R"), CIMValue(path)));
    path = CIMObjectPath(String(), CIMNamespaceName(), CIMName(className), keys);
    EXPECT_TRUE(CIMObjectPath(path.toString()) == path);
    EXPECT_EQ(Utf8(CIMObjectPath(path.toString()).toString()), Utf8(path.toString()));
  }
}

TEST(Path, KeysOfOneNameKeepTheirOrder) {
  EXPECT_EQ(Utf8(CIMObjectPath("A.k=2,K=1,a=3,k=0").toString()), "A.a=3,k=2,K=1,k=0");
}

TEST(Path, SetKeyBindingsSortsAndChecksReferences) {
  CIMObjectPath path("A.k=1");
  Array<CIMKeyBinding> keys;
  keys.append(CIMKeyBinding(CIMName("b"), String("1"), CIMKeyBinding::STRING));
  keys.append(CIMKeyBinding(CIMName("A"), String("2"), CIMKeyBinding::STRING));
  path.setKeyBindings(keys);
  EXPECT_EQ(Utf8(path.toString()), "A.A=\"2\",b=\"1\"");
  EXPECT_EQ(Utf8(keys[0].getName().getString()), "b");
  keys.append(CIMKeyBinding(CIMName("c"), String("no path"), CIMKeyBinding::REFERENCE));
  EXPECT_EQ(Catch([&] { path.setKeyBindings(keys); }).name, "MalformedObjectNameException");
  EXPECT_EQ(Utf8(path.toString()), "A.A=\"2\",b=\"1\"");
}

TEST(Path, FailedSetHostKeepsTheHost) {
  CIMObjectPath path("//h/root:A");
  EXPECT_EQ(Catch([&] { path.setHost("bad host"); }),
            (Thrown{"MalformedObjectNameException", "malformed object name: bad host, reason:\"invalid hostname\""}));
  EXPECT_EQ(Utf8(path.getHost()), "h");
}

TEST(Path, BooleanKeysCompareIgnoringCaseAndNumbersByValue) {
  const CIMName name("k");
  EXPECT_TRUE(CIMKeyBinding(name, String("true"), CIMKeyBinding::BOOLEAN) ==
              CIMKeyBinding(name, String("TRUE"), CIMKeyBinding::BOOLEAN));
  EXPECT_TRUE(CIMObjectPath("A.k=-16") == CIMObjectPath("A.k=-0x10"));
  EXPECT_FALSE(CIMObjectPath("A.k=-16") == CIMObjectPath("A.k=16"));
}

TEST(Path, KeyFromArrayIsRefused) {
  EXPECT_EQ(Catch([] { CIMKeyBinding key(CIMName("k"), CIMValue(Array<Uint16>(1, 1))); }),
            (Thrown{"TypeMismatchException", "type mismatch"}));
}

}  // namespace
}  // namespace Pegasus
