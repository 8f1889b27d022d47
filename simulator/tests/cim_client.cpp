// Requests are written by hand and answers read with pugixml.
#include "cim_client.h"

#include <pugixml.hpp>
#include <sstream>
#include <stdexcept>

namespace Orvane::simulator::tests {

namespace {

std::string Print(const pugi::xml_node& node) {
  std::ostringstream text;
  node.print(text, "", pugi::format_raw);
  return text.str();
}

std::string Escape(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '&') {
      escaped += "&amp;";
    } else if (c == '<') {
      escaped += "&lt;";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string NameSpacePath(const std::string& nameSpace) {
  std::string path = "<LOCALNAMESPACEPATH>";
  std::istringstream parts(nameSpace);
  for (std::string part; std::getline(parts, part, '/');) path += "<NAMESPACE NAME=\"" + part + "\"/>";
  return path + "</LOCALNAMESPACEPATH>";
}

// All texts below a property, with blanks between them.
std::string TextsBelow(const pugi::xml_node& node) {
  std::string text;
  for (const pugi::xpath_node& value : node.select_nodes(".//VALUE|.//KEYVALUE")) {
    text += (text.empty() ? "" : " ") + std::string(value.node().text().get());
  }
  return text;
}

CimInstance ReadNamedInstance(const pugi::xml_node& node) {
  CimInstance instance;
  instance.name = Print(node.child("INSTANCENAME"));
  instance.className = node.child("INSTANCE").attribute("CLASSNAME").value();
  for (const pugi::xml_node& property : node.child("INSTANCE").children()) {
    if (property.first_child()) instance.values[property.attribute("NAME").value()] = TextsBelow(property);
  }
  return instance;
}

CimOutcome ReadOutcome(const std::string& answer) {
  pugi::xml_document document;
  if (!document.load_string(answer.c_str())) throw std::runtime_error("no CIM-XML: " + answer);
  CimOutcome outcome;
  if (const pugi::xml_node error = document.select_node("//ERROR").node()) {
    outcome.error = error.attribute("CODE").as_int();
    outcome.description = error.attribute("DESCRIPTION").value();
  }
  outcome.returnValue = document.select_node("//RETURNVALUE/VALUE").node().text().get();
  const pugi::xml_node job = document.select_node("//PARAMVALUE[@NAME='Job']//INSTANCENAME").node();
  outcome.jobClass = job.attribute("CLASSNAME").value();
  outcome.job = job.select_node("KEYBINDING[@NAME='InstanceID']/KEYVALUE").node().text().get();
  return outcome;
}

}  // namespace

CimParameter Scalar(const std::string& name, const std::string& type, const std::string& text) {
  return {name, type, "<VALUE>" + Escape(text) + "</VALUE>"};
}

CimParameter Array(const std::string& name, const std::string& type, const std::vector<std::string>& texts) {
  std::string value = "<VALUE.ARRAY>";
  for (const std::string& text : texts) value += "<VALUE>" + Escape(text) + "</VALUE>";
  return {name, type, value + "</VALUE.ARRAY>"};
}

CimParameter Reference(const std::string& name, const std::string& instanceName) {
  return {name, "reference", "<VALUE.REFERENCE>" + instanceName + "</VALUE.REFERENCE>"};
}

std::string CimClient::Call(const std::string& method, const std::string& object, const std::string& call) {
  const std::string body =
      "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" "
      "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>" +
      call + "</SIMPLEREQ></MESSAGE></CIM>";
  client_.Send(
      "POST /cimom HTTP/1.1\r\nHost: a\r\nContent-Type: application/xml\r\nCIMOperation: MethodCall\r\n"
      "CIMMethod: " +
      method + "\r\nCIMObject: " + object + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
  const std::string answer = client_.ReadUntil("</CIM>\n");
  const std::size_t start = answer.find("<?xml");
  if (start == std::string::npos) throw std::runtime_error("no answer: " + answer);
  return answer.substr(start);
}

std::vector<CimInstance> CimClient::Enumerate(const std::string& className, const std::string& nameSpace) {
  const std::string answer =
      Call("EnumerateInstances", nameSpace,
           "<IMETHODCALL NAME=\"EnumerateInstances\">" + NameSpacePath(nameSpace) +
               "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"" + className + "\"/></IPARAMVALUE></IMETHODCALL>");
  if (const CimOutcome outcome = ReadOutcome(answer); outcome.error != 0) {
    throw std::runtime_error("CIM error " + std::to_string(outcome.error) + ": " + outcome.description);
  }
  pugi::xml_document document;
  document.load_string(answer.c_str());
  std::vector<CimInstance> instances;
  for (const pugi::xpath_node& node : document.select_nodes("//VALUE.NAMEDINSTANCE")) {
    instances.push_back(ReadNamedInstance(node.node()));
  }
  return instances;
}

CimInstance CimClient::Find(const std::string& className, const std::string& property, const std::string& text) {
  for (CimInstance& instance : Enumerate(className)) {
    if (instance[property] == text) return std::move(instance);
  }
  throw std::runtime_error("no " + className + " with " + property + " " + text);
}

CimOutcome CimClient::Invoke(const std::string& className, const std::string& instanceName, const std::string& method,
                             const std::vector<CimParameter>& parameters) {
  std::string call = "<METHODCALL NAME=\"" + method + "\"><LOCALINSTANCEPATH>" + NameSpacePath("root/cimv2") +
                     instanceName + "</LOCALINSTANCEPATH>";
  for (const CimParameter& parameter : parameters) {
    call += "<PARAMVALUE NAME=\"" + parameter.name + "\"";
    if (!parameter.type.empty()) call += " PARAMTYPE=\"" + parameter.type + "\"";
    call += ">" + parameter.value + "</PARAMVALUE>";
  }
  return ReadOutcome(Call(method, "root/cimv2%3A" + className, call + "</METHODCALL>"));
}

CimOutcome CimClient::Modify(const CimInstance& instance, const CimParameter& property) {
  const bool isArray = property.value.find("<VALUE.ARRAY>") == 0;
  const std::string element = isArray ? "PROPERTY.ARRAY" : "PROPERTY";
  return ReadOutcome(Call("ModifyInstance", "root/cimv2",
                          "<IMETHODCALL NAME=\"ModifyInstance\">" + NameSpacePath("root/cimv2") +
                              "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE>" + instance.name +
                              "<INSTANCE CLASSNAME=\"" + instance.className + "\"><" + element + " NAME=\"" +
                              property.name + "\" TYPE=\"" + property.type + "\">" + property.value + "</" + element +
                              "></INSTANCE></VALUE.NAMEDINSTANCE></IPARAMVALUE></IMETHODCALL>"));
}

bool IsListening(std::uint16_t port) {
  try {
    const PlainClient client(port);
    return true;
  } catch (const std::runtime_error&) {
    return false;
  }
}

}  // namespace Orvane::simulator::tests
