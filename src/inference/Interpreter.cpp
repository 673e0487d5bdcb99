#include "inference/Interpreter.h"

#include <cstdarg>

#include <tensorflow/lite/c/c_api.h>
#include <tensorflow/lite/delegates/xnnpack/xnnpack_delegate.h>

// The C API can't set what the library logs by itself, and the headers published with it lack this
// declaration of its own "logger.h". Weak: a library without the function logs as it likes.
// NOLINTBEGIN(readability-identifier-naming): the names are the library's.
namespace tflite {

enum LogSeverity { TFLITE_LOG_WARNING = 2 };

class LoggerOptions {
 public:
  [[gnu::weak]] static LogSeverity SetMinimumLogSeverity(LogSeverity severity);
};

}  // namespace tflite
// NOLINTEND(readability-identifier-naming)

namespace corvana::inference {
namespace {

/// The library announces on standard error, among the program's own lines, that it made a delegate.
/// Warnings and errors stay.
void logOnlyWhatIsWrong() {
  if (tflite::LoggerOptions::SetMinimumLogSeverity == nullptr) return;
  static const auto kFormer =
      tflite::LoggerOptions::SetMinimumLogSeverity(tflite::TFLITE_LOG_WARNING);
  static_cast<void>(kFormer);
}

/// The library's own messages would go to standard error past the program.
void discardMessage(void*, const char*, va_list) {}

/// Null when the network needs what this library does not have.
TfLiteInterpreter* makeInterpreter(const TfLiteModel* model, int threads,
                                   TfLiteDelegate* delegate) {
  TfLiteInterpreterOptions* options = TfLiteInterpreterOptionsCreate();
  TfLiteInterpreterOptionsSetNumThreads(options, threads);
  TfLiteInterpreterOptionsSetErrorReporter(options, discardMessage, nullptr);
  if (delegate != nullptr) TfLiteInterpreterOptionsAddDelegate(options, delegate);
  TfLiteInterpreter* interpreter = TfLiteInterpreterCreate(model, options);
  TfLiteInterpreterOptionsDelete(options);
  return interpreter;
}

}  // namespace

bool Tensor::isFloat() const {
  return TfLiteTensorType(tensor_) == kTfLiteFloat32;
}

std::vector<int> Tensor::shape() const {
  std::vector<int> shape;
  shape.reserve(static_cast<std::size_t>(TfLiteTensorNumDims(tensor_)));
  for (int i = 0; i < TfLiteTensorNumDims(tensor_); ++i)
    shape.push_back(TfLiteTensorDim(tensor_, i));
  return shape;
}

std::size_t Tensor::byteSize() const {
  return TfLiteTensorByteSize(tensor_);
}

void* Tensor::data() const {
  return TfLiteTensorData(tensor_);
}

platform::Expected<Interpreter> Interpreter::load(const std::filesystem::path& file, int threads,
                                                  Runtime runtime) {
  logOnlyWhatIsWrong();
  Interpreter loaded;
  loaded.model_.reset(
      TfLiteModelCreateFromFileWithErrorReporter(file.c_str(), discardMessage, nullptr));
  const std::string name = file.filename().string();
  if (!loaded.model_) {
    return platform::failure(name + " is not a TensorFlow Lite model.",
                             platform::FaultCause::notAModel);
  }
  if (runtime == Runtime::xnnpack) loaded.delegate_.reset(TfLiteXNNPackDelegateCreate(nullptr));
  loaded.interpreter_.reset(makeInterpreter(loaded.model_.get(), threads, loaded.delegate_.get()));
  if (!loaded.interpreter_) {
    return platform::failure(name + " needs what this TensorFlow Lite does not offer.",
                             platform::FaultCause::modelNotSupported);
  }
  return loaded;
}

bool Interpreter::resizeInput(int index, const std::vector<int>& shape) {
  isAllocated_ = false;
  return TfLiteInterpreterResizeInputTensor(interpreter_.get(), index, shape.data(),
                                            static_cast<int>(shape.size())) == kTfLiteOk;
}

bool Interpreter::allocateTensors() {
  isAllocated_ = TfLiteInterpreterAllocateTensors(interpreter_.get()) == kTfLiteOk;
  return isAllocated_;
}

int Interpreter::inputCount() const {
  return TfLiteInterpreterGetInputTensorCount(interpreter_.get());
}

int Interpreter::outputCount() const {
  return TfLiteInterpreterGetOutputTensorCount(interpreter_.get());
}

std::optional<Tensor> Interpreter::input(int index) const {
  if (!isAllocated_ || index >= inputCount()) return {};
  return Tensor(TfLiteInterpreterGetInputTensor(interpreter_.get(), index));
}

std::optional<Tensor> Interpreter::output(int index) const {
  if (!isAllocated_ || index >= outputCount()) return {};
  return Tensor(TfLiteInterpreterGetOutputTensor(interpreter_.get(), index));
}

bool Interpreter::copyToInput(int index, std::span<const std::uint8_t> bytes) {
  TfLiteTensor* tensor = TfLiteInterpreterGetInputTensor(interpreter_.get(), index);
  return TfLiteTensorCopyFromBuffer(tensor, bytes.data(), bytes.size()) == kTfLiteOk;
}

bool Interpreter::invoke() {
  return TfLiteInterpreterInvoke(interpreter_.get()) == kTfLiteOk;
}

void Interpreter::Delete::operator()(TfLiteModel* model) const {
  TfLiteModelDelete(model);
}

void Interpreter::Delete::operator()(TfLiteDelegate* delegate) const {
  TfLiteXNNPackDelegateDelete(delegate);
}

void Interpreter::Delete::operator()(TfLiteInterpreter* interpreter) const {
  TfLiteInterpreterDelete(interpreter);
}

}  // namespace corvana::inference
