// The pieces of a class definition: qualifiers with flavors and scopes, parameters, methods, and the handles for
// reading only.
#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMMethod.h>
#include <Pegasus/Common/CIMObject.h>
#include <Pegasus/Common/CIMParameter.h>
#include <Pegasus/Common/CIMPropertyList.h>
#include <Pegasus/Common/CIMQualifierDecl.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "thrown.h"

namespace Pegasus {
namespace {

using test::Catch;
using test::Thrown;
using test::Utf8;

const Thrown kUninitialized{"UninitializedObjectException", "uninitialized object"};
const Thrown kMismatch{"TypeMismatchException", "type mismatch"};
const Thrown kOutOfBounds{"IndexOutOfBoundsException", "index out of bounds"};

CIMQualifier Key() { return CIMQualifier(CIMName("Key"), CIMValue(true)); }

CIMClass Foo() {
  CIMClass foo(CIMName("CIM_Foo"), CIMName("CIM_Base"));
  CIMProperty id(CIMName("Id"), CIMValue(Uint32(0)));
  id.addQualifier(Key());
  foo.addProperty(id);
  foo.addProperty(CIMProperty(CIMName("Name"), CIMValue(String())));
  CIMMethod start(CIMName("Start"), CIMTYPE_UINT32);
  start.addParameter(CIMParameter(CIMName("Force"), CIMTYPE_BOOLEAN));
  foo.addMethod(start);
  return foo;
}

TEST(Flavor, IsASetOfFlags) {
  CIMFlavor flavor;
  EXPECT_TRUE(flavor == CIMFlavor::NONE);
  flavor.addFlavor(CIMFlavor::TOSUBCLASS);
  flavor.addFlavor(CIMFlavor::OVERRIDABLE);
  EXPECT_TRUE(flavor.equal(CIMFlavor::DEFAULTS));
  EXPECT_TRUE(flavor.hasFlavor(CIMFlavor::ENABLEOVERRIDE));
  EXPECT_FALSE(flavor.hasFlavor(CIMFlavor::TOINSTANCE));
  EXPECT_EQ(Utf8(flavor.toString()), "OVERRIDABLE TOSUBCLASS");
  flavor.removeFlavor(CIMFlavor::OVERRIDABLE);
  EXPECT_TRUE(flavor != CIMFlavor::DEFAULTS);
  EXPECT_EQ(Utf8(flavor.toString()), "TOSUBCLASS");
  for (const CIMFlavor* flag : {&CIMFlavor::TOINSTANCE, &CIMFlavor::TRANSLATABLE, &CIMFlavor::DISABLEOVERRIDE,
                                &CIMFlavor::RESTRICTED, &CIMFlavor::OVERRIDABLE}) {
    flavor.addFlavor(*flag);
  }
  EXPECT_EQ(Utf8(flavor.toString()), "OVERRIDABLE TOSUBCLASS TOINSTANCE TRANSLATABLE DISABLEOVERRIDE RESTRICTED");
  EXPECT_EQ(CIMFlavor().toString().size(), 0U);
}

TEST(Scope, IsASetOfFlags) {
  CIMScope scope;
  EXPECT_TRUE(scope == CIMScope::NONE);
  scope.addScope(CIMScope::METHOD);
  scope.addScope(CIMScope::CLASS);
  EXPECT_TRUE(scope.hasScope(CIMScope::CLASS));
  EXPECT_FALSE(scope.hasScope(CIMScope::ANY));
  EXPECT_EQ(Utf8(scope.toString()), "CLASS METHOD");
  EXPECT_TRUE(scope != CIMScope::ANY);
  for (const CIMScope* flag : {&CIMScope::ASSOCIATION, &CIMScope::INDICATION, &CIMScope::PROPERTY, &CIMScope::REFERENCE,
                               &CIMScope::PARAMETER}) {
    scope.addScope(*flag);
  }
  EXPECT_TRUE(scope.equal(CIMScope::ANY));
  EXPECT_EQ(Utf8(scope.toString()), "CLASS ASSOCIATION INDICATION PROPERTY REFERENCE METHOD PARAMETER");
}

TEST(Qualifier, CanBeChangedWhileItStandsAlone) {
  CIMQualifier qualifier(CIMName("MaxLen"), CIMValue(Uint32(64)), CIMFlavor::TOSUBCLASS);
  const CIMQualifier before = qualifier.clone();
  qualifier.setName(CIMName("MinLen"));
  qualifier.setValue(CIMValue(Uint32(1)));
  qualifier.setFlavor(CIMFlavor::OVERRIDABLE);
  qualifier.unsetFlavor(CIMFlavor::TOSUBCLASS);
  qualifier.setPropagated(true);
  EXPECT_EQ(Utf8(qualifier.getName().getString()), "MinLen");
  EXPECT_EQ(Utf8(qualifier.getValue().toString()), "1");
  EXPECT_EQ(qualifier.getType(), CIMTYPE_UINT32);
  EXPECT_FALSE(qualifier.isArray());
  EXPECT_TRUE(qualifier.getFlavor() == CIMFlavor::OVERRIDABLE);
  EXPECT_TRUE(qualifier.getPropagated());
  EXPECT_EQ(Catch([&] { qualifier.setValue(CIMValue(String("1"))); }), kMismatch);
  EXPECT_EQ(Catch([&] { qualifier.setName(CIMName()); }), kUninitialized);
  EXPECT_EQ(Catch([] { const CIMQualifier nameless(CIMName(), CIMValue(true)); }), kUninitialized);
  EXPECT_FALSE(qualifier.identical(before));

  CIMMethod method(CIMName("Start"), CIMTYPE_UINT32);
  method.addQualifier(qualifier);
  EXPECT_EQ(Catch([&] { qualifier.setName(CIMName("Other")); }),
            (Thrown{"Exception", "Attempted to change the name of a qualifier already in a container."}));
}

TEST(Qualifier, DiffersInEachOfItsParts) {
  const CIMQualifier qualifier(CIMName("Q"), CIMValue(true), CIMFlavor::NONE, false);
  EXPECT_TRUE(qualifier.identical(CIMQualifier(CIMName("q"), CIMValue(true))));
  EXPECT_FALSE(qualifier.identical(CIMQualifier(CIMName("R"), CIMValue(true))));
  EXPECT_FALSE(qualifier.identical(CIMQualifier(CIMName("Q"), CIMValue(false))));
  EXPECT_FALSE(qualifier.identical(CIMQualifier(CIMName("Q"), CIMValue(true), CIMFlavor::TOSUBCLASS)));
  EXPECT_FALSE(qualifier.identical(CIMQualifier(CIMName("Q"), CIMValue(true), CIMFlavor::NONE, true)));
}

TEST(QualifierDeclaration, HoldsWhatItWasGiven) {
  CIMQualifierDecl declaration(CIMName("Values"), CIMValue(CIMTYPE_STRING, true), CIMScope::PROPERTY,
                               CIMFlavor::TRANSLATABLE, 3);
  EXPECT_EQ(Utf8(declaration.getName().getString()), "Values");
  EXPECT_EQ(declaration.getType(), CIMTYPE_STRING);
  EXPECT_TRUE(declaration.isArray());
  EXPECT_TRUE(declaration.getValue().isNull());
  EXPECT_TRUE(declaration.getScope() == CIMScope::PROPERTY);
  EXPECT_TRUE(declaration.getFlavor() == CIMFlavor::TRANSLATABLE);
  EXPECT_EQ(declaration.getArraySize(), 3U);

  const CIMQualifierDecl same(declaration);  // NOLINT(performance-unnecessary-copy-initialization)
  CIMQualifierDecl copy = declaration.clone();
  EXPECT_TRUE(copy.identical(declaration));
  copy.setName(CIMName("ValueMap"));
  copy.setValue(CIMValue(Array<String>(1, String("0"))));
  EXPECT_FALSE(copy.identical(declaration));
  EXPECT_TRUE(same.identical(declaration));
  EXPECT_EQ(Catch([&] { copy.setValue(CIMValue(true)); }), kMismatch);
  EXPECT_EQ(Catch([&] { copy.setName(CIMName()); }), kUninitialized);
  EXPECT_EQ(Catch([] { const CIMQualifierDecl nameless(CIMName(), CIMValue(true), CIMScope::ANY); }), kUninitialized);
  EXPECT_TRUE(CIMQualifierDecl().isUninitialized());
  EXPECT_EQ(Catch([] { CIMQualifierDecl().getName(); }), kUninitialized);
  const CIMQualifierDecl scalar(CIMName("Values"), CIMValue(true), CIMScope::ANY);
  EXPECT_TRUE(scalar.getFlavor() == CIMFlavor::DEFAULTS);
  for (const CIMQualifierDecl& other :
       {CIMQualifierDecl(CIMName("Other"), CIMValue(true), CIMScope::ANY),
        CIMQualifierDecl(CIMName("Values"), CIMValue(false), CIMScope::ANY),
        CIMQualifierDecl(CIMName("Values"), CIMValue(true), CIMScope::CLASS),
        CIMQualifierDecl(CIMName("Values"), CIMValue(true), CIMScope::ANY, CIMFlavor::NONE),
        CIMQualifierDecl(CIMName("Values"), CIMValue(true), CIMScope::ANY, CIMFlavor::DEFAULTS, 1)}) {
    EXPECT_FALSE(scalar.identical(other));
  }
}

TEST(Parameter, HoldsWhatItWasGiven) {
  CIMParameter parameter(CIMName("Target"), CIMTYPE_REFERENCE, true, 2, CIMName("CIM_Foo"));
  EXPECT_EQ(parameter.getType(), CIMTYPE_REFERENCE);
  EXPECT_TRUE(parameter.isArray());
  EXPECT_EQ(parameter.getArraySize(), 2U);
  EXPECT_EQ(Utf8(parameter.getReferenceClassName().getString()), "CIM_Foo");
  parameter.addQualifier(Key());
  EXPECT_EQ(parameter.findQualifier(CIMName("KEY")), 0U);
  EXPECT_EQ(parameter.getQualifierCount(), 1U);
  EXPECT_TRUE(parameter.getQualifier(0).identical(Key()));

  CIMParameter copy = parameter.clone();
  EXPECT_TRUE(copy.identical(parameter));
  copy.removeQualifier(0);
  EXPECT_FALSE(copy.identical(parameter));
  copy.setName(CIMName("Source"));
  EXPECT_EQ(Utf8(copy.getName().getString()), "Source");
  EXPECT_EQ(Utf8(parameter.getName().getString()), "Target");
  EXPECT_EQ(Catch([&] { copy.removeQualifier(0); }), kOutOfBounds);
  EXPECT_EQ(Catch([&] { copy.setName(CIMName()); }), kUninitialized);

  EXPECT_EQ(Catch([] { const CIMParameter nameless(CIMName(), CIMTYPE_UINT8); }), kUninitialized);
  EXPECT_EQ(Catch([] { const CIMParameter scalar(CIMName("P"), CIMTYPE_UINT8, false, 2); }), kMismatch);
  EXPECT_EQ(Catch([] { const CIMParameter value(CIMName("P"), CIMTYPE_UINT8, false, 0, CIMName("CIM_Foo")); }),
            kMismatch);
}

TEST(Parameter, DiffersInEachOfItsParts) {
  const CIMParameter parameter(CIMName("P"), CIMTYPE_REFERENCE, true, 2, CIMName("CIM_Foo"));
  for (const CIMParameter& other : {CIMParameter(CIMName("Q"), CIMTYPE_REFERENCE, true, 2, CIMName("CIM_Foo")),
                                    CIMParameter(CIMName("P"), CIMTYPE_UINT8, true, 2),
                                    CIMParameter(CIMName("P"), CIMTYPE_REFERENCE, false, 0, CIMName("CIM_Foo")),
                                    CIMParameter(CIMName("P"), CIMTYPE_REFERENCE, true, 3, CIMName("CIM_Foo")),
                                    CIMParameter(CIMName("P"), CIMTYPE_REFERENCE, true, 2, CIMName("CIM_Bar"))}) {
    EXPECT_FALSE(parameter.identical(other));
  }
}

TEST(Method, HoldsParametersAndQualifiers) {
  CIMMethod method(CIMName("Start"), CIMTYPE_UINT32, CIMName("CIM_Base"), true);
  CIMParameter force(CIMName("Force"), CIMTYPE_BOOLEAN);
  method.addParameter(force).addParameter(CIMParameter(CIMName("Delay"), CIMTYPE_UINT16));
  method.addQualifier(Key());
  EXPECT_EQ(Catch([&] { method.addParameter(CIMParameter(CIMName("FORCE"), CIMTYPE_BOOLEAN)); }),
            (Thrown{"AlreadyExistsException", "already exists: parameter \"FORCE\""}));
  EXPECT_EQ(Catch([&] { force.setName(CIMName("Other")); }),
            (Thrown{"Exception", "Attempted to change the name of a parameter already in a container."}));
  EXPECT_EQ(method.findParameter(CIMName("delay")), 1U);
  EXPECT_EQ(method.findParameter(CIMName("None")), PEG_NOT_FOUND);
  EXPECT_EQ(method.getParameterCount(), 2U);
  EXPECT_EQ(Utf8(method.getParameter(0).getName().getString()), "Force");
  EXPECT_EQ(Catch([&] { method.getParameter(2); }), kOutOfBounds);

  CIMMethod copy = method.clone();
  EXPECT_TRUE(copy.identical(method));
  copy.removeParameter(0);
  EXPECT_EQ(copy.findParameter(CIMName("Delay")), 0U);
  EXPECT_FALSE(copy.identical(method));
  copy.removeQualifier(0);
  EXPECT_EQ(copy.getQualifierCount(), 0U);
  copy.setName(CIMName("Stop"));
  copy.setType(CIMTYPE_STRING);
  copy.setClassOrigin(CIMName("CIM_Foo"));
  copy.setPropagated(false);
  EXPECT_EQ(Utf8(copy.getName().getString()), "Stop");
  EXPECT_EQ(copy.getType(), CIMTYPE_STRING);
  EXPECT_EQ(Utf8(copy.getClassOrigin().getString()), "CIM_Foo");
  EXPECT_FALSE(copy.getPropagated());
  EXPECT_EQ(Utf8(method.getName().getString()), "Start");
  EXPECT_EQ(Catch([] { const CIMMethod nameless(CIMName(), CIMTYPE_UINT8); }), kUninitialized);
}

TEST(Method, DiffersInEachOfItsParts) {
  const CIMMethod method(CIMName("M"), CIMTYPE_UINT32, CIMName("CIM_Foo"), true);
  CIMMethod qualified = method.clone();
  qualified.addQualifier(Key());
  for (const CIMMethod& other : {CIMMethod(CIMName("N"), CIMTYPE_UINT32, CIMName("CIM_Foo"), true),
                                 CIMMethod(CIMName("M"), CIMTYPE_UINT16, CIMName("CIM_Foo"), true),
                                 CIMMethod(CIMName("M"), CIMTYPE_UINT32, CIMName("CIM_Bar"), true),
                                 CIMMethod(CIMName("M"), CIMTYPE_UINT32, CIMName("CIM_Foo"), false), qualified}) {
    EXPECT_FALSE(method.identical(other));
  }
}

TEST(Class, HoldsMethods) {
  CIMClass foo = Foo();
  CIMMethod start = foo.getMethod(0);
  EXPECT_EQ(foo.findMethod(CIMName("START")), 0U);
  EXPECT_EQ(foo.findMethod(CIMName("Stop")), PEG_NOT_FOUND);
  EXPECT_EQ(Catch([&] { foo.addMethod(CIMMethod(CIMName("start"), CIMTYPE_UINT8)); }),
            (Thrown{"AlreadyExistsException", "already exists: method \"start\""}));
  EXPECT_EQ(Catch([&] { start.setName(CIMName("Stop")); }),
            (Thrown{"Exception", "Attempted to change the name of a method already in a container."}));
  const CIMClass before = foo.clone();
  start.setType(CIMTYPE_STRING);
  EXPECT_EQ(std::as_const(foo).getMethod(0).getType(), CIMTYPE_STRING) << "the handle is the class's own";
  EXPECT_FALSE(foo.identical(before));
  foo.removeMethod(0);
  EXPECT_EQ(foo.getMethodCount(), 0U);
  EXPECT_EQ(Catch([&] { foo.getMethod(0); }), kOutOfBounds);
  start.setName(CIMName("Stop"));
  foo.setSuperClassName(CIMName());
  EXPECT_TRUE(foo.getSuperClassName().isNull());
}

TEST(Class, TellsItsKindAndItsKeys) {
  CIMClass foo = Foo();
  EXPECT_FALSE(foo.isAssociation());
  EXPECT_FALSE(foo.isAbstract());
  foo.addQualifier(CIMQualifier(CIMName("Association"), CIMValue(true)));
  foo.addQualifier(CIMQualifier(CIMName("Abstract"), CIMValue(false)));
  EXPECT_TRUE(foo.isAssociation());
  EXPECT_FALSE(foo.isAbstract());
  Array<CIMName> keys(2, CIMName("Stale"));
  foo.getKeyNames(keys);
  ASSERT_EQ(keys.size(), 1U);
  EXPECT_EQ(Utf8(keys[0].getString()), "Id");
  EXPECT_TRUE(foo.hasKeys());
  foo.removeProperty(0);
  EXPECT_FALSE(foo.hasKeys());
}

TEST(Instance, BuildsItsPathFromTheKeysOfItsClass) {
  CIMInstance instance(CIMName("CIM_Foo"));
  instance.addProperty(CIMProperty(CIMName("ID"), CIMValue(Uint32(7))));
  EXPECT_EQ(Utf8(instance.buildPath(Foo()).toString()), "CIM_Foo.Id=7");
  EXPECT_EQ(Utf8(CIMConstInstance(instance).buildPath(Foo()).toString()), "CIM_Foo.Id=7");
  EXPECT_EQ(Catch([&] { instance.buildPath(CIMClass(CIMName("CIM_Bar"))); }), kMismatch);
  instance.removeProperty(0);
  EXPECT_EQ(Catch([&] { instance.buildPath(Foo()); }), (Thrown{"CIMException", "Id"}));
}

// Handles for reading only share the body of the handle that they were made from or assigned.

TEST(ConstHandles, ReadClasses) {
  CIMClass foo = Foo();
  foo.addQualifier(Key());
  CIMConstClass reader(foo);
  EXPECT_EQ(Utf8(reader.getClassName().getString()), "CIM_Foo");
  EXPECT_EQ(Utf8(reader.getPath().toString()), "CIM_Foo");
  EXPECT_EQ(Utf8(reader.getSuperClassName().getString()), "CIM_Base");
  EXPECT_FALSE(reader.isAssociation());
  EXPECT_FALSE(reader.isAbstract());
  EXPECT_EQ(reader.findProperty(CIMName("name")), 1U);
  EXPECT_EQ(Utf8(reader.getProperty(0).getName().getString()), "Id");
  EXPECT_EQ(reader.getPropertyCount(), 2U);
  EXPECT_EQ(reader.findQualifier(CIMName("key")), 0U);
  EXPECT_TRUE(reader.getQualifier(0).identical(Key()));
  EXPECT_EQ(reader.getQualifierCount(), 1U);
  EXPECT_EQ(reader.findMethod(CIMName("start")), 0U);
  EXPECT_EQ(reader.getMethodCount(), 1U);
  Array<CIMName> keys;
  reader.getKeyNames(keys);
  EXPECT_EQ(keys.size(), 1U);
  EXPECT_TRUE(reader.hasKeys());
  EXPECT_TRUE(reader.clone().identical(reader));
  EXPECT_TRUE(CIMConstClass(CIMObject(foo)).identical(foo));
  EXPECT_EQ(Catch([] { const CIMConstClass cast{CIMObject(CIMInstance(CIMName("CIM_Foo")))}; }),
            (Thrown{"DynamicCastFailedException", "dynamic cast failed"}));

  const CIMConstMethod method = reader.getMethod(0);
  EXPECT_EQ(Utf8(method.getName().getString()), "Start");
  EXPECT_EQ(method.getType(), CIMTYPE_UINT32);
  EXPECT_TRUE(method.getClassOrigin().isNull());
  EXPECT_FALSE(method.getPropagated());
  EXPECT_EQ(method.findParameter(CIMName("force")), 0U);
  EXPECT_EQ(method.getParameterCount(), 1U);
  EXPECT_EQ(method.findQualifier(CIMName("Key")), PEG_NOT_FOUND);
  EXPECT_EQ(method.getQualifierCount(), 0U);
  EXPECT_EQ(Catch([&] { method.getQualifier(0); }), kOutOfBounds);
  EXPECT_TRUE(method.clone().identical(method));

  const CIMConstParameter parameter = method.getParameter(0);
  EXPECT_EQ(Utf8(parameter.getName().getString()), "Force");
  EXPECT_EQ(parameter.getType(), CIMTYPE_BOOLEAN);
  EXPECT_FALSE(parameter.isArray());
  EXPECT_EQ(parameter.getArraySize(), 0U);
  EXPECT_TRUE(parameter.getReferenceClassName().isNull());
  EXPECT_EQ(parameter.findQualifier(CIMName("Key")), PEG_NOT_FOUND);
  EXPECT_EQ(parameter.getQualifierCount(), 0U);
  EXPECT_EQ(Catch([&] { parameter.getQualifier(0); }), kOutOfBounds);
  EXPECT_TRUE(parameter.clone().identical(parameter));

  const CIMConstClass other(CIMName("CIM_Bar"), CIMName("CIM_Foo"));
  EXPECT_EQ(Utf8(other.getSuperClassName().getString()), "CIM_Foo");
  EXPECT_EQ(Catch([] { const CIMConstClass nameless{CIMName()}; }), kUninitialized);
  EXPECT_FALSE(other.identical(reader));
  reader = CIMClass();
  EXPECT_TRUE(reader.isUninitialized());
}

TEST(ConstHandles, ReadInstancesAndObjects) {
  CIMInstance instance(CIMName("CIM_Foo"));
  instance.addProperty(CIMProperty(CIMName("Id"), CIMValue(Uint32(7))));
  instance.addQualifier(Key());
  CIMConstInstance reader(instance);
  EXPECT_EQ(Utf8(reader.getClassName().getString()), "CIM_Foo");
  EXPECT_EQ(Utf8(reader.getPath().toString()), "CIM_Foo");
  EXPECT_EQ(reader.findProperty(CIMName("id")), 0U);
  EXPECT_EQ(Utf8(reader.getProperty(0).getValue().toString()), "7");
  EXPECT_EQ(reader.getPropertyCount(), 1U);
  EXPECT_EQ(reader.findQualifier(CIMName("key")), 0U);
  EXPECT_TRUE(reader.getQualifier(0).identical(Key()));
  EXPECT_EQ(reader.getQualifierCount(), 1U);
  EXPECT_TRUE(reader.clone().identical(reader));
  EXPECT_TRUE(CIMConstInstance(CIMObject(instance)).identical(instance));
  EXPECT_EQ(Catch([] { const CIMConstInstance cast{CIMObject(Foo())}; }),
            (Thrown{"DynamicCastFailedException", "dynamic cast failed"}));

  CIMConstObject object(instance);
  EXPECT_TRUE(object.isInstance());
  EXPECT_FALSE(object.isClass());
  EXPECT_EQ(Utf8(object.getClassName().getString()), "CIM_Foo");
  EXPECT_EQ(Utf8(object.getPath().toString()), "CIM_Foo");
  EXPECT_EQ(object.findProperty(CIMName("id")), 0U);
  EXPECT_EQ(Utf8(object.getProperty(0).getValue().toString()), "7");
  EXPECT_EQ(object.getPropertyCount(), 1U);
  EXPECT_EQ(object.findQualifier(CIMName("key")), 0U);
  EXPECT_TRUE(object.getQualifier(0).identical(Key()));
  EXPECT_EQ(object.getQualifierCount(), 1U);
  EXPECT_EQ(Utf8(object.toString()), Utf8(CIMObject(instance).toString()));
  EXPECT_TRUE(object.clone().identical(object));
  EXPECT_TRUE(CIMConstObject(Foo()).isClass());
  EXPECT_FALSE(CIMConstObject(Foo()).identical(object));
  EXPECT_TRUE(CIMConstObject(CIMObject(instance)).identical(object));

  reader = CIMInstance();
  EXPECT_TRUE(reader.isUninitialized());
  object = CIMObject();
  EXPECT_TRUE(object.isUninitialized());
  EXPECT_FALSE(object.isClass() || object.isInstance());
  EXPECT_EQ(Catch([&] { object.toString(); }), kUninitialized);
}

TEST(ConstHandles, ReadPropertiesAndQualifiers) {
  CIMProperty property(CIMName("R"), CIMValue(CIMTYPE_REFERENCE, false), 0, CIMName("CIM_Bar"), CIMName("CIM_Foo"),
                       true);
  property.addQualifier(Key());
  CIMConstProperty reader;
  EXPECT_TRUE(reader.isUninitialized());
  reader = property;
  EXPECT_EQ(Utf8(reader.getName().getString()), "R");
  EXPECT_TRUE(reader.getValue().isNull());
  EXPECT_EQ(reader.getType(), CIMTYPE_REFERENCE);
  EXPECT_FALSE(reader.isArray());
  EXPECT_EQ(reader.getArraySize(), 0U);
  EXPECT_EQ(Utf8(reader.getReferenceClassName().getString()), "CIM_Bar");
  EXPECT_EQ(Utf8(reader.getClassOrigin().getString()), "CIM_Foo");
  EXPECT_TRUE(reader.getPropagated());
  EXPECT_EQ(reader.findQualifier(CIMName("key")), 0U);
  EXPECT_EQ(reader.getQualifierCount(), 1U);
  EXPECT_TRUE(reader.clone().identical(reader));

  CIMConstQualifier qualifier;
  EXPECT_TRUE(qualifier.isUninitialized());
  qualifier = property.getQualifier(0);
  EXPECT_EQ(Utf8(qualifier.getName().getString()), "Key");
  EXPECT_EQ(qualifier.getType(), CIMTYPE_BOOLEAN);
  EXPECT_FALSE(qualifier.isArray());
  EXPECT_EQ(Utf8(qualifier.getValue().toString()), "TRUE");
  EXPECT_TRUE(qualifier.getFlavor() == CIMFlavor::NONE);
  EXPECT_FALSE(qualifier.getPropagated());
  EXPECT_TRUE(qualifier.clone().identical(qualifier));

  CIMConstMethod method;
  CIMConstParameter parameter;
  EXPECT_TRUE(method.isUninitialized() && parameter.isUninitialized());
  method = CIMMethod(CIMName("Start"), CIMTYPE_UINT32);
  parameter = CIMParameter(CIMName("Force"), CIMTYPE_BOOLEAN);
  EXPECT_FALSE(method.isUninitialized() || parameter.isUninitialized());
}

TEST(Property, DiffersInEachOfItsParts) {
  const CIMProperty property(CIMName("P"), CIMValue(CIMTYPE_REFERENCE, false), 0, CIMName("CIM_Bar"),
                             CIMName("CIM_Foo"), true);
  CIMProperty qualified = property.clone();
  qualified.addQualifier(Key());
  const CIMValue null(CIMTYPE_REFERENCE, false);
  for (const CIMProperty& other :
       {CIMProperty(CIMName("Q"), null, 0, CIMName("CIM_Bar"), CIMName("CIM_Foo"), true),
        CIMProperty(CIMName("P"), CIMValue(true)),
        CIMProperty(CIMName("P"), null, 0, CIMName("CIM_Baz"), CIMName("CIM_Foo"), true),
        CIMProperty(CIMName("P"), null, 0, CIMName("CIM_Bar"), CIMName("CIM_Baz"), true),
        CIMProperty(CIMName("P"), null, 0, CIMName("CIM_Bar"), CIMName("CIM_Foo"), false), qualified}) {
    EXPECT_FALSE(property.identical(other));
  }
  const CIMValue list(Array<Uint8>(2));
  EXPECT_FALSE(CIMProperty(CIMName("A"), list, 2).identical(CIMProperty(CIMName("A"), list)));
  CIMProperty fixed(CIMName("A"), list, 2);
  EXPECT_EQ(Catch([&] { fixed.setValue(CIMValue(Array<Uint8>(3))); }), kMismatch);
  fixed.setClassOrigin(CIMName("CIM_Foo"));
  fixed.setPropagated(true);
  EXPECT_EQ(Utf8(fixed.getClassOrigin().getString()), "CIM_Foo");
  EXPECT_TRUE(fixed.getPropagated());
}

TEST(KeyBinding, CanBeChangedAndComparedWithValues) {
  CIMKeyBinding key;
  key.setName(CIMName("K"));
  key.setType(CIMKeyBinding::NUMERIC);
  key.setValue("0x10");
  EXPECT_TRUE(key == CIMKeyBinding(CIMName("k"), "16", CIMKeyBinding::NUMERIC));
  EXPECT_TRUE(key.equal(CIMValue(Uint8(16))));
  EXPECT_FALSE(key.equal(CIMValue(Uint8(17))));
  EXPECT_FALSE(key.equal(CIMValue(CIMTYPE_UINT8, false))) << "NULL";
  EXPECT_FALSE(key.equal(CIMValue(Array<Uint8>(1))));
  EXPECT_FALSE(key.equal(CIMValue(String("0x10"))));
  EXPECT_FALSE(key.equal(CIMValue(CIMInstance(CIMName("CIM_Foo")))));
  // Numbers that are no whole ones compare as text, and so do references that are no paths.
  key.setValue("1.5");
  EXPECT_TRUE(key == CIMKeyBinding(CIMName("K"), "1.5", CIMKeyBinding::NUMERIC));
  EXPECT_FALSE(key == CIMKeyBinding(CIMName("K"), "1", CIMKeyBinding::NUMERIC));
  key.setValue("-1");
  EXPECT_FALSE(key == CIMKeyBinding(CIMName("K"), "1", CIMKeyBinding::NUMERIC));
  const CIMKeyBinding reference(CIMName("R"), "C.b=1,a=2", CIMKeyBinding::REFERENCE);
  EXPECT_TRUE(reference == CIMKeyBinding(CIMName("R"), "C.a=2,b=1", CIMKeyBinding::REFERENCE));
  EXPECT_FALSE(reference == CIMKeyBinding(CIMName("R"), "no path", CIMKeyBinding::REFERENCE));
  EXPECT_FALSE(CIMKeyBinding(CIMName("R"), "no path", CIMKeyBinding::REFERENCE) == reference);
}

TEST(PropertyList, GivesItsNamesBack) {
  Array<CIMName> names(1, CIMName("A"));
  names.append(CIMName("B"));
  const CIMPropertyList list(names);
  const Array<CIMName> given = list.getPropertyNameArray();
  ASSERT_EQ(given.size(), 2U);
  EXPECT_TRUE(given[1].equal("b"));
  EXPECT_EQ(CIMPropertyList().getPropertyNameArray().size(), 0U);
}

TEST(Value, AssignIsAssignment) {
  CIMValue value(String("text"));
  const CIMValue number(Uint32(7));
  value.assign(number);
  EXPECT_TRUE(value == number);
}

}  // namespace
}  // namespace Pegasus
