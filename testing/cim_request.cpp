// Reads requests with pugixml; what a CIM client never sends is an error here, so that a test notices it.
#include "testing/cim_request.h"

#include <pugixml.hpp>
#include <stdexcept>
#include <string>

#include "testing/cim_xml.h"

namespace Orvane::testing {

namespace {

std::string NameSpaceOf(const pugi::xml_node& localNamespacePath) {
  std::string out;
  for (const pugi::xml_node part : localNamespacePath.children("NAMESPACE")) {
    if (!out.empty()) out += '/';
    out += part.attribute("NAME").value();
  }
  return out;
}

CimPath PathOf(const pugi::xml_node& node);

CimPath InstanceNameOf(const pugi::xml_node& instanceName) {
  CimPath path;
  path.className = instanceName.attribute("CLASSNAME").value();
  for (const pugi::xml_node binding : instanceName.children("KEYBINDING")) {
    CimKey key;
    key.name = binding.attribute("NAME").value();
    if (const pugi::xml_node value = binding.child("KEYVALUE")) {
      key.text = value.text().get();
      key.type = value.attribute("VALUETYPE").as_string("string");
    } else {
      key.reference = std::make_shared<const CimPath>(PathOf(binding.child("VALUE.REFERENCE").first_child()));
    }
    path.keys.push_back(std::move(key));
  }
  return path;
}

/// INSTANCENAME, LOCALINSTANCEPATH, INSTANCEPATH, CLASSNAME or LOCALCLASSPATH.
CimPath PathOf(const pugi::xml_node& node) {
  const std::string element = node.name();
  if (element == "INSTANCENAME") return InstanceNameOf(node);
  CimPath path;
  if (element == "CLASSNAME") {
    path.className = node.attribute("NAME").value();
  } else if (element == "LOCALINSTANCEPATH") {
    path = InstanceNameOf(node.child("INSTANCENAME"));
    path.nameSpace = NameSpaceOf(node.child("LOCALNAMESPACEPATH"));
  } else if (element == "INSTANCEPATH") {
    path = InstanceNameOf(node.child("INSTANCENAME"));
    const pugi::xml_node nameSpacePath = node.child("NAMESPACEPATH");
    path.host = nameSpacePath.child("HOST").text().get();
    path.nameSpace = NameSpaceOf(nameSpacePath.child("LOCALNAMESPACEPATH"));
  } else if (element == "LOCALCLASSPATH") {
    path.className = node.child("CLASSNAME").attribute("NAME").value();
    path.nameSpace = NameSpaceOf(node.child("LOCALNAMESPACEPATH"));
  } else {
    throw std::runtime_error("test server: no object path: <" + element + ">");
  }
  return path;
}

CimArgument ArgumentOf(const pugi::xml_node& node, const char* typeAttribute) {
  CimArgument argument;
  argument.name = node.attribute("NAME").value();
  argument.type = node.attribute(typeAttribute).value();
  if (std::string(node.name()) == "PROPERTY.REFERENCE") argument.type = "reference";
  const pugi::xml_node value = node.first_child();
  const std::string element = value.name();
  if (element.empty()) {
    argument.isNull = true;
  } else if (element == "VALUE") {
    argument.values.emplace_back(value.text().get());
  } else if (element == "VALUE.ARRAY") {
    argument.isArray = true;
    for (const pugi::xml_node item : value.children("VALUE")) argument.values.emplace_back(item.text().get());
  } else if (element == "VALUE.REFERENCE") {
    argument.values.push_back(PathText(PathOf(value.first_child())));
  } else {
    throw std::runtime_error("test server: unexpected <" + element + "> in " + argument.name);
  }
  return argument;
}

void SetObject(CimRequest& request, CimPath path) {
  path.host.clear();
  path.nameSpace.clear();
  request.objectClass = path.className;
  request.objectText = PathText(path);
}

void ReadIntrinsic(CimRequest& request, const pugi::xml_node& call) {
  request.operation = call.attribute("NAME").value();
  request.nameSpace = NameSpaceOf(call.child("LOCALNAMESPACEPATH"));
  for (const pugi::xml_node parameter : call.children("IPARAMVALUE")) {
    const std::string name = parameter.attribute("NAME").value();
    const pugi::xml_node value = parameter.first_child();
    if (name == "ClassName" || name == "ObjectName" || name == "InstanceName") {
      SetObject(request, PathOf(value));
    } else if (name == "AssocClass") {
      request.assocClass = value.attribute("NAME").value();
    } else if (name == "ResultClass") {
      request.resultClass = value.attribute("NAME").value();
    } else if (name == "ModifiedInstance") {
      SetObject(request, PathOf(value.child("INSTANCENAME")));
      for (const pugi::xml_node property : value.child("INSTANCE").children())
        request.arguments.push_back(ArgumentOf(property, "TYPE"));
    }
  }
}

void ReadExtrinsic(CimRequest& request, const pugi::xml_node& call) {
  request.operation = "InvokeMethod";
  request.method = call.attribute("NAME").value();
  CimPath path = PathOf(call.first_child());
  request.nameSpace = path.nameSpace;
  SetObject(request, std::move(path));
  for (const pugi::xml_node parameter : call.children("PARAMVALUE"))
    request.arguments.push_back(ArgumentOf(parameter, "PARAMTYPE"));
}

}  // namespace

std::string CimRequest::Summary() const {
  std::string out = operation + " " + objectText;
  if (!method.empty()) out += " " + method;
  if (operation == "Associators" || operation == "AssociatorNames") out += " [" + assocClass + ", " + resultClass + "]";
  return out;
}

CimRequest ParseCimRequest(const HttpExchange& exchange) {
  CimRequest request;
  request.connection = exchange.connection;
  request.tls = exchange.tls;
  request.head = exchange.head;
  request.body = exchange.body;
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_buffer(exchange.body.data(), exchange.body.size(),
                                                             pugi::parse_default | pugi::parse_ws_pcdata_single);
  if (!parsed) throw std::runtime_error(std::string("test server: request is no XML: ") + parsed.description());
  const pugi::xml_node message = document.child("CIM").child("MESSAGE");
  request.messageId = message.attribute("ID").value();
  const pugi::xml_node simple = message.child("SIMPLEREQ");
  if (const pugi::xml_node call = simple.child("IMETHODCALL")) {
    ReadIntrinsic(request, call);
  } else if (const pugi::xml_node extrinsic = simple.child("METHODCALL")) {
    ReadExtrinsic(request, extrinsic);
  } else {
    throw std::runtime_error("test server: request without a call");
  }
  return request;
}

}  // namespace Orvane::testing
