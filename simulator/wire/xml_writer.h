// Writes the elements of CIM-XML answers (DSP0201) onto the end of a text.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cim/class_repository.h"
#include "cim/object_store.h"

namespace Orvane::simulator {

/// What an answer shows of each instance.
struct Selection {
  /// Names of the properties to show; none shows all, an empty list shows nothing.
  std::optional<NameSet> properties;
  /// Show only properties that this class has; null for no such limit.
  const ClassDeclaration* onlyOf = nullptr;
  bool classOrigin = false;
};

/// Escapes what XML reserves; control characters become references.
void AppendEscaped(std::string& out, std::string_view text);

void AppendInstanceName(std::string& out, const ObjectPath& path);
/// INSTANCEPATH with host and namespace.
void AppendInstancePath(std::string& out, const ObjectPath& path, std::string_view host);
void AppendInstance(std::string& out, const Instance& instance, const Selection& selection);
/// @param localOnly  leave out what the superclass declares
void AppendClass(std::string& out, const ClassDeclaration& declaration, const Selection& selection, bool localOnly,
                 bool qualifiers);
void AppendValue(std::string& out, const Value& value, bool isArray);

/// A whole answer around what @p content appends; name is that of the operation or method.
std::string WriteIntrinsicAnswer(std::string_view messageId, std::string_view name,
                                 const std::function<void(std::string&)>& content);
std::string WriteExtrinsicAnswer(std::string_view messageId, std::string_view name,
                                 const std::function<void(std::string&)>& content);
/// ERROR element.
void AppendError(std::string& out, int code, std::string_view description);

}  // namespace Orvane::simulator
