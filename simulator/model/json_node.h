// A JSON value together with its place in the document, so that every complaint about it can name its JSON pointer.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane::simulator {

/// Parses a document; members named twice are refused like other syntax errors.
/// @throws ModelError naming the file and the reason
nlohmann::json ParseDocument(const std::string& file, const std::string& text);

/// A view of one value; file and document must outlive it. Every member that reads throws ModelError (file, JSON
/// pointer, reason) when the value is not what is asked for.
class JsonNode {
 public:
  JsonNode(const nlohmann::json& value, const std::string& file, std::string pointer = "")
      : value_(&value), file_(&file), pointer_(std::move(pointer)) {}

  [[noreturn]] void Fail(const std::string& reason) const;

  /// Fails unless this is an object that has no other members than the known ones.
  void RequireObject(std::initializer_list<std::string_view> known) const;

  std::optional<JsonNode> Find(const std::string& name) const;
  JsonNode Require(const std::string& name) const;

  std::vector<JsonNode> Elements() const;
  std::vector<std::pair<std::string, JsonNode>> Members() const;

  std::string Text() const;
  bool Boolean() const;
  std::uint64_t Number(std::uint64_t lowest, std::uint64_t highest) const;

  const nlohmann::json& Json() const { return *value_; }

 private:
  const nlohmann::json* value_;
  const std::string* file_;
  std::string pointer_;
};

}  // namespace Orvane::simulator
