#include "inference/Interpreter.h"

#include <cstdarg>
#include <string>
#include <utility>

#include <tensorflow/lite/c/c_api.h>
#include <tensorflow/lite/delegates/xnnpack/xnnpack_delegate.h>

#include "inference/MappedFile.h"

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

/// What all interpreters of a file share; the model points into the bytes.
struct Interpreter::Network {
  explicit Network(const std::filesystem::path& path)
      : name(path.filename().string()),
        file(path),
        model(file.bytes().empty()
                  ? nullptr
                  : TfLiteModelCreateWithErrorReporter(file.bytes().data(), file.bytes().size(),
                                                       discardMessage, nullptr)) {}
  ~Network() { TfLiteModelDelete(model); }
  Network(const Network&) = delete;
  Network& operator=(const Network&) = delete;

  const std::string name;
  const MappedFile file;
  TfLiteModel* const model;  ///< null when the file holds none
};

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
  auto network = std::make_shared<const Network>(file);
  if (network->model) return make(std::move(network), threads, runtime);
  return platform::failure(network->name + " is not a TensorFlow Lite model.",
                           platform::FaultCause::notAModel);
}

platform::Expected<Interpreter> Interpreter::another(int threads) const {
  return make(network_, threads, runtime_);
}

platform::Expected<Interpreter> Interpreter::make(std::shared_ptr<const Network> network,
                                                  int threads, Runtime runtime) {
  Interpreter made;
  made.network_ = std::move(network);
  made.runtime_ = runtime;
  if (runtime == Runtime::xnnpack) made.delegate_.reset(TfLiteXNNPackDelegateCreate(nullptr));
  made.interpreter_.reset(makeInterpreter(made.network_->model, threads, made.delegate_.get()));
  if (made.interpreter_) return made;
  return platform::failure(made.network_->name + " needs what this TensorFlow Lite does not offer.",
                           platform::FaultCause::modelNotSupported);
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

void Interpreter::letGoOfFile() const {
  network_->file.letGo();
}

void Interpreter::Delete::operator()(TfLiteDelegate* delegate) const {
  TfLiteXNNPackDelegateDelete(delegate);
}

void Interpreter::Delete::operator()(TfLiteInterpreter* interpreter) const {
  TfLiteInterpreterDelete(interpreter);
}

}  // namespace corvana::inference
