// The builders of the operations' requests. They share one frame and differ in the parameters they write.
#include "wire/request.h"

#include <string>
#include <string_view>

#include "Pegasus/Common/Exception.h"
#include "wire/xml_writer.h"

namespace Pegasus::wire {
namespace {

/// Writes the frame around the parameters of an intrinsic operation.
class IntrinsicCall {
 public:
  IntrinsicCall(std::uint32_t messageId, const CIMNamespaceName& nameSpace, std::string_view operation);

  /// The body being written, for parameters that have no helper here.
  std::string& Body() { return request_.body; }

  void OpenParameter(std::string_view name) { Body().append("<IPARAMVALUE NAME=\"").append(name).append("\">\n"); }
  void CloseParameter() { Body() += "</IPARAMVALUE>\n"; }

  /// A boolean is only written when it differs from the protocol's default.
  void AddBoolean(std::string_view name, bool value, bool defaultValue);
  /// A null name gives a parameter without content.
  void AddClassName(std::string_view name, const CIMName& className);
  void AddInstanceName(std::string_view name, const CIMObjectPath& path);
  void AddObjectName(std::string_view name, const CIMObjectPath& path);
  /// An empty text is not written.
  void AddText(std::string_view name, const String& text);
  /// A null list is not written.
  void AddPropertyList(const CIMPropertyList& propertyList);

  /// Closes the frame and gives the request away.
  Request Finish() &&;

 private:
  Request request_;
};

void OpenMessage(std::string& body, std::uint32_t messageId) {
  body +=
      "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
      "<MESSAGE ID=\"";
  body += std::to_string(messageId);
  body +=
      "\" PROTOCOLVERSION=\"1.0\">\n"
      "<SIMPLEREQ>\n";
}

void CloseMessage(std::string& body) {
  body +=
      "</SIMPLEREQ>\n"
      "</MESSAGE>\n"
      "</CIM>\n";
}

void CheckNameSpace(const CIMNamespaceName& nameSpace) {
  if (nameSpace.isNull()) throw InvalidNamespaceNameException(nameSpace.getString());
}

void AppendClassNameElement(std::string& out, const CIMName& className) {
  out += "<CLASSNAME NAME=\"";
  AppendEscaped(out, className.getString());
  out += "\"/>\n";
}

IntrinsicCall::IntrinsicCall(std::uint32_t messageId, const CIMNamespaceName& nameSpace, std::string_view operation) {
  CheckNameSpace(nameSpace);
  request_.method = operation;
  AppendUtf8(request_.object, nameSpace.getString());
  request_.messageId = messageId;
  OpenMessage(Body(), messageId);
  Body().append("<IMETHODCALL NAME=\"").append(operation).append("\">\n");
  AppendLocalNameSpacePath(Body(), nameSpace);
}

void IntrinsicCall::AddBoolean(std::string_view name, bool value, bool defaultValue) {
  if (value == defaultValue) return;
  OpenParameter(name);
  Body() += value ? "<VALUE>TRUE</VALUE>\n" : "<VALUE>FALSE</VALUE>\n";
  CloseParameter();
}

void IntrinsicCall::AddClassName(std::string_view name, const CIMName& className) {
  OpenParameter(name);
  if (!className.isNull()) AppendClassNameElement(Body(), className);
  CloseParameter();
}

void IntrinsicCall::AddInstanceName(std::string_view name, const CIMObjectPath& path) {
  OpenParameter(name);
  AppendInstanceName(Body(), path);
  CloseParameter();
}

void IntrinsicCall::AddObjectName(std::string_view name, const CIMObjectPath& path) {
  if (path.getKeyBindings().size() == 0) {
    AddClassName(name, path.getClassName());
  } else {
    AddInstanceName(name, path);
  }
}

void IntrinsicCall::AddText(std::string_view name, const String& text) {
  if (text.size() == 0) return;
  OpenParameter(name);
  AppendValue(Body(), CIMValue(text));
  CloseParameter();
}

void IntrinsicCall::AddPropertyList(const CIMPropertyList& propertyList) {
  if (propertyList.isNull()) return;
  OpenParameter("PropertyList");
  Body() += "<VALUE.ARRAY>\n";
  for (Uint32 i = 0; i < propertyList.size(); ++i) {
    Body() += "<VALUE>";
    AppendEscaped(Body(), propertyList[i].getString());
    Body() += "</VALUE>\n";
  }
  Body() += "</VALUE.ARRAY>\n";
  CloseParameter();
}

Request IntrinsicCall::Finish() && {
  Body() += "</IMETHODCALL>\n";
  CloseMessage(Body());
  return std::move(request_);
}

}  // namespace

Request BuildEnumerateInstances(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMName& className,
                                bool deepInheritance, bool localOnly, bool includeQualifiers, bool includeClassOrigin,
                                const CIMPropertyList& propertyList) {
  IntrinsicCall call(messageId, nameSpace, "EnumerateInstances");
  call.AddClassName("ClassName", className);
  call.AddBoolean("LocalOnly", localOnly, true);
  call.AddBoolean("DeepInheritance", deepInheritance, true);
  call.AddBoolean("IncludeQualifiers", includeQualifiers, false);
  call.AddBoolean("IncludeClassOrigin", includeClassOrigin, false);
  call.AddPropertyList(propertyList);
  return std::move(call).Finish();
}

Request BuildEnumerateInstanceNames(std::uint32_t messageId, const CIMNamespaceName& nameSpace,
                                    const CIMName& className) {
  IntrinsicCall call(messageId, nameSpace, "EnumerateInstanceNames");
  call.AddClassName("ClassName", className);
  return std::move(call).Finish();
}

Request BuildGetInstance(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName,
                         bool localOnly, bool includeQualifiers, bool includeClassOrigin,
                         const CIMPropertyList& propertyList) {
  IntrinsicCall call(messageId, nameSpace, "GetInstance");
  call.AddInstanceName("InstanceName", instanceName);
  call.AddBoolean("LocalOnly", localOnly, true);
  call.AddBoolean("IncludeQualifiers", includeQualifiers, false);
  call.AddBoolean("IncludeClassOrigin", includeClassOrigin, false);
  call.AddPropertyList(propertyList);
  return std::move(call).Finish();
}

Request BuildModifyInstance(std::uint32_t messageId, const CIMNamespaceName& nameSpace,
                            const CIMInstance& modifiedInstance, bool includeQualifiers,
                            const CIMPropertyList& propertyList) {
  IntrinsicCall call(messageId, nameSpace, "ModifyInstance");
  call.OpenParameter("ModifiedInstance");
  call.Body() += "<VALUE.NAMEDINSTANCE>\n";
  AppendInstanceName(call.Body(), modifiedInstance.getPath());
  AppendInstance(call.Body(), modifiedInstance);
  call.Body() += "</VALUE.NAMEDINSTANCE>\n";
  call.CloseParameter();
  call.AddBoolean("IncludeQualifiers", includeQualifiers, true);
  call.AddPropertyList(propertyList);
  return std::move(call).Finish();
}

Request BuildAssociators(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMObjectPath& objectName,
                         const CIMName& assocClass, const CIMName& resultClass, const String& role,
                         const String& resultRole, bool includeQualifiers, bool includeClassOrigin,
                         const CIMPropertyList& propertyList) {
  IntrinsicCall call(messageId, nameSpace, "Associators");
  call.AddObjectName("ObjectName", objectName);
  call.AddClassName("AssocClass", assocClass);
  call.AddClassName("ResultClass", resultClass);
  call.AddText("Role", role);
  call.AddText("ResultRole", resultRole);
  call.AddBoolean("IncludeQualifiers", includeQualifiers, false);
  call.AddBoolean("IncludeClassOrigin", includeClassOrigin, false);
  call.AddPropertyList(propertyList);
  return std::move(call).Finish();
}

Request BuildAssociatorNames(std::uint32_t messageId, const CIMNamespaceName& nameSpace,
                             const CIMObjectPath& objectName, const CIMName& assocClass, const CIMName& resultClass,
                             const String& role, const String& resultRole) {
  IntrinsicCall call(messageId, nameSpace, "AssociatorNames");
  call.AddObjectName("ObjectName", objectName);
  call.AddClassName("AssocClass", assocClass);
  call.AddClassName("ResultClass", resultClass);
  call.AddText("Role", role);
  call.AddText("ResultRole", resultRole);
  return std::move(call).Finish();
}

Request BuildGetClass(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMName& className,
                      bool localOnly, bool includeQualifiers, bool includeClassOrigin,
                      const CIMPropertyList& propertyList) {
  IntrinsicCall call(messageId, nameSpace, "GetClass");
  call.AddClassName("ClassName", className);
  call.AddBoolean("LocalOnly", localOnly, true);
  call.AddBoolean("IncludeQualifiers", includeQualifiers, true);
  call.AddBoolean("IncludeClassOrigin", includeClassOrigin, false);
  call.AddPropertyList(propertyList);
  return std::move(call).Finish();
}

Request BuildInvokeMethod(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName,
                          const CIMName& methodName, const Array<CIMParamValue>& inParameters) {
  CheckNameSpace(nameSpace);
  Request request;
  request.messageId = messageId;
  AppendUtf8(request.method, methodName.getString());
  const CIMObjectPath target(String(), nameSpace, instanceName.getClassName(), instanceName.getKeyBindings());
  AppendUtf8(request.object, target.toString());

  std::string& body = request.body;
  OpenMessage(body, messageId);
  body += "<METHODCALL NAME=\"";
  AppendEscaped(body, methodName.getString());
  body += "\">\n";
  const bool isClassPath = target.getKeyBindings().size() == 0;
  body += isClassPath ? "<LOCALCLASSPATH>\n" : "<LOCALINSTANCEPATH>\n";
  AppendLocalNameSpacePath(body, nameSpace);
  if (isClassPath) {
    AppendClassNameElement(body, target.getClassName());
  } else {
    AppendInstanceName(body, target);
  }
  body += isClassPath ? "</LOCALCLASSPATH>\n" : "</LOCALINSTANCEPATH>\n";
  for (Uint32 i = 0; i < inParameters.size(); ++i) AppendParamValue(body, inParameters[i]);
  body += "</METHODCALL>\n";
  CloseMessage(body);
  return request;
}

}  // namespace Pegasus::wire
