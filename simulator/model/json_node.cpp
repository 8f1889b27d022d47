// Reading of JSON values with their pointers (RFC 6901).
#include "model/json_node.h"

#include <algorithm>
#include <set>

#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {

namespace {

using Json = nlohmann::json;

// "~" and "/" in a member name are written "~0" and "~1".
std::string Escaped(const std::string& name) {
  std::string text;
  for (const char c : name) {
    if (c == '~') {
      text += "~0";
    } else if (c == '/') {
      text += "~1";
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

Json ParseDocument(const std::string& file, const std::string& text) {
  std::vector<std::set<std::string>> namesOfOpenObjects;
  const auto refuseTwins = [&](int, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) namesOfOpenObjects.emplace_back();
    if (event == Json::parse_event_t::object_end) namesOfOpenObjects.pop_back();
    if (event == Json::parse_event_t::key && !namesOfOpenObjects.back().insert(parsed.get<std::string>()).second) {
      throw ModelError(file + ": the member \"" + parsed.get<std::string>() + "\" stands twice in one object");
    }
    return true;
  };
  try {
    return Json::parse(text, refuseTwins);
  } catch (const Json::parse_error& error) {
    throw ModelError(file + ": is not JSON: byte " + std::to_string(error.byte) + ": " + error.what());
  }
}

void JsonNode::Fail(const std::string& reason) const {
  throw ModelError(*file_ + ": " + (pointer_.empty() ? "/" : pointer_) + ": " + reason);
}

void JsonNode::RequireObject(std::initializer_list<std::string_view> known) const {
  if (!value_->is_object()) Fail("must be an object");
  for (const auto& [name, member] : value_->items()) {
    if (std::find(known.begin(), known.end(), name) == known.end()) {
      JsonNode(member, *file_, pointer_ + "/" + Escaped(name)).Fail("unknown member");
    }
  }
}

std::optional<JsonNode> JsonNode::Find(const std::string& name) const {
  const auto found = value_->find(name);
  if (found == value_->end()) return std::nullopt;
  return JsonNode(*found, *file_, pointer_ + "/" + Escaped(name));
}

JsonNode JsonNode::Require(const std::string& name) const {
  std::optional<JsonNode> found = Find(name);
  if (!found) Fail("the member \"" + name + "\" is missing");
  return *found;
}

std::vector<JsonNode> JsonNode::Elements() const {
  if (!value_->is_array()) Fail("must be an array");
  std::vector<JsonNode> elements;
  for (std::size_t i = 0; i < value_->size(); ++i) {
    elements.emplace_back((*value_)[i], *file_, pointer_ + "/" + std::to_string(i));
  }
  return elements;
}

std::vector<std::pair<std::string, JsonNode>> JsonNode::Members() const {
  if (!value_->is_object()) Fail("must be an object");
  std::vector<std::pair<std::string, JsonNode>> members;
  for (const auto& [name, member] : value_->items()) {
    members.emplace_back(name, JsonNode(member, *file_, pointer_ + "/" + Escaped(name)));
  }
  return members;
}

std::string JsonNode::Text() const {
  if (!value_->is_string()) Fail("must be a string");
  return value_->get<std::string>();
}

bool JsonNode::Boolean() const {
  if (!value_->is_boolean()) Fail("must be true or false");
  return value_->get<bool>();
}

std::uint64_t JsonNode::Number(std::uint64_t lowest, std::uint64_t highest) const {
  if (!value_->is_number_integer()) Fail("must be an integer");
  const bool tooLow = !value_->is_number_unsigned() && value_->get<std::int64_t>() < 0;
  const std::uint64_t number = tooLow ? 0 : value_->get<std::uint64_t>();
  if (tooLow || number < lowest || number > highest) {
    Fail("must be from " + std::to_string(lowest) + " to " + std::to_string(highest));
  }
  return number;
}

}  // namespace Orvane::simulator
