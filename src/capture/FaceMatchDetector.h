#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "corvana/ImageData.h"
#include "inference/Interpreter.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/Fault.h"

namespace corvana::capture {

struct FaceMatchResult {
  /// Euclidean distance of the unit-length embeddings: 0 (identical) to 2 (opposite).
  float distance = 0;
  bool isMatched = false;
};

/// Says whether two pictures show the same face, with the embedding network "facenet.tflite" of the
/// module's bundle. Never fails to be built: without a usable model no comparison can be made.
/// One thread at a time.
class FaceMatchDetector {
 public:
  FaceMatchDetector(const platform::Bundle& bundle, platform::Console& console);

  /// Matched when the distance is at most `faceMatchMax`. Absent when no comparison could be made,
  /// which is not the same as no match.
  std::optional<FaceMatchResult> faceMatch(const platform::UIImageRef& selfieImage,
                                           const platform::UIImageRef& idFaceImage,
                                           float faceMatchMax);

 private:
  friend struct FaceMatchDetectorProbe;  // lets a test look at an embedding

  using Interpreter = inference::Interpreter;
  using Bytes = std::vector<std::uint8_t>;
  using Embedding = std::vector<double>;
  platform::Expected<void> load(const std::filesystem::path& model);
  static platform::Expected<void> take(platform::Expected<Interpreter> loaded,
                                       std::optional<Interpreter>& interpreter);
  std::optional<Bytes> scaled(const platform::UIImageRef& image) const;
  static std::optional<std::vector<float>> preprocess(std::span<const std::uint8_t> data);
  /// Absent, with a line on the console unless the output is no list of floats.
  std::optional<Embedding> embedding(Interpreter& interpreter, std::span<const float> input) const;
  static float distance(const Embedding& a, const Embedding& b);

  platform::Console& console_;
  // Each picture of a comparison has an interpreter, and so tensors, of its own; the weights they
  // share.
  std::optional<Interpreter> interpreter1_;
  std::optional<Interpreter> interpreter2_;
  corvana::MetalBilinearScaler scaler_;
};

}  // namespace corvana::capture
