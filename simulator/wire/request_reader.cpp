// Reads requests strictly: an element that the DTD does not have in its place makes the request invalid.
#include <algorithm>
#include <memory>
#include <pugixml.hpp>
#include <set>
#include <string_view>

#include "wire/request.h"
#include "wire/well_formed.h"

namespace Orvane::simulator {

namespace {

using pugi::xml_node;

constexpr int kBadRequest = 400;
constexpr int kNotImplemented = 501;
constexpr int kDeepestNesting = 32;

[[noreturn]] void Invalid(const std::string& reason) { throw BadRequest(kBadRequest, "request-not-valid", reason); }

[[noreturn]] void NotWellFormed(const std::string& reason) {
  throw BadRequest(kBadRequest, "request-not-well-formed", reason);
}

// Looks for an element that has two attributes of one name, which the parser takes.
class TwinAttributes : public pugi::xml_tree_walker {
 public:
  bool for_each(xml_node& node) override {
    names_.clear();
    for (const pugi::xml_attribute attribute : node.attributes()) {
      isFound_ = isFound_ || !names_.insert(attribute.name()).second;
    }
    return !isFound_;
  }
  bool IsFound() const { return isFound_; }

 private:
  std::set<std::string_view> names_;
  bool isFound_ = false;
};

bool Is(const xml_node& node, std::string_view name) { return node.name() == name; }

std::string Attribute(const xml_node& node, const char* name) {
  const pugi::xml_attribute found = node.attribute(name);
  if (!found) Invalid(std::string(node.name()) + " has no attribute " + name);
  return found.value();
}

std::vector<xml_node> Children(const xml_node& node) {
  std::vector<xml_node> children;
  for (const xml_node child : node.children()) {
    if (child.type() == pugi::node_element) children.push_back(child);
  }
  return children;
}

// The single child element, which must have this name.
xml_node OnlyChild(const xml_node& node, std::string_view name) {
  const std::vector<xml_node> children = Children(node);
  if (children.size() != 1 || !Is(children[0], name)) {
    Invalid(std::string(node.name()) + " must hold one " + std::string(name));
  }
  return children[0];
}

// All text of an element that has no child elements, as it stands: blanks at its ends may belong to a string.
std::string TextOf(const xml_node& node) {
  std::string text;
  for (const xml_node child : node.children()) {
    if (child.type() == pugi::node_element) Invalid(std::string(node.name()) + " must hold text only");
    text += child.value();
  }
  return text;
}

std::string Trimmed(std::string text) {
  constexpr const char* kBlank = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlank);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

std::string ReadNameSpace(const xml_node& localNameSpacePath) {
  std::string nameSpace;
  for (const xml_node& child : Children(localNameSpacePath)) {
    if (!Is(child, "NAMESPACE")) Invalid("LOCALNAMESPACEPATH must hold NAMESPACE only");
    if (!nameSpace.empty()) nameSpace += '/';
    nameSpace += Attribute(child, "NAME");
  }
  if (nameSpace.empty()) Invalid("LOCALNAMESPACEPATH is empty");
  return nameSpace;
}

ObjectPath ReadReference(const xml_node& valueReference, int depth);

KeyValue ReadKeyValue(const xml_node& node, int depth) {
  if (Is(node, "KEYVALUE")) return {TextOf(node), nullptr};
  if (Is(node, "VALUE.REFERENCE")) return {{}, std::make_shared<const ObjectPath>(ReadReference(node, depth + 1))};
  Invalid("a key must be a KEYVALUE or a VALUE.REFERENCE");
}

ObjectPath ReadInstanceName(const xml_node& node, int depth) {
  if (depth > kDeepestNesting) Invalid("references are nested too deep");
  ObjectPath path;
  path.className = Attribute(node, "CLASSNAME");
  const std::vector<xml_node> children = Children(node);
  if (children.size() == 1 && !Is(children[0], "KEYBINDING")) {
    // A single key may stand without its name; it is filled in from the class when there is just one.
    const ClassDeclaration* const declaration = FindClass(path.className);
    std::string name;
    if (declaration != nullptr) {
      const auto key = std::find_if(declaration->properties.begin(), declaration->properties.end(),
                                    [](const PropertyDeclaration& property) { return property.isKey; });
      if (key != declaration->properties.end()) name = key->name;
    }
    path.keys.emplace(name, ReadKeyValue(children[0], depth));
    return path;
  }
  for (const xml_node& child : children) {
    if (!Is(child, "KEYBINDING")) Invalid("INSTANCENAME must hold KEYBINDING only");
    const std::vector<xml_node> value = Children(child);
    if (value.size() != 1) Invalid("KEYBINDING must hold one value");
    if (!path.keys.emplace(Attribute(child, "NAME"), ReadKeyValue(value[0], depth)).second) {
      Invalid("a key stands twice in an INSTANCENAME");
    }
  }
  return path;
}

// Host and namespace of a path are checked for form only: one server with one namespace holds all objects.
ObjectPath ReadAnyInstancePath(const xml_node& node, int depth) {
  if (Is(node, "INSTANCENAME")) return ReadInstanceName(node, depth);
  const std::vector<xml_node> parts = Children(node);
  if (parts.size() != 2 || !Is(parts[1], "INSTANCENAME")) Invalid(std::string(node.name()) + " is not a path");
  if (Is(node, "LOCALINSTANCEPATH")) {
    if (!Is(parts[0], "LOCALNAMESPACEPATH")) Invalid("LOCALINSTANCEPATH has no LOCALNAMESPACEPATH");
    ReadNameSpace(parts[0]);
  } else if (Is(node, "INSTANCEPATH")) {
    const std::vector<xml_node> place = Children(parts[0]);
    if (!Is(parts[0], "NAMESPACEPATH") || place.size() != 2 || !Is(place[0], "HOST") ||
        !Is(place[1], "LOCALNAMESPACEPATH")) {
      Invalid("INSTANCEPATH has no NAMESPACEPATH");
    }
    ReadNameSpace(place[1]);
  } else {
    Invalid(std::string(node.name()) + " is not a path of an instance");
  }
  return ReadInstanceName(parts[1], depth);
}

ObjectPath ReadReference(const xml_node& valueReference, int depth) {
  const std::vector<xml_node> children = Children(valueReference);
  if (children.size() != 1) Invalid("VALUE.REFERENCE must hold one path");
  return ReadAnyInstancePath(children[0], depth);
}

std::vector<std::string> ReadTexts(const xml_node& valueArray) {
  std::vector<std::string> texts;
  for (const xml_node& child : Children(valueArray)) {
    if (!Is(child, "VALUE")) Invalid("VALUE.ARRAY must hold VALUE only");
    texts.push_back(TextOf(child));
  }
  return texts;
}

// The value inside a PROPERTY or PARAMVALUE; white space around numbers is layout, in strings it belongs to the text.
Value ReadValue(const xml_node& holder, const std::string& typeName, bool& isArray) {
  const std::vector<xml_node> children = [&holder] {
    std::vector<xml_node> kept = Children(holder);
    kept.erase(std::remove_if(kept.begin(), kept.end(), [](const xml_node& node) { return Is(node, "QUALIFIER"); }),
               kept.end());
    return kept;
  }();
  if (children.empty()) return {};
  if (children.size() != 1) Invalid(std::string(holder.name()) + " holds several values");
  const xml_node& node = children[0];
  Value value;
  value.isNull = false;
  if (Is(node, "VALUE")) {
    value.texts.push_back(TextOf(node));
  } else if (Is(node, "VALUE.ARRAY")) {
    isArray = true;
    value.texts = ReadTexts(node);
  } else if (Is(node, "VALUE.REFERENCE")) {
    value.references.push_back(ReadReference(node, 0));
  } else if (Is(node, "VALUE.REFARRAY")) {
    isArray = true;
    for (const xml_node& child : Children(node)) {
      if (!Is(child, "VALUE.REFERENCE")) Invalid("VALUE.REFARRAY must hold VALUE.REFERENCE only");
      value.references.push_back(ReadReference(child, 0));
    }
  } else {
    Invalid(std::string(node.name()) + " is not a value");
  }
  if (typeName != "string" && typeName != "char16") {
    for (std::string& text : value.texts) text = Trimmed(std::move(text));
  }
  return value;
}

std::vector<SentProperty> ReadProperties(const xml_node& instance) {
  std::vector<SentProperty> properties;
  NameSet names;
  for (const xml_node& node : Children(instance)) {
    if (Is(node, "QUALIFIER")) continue;
    const bool isReference = Is(node, "PROPERTY.REFERENCE");
    if (!isReference && !Is(node, "PROPERTY") && !Is(node, "PROPERTY.ARRAY")) {
      Invalid(std::string(node.name()) + " is not a property");
    }
    SentProperty property;
    property.name = Attribute(node, "NAME");
    property.typeName = isReference ? "reference" : Attribute(node, "TYPE");
    property.isArray = Is(node, "PROPERTY.ARRAY");
    bool hasArrayValue = property.isArray;
    property.value = ReadValue(node, property.typeName, hasArrayValue);
    if (hasArrayValue != property.isArray) Invalid("the property " + property.name + " has a value of the other shape");
    if (!names.insert(property.name).second) Invalid("the property " + property.name + " stands twice");
    properties.push_back(std::move(property));
  }
  return properties;
}

Parameter ReadParameter(const xml_node& holder) {
  Parameter parameter;
  const std::vector<xml_node> children = Children(holder);
  if (children.empty()) return parameter;
  if (children.size() != 1) Invalid("IPARAMVALUE holds several values");
  const xml_node& node = children[0];
  if (Is(node, "VALUE")) {
    parameter.text = Trimmed(TextOf(node));
  } else if (Is(node, "VALUE.ARRAY")) {
    parameter.texts = ReadTexts(node);
  } else if (Is(node, "CLASSNAME")) {
    parameter.className = Attribute(node, "NAME");
  } else if (Is(node, "VALUE.NAMEDINSTANCE")) {
    const std::vector<xml_node> parts = Children(node);
    if (parts.size() != 2 || !Is(parts[0], "INSTANCENAME") || !Is(parts[1], "INSTANCE")) {
      Invalid("VALUE.NAMEDINSTANCE must hold INSTANCENAME and INSTANCE");
    }
    parameter.instance =
        SentInstance{ReadInstanceName(parts[0], 0), Attribute(parts[1], "CLASSNAME"), ReadProperties(parts[1])};
  } else if (Is(node, "VALUE.REFERENCE")) {
    parameter.path = ReadReference(node, 0);
  } else if (Is(node, "INSTANCENAME")) {
    parameter.path = ReadInstanceName(node, 0);
  }
  // Declarations and instances without a path belong to operations that are not supported; they are not looked into.
  return parameter;
}

void ReadIntrinsic(const xml_node& call, Request& request) {
  const std::vector<xml_node> children = Children(call);
  if (children.empty() || !Is(children[0], "LOCALNAMESPACEPATH")) Invalid("IMETHODCALL has no LOCALNAMESPACEPATH");
  request.nameSpace = ReadNameSpace(children[0]);
  for (std::size_t i = 1; i < children.size(); ++i) {
    if (!Is(children[i], "IPARAMVALUE")) Invalid("IMETHODCALL must hold IPARAMVALUE only");
    const std::string name = Attribute(children[i], "NAME");
    if (!request.parameters.emplace(name, ReadParameter(children[i])).second) {
      Invalid("the parameter " + name + " stands twice");
    }
  }
}

void ReadExtrinsic(const xml_node& call, Request& request) {
  const std::vector<xml_node> children = Children(call);
  if (children.empty()) Invalid("METHODCALL has no path");
  const std::vector<xml_node> parts = Children(children[0]);
  if (parts.size() != 2 || !Is(parts[0], "LOCALNAMESPACEPATH")) Invalid("the path of METHODCALL has no namespace");
  request.nameSpace = ReadNameSpace(parts[0]);
  if (Is(children[0], "LOCALCLASSPATH") && Is(parts[1], "CLASSNAME")) {
    request.target.className = Attribute(parts[1], "NAME");
  } else if (Is(children[0], "LOCALINSTANCEPATH") && Is(parts[1], "INSTANCENAME")) {
    request.target = ReadInstanceName(parts[1], 0);
  } else {
    Invalid("METHODCALL must start with LOCALCLASSPATH or LOCALINSTANCEPATH");
  }
  for (std::size_t i = 1; i < children.size(); ++i) {
    if (!Is(children[i], "PARAMVALUE")) Invalid("METHODCALL must hold PARAMVALUE only");
    MethodParameter parameter;
    parameter.name = Attribute(children[i], "NAME");
    parameter.typeName = children[i].attribute("PARAMTYPE").value();
    parameter.value =
        ReadValue(children[i], parameter.typeName.empty() ? "string" : parameter.typeName, parameter.isArray);
    request.methodParameters.push_back(std::move(parameter));
  }
}

void RequireVersion(const xml_node& node, const char* attribute, std::string_view wanted, const char* cimError) {
  const std::string version = Attribute(node, attribute);
  if (version.compare(0, wanted.size(), wanted) != 0) {
    throw BadRequest(kNotImplemented, cimError, std::string(attribute) + " " + version + " is not supported");
  }
}

}  // namespace

Request ReadRequest(const std::string& body) {
  pugi::xml_document document;
  if (const char* const illFormed = FindIllFormedText(body)) NotWellFormed(illFormed);
  const pugi::xml_parse_result parsed = document.load_buffer(
      body.data(), body.size(), (pugi::parse_default | pugi::parse_ws_pcdata_single) & ~pugi::parse_eol,
      pugi::encoding_utf8);
  if (!parsed) NotWellFormed(parsed.description());
  TwinAttributes twins;
  document.traverse(twins);
  if (twins.IsFound()) NotWellFormed("an attribute stands twice");
  const xml_node cim = OnlyChild(document, "CIM");
  RequireVersion(cim, "CIMVERSION", "2.", "unsupported-cim-version");
  RequireVersion(cim, "DTDVERSION", "2.", "unsupported-dtd-version");
  const xml_node message = OnlyChild(cim, "MESSAGE");
  RequireVersion(message, "PROTOCOLVERSION", "1.", "unsupported-protocol-version");

  Request request;
  request.messageId = Attribute(message, "ID");
  const std::vector<xml_node> bodies = Children(message);
  if (bodies.size() == 1 && Is(bodies[0], "MULTIREQ")) {
    throw BadRequest(kNotImplemented, "multiple-requests-unsupported", "only one request in a message is supported");
  }
  const std::vector<xml_node> calls = Children(OnlyChild(message, "SIMPLEREQ"));
  if (calls.size() != 1) Invalid("SIMPLEREQ must hold one call");
  request.name = calls[0].attribute("NAME").value();
  if (request.name.empty()) Invalid("the call has no name");
  request.isIntrinsic = Is(calls[0], "IMETHODCALL");
  if (request.isIntrinsic) {
    ReadIntrinsic(calls[0], request);
  } else if (Is(calls[0], "METHODCALL")) {
    ReadExtrinsic(calls[0], request);
  } else {
    Invalid("SIMPLEREQ must hold IMETHODCALL or METHODCALL");
  }
  return request;
}

}  // namespace Orvane::simulator
