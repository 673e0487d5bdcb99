#pragma once

#include <filesystem>
#include <vector>

#include "engine/vision/TfliteModel.h"
#include "platform/foundation/Fault.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// What makes a face the same one again: a list of numbers of unit length, near for pictures of one
/// person and far for strangers.
using FaceEmbedding = std::vector<float>;

/// 0 (the same picture) to 2.
double distance(const FaceEmbedding& a, const FaceEmbedding& b);

/// The face-embedding network. From one thread at a time.
class FaceEmbedder {
 public:
  static platform::Expected<FaceEmbedder> load(const std::filesystem::path& model);

  /// Of a face that `cropFace` has brought to the network's pose.
  FaceEmbedding embed(const platform::PixelBuffer& faceCrop);

 private:
  explicit FaceEmbedder(TfliteModel model) : model_(std::move(model)) {}

  TfliteModel model_;
};

}  // namespace corvana::engine
