#include "engine/document/mrz/GlyphSamples.h"

#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "engine/document/mrz/MrzGlyphClassifier.h"

namespace corvana::engine {
namespace {

using Classifier = MrzGlyphClassifier;

constexpr int kSamplesPerLetter = 36;
constexpr int kEmPixels = 64;
constexpr int kCanvas = 160;

/// All letters, each drawn dark on light with its cell's centre in the middle of a canvas.
struct Drawings {
  std::array<cv::Mat, Classifier::kAlphabet.size()> letters;
  double capHeight = 0;
  double advance = 0;
};

Drawings drawAll(FontFace& font) {
  Drawings drawings;
  const FontFace::Glyph cap = font.draw(U'H', kEmPixels);
  drawings.capHeight = cap.ink.rows;
  drawings.advance = cap.advance;
  for (std::size_t i = 0; i < drawings.letters.size(); ++i) {
    const FontFace::Glyph glyph =
        font.draw(static_cast<char32_t>(Classifier::kAlphabet[i]), kEmPixels);
    cv::Mat canvas(kCanvas, kCanvas, CV_32F, cv::Scalar(255));
    const int x = static_cast<int>(std::lround(kCanvas / 2.0 - glyph.advance / 2 + glyph.left));
    const int y = static_cast<int>(std::lround(kCanvas / 2.0 + cap.top / 2 - glyph.top));
    cv::Mat target = canvas(cv::Rect(x, y, glyph.ink.cols, glyph.ink.rows));
    cv::Mat ink;
    glyph.ink.convertTo(ink, CV_32F);
    target = 255 - ink;
    drawings.letters[i] = canvas;
  }
  return drawings;
}

/// The letter with a neighbour on either side, whose edges show when letters stand close.
cv::Mat withNeighbours(const Drawings& drawings, std::size_t letter, cv::RNG& random) {
  cv::Mat canvas = drawings.letters[letter].clone();
  const int shift = static_cast<int>(std::lround(drawings.advance * random.uniform(0.95, 1.25)));
  for (const int direction : {-1, 1}) {
    const auto other =
        static_cast<std::size_t>(random.uniform(0, static_cast<int>(drawings.letters.size())));
    const int dx = direction * shift;
    const cv::Rect source(std::max(0, -dx), 0, kCanvas - std::abs(dx), kCanvas);
    cv::Mat target = canvas(source + cv::Point(dx, 0));
    cv::min(target, drawings.letters[other](source), target);
  }
  return canvas;
}

/// Samples a cell out of the canvas, a little moved, stretched, slanted, blurred and roughened.
cv::Mat photograph(const cv::Mat& canvas, double capHeight, cv::RNG& random) {
  const double step = capHeight / Classifier::kCapSamples;
  const double sx = step * random.uniform(0.90, 1.10);
  const double sy = step * random.uniform(0.92, 1.08);
  const double slant = random.uniform(-0.05, 0.05);
  const double cx = kCanvas / 2.0 + random.uniform(-0.07, 0.07) * capHeight;
  const double cy = kCanvas / 2.0 + random.uniform(-0.06, 0.06) * capHeight;
  const cv::Matx23d toCanvas(sx, slant * sy,
                             cx - sx * (Classifier::kCellWidth - 1) / 2.0 -
                                 slant * sy * (Classifier::kCellHeight - 1) / 2.0,
                             0, sy, cy - sy * (Classifier::kCellHeight - 1) / 2.0);
  cv::Mat blurred;
  cv::GaussianBlur(canvas, blurred, cv::Size(), step * random.uniform(0.5, 1.6));
  cv::Mat cell;
  cv::warpAffine(blurred, cell, toCanvas, cv::Size(Classifier::kCellWidth, Classifier::kCellHeight),
                 cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
  cv::Mat noise(cell.size(), CV_32F);
  random.fill(noise, cv::RNG::NORMAL, 0, random.uniform(2.0, 18.0));
  return cell + noise;
}

}  // namespace

void normalizeCells(cv::Mat& cells) {
  for (int i = 0; i < cells.rows; ++i) {
    cv::Mat row = cells.row(i);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(row, mean, deviation);
    row = (row - mean[0]) / std::max(deviation[0], 1.0);
  }
}

GlyphSamples drawGlyphSamples(FontFace& font) {
  const Drawings drawings = drawAll(font);
  cv::RNG random(7);
  GlyphSamples samples;
  for (std::size_t letter = 0; letter < drawings.letters.size(); ++letter) {
    for (int i = 0; i < kSamplesPerLetter; ++i) {
      const cv::Mat canvas = withNeighbours(drawings, letter, random);
      samples.cells.push_back(photograph(canvas, drawings.capHeight, random).reshape(1, 1));
      samples.labels.push_back(static_cast<int>(letter));
    }
  }
  normalizeCells(samples.cells);
  return samples;
}

}  // namespace corvana::engine
