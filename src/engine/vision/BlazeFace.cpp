#include "engine/vision/BlazeFace.h"

#include <algorithm>
#include <cmath>
#include <span>

#include <opencv2/imgproc.hpp>

namespace corvana::engine {

Face scaled(Face face, double factor) {
  face.box = {face.box.x * factor, face.box.y * factor, face.box.width * factor,
              face.box.height * factor};
  for (platform::CGPoint& point : face.keypoints)
    point = {point.x * factor, point.y * factor};
  return face;
}

double overlap(const platform::CGRect& a, const platform::CGRect& b) {
  const double width = std::min(a.maxX(), b.maxX()) - std::max(a.minX(), b.minX());
  const double height = std::min(a.maxY(), b.maxY()) - std::max(a.minY(), b.minY());
  if (width <= 0 || height <= 0) return 0;
  const double shared = width * height;
  return shared / (a.width * a.height + b.width * b.height - shared);
}

}  // namespace corvana::engine

namespace corvana::engine::blazeface {
namespace {

using platform::CGPoint;
using platform::CGRect;

constexpr int kAnchors = 896;
// Of each anchor: box centre, box size, then the keypoints, as offsets in input pixels.
constexpr int kValuesPerAnchor = 4 + 2 * static_cast<int>(Face::kKeypointCount);
constexpr double kMergeOverlap = 0.3;

/// The anchors are the cell centres of two grids, each cell repeated.
struct Grid {
  int side;
  int anchorsPerCell;
};
constexpr Grid kGrids[] = {{16, 2}, {8, 6}};

std::vector<CGPoint> makeAnchors() {
  std::vector<CGPoint> anchors;
  anchors.reserve(kAnchors);
  for (const Grid& grid : kGrids) {
    for (int cell = 0; cell < grid.side * grid.side; ++cell) {
      const int column = cell % grid.side;
      const int row = cell / grid.side;
      const CGPoint centre{(column + 0.5) / grid.side, (row + 0.5) / grid.side};
      anchors.insert(anchors.end(), static_cast<std::size_t>(grid.anchorsPerCell), centre);
    }
  }
  return anchors;
}

/// Fills the network's input, values −1 to 1, with the window of the picture.
void fillInput(std::span<float> input, const cv::Mat& rgb, const cv::Rect& window) {
  const cv::Rect inside = window & cv::Rect({}, rgb.size());
  cv::Mat square = rgb(inside);
  if (inside != window) {
    cv::copyMakeBorder(square, square, inside.y - window.y, window.br().y - inside.br().y,
                       inside.x - window.x, window.br().x - inside.br().x,
                       cv::BORDER_CONSTANT | cv::BORDER_ISOLATED);
  }
  cv::Mat small;
  cv::resize(square, small, {kInputSide, kInputSide}, 0, 0,
             window.width > kInputSide ? cv::INTER_AREA : cv::INTER_LINEAR);
  cv::Mat values(kInputSide, kInputSide, CV_32FC3, input.data());
  small.convertTo(values, CV_32FC3, 1 / 127.5, -1);
}

/// Answer of one anchor, in pixels of the picture.
Face decode(std::span<const float> values, CGPoint anchor, float score, const cv::Rect& window) {
  const auto place = [&](float x, float y) {
    return CGPoint{window.x + (x / kInputSide + anchor.x) * window.width,
                   window.y + (y / kInputSide + anchor.y) * window.height};
  };
  const double width = static_cast<double>(values[2]) / kInputSide * window.width;
  const double height = static_cast<double>(values[3]) / kInputSide * window.height;
  const CGPoint centre = place(values[0], values[1]);
  Face face;
  face.score = score;
  face.box = {centre.x - width / 2, centre.y - height / 2, width, height};
  for (std::size_t i = 0; i < face.keypoints.size(); ++i) {
    face.keypoints[i] = place(values[4 + 2 * i], values[5 + 2 * i]);
  }
  return face;
}

void add(Face& sum, const Face& face, double weight) {
  sum.box.x += weight * face.box.x;
  sum.box.y += weight * face.box.y;
  sum.box.width += weight * face.box.width;
  sum.box.height += weight * face.box.height;
  for (std::size_t i = 0; i < face.keypoints.size(); ++i) {
    sum.keypoints[i].x += weight * face.keypoints[i].x;
    sum.keypoints[i].y += weight * face.keypoints[i].y;
  }
}

Face weightedMean(std::span<const Face> faces) {
  double total = 0;
  for (const Face& face : faces)
    total += face.score;
  Face mean;
  for (const Face& face : faces)
    add(mean, face, face.score / total);
  mean.score = faces.front().score;
  return mean;
}

}  // namespace

TfliteModel::Shapes shapes() {
  return {{1, kInputSide, kInputSide, 3}, {kAnchors * kValuesPerAnchor, kAnchors}};
}

std::vector<Face> merged(std::vector<Face> faces) {
  std::ranges::stable_sort(faces, std::ranges::greater{}, &Face::score);
  std::vector<Face> result;
  auto rest = faces.begin();
  while (rest != faces.end()) {
    const CGRect best = rest->box;
    const auto group = rest;
    rest = std::stable_partition(group + 1, faces.end(), [&](const Face& face) {
      return overlap(best, face.box) > kMergeOverlap;
    });
    result.push_back(weightedMean({group, rest}));
  }
  return result;
}

std::vector<Face> look(TfliteModel& model, const cv::Mat& rgb, const cv::Rect& window) {
  static const std::vector<CGPoint> kCentres = makeAnchors();
  if ((window & cv::Rect({}, rgb.size())).empty()) return {};
  fillInput(model.input(), rgb, window);
  model.run();
  const std::span<const float> values = model.output(0);
  const std::span<const float> logits = model.output(1);

  std::vector<Face> faces;
  for (std::size_t i = 0; i < kCentres.size(); ++i) {
    const float score = 1 / (1 + std::exp(-logits[i]));
    if (score < kLeastScore) continue;
    const Face face =
        decode(values.subspan(i * kValuesPerAnchor, kValuesPerAnchor), kCentres[i], score, window);
    if (face.box.width > 0 && face.box.height > 0) faces.push_back(face);
  }
  return merged(std::move(faces));
}

}  // namespace corvana::engine::blazeface
