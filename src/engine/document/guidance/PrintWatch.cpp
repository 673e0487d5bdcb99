#include "engine/document/guidance/PrintWatch.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

constexpr double kReduction = 2;  ///< fine strokes differ too much from picture to picture
constexpr double kNoiseFilter = 1.0;
constexpr int kShift = 5;             ///< by which an outline is wrong at most, in reduced pixels
constexpr double kPieceLength = 2.2;  ///< in heights of the line
constexpr double kLeastDetail = 3;    ///< a piece without print tells nothing
constexpr double kSameLook = 0.5;     ///< correlation
constexpr double kOtherLook = 0.3;    ///< correlation
constexpr double kMostDetailLeft = 0.5;  ///< of the print's own, under a finger
constexpr double kLeastSame = 0.4;       ///< share of the pieces that shows the same card

cv::Mat reduced(const platform::PixelBuffer& card) {
  cv::Mat small;
  cv::resize(grayMat(card), small, cv::Size(), 1 / kReduction, 1 / kReduction, cv::INTER_AREA);
  cv::GaussianBlur(small, small, {}, kNoiseFilter);
  return small;
}

double detailOf(const cv::Mat& piece) {
  cv::Mat edges;
  cv::Laplacian(piece, edges, CV_32F);
  return cv::norm(edges, cv::NORM_L1) / static_cast<double>(edges.total());
}

/// The line cut across into pieces about twice as long as high.
std::vector<cv::Rect> piecesOf(const platform::CGRect& line, cv::Size card) {
  const int height = static_cast<int>(std::lround(line.height / kReduction));
  const int width = static_cast<int>(std::lround(line.width / kReduction));
  const int count =
      std::max(1, static_cast<int>(std::lround(width / (kPieceLength * std::max(1, height)))));
  std::vector<cv::Rect> pieces;
  for (int i = 0; i < count; ++i) {
    const cv::Rect piece(static_cast<int>(line.x / kReduction) + width * i / count,
                         static_cast<int>(line.y / kReduction), width / count, height);
    if ((piece & cv::Rect({0, 0}, card)) == piece && !piece.empty()) pieces.push_back(piece);
  }
  return pieces;
}

/// How like the piece the same place of a card looks, a little moved if need be.
double likeness(const cv::Mat& card, const cv::Mat& look, const cv::Rect& place) {
  const cv::Rect around = cv::Rect(place.x - kShift, place.y - kShift, place.width + 2 * kShift,
                                   place.height + 2 * kShift) &
                          cv::Rect({0, 0}, card.size());
  cv::Mat scores;
  cv::matchTemplate(card(around), look, scores, cv::TM_CCOEFF_NORMED);
  double best = 0;
  cv::minMaxLoc(scores, nullptr, &best);
  return best;
}

}  // namespace

void PrintWatch::remember(const platform::PixelBuffer& card, const std::vector<TextLine>& lines) {
  pieces_.clear();
  const cv::Mat small = reduced(card);
  size_ = small.size();
  for (const TextLine& line : lines) {
    if (line.text.empty()) continue;
    for (const cv::Rect& place : piecesOf(line.box, small.size())) {
      const double detail = detailOf(small(place));
      if (detail >= kLeastDetail) pieces_.push_back({place, small(place).clone(), detail});
    }
  }
}

PrintLook PrintWatch::look(const platform::PixelBuffer& card) {
  if (pieces_.empty()) return {};
  cv::Mat small = reduced(card);
  // What is about halfway between a card's shape and a page's may come as either.
  if (small.size() != size_) cv::resize(small, small, size_, 0, 0, cv::INTER_AREA);
  double all = 0;
  double same = 0;
  double covered = 0;
  double leastAlike = 1;
  for (const Piece& piece : pieces_) {
    const double area = piece.place.area();
    all += area;
    const double alike = likeness(small, piece.look, piece.place);
    leastAlike = std::min(leastAlike, alike);
    if (alike >= kSameLook) same += area;
    const bool isBare = detailOf(small(piece.place)) < kMostDetailLeft * piece.detail;
    if (alike < kOtherLook && isBare) covered += area;
  }
  if (same >= kLeastSame * all) return {covered / all, leastAlike};
  forget();
  return {};
}

}  // namespace corvana::engine
