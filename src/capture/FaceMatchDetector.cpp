#include "capture/FaceMatchDetector.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <numeric>

#include <tensorflow/lite/c/c_api.h>

namespace capture {
namespace {

constexpr const char* kModelName = "facenet";
constexpr const char* kModelType = "tflite";
constexpr int kThreadCount = 1;
constexpr platform::CGSize kModelInputSize{160, 160};
/// Keeps an all-zero embedding from being divided by zero.
constexpr double kLeastSquareSum = 1e-10;

/// The library's own messages would go to standard error past the console.
void discardMessage(void*, const char*, va_list) {}

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

}  // namespace

/// One instance of the network, with its own tensors.
class FaceMatchDetector::Interpreter {
 public:
  static Expected<std::unique_ptr<Interpreter>> make(const std::filesystem::path& path) {
    std::unique_ptr<Interpreter> self(new Interpreter);
    self->model_.reset(
        TfLiteModelCreateFromFileWithErrorReporter(path.c_str(), discardMessage, nullptr));
    if (!self->model_) {
      return tl::unexpected("The face model " + path.filename().string() +
                            " is not a TensorFlow Lite model.");
    }
    const std::unique_ptr<TfLiteInterpreterOptions, decltype(&TfLiteInterpreterOptionsDelete)>
        options(TfLiteInterpreterOptionsCreate(), TfLiteInterpreterOptionsDelete);
    TfLiteInterpreterOptionsSetNumThreads(options.get(), kThreadCount);
    TfLiteInterpreterOptionsSetErrorReporter(options.get(), discardMessage, nullptr);
    self->interpreter_.reset(TfLiteInterpreterCreate(self->model_.get(), options.get()));
    if (!self->interpreter_) {
      return tl::unexpected("The face model " + path.filename().string() +
                            " needs what this TensorFlow Lite does not offer.");
    }
    return self;
  }

  Expected<void> allocateTensors() {
    if (TfLiteInterpreterAllocateTensors(interpreter_.get()) != kTfLiteOk) {
      return tl::unexpected<std::string>("The face model's tensors could not be allocated.");
    }
    allocated_ = true;
    return {};
  }

  Expected<void> copyToInput(std::span<const std::uint8_t> bytes) {
    TfLiteTensor* input = inputTensor();
    if (!input) return tl::unexpected<std::string>("The face model has no input.");
    const std::size_t wanted = TfLiteTensorByteSize(input);
    if (wanted != bytes.size()) {
      return tl::unexpected("The face model's input takes " + std::to_string(wanted) +
                            " bytes, but the picture has " + std::to_string(bytes.size()) + ".");
    }
    if (TfLiteTensorCopyFromBuffer(input, bytes.data(), bytes.size()) != kTfLiteOk) {
      return tl::unexpected<std::string>("The face model's input could not be filled.");
    }
    return {};
  }

  Expected<void> invoke() {
    if (TfLiteInterpreterInvoke(interpreter_.get()) != kTfLiteOk) {
      return tl::unexpected<std::string>("The face model could not be run.");
    }
    return {};
  }

  Expected<std::span<const std::uint8_t>> output() const {
    const TfLiteTensor* tensor = TfLiteInterpreterGetOutputTensorCount(interpreter_.get()) > 0
                                     ? TfLiteInterpreterGetOutputTensor(interpreter_.get(), 0)
                                     : nullptr;
    const void* data = tensor ? TfLiteTensorData(tensor) : nullptr;
    const std::size_t size = tensor ? TfLiteTensorByteSize(tensor) : 0;
    if (!tensor || (!data && size > 0)) {
      return tl::unexpected<std::string>("The face model's output could not be read.");
    }
    return std::span(static_cast<const std::uint8_t*>(data), size);
  }

 private:
  struct Delete {
    void operator()(TfLiteModel* model) const { TfLiteModelDelete(model); }
    void operator()(TfLiteInterpreter* interpreter) const { TfLiteInterpreterDelete(interpreter); }
  };

  Interpreter() = default;

  /// Null also while the tensors are not allocated: they have no memory to copy to.
  TfLiteTensor* inputTensor() {
    if (!allocated_ || TfLiteInterpreterGetInputTensorCount(interpreter_.get()) < 1) return nullptr;
    return TfLiteInterpreterGetInputTensor(interpreter_.get(), 0);
  }

  std::unique_ptr<TfLiteModel, Delete> model_;  // outlives the interpreter that uses it
  std::unique_ptr<TfLiteInterpreter, Delete> interpreter_;
  bool allocated_ = false;
};

FaceMatchDetector::FaceMatchDetector(const platform::Bundle& bundle, platform::Console& console)
    : console_(console) {
  const auto model = bundle.path(kModelName, kModelType);
  if (!model) return;
  if (const auto loaded = load(*model); !loaded) {
    console_.print("ERROR initializing FaceMatchDetector: " + loaded.error());
  }
}

FaceMatchDetector::~FaceMatchDetector() = default;

FaceMatchDetector::Expected<void> FaceMatchDetector::load(const std::filesystem::path& model) {
  if (auto first = load(model, interpreter1_); !first) return first;
  return load(model, interpreter2_);
}

FaceMatchDetector::Expected<void> FaceMatchDetector::load(
    const std::filesystem::path& model, std::unique_ptr<Interpreter>& interpreter) {
  auto made = Interpreter::make(model);
  if (!made) return tl::unexpected(made.error());
  interpreter = std::move(*made);
  return interpreter->allocateTensors();
}

std::optional<FaceMatchDetector::Bytes> FaceMatchDetector::scaled(
    const platform::UIImageRef& image) const {
  return corvana::scaledRGBData(image, scaler_, kModelInputSize, true);
}

std::optional<std::vector<float>> FaceMatchDetector::preprocess(
    std::span<const std::uint8_t> data) {
  if (data.empty()) return {};
  const auto count = static_cast<double>(data.size());
  const double mean = std::accumulate(data.begin(), data.end(), 0.0) / count;
  double squareSum = 0;
  for (const std::uint8_t byte : data)
    squareSum += (byte - mean) * (byte - mean);
  const double deviation = std::sqrt(squareSum / count);
  const auto divisor = static_cast<float>(std::max(deviation, 1 / std::sqrt(count)));
  const auto offset = static_cast<float>(mean);
  std::vector<float> result;
  result.reserve(data.size());
  for (const std::uint8_t byte : data)
    result.push_back((static_cast<float>(byte) - offset) / divisor);
  return result;
}

std::optional<FaceMatchDetector::Embedding> FaceMatchDetector::embedding(
    Interpreter& interpreter, std::span<const float> input) const {
  const std::span bytes(reinterpret_cast<const std::uint8_t*>(input.data()), input.size_bytes());
  const auto output =
      interpreter.copyToInput(bytes).and_then([&] { return interpreter.invoke(); }).and_then([&] {
        return interpreter.output();
      });
  if (!output) {
    console_.print("ERROR detecting face match: " + output.error());
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

}  // namespace capture
