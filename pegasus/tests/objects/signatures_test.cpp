// Every public member with the signature that programs written for the interface rely on. The compiler checks each
// line; what the members do is tested elsewhere.
#include <Pegasus/Client/CIMClient.h>
#include <openssl/x509_vfy.h>

#include <ostream>
#include <type_traits>
#include <utility>

namespace Pegasus {
namespace {

using Info = SSLCertificateInfo;
using Names = Array<CIMName>;
using Keys = Array<CIMKeyBinding>;
using Parameters = Array<CIMParamValue>;
using Verify = SSLCertificateVerifyFunction;

/// There is a member `name` that takes `Arguments` (with their parentheses, and const behind them) and returns
/// `Result`.
#define MEMBER(Class, Result, name, Arguments) \
  static_assert(                               \
      std::is_same_v<decltype(static_cast<Result(Class::*) Arguments>(&Class::name)), Result(Class::*) Arguments>)
#define STATIC_MEMBER(Class, Result, name, Arguments) \
  static_assert(std::is_same_v<decltype(static_cast<Result(*) Arguments>(&Class::name)), Result(*) Arguments>)
/// The expression, in which `object<T>()` stands for an object, has this type.
#define RETURNS(Result, ...) static_assert(std::is_same_v<decltype(__VA_ARGS__), Result>)

template <typename T>
T& object();
template <typename T, typename... Arguments>
constexpr bool kMakes = std::is_constructible_v<T, Arguments...>;
template <typename T, typename From>
constexpr bool kConverts = std::is_convertible_v<From, T>;
/// A value type: made from nothing, copied and assigned.
template <typename T>
constexpr bool kIsValue =
    std::is_default_constructible_v<T>&& std::is_copy_constructible_v<T>&& std::is_copy_assignable_v<T>;

// CIMClient
static_assert(std::is_default_constructible_v<CIMClient> && !std::is_copy_constructible_v<CIMClient> &&
              !std::is_copy_assignable_v<CIMClient>);
MEMBER(CIMClient, Uint32, getTimeout, () const);
MEMBER(CIMClient, void, setTimeout, (Uint32));
MEMBER(CIMClient, void, connect, (const String&, Uint32, const String&, const String&));
MEMBER(CIMClient, void, connect, (const String&, Uint32, const SSLContext&, const String&, const String&));
MEMBER(CIMClient, void, connectLocal, ());
MEMBER(CIMClient, void, disconnect, ());
MEMBER(CIMClient, CIMClass, getClass,
       (const CIMNamespaceName&, const CIMName&, Boolean, Boolean, Boolean, const CIMPropertyList&));
MEMBER(CIMClient, CIMInstance, getInstance,
       (const CIMNamespaceName&, const CIMObjectPath&, Boolean, Boolean, Boolean, const CIMPropertyList&));
MEMBER(CIMClient, void, modifyInstance, (const CIMNamespaceName&, const CIMInstance&, Boolean, const CIMPropertyList&));
MEMBER(CIMClient, Array<CIMInstance>, enumerateInstances,
       (const CIMNamespaceName&, const CIMName&, Boolean, Boolean, Boolean, Boolean, const CIMPropertyList&));
MEMBER(CIMClient, Array<CIMObjectPath>, enumerateInstanceNames, (const CIMNamespaceName&, const CIMName&));
MEMBER(CIMClient, Array<CIMObject>, associators,
       (const CIMNamespaceName&, const CIMObjectPath&, const CIMName&, const CIMName&, const String&, const String&,
        Boolean, Boolean, const CIMPropertyList&));
MEMBER(CIMClient, Array<CIMObjectPath>, associatorNames,
       (const CIMNamespaceName&, const CIMObjectPath&, const CIMName&, const CIMName&, const String&, const String&));
MEMBER(CIMClient, CIMValue, invokeMethod,
       (const CIMNamespaceName&, const CIMObjectPath&, const CIMName&, const Parameters&, Parameters&));
// What may be left out of a call.
RETURNS(CIMClass, object<CIMClient>().getClass("root", "C"));
RETURNS(CIMInstance, object<CIMClient>().getInstance("root", CIMObjectPath()));
RETURNS(void, object<CIMClient>().modifyInstance("root", object<CIMInstance>()));
RETURNS(Array<CIMInstance>, object<CIMClient>().enumerateInstances("root", "C"));
RETURNS(Array<CIMObject>, object<CIMClient>().associators("root", CIMObjectPath()));
RETURNS(Array<CIMObjectPath>, object<CIMClient>().associatorNames("root", CIMObjectPath()));

// TLS
static_assert(std::is_same_v<Verify, Boolean(Info&)>);
static_assert(kMakes<SSLContext, String, Verify*> && kMakes<SSLContext, String, Verify*, String>);
static_assert(kMakes<SSLContext, String, String, String, Verify*, String> &&
              kMakes<SSLContext, String, String, String, String, Verify*, String>);
static_assert(!kMakes<SSLContext, String, String, String, Verify*>, "the file of random bytes has no default there");
static_assert(!std::is_default_constructible_v<SSLContext> && std::is_copy_constructible_v<SSLContext> &&
              !std::is_copy_assignable_v<SSLContext>);
MEMBER(SSLContext, String, getTrustStore, () const);
MEMBER(SSLContext, String, getCertPath, () const);
MEMBER(SSLContext, String, getKeyPath, () const);
MEMBER(SSLContext, String, getCRLPath, () const);
MEMBER(SSLContext, X509_STORE*, getCRLStore, () const);
MEMBER(SSLContext, Boolean, isPeerVerificationEnabled, () const);
MEMBER(SSLContext, Verify*, getSSLCertificateVerifyFunction, () const);
static_assert(kMakes<Info, String, String, int, int, int> && std::is_copy_constructible_v<Info> &&
              !std::is_copy_assignable_v<Info>);
MEMBER(Info, String, getSubjectName, () const);
MEMBER(Info, String, getIssuerName, () const);
MEMBER(Info, String, getErrorString, () const);
MEMBER(Info, String, toString, () const);
MEMBER(Info, CIMDateTime, getNotBefore, () const);
MEMBER(Info, CIMDateTime, getNotAfter, () const);
MEMBER(Info, Uint32, getVersionNumber, () const);
MEMBER(Info, long, getSerialNumber, () const);  // NOLINT(google-runtime-int)
MEMBER(Info, Uint32, getErrorDepth, () const);
MEMBER(Info, Uint32, getErrorCode, () const);
MEMBER(Info, Uint32, getResponseCode, () const);
MEMBER(Info, void, setErrorCode, (int));
MEMBER(Info, void, setResponseCode, (int));
#define SAME_NUMBER(name) static_assert(Info::V_##name == X509_V_##name)
SAME_NUMBER(OK);
SAME_NUMBER(ERR_UNABLE_TO_GET_ISSUER_CERT);
SAME_NUMBER(ERR_UNABLE_TO_GET_CRL);
SAME_NUMBER(ERR_UNABLE_TO_DECRYPT_CERT_SIGNATURE);
SAME_NUMBER(ERR_UNABLE_TO_DECRYPT_CRL_SIGNATURE);
SAME_NUMBER(ERR_UNABLE_TO_DECODE_ISSUER_PUBLIC_KEY);
SAME_NUMBER(ERR_CERT_SIGNATURE_FAILURE);
SAME_NUMBER(ERR_CRL_SIGNATURE_FAILURE);
SAME_NUMBER(ERR_CERT_NOT_YET_VALID);
SAME_NUMBER(ERR_CERT_HAS_EXPIRED);
SAME_NUMBER(ERR_CRL_NOT_YET_VALID);
SAME_NUMBER(ERR_CRL_HAS_EXPIRED);
SAME_NUMBER(ERR_ERROR_IN_CERT_NOT_BEFORE_FIELD);
SAME_NUMBER(ERR_ERROR_IN_CERT_NOT_AFTER_FIELD);
SAME_NUMBER(ERR_ERROR_IN_CRL_LAST_UPDATE_FIELD);
SAME_NUMBER(ERR_ERROR_IN_CRL_NEXT_UPDATE_FIELD);
SAME_NUMBER(ERR_OUT_OF_MEM);
SAME_NUMBER(ERR_DEPTH_ZERO_SELF_SIGNED_CERT);
SAME_NUMBER(ERR_SELF_SIGNED_CERT_IN_CHAIN);
SAME_NUMBER(ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY);
static_assert(Info::V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE == X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE);
SAME_NUMBER(ERR_CERT_CHAIN_TOO_LONG);
SAME_NUMBER(ERR_CERT_REVOKED);
SAME_NUMBER(ERR_INVALID_CA);
SAME_NUMBER(ERR_PATH_LENGTH_EXCEEDED);
SAME_NUMBER(ERR_INVALID_PURPOSE);
SAME_NUMBER(ERR_CERT_UNTRUSTED);
SAME_NUMBER(ERR_CERT_REJECTED);
SAME_NUMBER(ERR_SUBJECT_ISSUER_MISMATCH);
SAME_NUMBER(ERR_AKID_SKID_MISMATCH);
SAME_NUMBER(ERR_AKID_ISSUER_SERIAL_MISMATCH);
SAME_NUMBER(ERR_KEYUSAGE_NO_CERTSIGN);
SAME_NUMBER(ERR_APPLICATION_VERIFICATION);

// Char16, CString, String
static_assert(kIsValue<Char16> && kConverts<Char16, Uint16> && kConverts<Uint16, Char16>);
static_assert(std::is_assignable_v<Char16&, Uint16>);
RETURNS(Boolean, object<Char16>() == object<Char16>());
RETURNS(Boolean, object<Char16>() == 'a');
RETURNS(Boolean, 'a' == object<Char16>());
RETURNS(Boolean, object<Char16>() != object<Char16>());
RETURNS(Boolean, object<Char16>() != 'a');
RETURNS(Boolean, 'a' != object<Char16>());
static_assert(kIsValue<CString> && kConverts<const char*, CString>);
static_assert(kIsValue<String> && kMakes<String, String, Uint32> && kConverts<String, const Char16*> &&
              kMakes<String, const Char16*, Uint32> && kConverts<String, const char*> &&
              kMakes<String, const char*, Uint32>);
MEMBER(String, String&, operator=, (const String&));
MEMBER(String, String&, assign, (const String&));
MEMBER(String, String&, assign, (const Char16*, Uint32));
MEMBER(String, String&, assign, (const Char16*));
MEMBER(String, String&, assign, (const char*, Uint32));
MEMBER(String, String&, assign, (const char*));
MEMBER(String, Uint32, size, () const);
MEMBER(String, const Char16*, getChar16Data, () const);
MEMBER(String, CString, getCString, () const);
MEMBER(String, Char16&, operator[], (Uint32));
MEMBER(String, const Char16, operator[], (Uint32) const);
MEMBER(String, void, clear, ());
MEMBER(String, void, reserveCapacity, (Uint32));
MEMBER(String, String&, append, (const Char16&));
MEMBER(String, String&, append, (const Char16*, Uint32));
MEMBER(String, String&, append, (const String&));
MEMBER(String, void, appendPrintf, (const char*, ...));
MEMBER(String, void, remove, (Uint32, Uint32));
RETURNS(void, object<String>().remove(0));
MEMBER(String, void, toLower, ());
MEMBER(String, String, subString, (Uint32, Uint32) const);
RETURNS(String, object<String>().subString(0));
MEMBER(String, Uint32, find, (Char16) const);
MEMBER(String, Uint32, find, (Uint32, Char16) const);
MEMBER(String, Uint32, find, (const String&) const);
MEMBER(String, Uint32, reverseFind, (Char16) const);
STATIC_MEMBER(String, int, compare, (const String&, const String&));
STATIC_MEMBER(String, int, compare, (const String&, const String&, Uint32));
STATIC_MEMBER(String, int, compareNoCase, (const String&, const String&));
STATIC_MEMBER(String, Boolean, equal, (const String&, const String&));
STATIC_MEMBER(String, Boolean, equalNoCase, (const String&, const String&));
static_assert(std::is_same_v<decltype(String::EMPTY), const String>);
RETURNS(Boolean, object<String>() == object<String>());
RETURNS(Boolean, object<String>() == "");
RETURNS(Boolean, "" == object<String>());
RETURNS(Boolean, object<String>() != object<String>());
RETURNS(Boolean, object<String>() < object<String>());
RETURNS(Boolean, object<String>() <= object<String>());
RETURNS(Boolean, object<String>() > object<String>());
RETURNS(Boolean, object<String>() >= object<String>());
RETURNS(String, object<String>() + object<String>());
RETURNS(std::ostream&, object<std::ostream>() << object<String>());

// Array
template <typename T>
constexpr bool CheckArray() {
  static_assert(kIsValue<Array<T>> && kMakes<Array<T>, Uint32> && kMakes<Array<T>, Uint32, const T&> &&
                kMakes<Array<T>, const T*, Uint32>);
  MEMBER(Array<T>, Array<T>&, operator=, (const Array<T>&));
  MEMBER(Array<T>, void, clear, ());
  MEMBER(Array<T>, void, reserveCapacity, (Uint32));
  MEMBER(Array<T>, void, grow, (Uint32, const T&));
  MEMBER(Array<T>, void, swap, (Array<T>&));
  MEMBER(Array<T>, Uint32, size, () const);
  MEMBER(Array<T>, Uint32, getCapacity, () const);
  MEMBER(Array<T>, const T*, getData, () const);
  MEMBER(Array<T>, T&, operator[], (Uint32));
  MEMBER(Array<T>, const T&, operator[], (Uint32) const);
  MEMBER(Array<T>, void, append, (const T&));
  MEMBER(Array<T>, void, append, (const T*, Uint32));
  MEMBER(Array<T>, void, appendArray, (const Array<T>&));
  MEMBER(Array<T>, void, prepend, (const T&));
  MEMBER(Array<T>, void, prepend, (const T*, Uint32));
  MEMBER(Array<T>, void, insert, (Uint32, const T&));
  MEMBER(Array<T>, void, insert, (Uint32, const T*, Uint32));
  MEMBER(Array<T>, void, remove, (Uint32));
  MEMBER(Array<T>, void, remove, (Uint32, Uint32));
  return true;
}
template <typename... T>
constexpr bool kAreElements = (CheckArray<T>() && ...);
static_assert(kAreElements<Boolean, Uint8, Sint8, Uint16, Sint16, Uint32, Sint32, Uint64, Sint64, Real32, Real64,
                           Char16, String, CIMName, CIMNamespaceName, CIMDateTime, CIMKeyBinding, CIMObjectPath,
                           CIMObject, CIMInstance, CIMClass, CIMProperty, CIMQualifier, CIMValue, CIMParamValue>);

// Names
template <typename Name>
constexpr bool CheckName() {
  static_assert(kIsValue<Name> && kConverts<Name, String> && kConverts<Name, const char*>);
  MEMBER(Name, Name&, operator=, (const Name&));
  MEMBER(Name, Name&, operator=, (const String&));
  MEMBER(Name, const String&, getString, () const);
  MEMBER(Name, Boolean, isNull, () const);
  MEMBER(Name, void, clear, ());
  MEMBER(Name, Boolean, equal, (const Name&) const);
  STATIC_MEMBER(Name, Boolean, legal, (const String&));
  RETURNS(Boolean, object<Name>() == object<Name>());
  RETURNS(Boolean, object<Name>() != object<Name>());
  return true;
}
static_assert(CheckName<CIMName>() && CheckName<CIMNamespaceName>());

// Keys and paths
static_assert(kIsValue<CIMKeyBinding> && kMakes<CIMKeyBinding, CIMName, String, CIMKeyBinding::Type> &&
              kMakes<CIMKeyBinding, CIMName, CIMValue>);
MEMBER(CIMKeyBinding, const CIMName&, getName, () const);
MEMBER(CIMKeyBinding, void, setName, (const CIMName&));
MEMBER(CIMKeyBinding, const String&, getValue, () const);
MEMBER(CIMKeyBinding, void, setValue, (const String&));
MEMBER(CIMKeyBinding, CIMKeyBinding::Type, getType, () const);
MEMBER(CIMKeyBinding, void, setType, (CIMKeyBinding::Type));
MEMBER(CIMKeyBinding, Boolean, equal, (CIMValue));
RETURNS(Boolean, object<CIMKeyBinding>() == object<CIMKeyBinding>());
static_assert(kIsValue<CIMObjectPath> && kConverts<CIMObjectPath, String> &&
              kMakes<CIMObjectPath, String, CIMNamespaceName, CIMName> &&
              kMakes<CIMObjectPath, String, CIMNamespaceName, CIMName, Keys>);
MEMBER(CIMObjectPath, CIMObjectPath&, operator=, (const CIMObjectPath&));
MEMBER(CIMObjectPath, CIMObjectPath&, operator=, (const String&));
MEMBER(CIMObjectPath, void, clear, ());
MEMBER(CIMObjectPath, void, set, (const String&, const CIMNamespaceName&, const CIMName&, const Keys&));
RETURNS(void, object<CIMObjectPath>().set("", "root", "C"));
MEMBER(CIMObjectPath, void, set, (const String&));
MEMBER(CIMObjectPath, const String&, getHost, () const);
MEMBER(CIMObjectPath, void, setHost, (const String&));
MEMBER(CIMObjectPath, const CIMNamespaceName&, getNameSpace, () const);
MEMBER(CIMObjectPath, void, setNameSpace, (const CIMNamespaceName&));
MEMBER(CIMObjectPath, const CIMName&, getClassName, () const);
MEMBER(CIMObjectPath, void, setClassName, (const CIMName&));
MEMBER(CIMObjectPath, const Keys&, getKeyBindings, () const);
MEMBER(CIMObjectPath, void, setKeyBindings, (const Keys&));
MEMBER(CIMObjectPath, String, toString, () const);
MEMBER(CIMObjectPath, Boolean, identical, (const CIMObjectPath&) const);
MEMBER(CIMObjectPath, Uint32, makeHashCode, () const);
RETURNS(Boolean, object<CIMObjectPath>() == object<CIMObjectPath>());
RETURNS(Boolean, object<CIMObjectPath>() != object<CIMObjectPath>());

// Values
template <typename T, typename Argument>
constexpr bool CheckValueOf() {
  static_assert(kConverts<CIMValue, T> && kConverts<CIMValue, Array<T>>);
  MEMBER(CIMValue, void, set, (Argument));
  MEMBER(CIMValue, void, set, (const Array<T>&));
  MEMBER(CIMValue, void, get, (T&) const);
  MEMBER(CIMValue, void, get, (Array<T>&) const);
  return true;
}
template <typename... T>
constexpr bool kTakesByValue = (CheckValueOf<T, T>() && ...);
template <typename... T>
constexpr bool kTakesByReference = (CheckValueOf<T, const T&>() && ...);
static_assert(kTakesByValue<Boolean, Uint8, Sint8, Uint16, Sint16, Uint32, Sint32, Uint64, Sint64, Real32, Real64> &&
              kTakesByReference<Char16, String, CIMDateTime, CIMObjectPath, CIMObject, CIMInstance>);
static_assert(kIsValue<CIMValue> && kMakes<CIMValue, CIMType, Boolean> && kMakes<CIMValue, CIMType, Boolean, Uint32>);
MEMBER(CIMValue, CIMValue&, operator=, (const CIMValue&));
MEMBER(CIMValue, void, assign, (const CIMValue&));
MEMBER(CIMValue, void, clear, ());
MEMBER(CIMValue, Boolean, typeCompatible, (const CIMValue&) const);
MEMBER(CIMValue, Boolean, isArray, () const);
MEMBER(CIMValue, Boolean, isNull, () const);
MEMBER(CIMValue, Uint32, getArraySize, () const);
MEMBER(CIMValue, CIMType, getType, () const);
MEMBER(CIMValue, void, setNullValue, (CIMType, Boolean, Uint32));
RETURNS(void, object<CIMValue>().setNullValue(CIMTYPE_STRING, false));
MEMBER(CIMValue, Boolean, equal, (const CIMValue&) const);
MEMBER(CIMValue, String, toString, () const);
RETURNS(Boolean, object<CIMValue>() == object<CIMValue>());
RETURNS(Boolean, object<CIMValue>() != object<CIMValue>());
RETURNS(const char*, cimTypeToString(CIMTYPE_UINT8));
RETURNS(const char*, cimStatusCodeToString(CIM_ERR_FAILED));

// Date-times
static_assert(kIsValue<CIMDateTime> && kConverts<CIMDateTime, String> && kMakes<CIMDateTime, Uint64, Boolean>);
MEMBER(CIMDateTime, CIMDateTime&, operator=, (const CIMDateTime&));
MEMBER(CIMDateTime, String, toString, () const);
MEMBER(CIMDateTime, void, set, (const String&));
MEMBER(CIMDateTime, void, clear, ());
STATIC_MEMBER(CIMDateTime, CIMDateTime, getCurrentDateTime, ());
STATIC_MEMBER(CIMDateTime, Sint64, getDifference, (CIMDateTime, CIMDateTime));
MEMBER(CIMDateTime, Boolean, isInterval, () const);
MEMBER(CIMDateTime, Boolean, isInterval, ());
MEMBER(CIMDateTime, Boolean, equal, (const CIMDateTime&) const);
MEMBER(CIMDateTime, Uint64, toMicroSeconds, () const);
MEMBER(CIMDateTime, CIMDateTime, operator+, (const CIMDateTime&) const);
MEMBER(CIMDateTime, CIMDateTime&, operator+=, (const CIMDateTime&));
MEMBER(CIMDateTime, CIMDateTime, operator-, (const CIMDateTime&) const);
MEMBER(CIMDateTime, CIMDateTime&, operator-=, (const CIMDateTime&));
MEMBER(CIMDateTime, CIMDateTime, operator*, (Uint64) const);
MEMBER(CIMDateTime, CIMDateTime&, operator*=, (Uint64));
MEMBER(CIMDateTime, CIMDateTime, operator/, (Uint64) const);
MEMBER(CIMDateTime, CIMDateTime&, operator/=, (Uint64));
MEMBER(CIMDateTime, Uint64, operator/, (const CIMDateTime&) const);
MEMBER(CIMDateTime, Boolean, operator<, (const CIMDateTime&) const);
MEMBER(CIMDateTime, Boolean, operator<=, (const CIMDateTime&) const);
MEMBER(CIMDateTime, Boolean, operator>, (const CIMDateTime&) const);
MEMBER(CIMDateTime, Boolean, operator>=, (const CIMDateTime&) const);
MEMBER(CIMDateTime, Boolean, operator!=, (const CIMDateTime&) const);
RETURNS(Boolean, object<CIMDateTime>() == object<CIMDateTime>());

// Handles: what they have in common. A Const handle has the reading half and is made from and assigned the other one.
template <typename Handle, typename Const>
constexpr bool CheckHandle() {
  static_assert(kIsValue<Handle>);
  MEMBER(Handle, Boolean, isUninitialized, () const);
  MEMBER(Handle, Boolean, identical, (const Const&) const);
  MEMBER(Handle, Handle, clone, () const);
  return true;
}
template <typename Handle, typename Const>
constexpr bool CheckConstHandle() {
  static_assert(kIsValue<Const> && kConverts<Const, Handle> && std::is_assignable_v<Const&, Handle>);
  static_assert(!kConverts<Handle, Const>);
  MEMBER(Const, Boolean, isUninitialized, () const);
  MEMBER(Const, Boolean, identical, (const Const&) const);
  MEMBER(Const, Handle, clone, () const);
  return CheckHandle<Handle, Const>();
}
static_assert(CheckConstHandle<CIMInstance, CIMConstInstance>() && CheckConstHandle<CIMObject, CIMConstObject>() &&
              CheckConstHandle<CIMClass, CIMConstClass>() && CheckConstHandle<CIMProperty, CIMConstProperty>() &&
              CheckConstHandle<CIMMethod, CIMConstMethod>() && CheckConstHandle<CIMParameter, CIMConstParameter>() &&
              CheckConstHandle<CIMQualifier, CIMConstQualifier>() && CheckHandle<CIMQualifierDecl, CIMQualifierDecl>());

template <typename Handle>
constexpr bool CheckQualifierReaders() {
  MEMBER(Handle, Uint32, findQualifier, (const CIMName&) const);
  MEMBER(Handle, CIMConstQualifier, getQualifier, (Uint32) const);
  MEMBER(Handle, Uint32, getQualifierCount, () const);
  return true;
}
template <typename Handle>
constexpr bool CheckQualifiers() {
  MEMBER(Handle, Handle&, addQualifier, (const CIMQualifier&));
  MEMBER(Handle, CIMQualifier, getQualifier, (Uint32));
  MEMBER(Handle, void, removeQualifier, (Uint32));
  return CheckQualifierReaders<Handle>();
}
static_assert(CheckQualifiers<CIMInstance>() && CheckQualifiers<CIMObject>() && CheckQualifiers<CIMClass>() &&
              CheckQualifiers<CIMProperty>() && CheckQualifiers<CIMMethod>() && CheckQualifiers<CIMParameter>());
static_assert(CheckQualifierReaders<CIMConstInstance>() && CheckQualifierReaders<CIMConstObject>() &&
              CheckQualifierReaders<CIMConstClass>() && CheckQualifierReaders<CIMConstProperty>() &&
              CheckQualifierReaders<CIMConstMethod>() && CheckQualifierReaders<CIMConstParameter>());

/// Instances, objects and classes.
template <typename Handle>
constexpr bool CheckObjectReaders() {
  MEMBER(Handle, const CIMName&, getClassName, () const);
  MEMBER(Handle, const CIMObjectPath&, getPath, () const);
  MEMBER(Handle, Uint32, findProperty, (const CIMName&) const);
  MEMBER(Handle, CIMConstProperty, getProperty, (Uint32) const);
  MEMBER(Handle, Uint32, getPropertyCount, () const);
  return true;
}
template <typename Handle>
constexpr bool CheckObject() {
  MEMBER(Handle, void, setPath, (const CIMObjectPath&));
  MEMBER(Handle, Handle&, addProperty, (const CIMProperty&));
  MEMBER(Handle, CIMProperty, getProperty, (Uint32));
  MEMBER(Handle, void, removeProperty, (Uint32));
  return CheckObjectReaders<Handle>();
}
static_assert(CheckObject<CIMInstance>() && CheckObject<CIMObject>() && CheckObject<CIMClass>());
static_assert(CheckObjectReaders<CIMConstInstance>() && CheckObjectReaders<CIMConstObject>() &&
              CheckObjectReaders<CIMConstClass>());
static_assert(kConverts<CIMInstance, CIMName> && kMakes<CIMInstance, CIMObject> && !kConverts<CIMInstance, CIMObject>);
static_assert(kMakes<CIMConstInstance, CIMObject>);
MEMBER(CIMInstance, CIMObjectPath, buildPath, (const CIMConstClass&) const);
MEMBER(CIMConstInstance, CIMObjectPath, buildPath, (const CIMConstClass&) const);
static_assert(kConverts<CIMObject, CIMInstance> && kConverts<CIMObject, CIMClass>);
static_assert(kConverts<CIMConstObject, CIMInstance> && kConverts<CIMConstObject, CIMClass>);
template <typename Object>
constexpr bool CheckKindOfObject() {
  MEMBER(Object, String, toString, () const);
  MEMBER(Object, Boolean, isClass, () const);
  MEMBER(Object, Boolean, isInstance, () const);
  return true;
}
static_assert(CheckKindOfObject<CIMObject>() && CheckKindOfObject<CIMConstObject>());

template <typename Class>
constexpr bool CheckClassReaders() {
  static_assert(kMakes<Class, CIMName> && kMakes<Class, CIMName, CIMName> && kMakes<Class, CIMObject> &&
                !kConverts<Class, CIMObject>);
  MEMBER(Class, Boolean, isAssociation, () const);
  MEMBER(Class, Boolean, isAbstract, () const);
  MEMBER(Class, const CIMName&, getSuperClassName, () const);
  MEMBER(Class, Uint32, findMethod, (const CIMName&) const);
  MEMBER(Class, CIMConstMethod, getMethod, (Uint32) const);
  MEMBER(Class, Uint32, getMethodCount, () const);
  MEMBER(Class, void, getKeyNames, (Names&) const);
  MEMBER(Class, Boolean, hasKeys, () const);
  return true;
}
static_assert(CheckClassReaders<CIMClass>() && CheckClassReaders<CIMConstClass>());
MEMBER(CIMClass, void, setSuperClassName, (const CIMName&));
MEMBER(CIMClass, CIMClass&, addMethod, (const CIMMethod&));
MEMBER(CIMClass, CIMMethod, getMethod, (Uint32));
MEMBER(CIMClass, void, removeMethod, (Uint32));

template <typename Property>
constexpr bool CheckPropertyReaders() {
  MEMBER(Property, const CIMName&, getName, () const);
  MEMBER(Property, const CIMValue&, getValue, () const);
  MEMBER(Property, CIMType, getType, () const);
  MEMBER(Property, Boolean, isArray, () const);
  MEMBER(Property, Uint32, getArraySize, () const);
  MEMBER(Property, const CIMName&, getReferenceClassName, () const);
  MEMBER(Property, const CIMName&, getClassOrigin, () const);
  MEMBER(Property, Boolean, getPropagated, () const);
  return true;
}
static_assert(CheckPropertyReaders<CIMProperty>() && CheckPropertyReaders<CIMConstProperty>());
static_assert(kMakes<CIMProperty, CIMName, CIMValue> && kMakes<CIMProperty, CIMName, CIMValue, Uint32> &&
              kMakes<CIMProperty, CIMName, CIMValue, Uint32, CIMName> &&
              kMakes<CIMProperty, CIMName, CIMValue, Uint32, CIMName, CIMName> &&
              kMakes<CIMProperty, CIMName, CIMValue, Uint32, CIMName, CIMName, Boolean>);
MEMBER(CIMProperty, void, setName, (const CIMName&));
MEMBER(CIMProperty, void, setValue, (const CIMValue&));
MEMBER(CIMProperty, void, setClassOrigin, (const CIMName&));
MEMBER(CIMProperty, void, setPropagated, (Boolean));

static_assert(kIsValue<CIMParamValue> && kMakes<CIMParamValue, String, CIMValue> &&
              kMakes<CIMParamValue, String, CIMValue, Boolean>);
MEMBER(CIMParamValue, String, getParameterName, () const);
MEMBER(CIMParamValue, CIMValue, getValue, () const);
MEMBER(CIMParamValue, Boolean, isTyped, () const);
MEMBER(CIMParamValue, void, setParameterName, (String&));
MEMBER(CIMParamValue, void, setValue, (CIMValue&));
MEMBER(CIMParamValue, void, setIsTyped, (Boolean));
MEMBER(CIMParamValue, CIMParamValue, clone, () const);
MEMBER(CIMParamValue, Boolean, isUninitialized, () const);

static_assert(kIsValue<CIMPropertyList> && kConverts<CIMPropertyList, Names>);
MEMBER(CIMPropertyList, CIMPropertyList&, operator=, (const CIMPropertyList&));
MEMBER(CIMPropertyList, void, set, (const Names&));
MEMBER(CIMPropertyList, void, clear, ());
MEMBER(CIMPropertyList, Boolean, isNull, () const);
MEMBER(CIMPropertyList, Uint32, size, () const);
MEMBER(CIMPropertyList, const CIMName&, operator[], (Uint32) const);
MEMBER(CIMPropertyList, Names, getPropertyNameArray, () const);
MEMBER(CIMPropertyList, Boolean, contains, (const CIMName&) const);
MEMBER(CIMPropertyList, String, toString, () const);

// Exceptions: each derives from Exception directly, so none is caught by the handler of another one.
static_assert(!std::is_default_constructible_v<Exception> && kMakes<Exception, String> &&
              !std::is_assignable_v<Exception&, Exception>);
MEMBER(Exception, const String&, getMessage, () const);
template <typename E, typename... Arguments>
constexpr bool kIsException =
    kMakes<E, Arguments...>&& std::is_base_of_v<Exception, E>&& std::is_copy_constructible_v<E>;
static_assert(kIsException<IndexOutOfBoundsException> && kIsException<UninitializedObjectException> &&
              kIsException<TypeMismatchException> && kIsException<TypeMismatchException, String> &&
              kIsException<DynamicCastFailedException> && kIsException<InvalidDateTimeFormatException> &&
              kIsException<CannotCreateSocketException> && kIsException<AlreadyConnectedException> &&
              kIsException<NotConnectedException> && kIsException<ConnectionTimeoutException> &&
              kIsException<InvalidEnumerationContextException>);
static_assert(kIsException<AlreadyExistsException, String> && kIsException<InvalidNameException, String> &&
              kIsException<InvalidNamespaceNameException, String> &&
              kIsException<DateTimeOutOfRangeException, String> && kIsException<MalformedObjectNameException, String> &&
              kIsException<BindFailedException, String> && kIsException<InvalidLocatorException, String> &&
              kIsException<CannotConnectException, String> && kIsException<SSLException, String> &&
              kIsException<CIMClientMalformedHTTPException, String> && kIsException<CIMClientXmlException, String> &&
              kIsException<CIMClientResponseException, String>);
static_assert(kIsException<CIMException> && kIsException<CIMException, CIMStatusCode> &&
              kIsException<CIMException, CIMStatusCode, String> && std::is_copy_assignable_v<CIMException>);
MEMBER(CIMException, CIMStatusCode, getCode, () const);
using HttpError = CIMClientHTTPErrorException;
static_assert(kIsException<HttpError, Uint32, String, String, String> &&
              kIsException<HttpError, Uint32, String, String>);
MEMBER(HttpError, Uint32, getCode, () const);
MEMBER(HttpError, String, getCIMError, () const);
MEMBER(HttpError, String, getCIMErrorDetail, () const);

}  // namespace
}  // namespace Pegasus
