#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "inference/Interpreter.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// One TensorFlow Lite network: a float picture in, float tables out, on one thread. The same
/// build, CPU type and input give the same output. Movable; use it from one thread at a time.
class TfliteModel {
 public:
  /// What a caller relies on; a file that differs is refused when it is loaded.
  struct Shapes {
    std::vector<int> input;  ///< for example {1, 128, 128, 3}
    /// Number of values of each output, in file order; absent for one whose length is free.
    std::vector<std::optional<std::size_t>> outputValues;
    /// Whether the network is made for inputs of several shapes; it gets `input` first.
    bool isInputFree = false;
  };

  /// Loads the file and runs it once on zeros, so that what can fail fails here and the first
  /// picture is not slow. Errors: the file is missing, is no model, or has other shapes.
  static platform::Expected<TfliteModel> load(const std::filesystem::path& file,
                                              const Shapes& shapes, inference::Runtime runtime);

  /// One more of the same network, in the shapes it has now; they share the file's bytes.
  TfliteModel another() const;

  /// Gives a free input another shape that the network is made for.
  void resizeInput(const std::vector<int>& shape);
  /// Where the next input is written: as many values as the input's shape has, row by row.
  std::span<float> input();
  /// Computes the outputs from the present input.
  void run();
  /// Output number `index`; valid until the next `run`.
  std::span<const float> output(int index) const;

 private:
  explicit TfliteModel(inference::Interpreter interpreter) : interpreter_(std::move(interpreter)) {}

  inference::Interpreter interpreter_;
};

}  // namespace corvana::engine
