// What an action throws, in the form in which recorded behaviour names it: the class without its namespace, and the
// message as UTF-8.
#pragma once

#include <Pegasus/Common/Exception.h>
#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <typeinfo>

namespace Pegasus::test {

/// `name` is empty when nothing was thrown.
struct Thrown {
  std::string name;
  std::string message;
};

inline bool operator==(const Thrown& a, const Thrown& b) { return a.name == b.name && a.message == b.message; }
inline void PrintTo(const Thrown& thrown, std::ostream* out) {
  *out << (thrown.name.empty() ? "nothing" : thrown.name + ": " + thrown.message);
}

inline std::string ClassOf(const Exception& exception) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> text(
      abi::__cxa_demangle(typeid(exception).name(), nullptr, nullptr, &status), std::free);
  const std::string name = text != nullptr ? text.get() : typeid(exception).name();
  const std::string::size_type scope = name.rfind("::");
  return scope == std::string::npos ? name : name.substr(scope + 2);
}

/// Runs `action` and tells what it threw.
template <typename Action>
Thrown Catch(Action&& action) {
  try {
    action();
  } catch (const Exception& exception) {
    return {ClassOf(exception), std::string(exception.getMessage().getCString())};
  }
  return {};
}

/// The "throws" of a record; empty when it has none.
inline Thrown ExpectedThrow(const nlohmann::json& record) {
  if (!record.contains("throws")) {
    return {};
  }
  const auto& thrown = record.at("throws");
  return {thrown.at("class").get<std::string>(), thrown.at("message").get<std::string>()};
}

/// Text of a record, as the client's string.
inline String TextOf(const nlohmann::json& value) { return {value.get_ref<const std::string&>().c_str()}; }
/// A string of the client, for comparison with texts of records.
inline std::string Utf8(const String& text) { return {static_cast<const char*>(text.getCString())}; }

}  // namespace Pegasus::test
