// What instances, properties, classes and their handles do beyond recorded behaviour: empty handles, sharing and
// cloning, the rules of names and values, long lists of properties.
#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>
#include <Pegasus/Common/CIMParamValue.h>
#include <Pegasus/Common/CIMPropertyList.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "thrown.h"

namespace Pegasus {
namespace {

using test::Catch;
using test::Thrown;
using test::Utf8;

const Thrown kUninitialized{"UninitializedObjectException", "uninitialized object"};
const Thrown kMismatch{"TypeMismatchException", "type mismatch"};
const Thrown kOutOfBounds{"IndexOutOfBoundsException", "index out of bounds"};
const Thrown kFrozenName{"Exception", "Attempted to change the name of a property already in a container."};

CIMInstance Foo() { return CIMInstance(CIMName("CIM_Foo")); }

CIMProperty Number(const char* name, Uint32 number = 1) { return CIMProperty(CIMName(name), CIMValue(number)); }

CIMInstance FooWith(std::initializer_list<const char*> names) {
  CIMInstance instance = Foo();
  for (const char* const name : names) {
    instance.addProperty(Number(name));
  }
  return instance;
}

template <typename Object>
std::string PropertyNames(const Object& object) {
  std::string names;
  for (Uint32 i = 0; i < object.getPropertyCount(); ++i) {
    names += Utf8(object.getProperty(i).getName().getString()) + ' ';
  }
  return names;
}

CIMProperty KeyProperty(const char* name, Uint32 number) {
  CIMProperty property = Number(name, number);
  property.addQualifier(CIMQualifier(CIMName("key"), CIMValue(true)));
  return property;
}

// Empty handles.

template <typename Object>
class EmptyObject : public testing::Test {};
using ObjectTypes = testing::Types<CIMInstance, CIMObject, CIMClass>;
TYPED_TEST_SUITE(EmptyObject, ObjectTypes, );

TYPED_TEST(EmptyObject, RefusesEveryCall) {
  TypeParam empty;
  const TypeParam& constant = empty;
  EXPECT_EQ(Catch([&] { (void)empty.getClassName(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getPath(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.setPath(CIMObjectPath("A")); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.addProperty(Number("A")); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.findProperty(CIMName("A")); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.findProperty(CIMName()); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getProperty(0); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)constant.getProperty(0); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.removeProperty(0); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getPropertyCount(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.addQualifier(CIMQualifier(CIMName("Q"), CIMValue(true))); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.findQualifier(CIMName("Q")); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getQualifier(0); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.removeQualifier(0); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getQualifierCount(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.clone(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.identical(empty); }), kUninitialized);
}

TYPED_TEST(EmptyObject, MayBeCopiedAndAssigned) {
  const TypeParam empty;
  TypeParam copy(empty);
  copy = empty;
  EXPECT_TRUE(copy.isUninitialized());
}

TEST(EmptyHandle, OfAnObjectIsNeitherClassNorInstance) {
  EXPECT_FALSE(CIMObject().isClass());
  EXPECT_FALSE(CIMObject().isInstance());
}

TEST(EmptyHandle, OfAPropertyRefusesEveryCall) {
  CIMProperty empty;
  EXPECT_TRUE(empty.isUninitialized());
  EXPECT_TRUE(CIMProperty(empty).isUninitialized());
  EXPECT_EQ(Catch([&] { (void)empty.getName(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getValue(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getType(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.isArray(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getArraySize(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getReferenceClassName(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getClassOrigin(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getPropagated(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.setName(CIMName("A")); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.setValue(CIMValue()); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.setClassOrigin(CIMName("A")); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.setPropagated(true); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.clone(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)CIMConstProperty(empty).getName(); }), kUninitialized);
}

TEST(EmptyHandle, OfAParameterRefusesEveryCall) {
  CIMParamValue empty;
  String name("n");
  CIMValue value(1);
  EXPECT_TRUE(empty.isUninitialized());
  EXPECT_TRUE(CIMParamValue(empty).isUninitialized());
  EXPECT_EQ(Catch([&] { (void)empty.getParameterName(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.getValue(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.isTyped(); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.setParameterName(name); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.setValue(value); }), kUninitialized);
  EXPECT_EQ(Catch([&] { empty.setIsTyped(true); }), kUninitialized);
  EXPECT_EQ(Catch([&] { (void)empty.clone(); }), kUninitialized);
}

TEST(EmptyHandle, CannotBecomePartOfAnInstance) {
  CIMInstance instance = Foo();
  EXPECT_EQ(Catch([&] { instance.addProperty(CIMProperty()); }), kUninitialized);
  EXPECT_EQ(instance.getPropertyCount(), 0U);
}

TEST(EmptyHandle, CannotBeCastToAnInstanceOrClass) {
  const Thrown failed{"DynamicCastFailedException", "dynamic cast failed"};
  EXPECT_EQ(Catch([] { (void)CIMInstance(CIMObject()); }), failed);
  EXPECT_EQ(Catch([] { (void)CIMClass(CIMObject()); }), failed);
}

// Sharing and cloning.

TEST(Sharing, ObjectsAndClassesShareLikeInstances) {
  const CIMClass cimClass(CIMName("CIM_Foo"));
  CIMClass copy(cimClass);
  copy.addProperty(Number("A"));
  CIMObject object(cimClass);
  object.addProperty(Number("B"));
  EXPECT_EQ(PropertyNames(cimClass), "A B ");
  EXPECT_TRUE(object.isClass());
  object.setPath(CIMObjectPath("cim_foo"));
  EXPECT_EQ(Utf8(cimClass.getClassName().getString()), "cim_foo");
}

TEST(Sharing, ClonesOfInstancesHaveTheirOwnProperties) {
  CIMInstance instance = FooWith({"A", "B"});
  instance.setPath(CIMObjectPath("CIM_Foo.A=1"));
  CIMInstance clone = instance.clone();
  EXPECT_TRUE(clone.identical(instance));
  clone.getProperty(0).setValue(CIMValue(9U));
  clone.removeProperty(1);
  clone.setPath(CIMObjectPath("CIM_Foo.A=9"));
  EXPECT_EQ(PropertyNames(instance), "A B ");
  EXPECT_EQ(Utf8(instance.getProperty(0).getValue().toString()), "1");
  EXPECT_EQ(Utf8(instance.getPath().toString()), "CIM_Foo.A=1");
  EXPECT_FALSE(clone.identical(instance));
}

TEST(Sharing, ClonesOfClassesHaveTheirOwnParts) {
  CIMClass cimClass(CIMName("CIM_Foo"), CIMName("CIM_Base"));
  cimClass.addProperty(KeyProperty("A", 1));
  CIMClass clone = cimClass.clone();
  clone.setSuperClassName(CIMName("CIM_Other"));
  clone.getProperty(0).removeQualifier(0);
  EXPECT_EQ(Utf8(cimClass.getSuperClassName().getString()), "CIM_Base");
  EXPECT_TRUE(cimClass.hasKeys());
  EXPECT_FALSE(clone.hasKeys());
}

TEST(Sharing, ClonesOfParametersAreIndependent) {
  const CIMParamValue parameter("n", CIMValue(5));
  CIMParamValue clone = parameter.clone();
  CIMValue value(6);
  clone.setValue(value);
  clone.setIsTyped(false);
  EXPECT_EQ(Utf8(parameter.getValue().toString()), "5");
  EXPECT_TRUE(parameter.isTyped());
}

TEST(Sharing, OnePropertyMayBeInSeveralInstances) {
  CIMProperty property = Number("A");
  CIMInstance first = Foo();
  CIMInstance second = Foo();
  first.addProperty(property);
  second.addProperty(property);
  first.getProperty(0).setValue(CIMValue(7U));
  EXPECT_EQ(Utf8(second.getProperty(0).getValue().toString()), "7");
  first.removeProperty(0);
  EXPECT_EQ(Catch([&] { property.setName(CIMName("B")); }), kFrozenName);
  second.removeProperty(0);
  EXPECT_EQ(Catch([&] { property.setName(CIMName("B")); }), Thrown());
  EXPECT_EQ(Utf8(property.getName().getString()), "B");
}

TEST(Sharing, ArraysCopyHandles) {
  Array<CIMInstance> instances(1, Foo());
  Array<CIMInstance> copy(instances);
  copy[0].addProperty(Number("A"));
  EXPECT_EQ(instances[0].getPropertyCount(), 1U);
}

// Properties.

TEST(Property, OutlivesItsInstanceAndMayThenBeRenamed) {
  CIMProperty property = Number("A");
  {
    CIMInstance instance = Foo();
    instance.addProperty(property);
    EXPECT_EQ(Catch([&] { property.setName(CIMName("B")); }), kFrozenName);
  }
  property.setName(CIMName("B"));
  EXPECT_EQ(Utf8(property.getName().getString()), "B");
}

TEST(Property, CloneOfAContainedPropertyMayBeRenamed) {
  CIMInstance instance = FooWith({"A"});
  CIMProperty clone = instance.getProperty(0).clone();
  clone.setName(CIMName("B"));
  instance.addProperty(clone);
  EXPECT_EQ(PropertyNames(instance), "A B ");
}

TEST(Property, RefusesANullName) {
  CIMProperty property = Number("A");
  EXPECT_EQ(Catch([&] { property.setName(CIMName()); }), kUninitialized);
  EXPECT_EQ(Utf8(property.getName().getString()), "A");
}

TEST(Property, KeepsItsValueWhenANewOneDoesNotFit) {
  CIMProperty property = Number("A", 5);
  EXPECT_EQ(Catch([&] { property.setValue(CIMValue(Uint16{1})); }), kMismatch);
  EXPECT_EQ(Catch([&] { property.setValue(CIMValue()); }), kMismatch);
  EXPECT_EQ(Catch([&] { property.setValue(CIMValue(CIMTYPE_UINT32, true)); }), kMismatch);
  EXPECT_EQ(Utf8(property.getValue().toString()), "5");
}

TEST(Property, KeepsWhatItWasMadeOf) {
  const CIMProperty array(CIMName("A"), CIMValue(Array<Uint16>(2, 7)), 2, CIMName(), CIMName("CIM_Origin"), true);
  EXPECT_TRUE(array.isArray());
  EXPECT_EQ(array.getArraySize(), 2U);
  EXPECT_EQ(array.getType(), CIMTYPE_UINT16);
  EXPECT_EQ(Utf8(array.getClassOrigin().getString()), "CIM_Origin");
  EXPECT_TRUE(array.getPropagated());
  const CIMProperty reference(CIMName("R"), CIMValue(CIMObjectPath("A.k=1")), 0, CIMName("A"));
  EXPECT_EQ(Utf8(reference.getReferenceClassName().getString()), "A");
  EXPECT_TRUE(reference.clone().identical(reference));
}

// Instances.

TEST(Instance, HasAPathOfItsClassAtFirst) { EXPECT_EQ(Utf8(Foo().getPath().toString()), "CIM_Foo"); }

TEST(Instance, RefusesANullClassName) {
  EXPECT_EQ(Catch([] { (void)CIMInstance(CIMName()); }), kUninitialized);
}

TEST(Instance, KeepsItsPathWhenANewOneDoesNotFit) {
  CIMInstance instance = Foo();
  EXPECT_EQ(Catch([&] { instance.setPath(CIMObjectPath("CIM_Bar.k=1")); }), kMismatch);
  EXPECT_EQ(Catch([&] { instance.setPath(CIMObjectPath()); }), kMismatch);
  EXPECT_EQ(Utf8(instance.getPath().toString()), "CIM_Foo");
}

TEST(Instance, KeepsTheOrderOfItsProperties) {
  CIMInstance instance = FooWith({"Z", "a", "M", "b"});
  EXPECT_EQ(PropertyNames(instance), "Z a M b ");
  instance.removeProperty(1);
  EXPECT_EQ(PropertyNames(instance), "Z M b ");
  EXPECT_EQ(instance.findProperty(CIMName("B")), 2U);
  EXPECT_EQ(instance.findProperty(CIMName("a")), PEG_NOT_FOUND);
  instance.addProperty(Number("A"));
  EXPECT_EQ(PropertyNames(instance), "Z M b A ");
}

TEST(Instance, RefusesASecondPropertyOfOneNameAndStaysAsItWas) {
  CIMInstance instance = FooWith({"Name"});
  EXPECT_EQ(Catch([&] { instance.addProperty(Number("NAME", 2)); }),
            (Thrown{"AlreadyExistsException", "already exists: property \"NAME\""}));
  EXPECT_EQ(instance.getPropertyCount(), 1U);
  EXPECT_EQ(Utf8(instance.getProperty(0).getValue().toString()), "1");
}

TEST(Instance, RefusesPropertiesThatAreNotThere) {
  CIMInstance instance = FooWith({"A"});
  for (const Uint32 index : {1U, PEG_NOT_FOUND}) {
    EXPECT_EQ(Catch([&] { (void)instance.getProperty(index); }), kOutOfBounds);
    EXPECT_EQ(Catch([&] { instance.removeProperty(index); }), kOutOfBounds);
  }
  EXPECT_EQ(instance.getPropertyCount(), 1U);
}

TEST(Instance, HoldsThousandsOfProperties) {
  constexpr Uint32 kCount = 10000;
  CIMInstance instance = Foo();
  for (Uint32 i = 0; i < kCount; ++i) {
    instance.addProperty(Number(("Property" + std::to_string(i)).c_str(), i));
  }
  const CIMInstance clone = instance.clone();
  ASSERT_EQ(clone.getPropertyCount(), kCount);
  for (Uint32 i = 0; i < kCount; ++i) {
    ASSERT_EQ(clone.findProperty(CIMName(("PROPERTY" + std::to_string(i)).c_str())), i);
  }
  EXPECT_EQ(clone.findProperty(CIMName("Property10000")), PEG_NOT_FOUND);
  EXPECT_EQ(Catch([&] { instance.addProperty(Number("pROPERTY9999")); }).name, "AlreadyExistsException");
  instance.removeProperty(5000);
  EXPECT_EQ(instance.findProperty(CIMName("Property5000")), PEG_NOT_FOUND);
  EXPECT_EQ(instance.findProperty(CIMName("Property9999")), kCount - 2);
}

TEST(Instance, FindsItsPropertiesWhileItShrinks) {
  CIMInstance instance = Foo();
  constexpr Uint32 kCount = 70;
  for (Uint32 i = 0; i < kCount; ++i) {
    instance.addProperty(Number(("P" + std::to_string(i)).c_str(), i));
  }
  for (Uint32 first = 1; first < kCount; ++first) {
    instance.removeProperty(0);
    EXPECT_EQ(instance.findProperty(CIMName(("p" + std::to_string(first)).c_str())), 0U);
    EXPECT_EQ(instance.findProperty(CIMName("P69")), kCount - 1 - first);
  }
}

TEST(Instance, BuildsItsPathFromTheKeysOfItsClass) {
  CIMClass cimClass(CIMName("CIM_Foo"));
  cimClass.addProperty(KeyProperty("B", 0)).addProperty(Number("C")).addProperty(KeyProperty("A", 0));
  const CIMInstance instance = FooWith({"A", "B", "C"});
  EXPECT_EQ(Utf8(instance.buildPath(cimClass).toString()), "CIM_Foo.A=1,B=1");
  EXPECT_EQ(Catch([&] { (void)FooWith({"A"}).buildPath(cimClass); }).name, "CIMException");
}

// Parameters and property lists.

TEST(Parameter, RefusesAnEmptyNameLater) {
  CIMParamValue parameter("n", CIMValue(5));
  String empty;
  EXPECT_EQ(Catch([&] { parameter.setParameterName(empty); }), kUninitialized);
  EXPECT_EQ(Utf8(parameter.getParameterName()), "n");
}

Array<CIMName> Names(std::initializer_list<const char*> names) {
  Array<CIMName> list;
  for (const char* const name : names) {
    list.append(CIMName(name));
  }
  return list;
}

TEST(PropertyList, ShowsItsNames) {
  EXPECT_EQ(Utf8(CIMPropertyList().toString()), "NULL");
  EXPECT_EQ(Utf8(CIMPropertyList(Array<CIMName>()).toString()), "EMPTY");
  EXPECT_EQ(Utf8(CIMPropertyList(Names({"A"})).toString()), "[A]");
  EXPECT_EQ(Utf8(CIMPropertyList(Names({"B", "A", "b"})).toString()), "[B, A, b]");
}

TEST(PropertyList, RefusesANullNameAndStaysAsItWas) {
  Array<CIMName> names = Names({"A"});
  names.append(CIMName());
  EXPECT_EQ(Catch([&] { (void)CIMPropertyList(names); }), kUninitialized);
  CIMPropertyList list(Names({"B"}));
  EXPECT_EQ(Catch([&] { list.set(names); }), kUninitialized);
  EXPECT_EQ(Utf8(list.toString()), "[B]");
}

TEST(PropertyList, IsAValue) {
  Array<CIMName> names = Names({"A"});
  const CIMPropertyList list(names);
  names.append(CIMName("B"));
  CIMPropertyList copy(list);
  copy.clear();
  EXPECT_TRUE(copy.isNull());
  EXPECT_EQ(Utf8(list.toString()), "[A]");
  EXPECT_TRUE(list.contains(CIMName("a")));
  EXPECT_FALSE(list.contains(CIMName("B")));
  EXPECT_FALSE(list.contains(CIMName()));
}

}  // namespace
}  // namespace Pegasus
