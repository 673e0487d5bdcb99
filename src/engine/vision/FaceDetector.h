#pragma once

#include <filesystem>
#include <vector>

#include "engine/vision/Face.h"
#include "engine/vision/TfliteModel.h"
#include "platform/foundation/Fault.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// Finds faces with BlazeFace (short range). The network sees 128×128 and misses faces narrower
/// than about a fifth of that, so the picture is also looked at in overlapping squares, and each
/// face once more in a crop around it, which settles its box and keypoints. From one thread at a
/// time.
class FaceDetector {
 public:
  enum class Search {
    /// The whole picture and squares of its shorter side; smaller squares only if those are empty.
    untilFound,
    /// The smaller squares always: also finds small faces beside a large one (a photo on a card).
    everywhere,
  };

  static platform::Expected<FaceDetector> load(const std::filesystem::path& model);

  /// All faces of the picture, the largest first. Faces wider than about an eighth of the picture's
  /// shorter side are found.
  std::vector<Face> detect(const platform::PixelBuffer& picture,
                           Search search = Search::untilFound);

  /// The faces in a square three times as large as the box, around it: far cheaper than `detect`,
  /// to follow a face.
  std::vector<Face> detectNear(const platform::PixelBuffer& picture, const platform::CGRect& box);

 private:
  explicit FaceDetector(TfliteModel model) : model_(std::move(model)) {}

  TfliteModel model_;
};

}  // namespace corvana::engine
