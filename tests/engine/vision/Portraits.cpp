#include "engine/vision/Portraits.h"

#include <cmath>
#include <map>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::tests {

std::filesystem::path fromSource(const char* path) {
  return std::filesystem::path(SOURCE_DIR) / path;
}

cv::Mat portrait(char person) {
  static std::map<char, cv::Mat> loaded;
  cv::Mat& rgb = loaded[person];
  if (rgb.empty()) {
    const std::string name = std::string("samples/portraits/person_") + person + ".jpg";
    cv::cvtColor(cv::imread(fromSource(name.c_str())), rgb, cv::COLOR_BGR2RGB);
  }
  return rgb;
}

platform::PixelBufferRef cameraFrame(std::initializer_list<Placed> people) {
  cv::Mat frame(1280, 720, CV_8UC3, cv::Scalar::all(128));
  for (const Placed& placed : people) {
    const auto faces = detector().detect(*engine::pixelBufferFrom(portrait(placed.person)));
    const platform::CGRect face = faces.at(0).box;
    const double scale = placed.faceWidth / face.width;
    const cv::Rect head = engine::pixelRect(
        {face.midX() - face.width, face.midY() - face.height, 2 * face.width, 2 * face.height},
        portrait(placed.person).size());
    cv::Mat picture;
    cv::resize(portrait(placed.person)(head), picture, {}, scale, scale,
               scale < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
    const cv::Point corner(
        static_cast<int>(std::lround(placed.x - (face.midX() - head.x) * scale)),
        static_cast<int>(std::lround(placed.y - (face.midY() - head.y) * scale)));
    const cv::Rect target = cv::Rect(corner, picture.size()) & cv::Rect({}, frame.size());
    picture(target - corner).copyTo(frame(target));
  }
  return engine::pixelBufferFrom(frame);
}

engine::FaceDetector& detector() {
  static engine::FaceDetector loaded = *engine::FaceDetector::load(
      fromSource("src/engine/resources/face_detection_short_range.tflite"));
  return loaded;
}

engine::FaceLandmarks& landmarks() {
  static engine::FaceLandmarks loaded =
      *engine::FaceLandmarks::load(fromSource("src/engine/resources/face_landmark.tflite"));
  return loaded;
}

}  // namespace corvana::tests
