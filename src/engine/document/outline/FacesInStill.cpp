#include "engine/document/outline/FacesInStill.h"

#include <algorithm>
#include <array>

#include <opencv2/core.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

constexpr int kPart = 512;  ///< pixels: the detector finds faces of an eighth of that
constexpr int kStep = 384;
constexpr float kLeastScore = 0.8F;
constexpr std::size_t kMostFaces = 3;

struct Sighting {
  float score;
  platform::CGRect box;
};

/// A box of the still turned clockwise by so many right angles, in the still.
platform::CGRect turnedBack(platform::CGRect box, int turns, cv::Size turned) {
  for (; turns > 0; --turns) {
    box = {box.y, turned.width - box.maxX(), box.height, box.width};
    std::swap(turned.width, turned.height);
  }
  return box;
}

std::vector<int> starts(int length) {
  std::vector<int> places;
  for (int start = 0; start + kPart < length; start += kStep)
    places.push_back(start);
  places.push_back(std::max(0, length - kPart));
  return places;
}

void addFaces(const cv::Mat& turned, int turns, FaceDetector& faces, std::vector<Sighting>& seen) {
  for (const int top : starts(turned.rows)) {
    for (const int left : starts(turned.cols)) {
      const cv::Rect part = cv::Rect(left, top, kPart, kPart) & cv::Rect({}, turned.size());
      for (const Face& face : faces.detect(*pixelBufferFrom(turned(part)))) {
        if (face.score < kLeastScore) continue;
        platform::CGRect box = face.box;
        box.x += left;
        box.y += top;
        seen.push_back({face.score, turnedBack(box, turns, turned.size())});
      }
    }
  }
}

}  // namespace

std::vector<platform::CGRect> facesInStill(const platform::PixelBuffer& still,
                                           FaceDetector& faces) {
  std::vector<Sighting> seen;
  cv::Mat turned = rgbMat(still);
  for (int turns = 0; turns < 4; ++turns) {
    addFaces(turned, turns, faces, seen);
    cv::Mat next;
    cv::rotate(turned, next, cv::ROTATE_90_CLOCKWISE);
    turned = next;
  }
  std::ranges::stable_sort(seen, std::ranges::greater{}, &Sighting::score);
  std::vector<platform::CGRect> best;
  for (const Sighting& each : seen) {
    const bool isThere = std::ranges::any_of(best, [&](const platform::CGRect& box) {
      return box.minX() < each.box.midX() && each.box.midX() < box.maxX() &&
             box.minY() < each.box.midY() && each.box.midY() < box.maxY();
    });
    if (!isThere && best.size() < kMostFaces) best.push_back(each.box);
  }
  return best;
}

}  // namespace corvana::engine
