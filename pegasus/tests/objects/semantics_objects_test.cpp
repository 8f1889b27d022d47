// Recorded behaviour of values, paths, objects and the types of TLS, case by case: each case of the record is written
// out as the calls its name describes, and must print or throw what was recorded.
#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>
#include <Pegasus/Common/CIMParamValue.h>
#include <Pegasus/Common/CIMPropertyList.h>
#include <Pegasus/Common/CIMValue.h>
#include <Pegasus/Common/SSLContext.h>
#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>

#include "semantics_owner.h"
#include "thrown.h"
#include "vector_file.h"

namespace Pegasus {
namespace {

using test::SemanticsOwner;
using test::Utf8;
using test::Vector;

using Out = std::ostringstream;
using Case = std::function<void(Out&)>;

CIMInstance InstanceOf(const char* className) { return CIMInstance(CIMName(className)); }

CIMProperty PropertyOf(const char* name, const CIMValue& value) { return CIMProperty(CIMName(name), value); }

CIMInstance InstanceWith(const CIMProperty& property) {
  CIMInstance instance = InstanceOf("A");
  instance.addProperty(property);
  return instance;
}

Array<CIMName> Names(std::initializer_list<const char*> names) {
  Array<CIMName> list;
  for (const char* const name : names) {
    list.append(CIMName(name));
  }
  return list;
}

template <typename T>
T Read(const CIMValue& value, T before) {
  value.get(before);
  return before;
}

std::string TypeOf(const CIMValue& value) { return cimTypeToString(value.getType()); }

/// Case of a call that is recorded to throw.
template <typename Call>
Case Throwing(Call call) {
  return [call](Out&) { (void)call(); };
}

const std::map<std::string, Case>& ValueCases() {
  static const std::map<std::string, Case> kCases = {
      {"CIMValue() type/isArray/isNull/arraySize",
       [](Out& out) {
         const CIMValue value;
         out << TypeOf(value) << ' ' << value.isArray() << ' ' << value.isNull() << ' ' << value.getArraySize() << " ["
             << Utf8(value.toString()) << ']';
       }},
      {"CIMValue().get(Uint32)", Throwing([] { return Read<Uint32>(CIMValue(), 0); })},
      {"CIMValue().get(Boolean) with x=true before", [](Out& out) { out << Read<Boolean>(CIMValue(), true); }},
      {"null uint32 .get(Uint32) with x=77 before",
       [](Out& out) { out << Read<Uint32>(CIMValue(CIMTYPE_UINT32, false), 77); }},
      {"null string .get(String) with x=u before",
       [](Out& out) { out << '[' << Utf8(Read<String>(CIMValue(CIMTYPE_STRING, false), "u")) << ']'; }},
      {"null uint16[] .get(Array) with 1 elem before",
       [](Out& out) { out << Read(CIMValue(CIMTYPE_UINT16, true), Array<Uint16>(1, 5)).size(); }},
      {"null instance .get(CIMInstance)",
       [](Out& out) { out << Read(CIMValue(CIMTYPE_INSTANCE, false), CIMInstance()).isUninitialized(); }},
      {"null datetime .get",
       [](Out& out) { out << Utf8(Read(CIMValue(CIMTYPE_DATETIME, false), CIMDateTime()).toString()); }},
      {"CIMValue(type,array,size=3) uint16",
       [](Out& out) {
         const CIMValue value(CIMTYPE_UINT16, true, 3);
         out << value.isNull() << " size " << value.getArraySize() << " [" << Utf8(value.toString()) << ']';
       }},
      {"CIMValue set after construct changes type",
       [](Out& out) {
         CIMValue value(Uint32{5});
         value.set(String("x"));
         out << TypeOf(value) << ' ' << Utf8(value.toString());
       }},
      {"CIMValue setNullValue",
       [](Out& out) {
         CIMValue value(Uint32{5});
         value.setNullValue(CIMTYPE_STRING, true);
         out << TypeOf(value) << " arr " << value.isArray() << " null " << value.isNull();
       }},
      {"CIMValue copy then set",
       [](Out& out) {
         const CIMValue original(Uint32{5});
         CIMValue copy(original);
         copy.set(Uint32{6});
         out << Utf8(original.toString()) << ' ' << Utf8(copy.toString());
       }},
      {"CIMValue assign =",
       [](Out& out) {
         CIMValue original(Uint32{5});
         CIMValue copy;
         copy = original;
         original.set(Uint32{9});
         out << Utf8(original.toString()) << ' ' << Utf8(copy.toString());
       }},
      {"CIMValue null==null same type",
       [](Out& out) {
         const CIMValue null(CIMTYPE_UINT32, false);
         out << (null == CIMValue(CIMTYPE_UINT32, false)) << (null == CIMValue(CIMTYPE_UINT16, false));
       }},
      {"CIMValue() == CIMValue()", [](Out& out) { out << (CIMValue() == CIMValue()); }},
      {"CIMValue(\"literal\") overload taken", [](Out& out) { out << TypeOf(CIMValue(String("literal"))); }},
      {"CIMValue from const char* literal",
       [](Out& out) {
         const char* const literal = "literal";
         const CIMValue value(literal);
         out << TypeOf(value) << ' ' << Utf8(value.toString());
       }},
      {"CIMValue(5) int literal", [](Out& out) { out << TypeOf(CIMValue(5)); }},
      {"CIMValue(uninit CIMInstance)", Throwing([] { return CIMValue(CIMInstance()); })},
      {"CIMValue(uninit CIMObject)", Throwing([] { return CIMValue(CIMObject()); })},
      {"CIMValue array of uninit instance", Throwing([] { return CIMValue(Array<CIMInstance>(1)); })},
      {"CIMValue(class object) as instance type",
       [](Out& out) {
         const CIMValue value{CIMObject(CIMClass(CIMName("A")))};
         out << TypeOf(value) << ' ' << Utf8(value.toString());
       }},
      {"Array<CIMInstance>[0] on empty", Throwing([] { return Array<CIMInstance>()[0]; })},
  };
  return kCases;
}

const std::map<std::string, Case>& UninitializedCases() {
  static const std::map<std::string, Case> kCases = {
      {"CIMInstance() isUninitialized", [](Out& out) { out << CIMInstance().isUninitialized(); }},
      {"CIMInstance().getPath", Throwing([] { return CIMInstance().getPath(); })},
      {"CIMInstance().getClassName", Throwing([] { return CIMInstance().getClassName(); })},
      {"CIMInstance().findProperty", Throwing([] { return CIMInstance().findProperty(CIMName("A")); })},
      {"CIMInstance().clone", Throwing([] { return CIMInstance().clone(); })},
      {"CIMInstance().setPath", Throwing([] {
         CIMInstance().setPath(CIMObjectPath());
         return 0;
       })},
      {"CIMInstance().addProperty", Throwing([] { return CIMInstance().addProperty(PropertyOf("p", CIMValue(1))); })},
      {"CIMObject().toString", Throwing([] { return CIMObject().toString(); })},
      {"CIMObject().isClass", [](Out& out) { out << CIMObject().isClass(); }},
      {"CIMObject().getPath", Throwing([] { return CIMObject().getPath(); })},
      {"CIMProperty().getName", Throwing([] { return CIMProperty().getName(); })},
      {"CIMProperty().setValue", Throwing([] {
         CIMProperty().setValue(CIMValue());
         return 0;
       })},
      {"CIMParamValue().getParameterName", Throwing([] { return CIMParamValue().getParameterName(); })},
      {"CIMParamValue().getValue", Throwing([] { return CIMParamValue().getValue(); })},
      {"CIMParamValue().isTyped", Throwing([] { return CIMParamValue().isTyped(); })},
      {"CIMObjectPath() fields",
       [](Out& out) {
         const CIMObjectPath path;
         out << '[' << Utf8(path.getHost()) << "][" << Utf8(path.getNameSpace().getString()) << "]["
             << Utf8(path.getClassName().getString()) << "] keys " << path.getKeyBindings().size() << " toString ["
             << Utf8(path.toString()) << "] nsNull " << path.getNameSpace().isNull() << " classNull "
             << path.getClassName().isNull();
       }},
      {"CIMKeyBinding() name/type",
       [](Out& out) {
         const CIMKeyBinding key;
         out << key.getName().isNull() << ' ' << key.getType() << " [" << Utf8(key.getValue()) << ']';
       }},
      {"enum CIMKeyBinding::Type",
       [](Out& out) {
         out << CIMKeyBinding::BOOLEAN << CIMKeyBinding::STRING << CIMKeyBinding::NUMERIC << CIMKeyBinding::REFERENCE;
       }},
  };
  return kCases;
}

const std::map<std::string, Case>& ListCases() {
  static const std::map<std::string, Case> kCases = {
      {"CIMPropertyList() null/size",
       [](Out& out) { out << CIMPropertyList().isNull() << ' ' << CIMPropertyList().size(); }},
      {"CIMPropertyList(empty array)",
       [](Out& out) {
         const CIMPropertyList list{Array<CIMName>()};
         out << list.isNull() << ' ' << list.size();
       }},
      {"CIMPropertyList(A,B) index/toString/contains",
       [](Out& out) {
         const CIMPropertyList list(Names({"A", "B"}));
         out << list.size() << Utf8(list[1].getString()) << ' ' << Utf8(list.toString()) << ' '
             << list.contains(CIMName("a")) << ' ';
         out << Utf8(list[2].getString());
       }},
      {"CIMPropertyList dup names",
       [](Out& out) {
         out << CIMPropertyList(Names({"A", "A"})).size();
       }},
      {"CIMPropertyList null/empty toString",
       [](Out& out) {
         out << '[' << Utf8(CIMPropertyList().toString()) << "] [" << Utf8(CIMPropertyList(Array<CIMName>()).toString())
             << ']';
       }},
  };
  return kCases;
}

const std::map<std::string, Case>& PropertyCases() {
  static const std::map<std::string, Case> kCases = {
      {"CIMInstance setPath other class", Throwing([] {
         InstanceOf("CIM_Foo").setPath(CIMObjectPath("CIM_Bar.k=1"));
         return 0;
       })},
      {"CIMInstance setPath case-different class",
       [](Out& out) {
         CIMInstance instance = InstanceOf("CIM_Foo");
         instance.setPath(CIMObjectPath("cim_foo.k=1"));
         out << Utf8(instance.getPath().toString()) << ' ' << Utf8(instance.getClassName().getString());
       }},
      {"CIMInstance setPath full",
       [](Out& out) {
         CIMInstance instance = InstanceOf("CIM_Foo");
         instance.setPath(CIMObjectPath("//h/root/x:CIM_Foo.k=1"));
         out << Utf8(instance.getPath().toString());
       }},
      {"addProperty duplicate",
       Throwing([] { return InstanceWith(PropertyOf("P", CIMValue(1))).addProperty(PropertyOf("p", CIMValue(2))); })},
      {"addProperty stores reference to same property?",
       [](Out& out) {
         CIMProperty property = PropertyOf("P", CIMValue(1));
         CIMInstance instance = InstanceWith(property);
         property.setValue(CIMValue(2));
         out << Utf8(instance.getProperty(0).getValue().toString());
       }},
      {"add property already in another instance",
       [](Out& out) {
         CIMInstance first = InstanceWith(PropertyOf("P", CIMValue(1)));
         out << InstanceWith(first.getProperty(0)).getPropertyCount();
       }},
      {"findProperty case / missing",
       [](Out& out) {
         CIMInstance instance = InstanceWith(PropertyOf("Abc", CIMValue(1)));
         instance.addProperty(PropertyOf("Def", CIMValue(2)));
         out << instance.findProperty(CIMName("aBC")) << ' ' << instance.findProperty(CIMName("def")) << ' '
             << instance.findProperty(CIMName("x"));
       }},
      {"findProperty(CIMName())",
       [](Out& out) { out << InstanceWith(PropertyOf("P", CIMValue(1))).findProperty(CIMName()); }},
      {"getProperty const out of range", Throwing([] {
         const CIMInstance instance = InstanceWith(PropertyOf("P", CIMValue(1)));
         return instance.getProperty(1);
       })},
      {"getProperty(PEG_NOT_FOUND)",
       Throwing([] { return InstanceWith(PropertyOf("P", CIMValue(1))).getProperty(PEG_NOT_FOUND); })},
      {"removeProperty out of range", Throwing([] {
         InstanceWith(PropertyOf("P", CIMValue(1))).removeProperty(1);
         return 0;
       })},
      {"getProperty(0).setValue writes through",
       [](Out& out) {
         CIMInstance instance = InstanceWith(PropertyOf("P", CIMValue(1)));
         instance.getProperty(0).setValue(CIMValue(5));
         out << Utf8(instance.getProperty(0).getValue().toString());
       }},
      {"setValue scalar to array", Throwing([] {
         PropertyOf("P", CIMValue(Uint16{1})).setValue(CIMValue(Array<Uint16>(1)));
         return 0;
       })},
      {"setValue null same type",
       [](Out& out) {
         CIMProperty property = PropertyOf("P", CIMValue(Uint16{1}));
         property.setValue(CIMValue(CIMTYPE_UINT16, false));
         out << property.getValue().isNull();
       }},
      {"setValue CIMValue() on boolean prop",
       [](Out& out) {
         CIMProperty property = PropertyOf("P", CIMValue(true));
         property.setValue(CIMValue());
         out << property.getValue().isNull();
       }},
      {"setValue object on instance-typed", Throwing([] {
         PropertyOf("P", CIMValue(InstanceOf("A"))).setValue(CIMValue(CIMObject(InstanceOf("A"))));
         return 0;
       })},
      {"CIMProperty null name ctor", Throwing([] { return CIMProperty(CIMName(), CIMValue(1)); })},
      {"CIMProperty arraySize mismatch ctor",
       Throwing([] { return CIMProperty(CIMName("P"), CIMValue(Array<Uint16>(2)), 3); })},
      {"CIMProperty arraySize on scalar ctor",
       Throwing([] { return CIMProperty(CIMName("P"), CIMValue(Uint16{1}), 1); })},
      {"CIMProperty referenceClass on non-reference",
       Throwing([] { return CIMProperty(CIMName("P"), CIMValue(Uint16{1}), 0, CIMName("A")); })},
      {"CIMProperty reference array", Throwing([] { return PropertyOf("P", CIMValue(Array<CIMObjectPath>(1))); })},
      {"CIMProperty copy shares",
       [](Out& out) {
         const CIMProperty property = PropertyOf("P", CIMValue(1));
         CIMProperty copy(property);
         copy.setValue(CIMValue(2));
         out << Utf8(property.getValue().toString());
       }},
      {"CIMProperty clone separate",
       [](Out& out) {
         const CIMProperty property = PropertyOf("P", CIMValue(1));
         property.clone().setValue(CIMValue(2));
         out << Utf8(property.getValue().toString());
       }},
      {"CIMProperty setName while in instance", Throwing([] {
         CIMProperty property = PropertyOf("P", CIMValue(1));
         CIMInstance instance = InstanceWith(property);
         property.setName(CIMName("Q"));
         return instance;
       })},
  };
  return kCases;
}

const std::map<std::string, Case>& HandleCases() {
  static const std::map<std::string, Case> kCases = {
      {"CIMInstance copy shares",
       [](Out& out) {
         const CIMInstance instance = InstanceOf("A");
         CIMInstance copy(instance);
         copy.addProperty(PropertyOf("P", CIMValue(1)));
         out << instance.getPropertyCount();
       }},
      {"CIMInstance assign shares",
       [](Out& out) {
         const CIMInstance instance = InstanceOf("A");
         CIMInstance copy;
         copy = instance;
         copy.addProperty(PropertyOf("P", CIMValue(1)));
         out << instance.getPropertyCount();
       }},
      {"CIMInstance setPath on copy shared",
       [](Out& out) {
         const CIMInstance instance = InstanceOf("A");
         CIMInstance copy(instance);
         copy.setPath(CIMObjectPath("A.k=1"));
         out << Utf8(instance.getPath().toString());
       }},
      {"CIMInstance clone separate",
       [](Out& out) {
         const CIMInstance instance = InstanceOf("A");
         instance.clone().addProperty(PropertyOf("P", CIMValue(1)));
         out << instance.getPropertyCount();
       }},
      {"CIMInstance reassigned while copy held",
       [](Out& out) {
         CIMInstance instance = InstanceOf("A");
         const CIMInstance copy(instance);
         instance = InstanceOf("B");
         out << Utf8(copy.getClassName().getString());
       }},
      {"CIMObject(CIMInstance) shares",
       [](Out& out) {
         CIMInstance instance = InstanceOf("A");
         const CIMObject object(instance);
         instance.addProperty(PropertyOf("P", CIMValue(1)));
         out << object.getPropertyCount();
       }},
      {"CIMInstance(CIMObject inst) shares",
       [](Out& out) {
         CIMObject object(InstanceOf("A"));
         const CIMInstance instance(object);
         object.addProperty(PropertyOf("P", CIMValue(1)));
         out << instance.getPropertyCount();
       }},
      {"CIMInstance(CIMObject class)", Throwing([] { return CIMInstance(CIMObject(CIMClass(CIMName("A")))); })},
      {"CIMClass(CIMObject inst)", Throwing([] { return CIMClass(CIMObject(InstanceOf("A"))); })},
      {"CIMObject(CIMInstance())", [](Out& out) { out << CIMObject(CIMInstance()).isUninitialized(); }},
      {"CIMObject toString instance",
       [](Out& out) { out << Utf8(CIMObject(InstanceWith(PropertyOf("P", CIMValue(1U)))).toString()); }},
      {"CIMParamValue ctor",
       [](Out& out) {
         const CIMParamValue parameter("n", CIMValue(5));
         out << Utf8(parameter.getParameterName()) << ' ' << parameter.isTyped() << ' '
             << Utf8(parameter.getValue().toString());
       }},
      {"CIMParamValue empty name", Throwing([] { return CIMParamValue("", CIMValue(5)); })},
      {"CIMParamValue copy shares",
       [](Out& out) {
         const CIMParamValue parameter("n", CIMValue(5));
         CIMParamValue copy(parameter);
         copy.setIsTyped(false);
         out << parameter.isTyped();
       }},
      {"CIMParamValue setValue/setParameterName",
       [](Out& out) {
         CIMParamValue parameter("n", CIMValue(5));
         String name("m");
         CIMValue value(6);
         parameter.setParameterName(name);
         parameter.setValue(value);
         out << Utf8(parameter.getParameterName()) << Utf8(parameter.getValue().toString());
       }},
      {"CIMClass basics",
       [](Out& out) {
         const CIMClass cimClass(CIMName("A"), CIMName("B"));
         out << Utf8(cimClass.getClassName().getString()) << Utf8(cimClass.getSuperClassName().getString())
             << cimClass.getPropertyCount() << cimClass.getMethodCount() << cimClass.isAssociation()
             << cimClass.hasKeys();
       }},
  };
  return kCases;
}

const std::map<std::string, Case>& PathCases() {
  static const std::map<std::string, Case> kCases = {
      {"CIMObjectPath copy then set",
       [](Out& out) {
         const CIMObjectPath original("A.k=1");
         CIMObjectPath copy(original);
         copy.setHost("h");
         copy.setClassName(CIMName("B"));
         out << Utf8(original.toString()) << ' ' << Utf8(copy.toString());
       }},
      {"CIMObjectPath setHost empty ok",
       [](Out& out) {
         CIMObjectPath path("//h/root:A.k=1");
         path.setHost("");
         out << Utf8(path.toString());
       }},
      {"CIMObjectPath setNameSpace",
       [](Out& out) {
         CIMObjectPath path("A.k=1");
         path.setNameSpace(CIMNamespaceName("root/cimv2"));
         out << Utf8(path.toString());
       }},
      {"CIMObjectPath clear",
       [](Out& out) {
         CIMObjectPath path("//h/root:A.k=1");
         path.clear();
         out << '[' << Utf8(path.toString()) << ']';
       }},
      {"CIMObjectPath = String",
       [](Out& out) {
         CIMObjectPath path;
         path = String("root:A.k=1");
         out << Utf8(path.toString());
       }},
      {"CIMObjectPath == / != empty",
       [](Out& out) { out << (CIMObjectPath() == CIMObjectPath()) << (CIMObjectPath() != CIMObjectPath("A.k=1")); }},
      {"CIMObjectPath makeHashCode",
       [](Out& out) {
         out << (CIMObjectPath("root:A.k=1").makeHashCode() == CIMObjectPath("ROOT:a.K=1").makeHashCode());
       }},
      {"CIMKeyBinding equal(value)",
       [](Out& out) {
         out << CIMKeyBinding(CIMName("k"), "1", CIMKeyBinding::NUMERIC).equal(CIMValue(1U))
             << CIMKeyBinding(CIMName("k"), "x", CIMKeyBinding::STRING).equal(CIMValue(String("x")))
             << CIMKeyBinding(CIMName("k"), "1", CIMKeyBinding::STRING).equal(CIMValue(1U));
       }},
      {"CIMKeyBinding == numeric forms",
       [](Out& out) {
         out << (CIMKeyBinding(CIMName("k"), "16", CIMKeyBinding::NUMERIC) ==
                 CIMKeyBinding(CIMName("K"), "0x10", CIMKeyBinding::NUMERIC));
       }},
      {"CIMKeyBinding null value",
       [](Out& out) {
         const CIMKeyBinding key(CIMName("k"), CIMValue(CIMTYPE_UINT32, false));
         out << '[' << Utf8(key.getValue()) << ']' << key.getType();
       }},
  };
  return kCases;
}

const std::map<std::string, Case>& TlsCases() {
  static const std::map<std::string, Case> kCases = {
      {"SSLContext accessors",
       [](Out& out) {
         const SSLContext context("", nullptr);
         out << '[' << Utf8(context.getTrustStore()) << "][" << Utf8(context.getCertPath()) << "]["
             << Utf8(context.getKeyPath()) << "][" << Utf8(context.getCRLPath()) << "] verify "
             << context.isPeerVerificationEnabled() << " fn " << (context.getSSLCertificateVerifyFunction() != nullptr);
       }},
      {"SSLContext missing trust store",
       [](Out& out) {
         const SSLContext context("/nonexistent/trust.pem", nullptr);
         out << "ok";
       }},
      {"SSLContext missing random file",
       [](Out& out) {
         const SSLContext context("", nullptr, "/nonexistent/random");
         out << "ok";
       }},
      {"SSLCertificateInfo 5-arg",
       [](Out& out) {
         SSLCertificateInfo info("s", "i", 2, 18, 1);
         out << Utf8(info.getSubjectName()) << Utf8(info.getIssuerName()) << ' ' << info.getVersionNumber() << ' '
             << info.getSerialNumber() << ' ' << info.getErrorDepth() << ' ' << info.getErrorCode() << ' '
             << info.getResponseCode() << " [" << Utf8(info.getErrorString()) << "] "
             << Utf8(info.getNotBefore().toString()) << ' ' << Utf8(info.getNotAfter().toString()) << ' ';
         info.setErrorCode(0);
         info.setResponseCode(3);
         out << info.getErrorCode() << info.getResponseCode();
       }},
      {"SSLCertificateInfo V_* constants",
       [](Out& out) {
         using Info = SSLCertificateInfo;
         const std::initializer_list<std::pair<const char*, int>> kResults = {
             {"V_OK", Info::V_OK},
             {" ISSUER", Info::V_ERR_UNABLE_TO_GET_ISSUER_CERT},
             {" NOTYET", Info::V_ERR_CERT_NOT_YET_VALID},
             {" EXPIRED", Info::V_ERR_CERT_HAS_EXPIRED},
             {" D0SELF", Info::V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT},
             {" SELFCHAIN", Info::V_ERR_SELF_SIGNED_CERT_IN_CHAIN},
             {" LOCAL", Info::V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY},
             {" LEAF", Info::V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE},
             {" APP", Info::V_ERR_APPLICATION_VERIFICATION},
             {" CRLSIG", Info::V_ERR_CRL_SIGNATURE_FAILURE},
             {" REJ", Info::V_ERR_CERT_REJECTED},
             {" UNTR", Info::V_ERR_CERT_UNTRUSTED},
             {" KEYUSAGE", Info::V_ERR_KEYUSAGE_NO_CERTSIGN}};
         for (const auto& [name, value] : kResults) {
           out << name << '=' << value;
         }
       }},
  };
  return kCases;
}

const std::map<std::string, Case>& Cases() {
  static const std::map<std::string, Case> kCases = [] {
    std::map<std::string, Case> all;
    for (const auto* const group : {&ValueCases(), &UninitializedCases(), &ListCases(), &PropertyCases(),
                                    &HandleCases(), &PathCases(), &TlsCases()}) {
      all.insert(group->begin(), group->end());
    }
    return all;
  }();
  return kCases;
}

struct Expectation {
  test::Thrown thrown;
  std::string result;
};

/// A record without a defined outcome leaves it to us: the call is refused, as all other calls on empty handles are.
Expectation ExpectationOf(const nlohmann::json& record) {
  std::string result = record.at("result").get<std::string>();
  if (result.rfind("undefined (", 0) == 0) {
    return {{"UninitializedObjectException", "uninitialized object"}, {}};
  }
  return {test::ExpectedThrow(record), std::move(result)};
}

class SemanticsVector : public testing::TestWithParam<Vector> {};
TEST_P(SemanticsVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  const auto found = Cases().find(record.at("case").get<std::string>());
  ASSERT_NE(found, Cases().end()) << "a recorded case is not written out here";
  const Expectation expected = ExpectationOf(record);
  Out out;
  EXPECT_EQ(test::Catch([&] { found->second(out); }), expected.thrown);
  EXPECT_EQ(out.str(), expected.result);
}
INSTANTIATE_TEST_SUITE_P(Objects, SemanticsVector, testing::ValuesIn(test::LoadSemantics(SemanticsOwner::kObjects)),
                         test::VectorName<testing::TestParamInfo<Vector>>);

TEST(SemanticsOfObjects, EveryCaseIsOnRecord) {
  EXPECT_EQ(test::LoadSemantics(SemanticsOwner::kObjects).size(), Cases().size());
}

}  // namespace
}  // namespace Pegasus
