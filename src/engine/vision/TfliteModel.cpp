#include "engine/vision/TfliteModel.h"

#include <algorithm>
#include <string>

#include "platform/foundation/Require.h"

namespace corvana::engine {
namespace {

using inference::Interpreter;
using inference::Tensor;

/// Analysis has threads of its own; one more for each network would only take turns with them.
constexpr int kThreads = 1;

std::size_t valueCount(const Tensor& tensor) {
  return tensor.byteSize() / sizeof(float);
}

std::span<float> valuesOf(const Tensor& tensor) {
  return {static_cast<float*>(tensor.data()), valueCount(tensor)};
}

bool hasShapes(const Interpreter& interpreter, const TfliteModel::Shapes& shapes) {
  const auto outputs = static_cast<std::size_t>(interpreter.outputCount());
  if (interpreter.inputCount() != 1 || outputs != shapes.outputValues.size()) return false;
  const auto input = interpreter.input(0);
  if (!input->isFloat() || input->shape() != shapes.input) return false;
  for (std::size_t i = 0; i < outputs; ++i) {
    const auto output = interpreter.output(static_cast<int>(i));
    if (!output->isFloat()) return false;
    const auto& expected = shapes.outputValues[i];
    if (expected && valueCount(*output) != *expected) return false;
  }
  return true;
}

tl::unexpected<platform::Fault> unusable(const std::filesystem::path& file, const char* what,
                                         platform::FaultCause cause) {
  return platform::failure(
      "The model " + file.string() + " " + what + ": install the program's models again.", cause);
}

tl::unexpected<platform::Fault> cannotBeRun(const std::filesystem::path& file) {
  return unusable(file, "cannot be run by this TensorFlow Lite",
                  platform::FaultCause::modelNotSupported);
}

}  // namespace

platform::Expected<TfliteModel> TfliteModel::load(const std::filesystem::path& file,
                                                  const Shapes& shapes,
                                                  inference::Runtime runtime) {
  using platform::FaultCause;
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file, ignored)) {
    return unusable(file, "is missing", FaultCause::notAModel);
  }
  auto made = Interpreter::load(file, kThreads, runtime);
  if (!made && made.error().cause == FaultCause::notAModel) {
    return unusable(file, "is not a readable model", FaultCause::notAModel);
  }
  if (!made || (shapes.isInputFree && !made->resizeInput(0, shapes.input)) ||
      !made->allocateTensors()) {
    return cannotBeRun(file);
  }
  if (!hasShapes(*made, shapes)) {
    return unusable(file, "is another network than the one expected", FaultCause::notAModel);
  }
  TfliteModel loaded(std::move(*made));
  std::ranges::fill(loaded.input(), 0.0F);
  if (!loaded.interpreter_.invoke()) return cannotBeRun(file);
  if (runtime == inference::Runtime::xnnpack) loaded.interpreter_.letGoOfFile();
  return loaded;
}

TfliteModel TfliteModel::another() const {
  auto made = interpreter_.another(kThreads);
  platform::require(
      made && made->resizeInput(0, interpreter_.input(0)->shape()) && made->allocateTensors(),
      "TfliteModel: a network that was loaded can't be made once more");
  return TfliteModel(std::move(*made));
}

void TfliteModel::resizeInput(const std::vector<int>& shape) {
  platform::require(interpreter_.resizeInput(0, shape) && interpreter_.allocateTensors(),
                    "TfliteModel: the network does not take an input of this shape");
}

std::span<float> TfliteModel::input() {
  return valuesOf(*interpreter_.input(0));
}

void TfliteModel::run() {
  platform::require(interpreter_.invoke(), "TfliteModel: a network that ran before failed to run");
}

std::span<const float> TfliteModel::output(int index) const {
  const auto tensor = interpreter_.output(index);
  platform::require(tensor.has_value(), "TfliteModel: no such output");
  return valuesOf(*tensor);
}

}  // namespace corvana::engine
