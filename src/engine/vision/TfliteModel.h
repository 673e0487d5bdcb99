#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <tl/expected.hpp>

#include "corvana/IDError.h"

struct TfLiteDelegate;
struct TfLiteInterpreter;
struct TfLiteModel;

namespace engine {

/// One TensorFlow Lite network: a float picture in, float tables out, on one thread. The same
/// build, CPU type and input give the same output. Movable; use it from one thread at a time.
class TfliteModel {
 public:
  /// What a caller relies on; a file that differs is refused when it is loaded.
  struct Shapes {
    std::vector<int> input;                 ///< for example {1, 128, 128, 3}
    /// Number of values of each output, in file order; absent for one whose length is free.
    std::vector<std::optional<std::size_t>> outputValues;
  };

  enum class Runtime {
    plain,    ///< built-in kernels, nothing delegated
    xnnpack,  ///< the XNNPACK delegate: about ten times as fast on convolutions
  };

  /// Loads the file and runs it once on zeros, so that what can fail fails here and the first
  /// picture is not slow. Errors: the file is missing, is no model, or has other shapes.
  static tl::expected<TfliteModel, corvana::IDError> load(const std::filesystem::path& file,
                                                          const Shapes& shapes,
                                                          Runtime runtime = Runtime::xnnpack);

  TfliteModel(TfliteModel&&) noexcept = default;
  TfliteModel& operator=(TfliteModel&&) noexcept = default;

  /// Where the next input is written: as many values as the input's shape has, row by row.
  std::span<float> input();
  /// Computes the outputs from the present input.
  void run();
  /// Output number `index`; valid until the next `run`.
  std::span<const float> output(int index) const;

 private:
  struct Delete {
    void operator()(TfLiteModel* model) const;
    void operator()(TfLiteDelegate* delegate) const;
    void operator()(TfLiteInterpreter* interpreter) const;
  };

  TfliteModel() = default;

  // The interpreter uses the two above it and must go first.
  std::unique_ptr<TfLiteModel, Delete> model_;
  std::unique_ptr<TfLiteDelegate, Delete> delegate_;
  std::unique_ptr<TfLiteInterpreter, Delete> interpreter_;
};

}  // namespace engine
