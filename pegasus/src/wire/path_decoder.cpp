// The decoder of paths.
#include "wire/path_decoder.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/limits.h"
#include "objects/internal.h"
#include "wire/scalar_text.h"

namespace Pegasus::wire {
namespace {

/// For how many keys room is made ahead; bounds what a small name behind a large one can take.
constexpr Uint32 kMaxReservedKeys = 8;

struct PathForm {
  std::string_view element;
  bool withHost;
  bool isClass;
};

constexpr std::array<PathForm, 4> kQualifiedForms = {{{"INSTANCEPATH", true, false},
                                                      {"LOCALINSTANCEPATH", false, false},
                                                      {"CLASSPATH", true, true},
                                                      {"LOCALCLASSPATH", false, true}}};

}  // namespace

const CIMName& PathDecoder::NeedName(std::string_view element, std::string_view attribute) {
  return ToName(element, attribute, reader_.NeedAttribute(element, attribute));
}

const CIMName& PathDecoder::ToName(std::string_view element, std::string_view attribute, std::string_view text) {
  const CIMName* const name = names_.Find(text);
  if (name == nullptr) {
    reader_.FailAttribute(std::string("Illegal value for ").append(element).append(".").append(attribute) +
                          " attribute");
  }
  return *name;
}

CIMObjectPath PathDecoder::ReadClassName() {
  if (!reader_.AtStart("CLASSNAME")) reader_.FailValidation("expected CLASSNAME element");
  CIMName className = NeedName("CLASSNAME", "NAME");
  reader_.Next();
  reader_.Leave("CLASSNAME");
  return objects::Access::MakePathUnchecked(String(), CIMNamespaceName(), std::move(className), Array<CIMKeyBinding>());
}

CIMObjectPath PathDecoder::ReadInstanceName() {
  if (!reader_.AtStart("INSTANCENAME")) reader_.FailValidation("expected INSTANCENAME element");
  CIMName className = NeedName("INSTANCENAME", "CLASSNAME");
  reader_.Next();
  Array<CIMKeyBinding> keys = internal::PoolAccess::MakeArray<CIMKeyBinding>(pool_, lastKeyCount_);
  if (reader_.AtStart("KEYVALUE")) {
    keys.append(ReadKeyValue(CIMName()));
  } else {
    while (reader_.AtStart("KEYBINDING")) {
      if (keys.size() == limits::kKeys) reader_.FailValidation("too many KEYBINDING elements");
      keys.append(ReadKeyBinding());
    }
  }
  lastKeyCount_ = std::min(keys.size(), kMaxReservedKeys);
  reader_.Leave("INSTANCENAME");
  return objects::Access::MakePathUnchecked(String(), CIMNamespaceName(), std::move(className), std::move(keys));
}

CIMKeyBinding PathDecoder::ReadKeyBinding() {
  CIMName name = NeedName("KEYBINDING", "NAME");
  reader_.Next();
  if (reader_.AtStart("VALUE.REFERENCE")) {
    if (referenceNesting_ == limits::kReferenceNesting) reader_.FailValidation("references are nested too deeply");
    ++referenceNesting_;
    String text = ReadReference().toString();
    --referenceNesting_;
    reader_.Leave("KEYBINDING");
    return objects::Access::MakeKeyBindingUnchecked(std::move(name), std::move(text), CIMKeyBinding::REFERENCE);
  }
  if (!reader_.AtStart("KEYVALUE")) reader_.FailValidation("Expected KEYVALUE or VALUE.REFERENCE within KEYBINDING");
  CIMKeyBinding key = ReadKeyValue(std::move(name));
  reader_.Leave("KEYBINDING");
  return key;
}

CIMKeyBinding PathDecoder::ReadKeyValue(CIMName&& name) {
  const std::string_view typeText = reader_.FindAttribute("VALUETYPE").value_or("string");
  CIMKeyBinding::Type type = CIMKeyBinding::STRING;
  if (EqualNoCase(typeText, "boolean")) {
    type = CIMKeyBinding::BOOLEAN;
  } else if (EqualNoCase(typeText, "numeric")) {
    type = CIMKeyBinding::NUMERIC;
  } else if (!EqualNoCase(typeText, "string")) {
    reader_.FailAttribute("Illegal value for KEYVALUE.VALUETYPE attribute");
  }
  String value = internal::PoolAccess::MakeString(pool_, reader_.TakeTextElement("KEYVALUE"));
  return objects::Access::MakeKeyBindingUnchecked(std::move(name), std::move(value), type);
}

CIMNamespaceName PathDecoder::ReadLocalNameSpacePath() {
  if (!reader_.AtStart("LOCALNAMESPACEPATH")) reader_.FailValidation("expected LOCALNAMESPACEPATH element");
  reader_.Next();
  std::string text;
  while (reader_.AtStart("NAMESPACE")) {
    if (!text.empty()) text += '/';
    text += reader_.NeedAttribute("NAMESPACE", "NAME");
    reader_.Next();
    reader_.Leave("NAMESPACE");
  }
  if (text.empty()) reader_.FailValidation("Expected one or more NAMESPACE elements within LOCALNAMESPACEPATH element");
  reader_.Leave("LOCALNAMESPACEPATH");
  return CIMNamespaceName(ToString(text));
}

CIMObjectPath PathDecoder::ReadQualifiedPath(std::string_view element, bool withHost, bool isClass) {
  reader_.Next();
  String host;
  if (withHost) {
    if (!reader_.AtStart("NAMESPACEPATH")) reader_.FailValidation("expected NAMESPACEPATH element");
    reader_.Next();
    if (!reader_.AtStart("HOST")) reader_.FailValidation("expected HOST element");
    reader_.Next();
    if (!reader_.AtText()) reader_.FailValidation("expected content of HOST element");
    host = ToString(reader_.TakeText());
    reader_.Leave("HOST");
  }
  const CIMNamespaceName nameSpace = ReadLocalNameSpacePath();
  if (withHost) reader_.Leave("NAMESPACEPATH");
  CIMObjectPath path = isClass ? ReadClassName() : ReadInstanceName();
  reader_.Leave(element);
  path.setNameSpace(nameSpace);
  if (withHost) path.setHost(host);
  return path;
}

CIMObjectPath PathDecoder::ReadFullPath(const char* message) {
  for (const PathForm& form : kQualifiedForms) {
    if (form.withHost && reader_.AtStart(form.element)) return ReadQualifiedPath(form.element, true, form.isClass);
  }
  reader_.FailValidation(message);
}

CIMObjectPath PathDecoder::ReadReference() {
  if (!reader_.AtStart("VALUE.REFERENCE")) reader_.FailValidation("expected VALUE.REFERENCE element");
  reader_.Next();
  CIMObjectPath path;
  if (reader_.AtStart("INSTANCENAME")) {
    path = ReadInstanceName();
  } else if (reader_.AtStart("CLASSNAME")) {
    path = ReadClassName();
  } else {
    const PathForm* found = nullptr;
    for (const PathForm& form : kQualifiedForms) {
      if (reader_.AtStart(form.element)) found = &form;
    }
    if (found == nullptr) {
      reader_.FailValidation(
          "Expected INSTANCEPATH, LOCALINSTANCEPATH, INSTANCENAME, CLASSPATH, LOCALCLASSPATH or CLASSNAME element");
    }
    path = ReadQualifiedPath(found->element, found->withHost, found->isClass);
  }
  reader_.Leave("VALUE.REFERENCE");
  return path;
}

}  // namespace Pegasus::wire
