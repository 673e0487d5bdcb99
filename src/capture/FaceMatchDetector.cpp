#include "capture/FaceMatchDetector.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "capture/ImageStandardization.h"
#include "platform/foundation/Fault.h"

namespace corvana::capture {
namespace {

constexpr const char* kModelName = "facenet";
constexpr const char* kModelType = "tflite";
constexpr int kThreadCount = 1;
constexpr platform::CGSize kModelInputSize{160, 160};
/// Keeps an all-zero embedding from being divided by zero.
constexpr double kLeastSquareSum = 1e-10;

std::vector<float> unitLength(const std::vector<double>& embedding) {
  double squareSum = 0;
  for (const double value : embedding)
    squareSum += value * value;
  const auto norm = static_cast<float>(std::sqrt(std::max(squareSum, kLeastSquareSum)));
  std::vector<float> result;
  result.reserve(embedding.size());
  for (const double value : embedding)
    result.push_back(static_cast<float>(value) / norm);
  return result;
}

platform::Expected<void> fillInput(inference::Interpreter& interpreter,
                                   std::span<const std::uint8_t> bytes) {
  const auto input = interpreter.input(0);
  if (!input) return platform::failure("The face model has no input.");
  if (input->byteSize() != bytes.size()) {
    return platform::failure("The face model's input takes " + std::to_string(input->byteSize()) +
                             " bytes, but the picture has " + std::to_string(bytes.size()) + ".");
  }
  if (!interpreter.copyToInput(0, bytes)) {
    return platform::failure("The face model's input could not be filled.");
  }
  return {};
}

platform::Expected<void> run(inference::Interpreter& interpreter) {
  if (interpreter.invoke()) return {};
  return platform::failure("The face model could not be run.");
}

platform::Expected<std::span<const std::uint8_t>> readOutput(
    const inference::Interpreter& interpreter) {
  const auto output = interpreter.output(0);
  if (!output || (output->data() == nullptr && output->byteSize() > 0)) {
    return platform::failure("The face model's output could not be read.");
  }
  return std::span(static_cast<const std::uint8_t*>(output->data()), output->byteSize());
}

}  // namespace

FaceMatchDetector::FaceMatchDetector(const platform::Bundle& bundle, platform::Console& console)
    : console_(console) {
  const auto model = bundle.path(kModelName, kModelType);
  if (!model) return;
  if (const auto loaded = load(*model); !loaded) {
    console_.print("ERROR initializing FaceMatchDetector: " + loaded.error().sentence);
  }
}

platform::Expected<void> FaceMatchDetector::load(const std::filesystem::path& model) {
  const auto first =
      take(Interpreter::load(model, kThreadCount, inference::Runtime::plain), interpreter1_);
  if (!first) return first;
  return take(interpreter1_->another(kThreadCount), interpreter2_);
}

platform::Expected<void> FaceMatchDetector::take(platform::Expected<Interpreter> loaded,
                                                 std::optional<Interpreter>& interpreter) {
  if (!loaded) return platform::failure("The face model " + loaded.error().sentence);
  interpreter = std::move(*loaded);
  if (interpreter->allocateTensors()) return {};
  return platform::failure("The face model's tensors could not be allocated.");
}

std::optional<FaceMatchDetector::Bytes> FaceMatchDetector::scaled(
    const platform::UIImageRef& image) const {
  return corvana::scaledRGBData(image, scaler_, kModelInputSize, true);
}

std::optional<std::vector<float>> FaceMatchDetector::preprocess(
    std::span<const std::uint8_t> data) {
  if (data.empty()) return {};
  const auto count = static_cast<double>(data.size());
  const ByteSums sums = sumsOf(data);
  const double mean = static_cast<double>(sums.values) / count;
  // Whole numbers up to here, so that nothing is lost between two large ones.
  const auto spread = static_cast<double>(data.size() * sums.squares - sums.values * sums.values);
  const double deviation = std::sqrt(spread) / count;
  const auto divisor = static_cast<float>(std::max(deviation, 1 / std::sqrt(count)));
  std::vector<float> result(data.size());
  standardize(data, static_cast<float>(mean), divisor, result);
  return result;
}

std::optional<FaceMatchDetector::Embedding> FaceMatchDetector::embedding(
    Interpreter& interpreter, std::span<const float> input) const {
  const std::span bytes(reinterpret_cast<const std::uint8_t*>(input.data()), input.size_bytes());
  const auto output =
      fillInput(interpreter, bytes).and_then([&] { return run(interpreter); }).and_then([&] {
        return readOutput(interpreter);
      });
  if (!output) {
    console_.print("ERROR detecting face match: " + output.error().sentence);
    return {};
  }
  return corvana::cgFloats(*output);
}

float FaceMatchDetector::distance(const Embedding& a, const Embedding& b) {
  const std::vector<float> first = unitLength(a);
  const std::vector<float> second = unitLength(b);
  float sum = 0;
  for (std::size_t i = 0; i < first.size(); ++i) {
    const float difference = first[i] - second[i];
    sum += difference * difference;
  }
  return std::sqrt(sum);
}

std::optional<FaceMatchResult> FaceMatchDetector::faceMatch(const platform::UIImageRef& selfieImage,
                                                            const platform::UIImageRef& idFaceImage,
                                                            float faceMatchMax) {
  if (!interpreter1_ || !interpreter2_) return {};
  const auto selfieBytes = scaled(selfieImage);
  if (!selfieBytes) return {};
  const auto idBytes = scaled(idFaceImage);
  if (!idBytes) return {};
  const auto selfieInput = preprocess(*selfieBytes);
  const auto idInput = preprocess(*idBytes);
  if (!selfieInput || !idInput) return {};
  const auto selfieEmbedding = embedding(*interpreter1_, *selfieInput);
  if (!selfieEmbedding) return {};
  const auto idEmbedding = embedding(*interpreter2_, *idInput);
  if (!idEmbedding || selfieEmbedding->size() != idEmbedding->size()) return {};
  const float faceDistance = distance(*selfieEmbedding, *idEmbedding);
  return FaceMatchResult{faceDistance, faceDistance <= faceMatchMax};
}

}  // namespace corvana::capture
