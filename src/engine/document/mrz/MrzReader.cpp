#include "engine/document/mrz/MrzReader.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "engine/document/mrz/MrzBand.h"
#include "engine/document/mrz/MrzParser.h"
#include "engine/vision/MatViews.h"

namespace engine {
namespace {

using Classifier = MrzGlyphClassifier;

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kDigitsAndFiller = "0123456789<";
constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view kLettersAndFiller = "<ABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// Below this the winner among the letters of a name, which no check digit protects, is doubted.
constexpr float kClearMargin = 0.25F;

struct Stretch {
  std::size_t length;
  std::string_view alphabet;
};

/// What the standard allows at each place of a TD1 zone, line after line.
const std::vector<std::string_view>& alphabets() {
  static const std::vector<std::string_view> kAll = [] {
    const std::vector<Stretch> stretches{{1, kLetters},
                                         {4, kLettersAndFiller},
                                         {9, Classifier::kAlphabet},
                                         {1, kDigitsAndFiller},
                                         {15, Classifier::kAlphabet},
                                         {6, kDigitsAndFiller},
                                         {1, kDigits},
                                         {1, "MFX<"},
                                         {7, kDigits},
                                         {3, kLettersAndFiller},
                                         {11, Classifier::kAlphabet},
                                         {1, kDigits},
                                         {30, kLettersAndFiller}};
    std::vector<std::string_view> all;
    for (const Stretch& stretch : stretches) {
      all.insert(all.end(), stretch.length, stretch.alphabet);
    }
    return all;
  }();
  return kAll;
}

/// The cells' pictures, for rows that may lie a little lower and letters that may be a little
/// taller than the band's.
cv::Mat cellsOf(const cv::Mat& gray, const MrzBand& band, const MrzGrid& grid, double lower,
                double taller) {
  const double step = band.capHeight * taller / Classifier::kCapSamples;
  cv::Mat cells(kMrzLines * kMrzColumns, Classifier::kCellWidth * Classifier::kCellHeight, CV_32F);
  for (int line = 0; line < kMrzLines; ++line) {
    const auto index = static_cast<std::size_t>(line);
    for (int column = 0; column < kMrzColumns; ++column) {
      const double x = grid[index].first + column * grid[index].pitch;
      const double y = band.middle[index] + band.slope * x + lower;
      const cv::Matx23d toCard(step, 0, x - 0.5 - step * (Classifier::kCellWidth - 1) / 2.0,  //
                               0, step, y - 0.5 - step * (Classifier::kCellHeight - 1) / 2.0);
      cv::Mat cell = cells.row(line * kMrzColumns + column).reshape(1, Classifier::kCellHeight);
      cv::warpAffine(gray, cell, toCard, cell.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP,
                     cv::BORDER_REPLICATE);
    }
  }
  return cells;
}

/// One attempt at all ninety letters.
struct Attempt {
  std::vector<std::string> lines;
  float clearness = 0;                    ///< mean margin of all letters
  float leastClearName = 0;               ///< margin of the least clear letter of the last line
  std::optional<corvana::MRZResult> mrz;  ///< when every check digit holds

  std::pair<bool, float> rank() const { return {mrz.has_value(), clearness}; }
};

Attempt attempt(const Classifier& classifier, const cv::Mat& cells) {
  const auto readings = classifier.classify(cells, alphabets());
  Attempt result;
  result.leastClearName = readings.back().margin;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    if (i % kMrzColumns == 0) result.lines.emplace_back();
    result.lines.back() += readings[i].letter;
    result.clearness += readings[i].margin / static_cast<float>(readings.size());
    if (i / kMrzColumns == 2) {
      result.leastClearName = std::min(result.leastClearName, readings[i].margin);
    }
  }
  if (auto mrz = parseMrz(result.lines)) result.mrz = *std::move(mrz);
  return result;
}

platform::CGRect rectOf(const cv::Rect& rect) {
  return {double(rect.x), double(rect.y), double(rect.width), double(rect.height)};
}

}  // namespace

tl::expected<MrzReader, corvana::IDError> MrzReader::load(
    const std::vector<std::filesystem::path>& fonts) {
  return Classifier::train(fonts).map(
      [](Classifier classifier) { return MrzReader(std::move(classifier)); });
}

MrzReading MrzReader::read(const platform::PixelBuffer& card) const {
  const cv::Mat gray = grayMat(card);
  const cv::Mat ink = inkOf(gray);
  MrzReading reading;
  const auto band = findMrzBand(ink);
  if (!band) return reading;
  reading.band = rectOf(band->rect(gray.size()));
  const auto grid = fitMrzGrid(ink, *band);
  if (!grid) return reading;

  // A letter's sample covers about 1.6 pixels of the card.
  cv::Mat smooth;
  gray.convertTo(smooth, CV_32F);  // the cells' type: warping into them must not make new ones
  cv::GaussianBlur(smooth, smooth, cv::Size(), 0.8);
  // The rows' true height and place show in how clear the letters become, and in check digits that
  // hold.
  Attempt best;
  for (const double taller : {1.0, 1.1, 1.2, 1.3, 1.4}) {
    for (const double lower : {0.0, -1.5, 1.5, -3.0, 3.0}) {
      Attempt next = attempt(classifier_, cellsOf(smooth, *band, *grid, lower, taller));
      if (best.lines.empty() || next.rank() > best.rank()) best = std::move(next);
    }
  }
  reading.lines = best.lines;
  if (best.mrz && best.leastClearName >= kClearMargin) reading.mrz = std::move(best.mrz);
  return reading;
}

}  // namespace engine
