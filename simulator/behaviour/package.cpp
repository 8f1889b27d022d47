// The checks come in the order in which a reader would ask: is it a package, is it whole, is it what it says.
#include "behaviour/package.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <vector>

#include "cim/types.h"

namespace Orvane::simulator {

namespace {

using Json = nlohmann::json;

constexpr std::size_t kLongestVersion = 64;

[[noreturn]] void Fail(const std::string& reason) { throw InstallError("Flashing ended with failure: " + reason); }

const Json& Require(const Json& document, const char* name) {
  const auto found = document.find(name);
  if (found == document.end()) Fail("the package has no member \"" + std::string(name) + "\"");
  return *found;
}

std::string RequireText(const Json& document, const char* name) {
  const Json& value = Require(document, name);
  if (!value.is_string()) Fail("the member \"" + std::string(name) + "\" of the package is no string");
  return value.get<std::string>();
}

std::uint16_t Number(const Json& document, const char* name, std::uint16_t whenMissing) {
  const auto found = document.find(name);
  if (found == document.end()) return whenMissing;
  if (!found->is_number_unsigned() || found->get<std::uint64_t>() > std::numeric_limits<std::uint16_t>::max()) {
    Fail("the member \"" + std::string(name) + "\" of the package is no number from 0 to 65535");
  }
  return found->get<std::uint16_t>();
}

// The numbers of a version such as "7.3" or "7.3.1"; zeros for one that is not made of numbers.
std::array<std::uint16_t, 3> NumbersOf(const std::string& version) {
  std::array<std::uint16_t, 3> numbers{};
  const char* place = version.data();
  const char* const end = place + version.size();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto [rest, error] = std::from_chars(place, end, numbers.at(i));
    if (error != std::errc()) return {};
    if (rest == end) return numbers;
    if (*rest != '.') return {};
    place = rest + 1;
  }
  return {};
}

std::vector<unsigned char> DecodeBase64(const std::string& text) {
  constexpr std::size_t kGroup = 4;
  const auto fail = [] { Fail("the payload of the package is not base64"); };
  if (text.size() % kGroup != 0 || text.size() > std::numeric_limits<int>::max()) fail();
  std::vector<unsigned char> decoded(text.size() / kGroup * 3);
  const int length = EVP_DecodeBlock(decoded.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<int>(text.size()));
  if (length < 0) fail();
  std::size_t padding = 0;
  while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=') ++padding;
  decoded.resize(static_cast<std::size_t>(length) - padding);
  return decoded;
}

std::string Sha256(const std::vector<unsigned char>& bytes) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned length = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1) {
    Fail("the checksum cannot be computed");
  }
  constexpr const char* kDigits = "0123456789abcdef";
  std::string text;
  for (unsigned i = 0; i < length; ++i) {
    text += kDigits[digest.at(i) >> 4U];
    text += kDigits[digest.at(i) & 0x0FU];
  }
  return text;
}

void RequireKnownMembers(const Json& document) {
  for (const auto& [name, value] : document.items()) {
    bool isKnown = false;
    for (const char* known : {"$schema", "orvane_package", "target", "image", "version", "major", "minor", "revision",
                              "build", "sha256", "payload"}) {
      isKnown = isKnown || name == known;
    }
    if (!isKnown) Fail("the package has an unknown member");
  }
}

}  // namespace

Package ReadPackage(const std::string& document) {
  // Nothing in a package is nested, so that a hostile one cannot become many times its size in memory.
  const auto refuseNested = [](int depth, Json::parse_event_t event, const Json&) {
    const bool begins = event == Json::parse_event_t::array_start || event == Json::parse_event_t::object_start;
    if (begins && depth > 0) Fail("the package holds a value that is neither text nor number");
    return true;
  };
  const Json json = Json::parse(document, refuseNested, false);
  if (!json.is_object() || !json.contains("orvane_package")) Fail("this is no firmware package");
  if (json.at("orvane_package") != 1) Fail("the package has an unknown format");
  RequireKnownMembers(json);
  if (json.contains("$schema")) RequireText(json, "$schema");

  Package package;
  package.target = RequireText(json, "target");
  if (package.target != "cmm" && package.target != "switch" && package.target != "passthru") {
    Fail("the package is for an unknown target");
  }
  const std::string image = json.contains("image") ? RequireText(json, "image") : "main";
  if (image != "main" && image != "boot") Fail("the package holds an unknown image");
  package.isBoot = image == "boot";
  package.version = RequireText(json, "version");
  if (package.version.empty() || package.version.size() > kLongestVersion) {
    Fail("the version of the package is empty or too long");
  }
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; };
  if (std::any_of(package.version.begin(), package.version.end(), isControl)) {
    Fail("the version of the package holds control characters");
  }
  const auto [major, minor, revision] = NumbersOf(package.version);
  package.major = Number(json, "major", major);
  package.minor = Number(json, "minor", minor);
  package.revision = Number(json, "revision", revision);
  package.build = Number(json, "build", 0);
  if (!EqualNames(Sha256(DecodeBase64(RequireText(json, "payload"))), RequireText(json, "sha256"))) {
    throw InstallError("Fingerprint mismatch: the payload does not have the checksum of the package");
  }
  return package;
}

}  // namespace Orvane::simulator
