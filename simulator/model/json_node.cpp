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

// Where a running parser is in its document.
class Place {
 public:
  /// False when a member name stands in its object for the second time.
  bool Follow(Json::parse_event_t event, const Json& parsed) {
    const bool ends = event == Json::parse_event_t::object_end || event == Json::parse_event_t::array_end;
    if (event == Json::parse_event_t::key) {
      open_.back().name = parsed.get<std::string>();
      return open_.back().names.insert(open_.back().name).second;
    }
    if (ends) open_.pop_back();
    if (event == Json::parse_event_t::object_start) open_.push_back({false, 0, {}, {}});
    if (event == Json::parse_event_t::array_start) open_.push_back({true, 0, {}, {}});
    const bool valueIsWhole = ends || event == Json::parse_event_t::value;
    if (valueIsWhole && !open_.empty()) {
      ++open_.back().index;
      open_.back().name.clear();
    }
    return true;
  }

  std::string Pointer() const {
    std::string pointer;
    for (const Container& container : open_) {
      if (container.isArray) {
        pointer += "/" + std::to_string(container.index);
      } else if (!container.name.empty()) {
        pointer += "/" + Escaped(container.name);
      }
    }
    return pointer.empty() ? "/" : pointer;
  }

 private:
  struct Container {
    bool isArray = false;
    std::size_t index = 0;
    std::string name;
    std::set<std::string> names;
  };
  std::vector<Container> open_;
};

}  // namespace

Json ParseDocument(const std::string& file, const std::string& text) {
  Place place;
  const auto watch = [&](int, Json::parse_event_t event, Json& parsed) {
    if (!place.Follow(event, parsed)) throw ModelError(file + ": " + place.Pointer() + ": stands twice in one object");
    return true;
  };
  try {
    return Json::parse(text, watch);
  } catch (const Json::parse_error& error) {
    throw ModelError(file + ": " + place.Pointer() + ": is not JSON: byte " + std::to_string(error.byte) + ": " +
                     error.what());
  } catch (const Json::exception& error) {  // a number that no double holds
    throw ModelError(file + ": " + place.Pointer() + ": " + error.what());
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
