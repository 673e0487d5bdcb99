#pragma once

#include <filesystem>

#include <nlohmann/json.hpp>

#include "app/run/Resources.h"
#include "engine/vision/Face.h"
#include "engine/vision/FaceDetector.h"
#include "platform/foundation/Fault.h"
#include "platform/uikit/UIImage.h"

namespace corvana::app {

/// The one face of a photograph.
struct StillFace {
  engine::Face face;          ///< in pixels of the upright photograph
  platform::UIImageRef crop;  ///< brought to the pose that the face model takes
};

/// {"box": [x, y, width, height], "score": 0.97}
nlohmann::ordered_json faceToJson(const engine::Face& face);

/// Finds the face of a photograph, as a flow finds that of a selfie. From one thread at a time.
class StillFaces {
 public:
  static platform::Expected<StillFaces> load(const Resources& resources);

  /// The error is one sentence: no picture, no face, several people, or a face too small.
  platform::Expected<StillFace> read(const std::filesystem::path& photograph);

 private:
  explicit StillFaces(engine::FaceDetector detector) : detector_(std::move(detector)) {}

  engine::FaceDetector detector_;
};

}  // namespace corvana::app
