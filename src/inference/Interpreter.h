#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/foundation/Fault.h"

struct TfLiteDelegate;
struct TfLiteInterpreter;
struct TfLiteTensor;

namespace corvana::inference {

/// What computes a network.
enum class Runtime {
  plain,    ///< built-in kernels, nothing delegated
  xnnpack,  ///< the XNNPACK delegate: about ten times as fast on convolutions
};

/// An input or output of a network; valid as long as its interpreter.
class Tensor {
 public:
  explicit Tensor(const TfLiteTensor* tensor) : tensor_(tensor) {}

  bool isFloat() const;
  std::vector<int> shape() const;
  std::size_t byteSize() const;
  /// Null when it has no memory.
  void* data() const;

 private:
  const TfLiteTensor* tensor_;
};

/// One instance of a network, with tensors of its own. It only wraps the library's calls: what a
/// network must look like, and what a failure means, its user knows. Movable; use it from one
/// thread at a time.
class Interpreter {
 public:
  /// `threads` is how many the library may compute with. Error: `notAModel` or `modelNotSupported`.
  static platform::Expected<Interpreter> load(const std::filesystem::path& file, int threads,
                                              Runtime runtime);
  /// One more of the same network and runtime, which shares the file's weights. Error: as of
  /// `load`.
  platform::Expected<Interpreter> another(int threads) const;

  /// Gives an input another shape; false when the network does not allow it. The tensors have to be
  /// allocated anew.
  bool resizeInput(int index, const std::vector<int>& shape);
  /// Gives the tensors their memory; false when that fails.
  bool allocateTensors();
  int inputCount() const;
  int outputCount() const;
  /// Absent when there is no such input or output, or the tensors are not allocated.
  std::optional<Tensor> input(int index) const;
  std::optional<Tensor> output(int index) const;
  /// Fills an input with as many bytes as it takes; false when it can't be filled.
  bool copyToInput(int index, std::span<const std::uint8_t> bytes);
  /// Computes the outputs; false when that fails.
  bool invoke();
  /// Takes the file's weights out of memory until they are used again: a delegate has packed copies
  /// of its own.
  void letGoOfFile() const;

 private:
  struct Network;
  struct Delete {
    void operator()(TfLiteDelegate* delegate) const;
    void operator()(TfLiteInterpreter* interpreter) const;
  };

  Interpreter() = default;
  static platform::Expected<Interpreter> make(std::shared_ptr<const Network> network, int threads,
                                              Runtime runtime);

  // The interpreter uses the two above it and must go first.
  std::shared_ptr<const Network> network_;
  std::unique_ptr<TfLiteDelegate, Delete> delegate_;
  std::unique_ptr<TfLiteInterpreter, Delete> interpreter_;
  Runtime runtime_ = Runtime::plain;
  bool isAllocated_ = false;
};

}  // namespace corvana::inference
