#include "engine/vision/FaceLandmarks.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

constexpr int kInputSide = 192;
constexpr double kCropScale = 1.5;

// Indices of the network's points, as its published map of the face numbers them.
struct EyePoints {
  std::size_t outerCorner, innerCorner;
  std::array<std::size_t, 2> upperLid, lowerLid;
};
constexpr EyePoints kRightEye{kRightEyeOuterCorner, kRightEyeInnerCorner, {160, 158}, {144, 153}};
constexpr EyePoints kLeftEye{kLeftEyeOuterCorner, kLeftEyeInnerCorner, {387, 385}, {373, 380}};
constexpr std::size_t kForehead = 10;
constexpr std::size_t kChin = 152;
constexpr std::array<std::size_t, 20> kLips{61,  146, 91,  181, 84,  17, 314, 405, 321, 375,
                                            291, 409, 270, 269, 267, 0,  37,  39,  40,  185};

constexpr double kHalfOpenAspectRatio = 0.15;
constexpr double kAspectRatioScale = 0.02;

// An eye brought to this size, corner to corner and with some lid above and below.
constexpr int kEyePatchWidth = 32;
constexpr int kEyePatchHeight = 20;
// Half the distance over which the contrast of white and iris is taken, in pixels of the patch.
constexpr int kContrastReach = 3;

double sigmoid(double value) {
  return 1 / (1 + std::exp(-value));
}

SurfacePoint operator-(const SurfacePoint& a, const SurfacePoint& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}

double length(const SurfacePoint& v) {
  return std::hypot(v.x, v.y, v.z);
}

double degrees(double radians) {
  return radians * 180 / std::numbers::pi;
}

/// Maps pixels of the network's input to those of the picture.
cv::Matx23d cropTransform(const Face& face) {
  const platform::CGPoint right = face.keypoints[Face::rightEye];
  const platform::CGPoint left = face.keypoints[Face::leftEye];
  const double angle = std::atan2(left.y - right.y, left.x - right.x);
  const double scale = kCropScale * face.size() / kInputSide;
  const double c = scale * std::cos(angle);
  const double s = scale * std::sin(angle);
  const double half = kInputSide / 2.0;
  return {c, -s, face.box.midX() - half * (c - s), s, c, face.box.midY() - half * (s + c)};
}

FaceMesh meshFrom(std::span<const float> values, const cv::Matx23d& transform) {
  const double scale = std::hypot(transform(0, 0), transform(1, 0));
  FaceMesh mesh;
  for (std::size_t i = 0; i < mesh.size(); ++i) {
    const float* point = &values[3 * i];
    const cv::Vec2d place = transform * cv::Vec3d(point[0], point[1], 1);
    mesh[i] = {place[0], place[1], point[2] * scale};
  }
  return mesh;
}

/// Mean side-to-side step of luma inside the eye, as a part of its mean luma.
double eyeContrast(const cv::Mat& gray, const FaceMesh& mesh, const EyePoints& eye) {
  const SurfacePoint across = mesh[eye.innerCorner] - mesh[eye.outerCorner];
  const double c = across.x / kEyePatchWidth;
  const double s = across.y / kEyePatchWidth;
  const double x = mesh[eye.outerCorner].x + across.x / 2;
  const double y = mesh[eye.outerCorner].y + across.y / 2;
  const double halfWidth = kEyePatchWidth / 2.0;
  const double halfHeight = kEyePatchHeight / 2.0;
  const cv::Matx23d transform(c, -s, x - c * halfWidth + s * halfHeight,  //
                              s, c, y - s * halfWidth - c * halfHeight);
  cv::Mat patch;
  cv::warpAffine(gray, patch, transform, {kEyePatchWidth, kEyePatchHeight},
                 cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
  // The brow's side and the lower lid are left out.
  const cv::Mat band = patch.rowRange(2, kEyePatchHeight - 4);
  cv::Mat steps;
  cv::absdiff(band.colRange(2 * kContrastReach, band.cols),
              band.colRange(0, band.cols - 2 * kContrastReach), steps);
  return cv::mean(steps)[0] / std::max(1.0, cv::mean(patch)[0]);
}

double lidOpening(const cv::Mat& rgb, const FaceMesh& mesh) {
  cv::Mat gray;
  cv::cvtColor(rgb, gray, cv::COLOR_RGB2GRAY);
  return (eyeAspectRatio(mesh, true) * eyeContrast(gray, mesh, kLeftEye) +
          eyeAspectRatio(mesh, false) * eyeContrast(gray, mesh, kRightEye)) /
         2;
}

platform::CGRect boundsOf(const FaceMesh& mesh, std::span<const std::size_t> points) {
  const auto [left, right] = std::ranges::minmax(points, {}, [&](auto i) { return mesh[i].x; });
  const auto [top, bottom] = std::ranges::minmax(points, {}, [&](auto i) { return mesh[i].y; });
  return {mesh[left].x, mesh[top].y, mesh[right].x - mesh[left].x, mesh[bottom].y - mesh[top].y};
}

}  // namespace

double eyeAspectRatio(const FaceMesh& mesh, bool left) {
  const EyePoints& eye = left ? kLeftEye : kRightEye;
  double opening = 0;
  for (std::size_t i = 0; i < eye.upperLid.size(); ++i) {
    opening += length(mesh[eye.upperLid[i]] - mesh[eye.lowerLid[i]]) /
               static_cast<double>(eye.upperLid.size());
  }
  return opening / length(mesh[eye.outerCorner] - mesh[eye.innerCorner]);
}

float eyeOpenProbability(double aspectRatio) {
  return static_cast<float>(sigmoid((aspectRatio - kHalfOpenAspectRatio) / kAspectRatioScale));
}

HeadPose headPose(const FaceMesh& mesh) {
  const SurfacePoint across = mesh[kLeftEye.outerCorner] - mesh[kRightEye.outerCorner];
  const SurfacePoint down = mesh[kChin] - mesh[kForehead];
  return {.yaw = degrees(std::atan2(across.z, std::hypot(across.x, across.y))),
          .pitch = degrees(std::atan2(down.z, std::hypot(down.x, down.y))),
          .roll = degrees(std::atan2(across.y, across.x))};
}

platform::Expected<FaceLandmarks> FaceLandmarks::load(const std::filesystem::path& model) {
  const TfliteModel::Shapes shapes{{1, kInputSide, kInputSide, 3}, {3 * kFaceMeshPoints, 1}};
  return TfliteModel::load(model, shapes, inference::Runtime::xnnpack)
      .map([](TfliteModel&& loaded) { return FaceLandmarks(std::move(loaded)); });
}

FaceDetails FaceLandmarks::locate(const platform::PixelBuffer& picture, const Face& face) {
  const cv::Matx23d transform = cropTransform(face);
  cv::Mat crop;
  cv::warpAffine(rgbMat(picture), crop, transform, {kInputSide, kInputSide},
                 cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
  cv::Mat values(kInputSide, kInputSide, CV_32FC3, model_.input().data());
  crop.convertTo(values, CV_32FC3, 1 / 255.0);
  model_.run();

  FaceDetails details;
  const FaceMesh inCrop = meshFrom(model_.output(0), cv::Matx23d::eye());
  details.lidOpening = lidOpening(crop, inCrop);
  details.mesh = meshFrom(model_.output(0), transform);
  details.presence = static_cast<float>(sigmoid(model_.output(1)[0]));
  details.leftEyeOpen = eyeOpenProbability(eyeAspectRatio(details.mesh, true));
  details.rightEyeOpen = eyeOpenProbability(eyeAspectRatio(details.mesh, false));
  details.pose = headPose(details.mesh);
  details.mouth = boundsOf(details.mesh, kLips);
  return details;
}

}  // namespace corvana::engine
