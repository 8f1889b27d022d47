// The inventory records as JSON: every field under the record's own name in snake_case, values as the library has them.
#pragma once

#include <orvane/cmm.h>

#include <nlohmann/json.hpp>
#include <vector>

namespace Orvane::cli {

using Json = nlohmann::ordered_json;

// Numbers that the chassis did not tell (the records hold a negative one) become null.
Json ToJson(const ChassisInfo& chassis);
Json ToJson(const Physicallnfo& physical);
Json ToJson(const FirmwareIdentity& firmware);
Json ToJson(const IPInfo& ip);
Json ToJson(const CMMData& cmm);
Json ToJson(const CIMIOData& module);

template <typename Record>
Json ToJson(const std::vector<Record>& records) {
  Json array = Json::array();
  for (const Record& record : records) array.push_back(ToJson(record));
  return array;
}

}  // namespace Orvane::cli
