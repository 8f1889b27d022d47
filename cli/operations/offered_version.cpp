// Only a look: whether the package is whole is up to whoever installs it.
#include "cli/operations/offered_version.h"

#include <cctype>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "cli/records_json.h"

namespace Orvane::cli {
namespace {

constexpr std::string_view kScheme = "file://";
constexpr std::uintmax_t kLargest = 64ULL * 1024 * 1024;

std::string Decoded(std::string_view text) {
  constexpr int kHexadecimal = 16;
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned value = 0;
    const char* const digits = text.data() + i + 1;
    if (text[i] == '%' && i + 2 < text.size() &&
        std::from_chars(digits, digits + 2, value, kHexadecimal).ptr == digits + 2) {
      out += static_cast<char>(value);
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::optional<std::string> PathOf(std::string_view uri) {
  if (uri.substr(0, kScheme.size()) != kScheme) return std::nullopt;
  uri.remove_prefix(kScheme.size());
  const std::size_t slash = uri.find('/');
  const std::string_view host = uri.substr(0, slash);
  if (slash == std::string_view::npos || (!host.empty() && host != "localhost")) return std::nullopt;
  return Decoded(uri.substr(slash));
}

std::string TextOf(const Json& package, const char* name) {
  const auto found = package.find(name);
  return found != package.end() && found->is_string() ? found->get<std::string>() : std::string();
}

}  // namespace

std::optional<std::string> OfferedVersion(const std::string& uri) {
  const std::optional<std::string> path = PathOf(uri);
  std::error_code error;
  if (!path || !std::filesystem::is_regular_file(*path, error) || std::filesystem::file_size(*path, error) > kLargest) {
    return std::nullopt;
  }
  std::ifstream file(*path, std::ios::binary);
  const Json package = Json::parse(file, nullptr, /*allow_exceptions=*/false);
  if (!package.is_object() || !package.contains("orvane_package")) return std::nullopt;
  std::string text = TextOf(package, "version");
  if (text.empty()) return std::nullopt;
  if (const auto build = package.find("build"); build != package.end() && build->is_number_unsigned()) {
    text += " (" + std::to_string(build->get<unsigned>()) + ")";
  }
  const std::string target = TextOf(package, "target");
  return target.empty() ? text : text + " for " + target;
}

}  // namespace Orvane::cli
