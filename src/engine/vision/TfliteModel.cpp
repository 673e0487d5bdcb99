#include "engine/vision/TfliteModel.h"

#include <algorithm>
#include <string>

#include <tensorflow/lite/c/c_api.h>
#include <tensorflow/lite/delegates/xnnpack/xnnpack_delegate.h>

#include "platform/foundation/Require.h"

// The C API can't set what the library logs by itself, and the headers published with it lack this
// declaration of its own "logger.h". Weak: a library without the function logs as it likes.
namespace tflite {

enum LogSeverity { TFLITE_LOG_WARNING = 2 };

class LoggerOptions {
 public:
  [[gnu::weak]] static LogSeverity SetMinimumLogSeverity(LogSeverity severity);
};

}  // namespace tflite

namespace engine {
namespace {

using corvana::IDError;

/// The library announces on standard error, among the program's own lines, that it made a delegate.
/// Warnings and errors stay.
void logOnlyWhatIsWrong() {
  if (tflite::LoggerOptions::SetMinimumLogSeverity == nullptr) return;
  static const auto kFormer =
      tflite::LoggerOptions::SetMinimumLogSeverity(tflite::TFLITE_LOG_WARNING);
  static_cast<void>(kFormer);
}

void discardMessage(void*, const char*, va_list) {}

std::vector<int> shapeOf(const TfLiteTensor* tensor) {
  std::vector<int> shape;
  shape.reserve(static_cast<std::size_t>(TfLiteTensorNumDims(tensor)));
  for (int i = 0; i < TfLiteTensorNumDims(tensor); ++i)
    shape.push_back(TfLiteTensorDim(tensor, i));
  return shape;
}

bool isFloat(const TfLiteTensor* tensor) {
  return tensor != nullptr && TfLiteTensorType(tensor) == kTfLiteFloat32;
}

std::size_t valueCount(const TfLiteTensor* tensor) {
  return TfLiteTensorByteSize(tensor) / sizeof(float);
}

bool hasShapes(const TfLiteInterpreter* interpreter, const TfliteModel::Shapes& shapes) {
  if (TfLiteInterpreterGetInputTensorCount(interpreter) != 1) return false;
  const TfLiteTensor* input = TfLiteInterpreterGetInputTensor(interpreter, 0);
  if (!isFloat(input) || shapeOf(input) != shapes.input) return false;

  const int outputs = TfLiteInterpreterGetOutputTensorCount(interpreter);
  if (outputs != static_cast<int>(shapes.outputValues.size())) return false;
  for (int i = 0; i < outputs; ++i) {
    const TfLiteTensor* output = TfLiteInterpreterGetOutputTensor(interpreter, i);
    if (!isFloat(output)) return false;
    const auto& expected = shapes.outputValues[static_cast<size_t>(i)];
    if (expected && valueCount(output) != *expected) return false;
  }
  return true;
}

/// Null when the network needs what this library does not have.
TfLiteInterpreter* makeInterpreter(const TfLiteModel* model, TfLiteDelegate* delegate) {
  TfLiteInterpreterOptions* options = TfLiteInterpreterOptionsCreate();
  TfLiteInterpreterOptionsSetNumThreads(options, 1);
  TfLiteInterpreterOptionsSetErrorReporter(options, discardMessage, nullptr);
  if (delegate != nullptr) TfLiteInterpreterOptionsAddDelegate(options, delegate);
  TfLiteInterpreter* interpreter = TfLiteInterpreterCreate(model, options);
  TfLiteInterpreterOptionsDelete(options);
  return interpreter;
}

IDError unusable(const std::filesystem::path& file, const char* what) {
  return IDError("The model " + file.string() + " " + what +
                 ": install the program's models again.");
}

}  // namespace

tl::expected<TfliteModel, IDError> TfliteModel::load(const std::filesystem::path& file,
                                                     const Shapes& shapes, Runtime runtime) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file, ignored)) {
    return tl::unexpected(unusable(file, "is missing"));
  }
  logOnlyWhatIsWrong();
  TfliteModel loaded;
  loaded.model_.reset(
      TfLiteModelCreateFromFileWithErrorReporter(file.c_str(), discardMessage, nullptr));
  if (loaded.model_ == nullptr) return tl::unexpected(unusable(file, "is not a readable model"));

  if (runtime == Runtime::xnnpack) loaded.delegate_.reset(TfLiteXNNPackDelegateCreate(nullptr));
  loaded.interpreter_.reset(makeInterpreter(loaded.model_.get(), loaded.delegate_.get()));
  TfLiteInterpreter* interpreter = loaded.interpreter_.get();
  if (interpreter == nullptr || TfLiteInterpreterAllocateTensors(interpreter) != kTfLiteOk) {
    return tl::unexpected(unusable(file, "cannot be run by this TensorFlow Lite"));
  }
  if (!hasShapes(interpreter, shapes)) {
    return tl::unexpected(unusable(file, "is another network than the one expected"));
  }
  std::ranges::fill(loaded.input(), 0.0F);
  if (TfLiteInterpreterInvoke(interpreter) != kTfLiteOk) {
    return tl::unexpected(unusable(file, "cannot be run by this TensorFlow Lite"));
  }
  return loaded;
}

std::span<float> TfliteModel::input() {
  TfLiteTensor* tensor = TfLiteInterpreterGetInputTensor(interpreter_.get(), 0);
  return {static_cast<float*>(TfLiteTensorData(tensor)), valueCount(tensor)};
}

void TfliteModel::run() {
  platform::require(TfLiteInterpreterInvoke(interpreter_.get()) == kTfLiteOk,
                    "TfliteModel: a network that ran before failed to run");
}

std::span<const float> TfliteModel::output(int index) const {
  const TfLiteTensor* tensor = TfLiteInterpreterGetOutputTensor(interpreter_.get(), index);
  platform::require(tensor != nullptr, "TfliteModel: no such output");
  return {static_cast<const float*>(TfLiteTensorData(tensor)), valueCount(tensor)};
}

void TfliteModel::Delete::operator()(TfLiteModel* model) const {
  TfLiteModelDelete(model);
}

void TfliteModel::Delete::operator()(TfLiteDelegate* delegate) const {
  TfLiteXNNPackDelegateDelete(delegate);
}

void TfliteModel::Delete::operator()(TfLiteInterpreter* interpreter) const {
  TfLiteInterpreterDelete(interpreter);
}

}  // namespace engine
