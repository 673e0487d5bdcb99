#pragma once

#include <filesystem>

#include <opencv2/core.hpp>

#include "Result.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/FaceLandmarks.h"

namespace corvana::session {

/// A picture of one person, and the surface of the face in it, in pixels of the picture.
struct Portrait {
  cv::Mat image;  ///< RGB
  engine::FaceMesh mesh;

  /// Middle of the face, between its outermost points.
  cv::Point2d centre() const;
  /// From cheek to cheek.
  double faceWidth() const;
  cv::Point2d point(std::size_t index) const { return {mesh[index].x, mesh[index].y}; }
};

/// Reads pictures and finds the face in them.
class PortraitReader {
 public:
  /// models: the folder with the face detection and face landmark models.
  static Result<PortraitReader> create(const std::filesystem::path& models);

  /// A picture without a face is an error.
  Result<Portrait> read(const std::filesystem::path& file);

 private:
  PortraitReader(engine::FaceDetector detector, engine::FaceLandmarks landmarks)
      : detector_(std::move(detector)), landmarks_(std::move(landmarks)) {}

  engine::FaceDetector detector_;
  engine::FaceLandmarks landmarks_;
};

/// The picture as on an identity card: the face upright in the middle of a rectangle of the given
/// width over height, seven twelfths as wide as it.
cv::Mat passportPhoto(const Portrait& portrait, double aspect, int width);

}  // namespace corvana::session
