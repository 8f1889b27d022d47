// The operations of DSP0200 that clients of a chassis use. Deprecated parameters without a meaning here are accepted
// and change nothing: LocalOnly of instances (DSP0200 lets a server treat it as false) and IncludeQualifiers of
// instances (instances have no qualifiers).
#include "server/operations.h"

#include <algorithm>
#include <exception>
#include <initializer_list>
#include <optional>
#include <string_view>

#include "cim/cim_error.h"
#include "wire/xml_writer.h"

namespace Orvane::simulator {

namespace {

constexpr const char* kNameSpace = "root/cimv2";

std::string Quoted(std::string_view name) { return "'" + std::string(name) + "'"; }

[[noreturn]] void InvalidParameter(const std::string& reason) { throw CimError(CimStatus::kInvalidParameter, reason); }

// Read access to the parameters of one intrinsic request.
class Parameters {
 public:
  Parameters(const Request& request, std::initializer_list<std::string_view> known) : request_(request) {
    for (const auto& parameter : request.parameters) {
      const std::string& name = parameter.first;  // a structured binding could not be captured below
      if (std::none_of(known.begin(), known.end(), [&](std::string_view other) { return EqualNames(other, name); })) {
        InvalidParameter(request.name + " has no parameter " + Quoted(name));
      }
    }
  }

  bool Boolean(const char* name, bool whenMissing) const {
    const Parameter* const found = Find(name);
    if (found == nullptr || IsNull(*found)) return whenMissing;
    if (!found->text || !IsLegalText(CimType::kBoolean, *found->text))
      InvalidParameter(Quoted(name) + " is no boolean");
    return EqualNames(*found->text, "true");
  }

  // Empty when missing or NULL.
  std::string ClassName(const char* name) const {
    const Parameter* const found = Find(name);
    if (found == nullptr || IsNull(*found)) return {};
    if (!found->className || found->className->empty()) InvalidParameter(Quoted(name) + " is no class name");
    return *found->className;
  }

  std::string RequiredClassName(const char* name) const {
    std::string className = ClassName(name);
    if (className.empty()) InvalidParameter(Quoted(name) + " is missing");
    return className;
  }

  std::string Text(const char* name) const {
    const Parameter* const found = Find(name);
    if (found == nullptr || IsNull(*found)) return {};
    if (!found->text) InvalidParameter(Quoted(name) + " is no string");
    return *found->text;
  }

  const ObjectPath& InstanceName(const char* name) const {
    const Parameter* const found = Find(name);
    if (found == nullptr || !found->path) InvalidParameter(Quoted(name) + " is missing or no path of an instance");
    return *found->path;
  }

  // Of an operation that also has a meaning for classes.
  const ObjectPath& ObjectName(const char* name) const {
    const Parameter* const found = Find(name);
    if (found != nullptr && found->className) {
      throw CimError(CimStatus::kNotSupported, request_.name + " is supported for instances only, not for classes");
    }
    return InstanceName(name);
  }

  const SentInstance& NamedInstance(const char* name) const {
    const Parameter* const found = Find(name);
    if (found == nullptr || !found->instance) InvalidParameter(Quoted(name) + " is missing");
    return *found->instance;
  }

  std::optional<NameSet> Names(const char* name) const {
    const Parameter* const found = Find(name);
    if (found == nullptr || IsNull(*found)) return std::nullopt;
    if (!found->texts) InvalidParameter(Quoted(name) + " is no array of strings");
    return NameSet(found->texts->begin(), found->texts->end());
  }

  Selection Properties() const { return {Names("PropertyList"), nullptr, Boolean("IncludeClassOrigin", false)}; }

 private:
  const Parameter* Find(const char* name) const {
    const auto found = request_.parameters.find(name);
    return found == request_.parameters.end() ? nullptr : &found->second;
  }
  static bool IsNull(const Parameter& parameter) {
    return !parameter.text && !parameter.texts && !parameter.className && !parameter.path && !parameter.instance;
  }

  const Request& request_;
};

struct Context {
  const ObjectStore& store;
  const std::string& host;
};

void AppendNamedInstance(std::string& out, const Instance& instance, const Selection& selection) {
  out += "<VALUE.NAMEDINSTANCE>\n";
  AppendInstanceName(out, instance.Path());
  AppendInstance(out, instance, selection);
  out += "</VALUE.NAMEDINSTANCE>\n";
}

void EnumerateInstances(std::string& out, const Request& request, const Context& context) {
  const Parameters parameters(request, {"ClassName", "LocalOnly", "DeepInheritance", "IncludeQualifiers",
                                        "IncludeClassOrigin", "PropertyList"});
  const std::string className = parameters.RequiredClassName("ClassName");
  Selection selection = parameters.Properties();
  // Without deep inheritance instances of subclasses are cut to the properties of the class that was asked for.
  if (!parameters.Boolean("DeepInheritance", true)) selection.onlyOf = FindClass(className);
  for (const Instance* instance : context.store.Enumerate(className)) AppendNamedInstance(out, *instance, selection);
}

void EnumerateInstanceNames(std::string& out, const Request& request, const Context& context) {
  const Parameters parameters(request, {"ClassName"});
  for (const Instance* instance : context.store.Enumerate(parameters.RequiredClassName("ClassName"))) {
    AppendInstanceName(out, instance->Path());
  }
}

void GetInstance(std::string& out, const Request& request, const Context& context) {
  const Parameters parameters(request,
                              {"InstanceName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
  AppendInstance(out, context.store.Get(parameters.InstanceName("InstanceName")), parameters.Properties());
}

void GetClass(std::string& out, const Request& request, const Context& /*context*/) {
  const Parameters parameters(request,
                              {"ClassName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
  const std::string className = parameters.RequiredClassName("ClassName");
  const ClassDeclaration* const declaration = FindClass(className);
  if (declaration == nullptr) {
    // For this operation DSP0200 says "not found" for a class that does not exist.
    throw CimError(CimStatus::kNotFound, "The class " + Quoted(className) + " does not exist");
  }
  AppendClass(out, *declaration, parameters.Properties(), parameters.Boolean("LocalOnly", true),
              parameters.Boolean("IncludeQualifiers", true));
}

std::vector<const Instance*> FindAssociators(const Parameters& parameters, const Context& context) {
  const std::string associationClass = parameters.ClassName("AssocClass");
  const std::string resultClass = parameters.ClassName("ResultClass");
  const std::string role = parameters.Text("Role");
  const std::string resultRole = parameters.Text("ResultRole");
  return context.store.Associators(parameters.ObjectName("ObjectName"),
                                   {associationClass, resultClass, role, resultRole});
}

void Associators(std::string& out, const Request& request, const Context& context) {
  const Parameters parameters(request, {"ObjectName", "AssocClass", "ResultClass", "Role", "ResultRole",
                                        "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
  const Selection selection = parameters.Properties();
  for (const Instance* instance : FindAssociators(parameters, context)) {
    out += "<VALUE.OBJECTWITHPATH>\n";
    AppendInstancePath(out, instance->Path(), context.host);
    AppendInstance(out, *instance, selection);
    out += "</VALUE.OBJECTWITHPATH>\n";
  }
}

void AssociatorNames(std::string& out, const Request& request, const Context& context) {
  const Parameters parameters(request, {"ObjectName", "AssocClass", "ResultClass", "Role", "ResultRole"});
  for (const Instance* instance : FindAssociators(parameters, context)) {
    out += "<OBJECTPATH>\n";
    AppendInstancePath(out, instance->Path(), context.host);
    out += "</OBJECTPATH>\n";
  }
}

// The type that the client names must be the declared one, or the text that is stored would mean something else.
void CheckSentType(const ClassDeclaration& declaration, const SentProperty& sent) {
  const PropertyDeclaration* const property = declaration.FindProperty(sent.name);
  if (property == nullptr) {
    throw CimError(CimStatus::kNoSuchProperty,
                   "The class " + std::string(declaration.name) + " has no property " + Quoted(sent.name));
  }
  if (sent.typeName != TypeName(property->type) || sent.isArray != property->isArray) {
    throw CimError(CimStatus::kTypeMismatch, "The property " + Quoted(sent.name) + " is of type " +
                                                 std::string(TypeName(property->type)) +
                                                 (property->isArray ? " array" : ""));
  }
}

// @return the path of the instance
ObjectPath ModifyInstance(const Request& request, ObjectStore& store) {
  const Parameters parameters(request, {"ModifiedInstance", "IncludeQualifiers", "PropertyList"});
  const auto& [path, className, sent] = parameters.NamedInstance("ModifiedInstance");
  const ClassDeclaration& declaration = *store.Get(path).declaration;
  if (!EqualNames(className, path.className)) {
    InvalidParameter("The instance is of the class " + Quoted(className) + ", its path of " + Quoted(path.className));
  }
  const auto list = parameters.Names("PropertyList");
  ObjectStore::NamedValues values;
  NameSet missing = list.value_or(NameSet());
  for (const SentProperty& property : sent) {
    if (list && list->count(property.name) == 0) continue;
    missing.erase(property.name);
    CheckSentType(declaration, property);
    values.emplace_back(property.name, property.value);
  }
  for (const std::string& name : list.value_or(NameSet())) {
    if (declaration.FindProperty(name) == nullptr) {
      throw CimError(CimStatus::kNoSuchProperty,
                     "The class " + std::string(declaration.name) + " has no property " + Quoted(name));
    }
  }
  if (!missing.empty()) InvalidParameter("No value was sent for " + Quoted(*missing.begin()));
  store.Modify(path, values);
  return path;
}

struct ReadingOperation {
  std::string_view name;
  void (*append)(std::string& out, const Request& request, const Context& context);
};

constexpr ReadingOperation kReadingOperations[] = {
    {"EnumerateInstances", EnumerateInstances},
    {"EnumerateInstanceNames", EnumerateInstanceNames},
    {"GetInstance", GetInstance},
    {"GetClass", GetClass},
    {"Associators", Associators},
    {"AssociatorNames", AssociatorNames},
};

void RequireNameSpace(const Request& request) {
  // Namespace names are compared without case.
  if (!EqualNames(request.nameSpace, kNameSpace)) {
    throw CimError(CimStatus::kInvalidNamespace, "The namespace " + Quoted(request.nameSpace) + " does not exist");
  }
}

std::string WholeAnswer(const Request& request, const std::string& content) {
  const auto write = request.isIntrinsic ? WriteIntrinsicAnswer : WriteExtrinsicAnswer;
  return write(request.messageId, request.name, [&content](std::string& out) { out += content; });
}

}  // namespace

Operations::Operations(SharedStore& store, std::string host) : store_(store), host_(std::move(host)) {}

void Operations::AddMethod(const std::string& className, const std::string& method, Method action) {
  methods_[{LowerCase(className), LowerCase(method)}] = std::move(action);
}

void Operations::AddObserver(const std::string& className, ModificationObserver observer) {
  observers_.emplace_back(className, std::move(observer));
}

std::uint64_t Operations::Count(const std::string& operation) const {
  const std::lock_guard<std::mutex> lock(countsMutex_);
  const auto found = counts_.find(operation);
  return found == counts_.end() ? 0 : found->second;
}

std::string Operations::Answer(const Request& request) {
  CountCall(request);
  std::string content;
  try {
    RequireNameSpace(request);
    store_.With([&](ObjectStore& store) { Append(content, request, store); });
  } catch (const CimError& error) {
    content.clear();
    AppendError(content, static_cast<int>(error.Status()), error.what());
  } catch (const std::exception& error) {
    // A fault of one operation must not end the server for all clients.
    content.clear();
    AppendError(content, static_cast<int>(CimStatus::kFailed), error.what());
  }
  return WholeAnswer(request, content);
}

std::string Operations::AnswerError(const Request& request, int code, const std::string& description) {
  CountCall(request);
  std::string content;
  AppendError(content, code, description);
  return WholeAnswer(request, content);
}

void Operations::CountCall(const Request& request) {
  const std::lock_guard<std::mutex> lock(countsMutex_);
  ++counts_[request.isIntrinsic ? request.name : "InvokeMethod"];
}

void Operations::Append(std::string& out, const Request& request, ObjectStore& store) const {
  if (!request.isIntrinsic) return AppendExtrinsic(out, request, store);
  if (!EqualNames(request.name, "ModifyInstance")) return AppendIntrinsic(out, request, store);
  const ObjectPath modified = ModifyInstance(request, store);
  for (const auto& [className, observer] : observers_) {
    if (IsOrDerivesFrom(*store.Get(modified).declaration, className)) observer(store, modified);
  }
}

void Operations::AppendIntrinsic(std::string& out, const Request& request, const ObjectStore& store) const {
  const auto* const found =
      std::find_if(std::begin(kReadingOperations), std::end(kReadingOperations),
                   [&](const ReadingOperation& operation) { return EqualNames(operation.name, request.name); });
  if (found == std::end(kReadingOperations)) {
    throw CimError(CimStatus::kNotSupported, "The operation " + Quoted(request.name) + " is not supported");
  }
  std::string content;
  found->append(content, request, {store, host_});
  // An empty result has no IRETURNVALUE, as real servers answer it.
  if (!content.empty()) out += "<IRETURNVALUE>\n" + content + "</IRETURNVALUE>\n";
}

const Method* Operations::FindMethod(const ClassDeclaration& declaration, const std::string& name) const {
  for (const ClassDeclaration* current = &declaration; current != nullptr;
       current = current->superclass.empty() ? nullptr : FindClass(current->superclass)) {
    const auto found = methods_.find({LowerCase(current->name), LowerCase(name)});
    if (found != methods_.end()) return &found->second;
  }
  return nullptr;
}

void Operations::AppendExtrinsic(std::string& out, const Request& request, ObjectStore& store) const {
  const ClassDeclaration* const declaration = FindClass(request.target.className);
  if (declaration == nullptr) {
    throw CimError(CimStatus::kInvalidClass, "The class " + Quoted(request.target.className) + " does not exist");
  }
  // A path without keys addresses the class itself; all methods here belong to instances.
  if (!request.target.keys.empty()) store.Get(request.target);
  if (!declaration->HasMethod(request.name)) {
    throw CimError(CimStatus::kMethodNotFound,
                   "The class " + std::string(declaration->name) + " has no method " + Quoted(request.name));
  }
  const Method* const method = request.target.keys.empty() ? nullptr : FindMethod(*declaration, request.name);
  if (method == nullptr) {
    throw CimError(CimStatus::kMethodNotAvailable, "The method " + Quoted(request.name) + " is not available");
  }
  const MethodResult result = (*method)(store, request.target, request.methodParameters);
  out +=
      "<RETURNVALUE PARAMTYPE=\"uint32\">\n<VALUE>" + std::to_string(result.returnValue) + "</VALUE>\n</RETURNVALUE>\n";
  for (const MethodParameter& parameter : result.out) {
    out += "<PARAMVALUE NAME=\"";
    AppendEscaped(out, parameter.name);
    out += "\" PARAMTYPE=\"";
    AppendEscaped(out, parameter.typeName);
    out += "\">\n";
    AppendValue(out, parameter.value, parameter.isArray);
    out += "</PARAMVALUE>\n";
  }
}

}  // namespace Orvane::simulator
