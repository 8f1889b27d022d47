// Where models come from: a file, or the document compiled in.
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#include "model/built_in_model.h"
#include "model/model_builder.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {

Model BuiltInModel() { return Model(BuildModel("built-in model", kBuiltInModelText)); }

Model LoadModel(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw ModelError(path + ": cannot be read: " + std::generic_category().message(errno));
  std::string text;
  try {
    text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  } catch (const std::ios_base::failure&) {  // a directory opens, but cannot be read
    throw ModelError(path + ": cannot be read: " + std::generic_category().message(errno));
  }
  if (text.empty()) throw ModelError(path + ": holds no text");
  return Model(BuildModel(path, text));
}

}  // namespace Orvane::simulator
