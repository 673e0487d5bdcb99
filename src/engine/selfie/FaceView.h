#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "engine/vision/FaceLandmarks.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// A face in grey, level and of one size by the outer corners of its eyes, with its points.
struct FaceView {
  platform::PixelBufferRef picture;
  FaceMesh mesh;  ///< in pixels of the view

  /// Between the eyes' outer corners, pixels of the view.
  static constexpr double kEyes = 96;
};

FaceView faceView(const platform::PixelBuffer& picture, const FaceMesh& mesh);

/// How far a point of the skin is from where another view has it.
struct SkinMotion {
  std::size_t point = 0;  ///< of the mesh
  double x = 0, y = 0;    ///< pixels of the view
  /// What the texture around it is worth along x, along both and along y, at most 1: a wrinkle
  /// tells nothing of what happens along it.
  double xx = 0, xy = 0, yy = 0;
};

/// How much the eyes of two views look alike, 0 to 1: that of the eye which has changed less.
double eyesLikeness(const FaceView& a, const FaceView& b);

/// Follows the skin around the points from one view to the other by what it looks like. The network
/// that finds the points is asked for nothing but where they begin: it knows faces and sees a head
/// turn where a sheet of paper is bent. Points that are not found again are left out.
std::vector<SkinMotion> skinMotions(const FaceView& from, const FaceView& to,
                                    std::span<const std::size_t> points);

}  // namespace corvana::engine
