// A parameter that names no type is judged by its value, one that names a type must name the declared one.
#include "behaviour/method_parameters.h"

#include <algorithm>

#include "cim/cim_error.h"
#include "cim/class_repository.h"

namespace Orvane::simulator {

namespace {

[[noreturn]] void Refuse(const std::string& name, const std::string& reason) {
  throw CimError(CimStatus::kInvalidParameter, "The parameter '" + name + "' " + reason);
}

void Check(const MethodParameter& sent, const ParameterDeclaration& declared) {
  const std::string type = std::string(TypeName(declared.type)) + (declared.isArray ? " array" : "");
  const bool isReference = declared.type == CimType::kReference;
  if (!sent.typeName.empty() && sent.typeName != TypeName(declared.type)) Refuse(sent.name, "is of type " + type);
  if (sent.value.isNull) return;
  const std::vector<std::string>& texts = sent.value.texts;
  const bool isLegal = sent.isArray == declared.isArray && isReference == !sent.value.references.empty() &&
                       std::all_of(texts.begin(), texts.end(),
                                   [&](const std::string& text) { return IsLegalText(declared.type, text); });
  if (!isLegal) Refuse(sent.name, "is no " + type);
}

}  // namespace

MethodParameters::MethodParameters(const std::vector<MethodParameter>& sent, std::string_view className,
                                   std::string_view method)
    : sent_(sent) {
  const std::vector<ParameterDeclaration>& declared = FindClass(className)->FindMethod(method)->parameters;
  for (const MethodParameter& parameter : sent) {
    const auto found = std::find_if(declared.begin(), declared.end(), [&](const ParameterDeclaration& known) {
      return !known.isOut && EqualNames(known.name, parameter.name);
    });
    if (found == declared.end()) Refuse(parameter.name, "is unknown");
    Check(parameter, *found);
  }
  for (const ParameterDeclaration& known : declared) {
    const auto isIt = [&](const MethodParameter& parameter) { return EqualNames(known.name, parameter.name); };
    if (known.isRequired && std::none_of(sent.begin(), sent.end(), isIt)) Refuse(std::string(known.name), "is missing");
  }
}

const Value* MethodParameters::Find(const char* name) const {
  const auto found = std::find_if(sent_.rbegin(), sent_.rend(), [name](const MethodParameter& parameter) {
    return EqualNames(parameter.name, name);
  });
  return found == sent_.rend() || found->value.isNull ? nullptr : &found->value;
}

std::optional<std::string> MethodParameters::Text(const char* name) const {
  const Value* const value = Find(name);
  if (value == nullptr) return std::nullopt;
  return value->texts.front();
}

std::optional<std::vector<std::string>> MethodParameters::Texts(const char* name) const {
  const Value* const value = Find(name);
  if (value == nullptr) return std::nullopt;
  return value->texts;
}

std::optional<ObjectPath> MethodParameters::Reference(const char* name) const {
  const Value* const value = Find(name);
  if (value == nullptr) return std::nullopt;
  return value->references.front();
}

}  // namespace Orvane::simulator
