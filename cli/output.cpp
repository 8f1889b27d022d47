// Bytes that are no UTF-8 are replaced: a document that no program can read would help nobody.
#include "cli/output.h"

namespace Orvane::cli {
namespace {

constexpr int kIndent = 2;

std::string Document(const std::string& operation, int code, const std::string& message, const Json& data) {
  const Json document = {{"operation", operation}, {"code", code}, {"message", message}, {"data", data}};
  return document.dump(kIndent, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace) + "\n";
}

}  // namespace

std::string JsonText(const std::string& operation, const Outcome& outcome) {
  return Document(operation, outcome.code, outcome.message, outcome.data);
}

std::string JsonText(const std::string& operation, const Failure& failure) {
  return Document(operation, failure.Code(), failure.what(), Json::object());
}

}  // namespace Orvane::cli
