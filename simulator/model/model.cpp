// Where models come from: a file, or the document compiled in.
#include <string>

#include "model/built_in_model.h"
#include "model/document_file.h"
#include "model/model_builder.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {

Model BuiltInModel() { return BuildModel("built-in model", kBuiltInModelText); }

Model LoadModel(const std::string& path) { return BuildModel(path, ReadDocumentFile(path)); }

}  // namespace Orvane::simulator
