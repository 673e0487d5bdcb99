#include "engine/document/mrz/MrzReader.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "engine/document/mrz/MrzBand.h"
#include "engine/document/mrz/MrzParser.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
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

/// Where a line's letters stand, as a correction of what the outline of the zone says.
struct Row {
  double lower = 0;   ///< pixels, in the line's middle
  double tilt = 0;    ///< pixels down per pixel to the right, about the line's middle
  double taller = 1;  ///< of the capitals' usual height at this pitch
};

/// Height of a capital over the pitch in zones of OCR-B's usual size.
constexpr double kCapOfPitch = 0.97;

struct LineReading {
  std::string letters;
  float clearness = 0;   ///< mean margin of all letters
  float leastClear = 0;  ///< margin of the least clear letter
};

/// One line of the zone and how to read it with its letters supposed at a row.
class LineReader {
 public:
  LineReader(const Classifier& classifier, const cv::Mat& gray, const MrzBand& band,
             const MrzGrid& grid, std::size_t line)
      : classifier_(classifier),
        gray_(gray),
        cells_(grid[line]),
        middle_(band.middle[line]),
        slope_(band.slope),
        alphabets_(alphabets().begin() + static_cast<std::ptrdiff_t>(line) * kMrzColumns,
                   alphabets().begin() + static_cast<std::ptrdiff_t>(line + 1) * kMrzColumns) {}

  LineReading read(const Row& row) const {
    LineReading result;
    const auto readings = classifier_.classify(cellsAt(row), alphabets_);
    result.leastClear = readings.front().margin;
    for (const Classifier::Reading& reading : readings) {
      result.letters += reading.letter;
      result.clearness += reading.margin / static_cast<float>(readings.size());
      result.leastClear = std::min(result.leastClear, reading.margin);
    }
    return result;
  }

  /// The row's true place shows in how clear the letters become: one measure after the other is
  /// tried, coarse ones first.
  LineReading readBest() const {
    Row row;
    LineReading best = read(row);
    const auto improve = [&](double Row::*measure, std::initializer_list<double> steps) {
      const double start = row.*measure;
      for (const double step : steps) {
        Row next = row;
        next.*measure = start + step;
        LineReading reading = read(next);
        if (reading.clearness <= best.clearness) continue;
        best = std::move(reading);
        row = next;
      }
    };
    improve(&Row::lower, {-4.5, -3.0, -1.5, 1.5, 3.0, 4.5});
    improve(&Row::tilt, {-0.01, -0.005, 0.005, 0.01});
    improve(&Row::taller, {-0.08, 0.08});
    improve(&Row::lower, {-0.8, 0.8});
    improve(&Row::tilt, {-0.0025, 0.0025});
    return best;
  }

 private:
  cv::Mat cellsAt(const Row& row) const {
    const double step = cells_.pitch * kCapOfPitch * row.taller / Classifier::kCapSamples;
    const double pivot = cells_.first + cells_.pitch * (kMrzColumns - 1) / 2;
    cv::Mat pictures(kMrzColumns, Classifier::kCellWidth * Classifier::kCellHeight, CV_32F);
    for (int column = 0; column < kMrzColumns; ++column) {
      const double x = cells_.first + column * cells_.pitch;
      const double y = middle_ + slope_ * x + row.lower + row.tilt * (x - pivot);
      const cv::Matx23d toCard(step, 0, x - 0.5 - step * (Classifier::kCellWidth - 1) / 2.0,  //
                               0, step, y - 0.5 - step * (Classifier::kCellHeight - 1) / 2.0);
      cv::Mat cell = pictures.row(column).reshape(1, Classifier::kCellHeight);
      cv::warpAffine(gray_, cell, toCard, cell.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP,
                     cv::BORDER_REPLICATE);
    }
    return pictures;
  }

  const Classifier& classifier_;
  const cv::Mat& gray_;
  const MrzCells cells_;
  const double middle_;
  const double slope_;
  const std::vector<std::string_view> alphabets_;
};

}  // namespace

platform::Expected<MrzReader> MrzReader::load(const std::vector<std::filesystem::path>& fonts) {
  return ocrBFont(fonts).map([](FontFace&& font) { return MrzReader(std::move(font)); });
}

const MrzGlyphClassifier& MrzReader::classifier() {
  if (!classifier_) classifier_ = Classifier::train(font_);
  return *classifier_;
}

MrzReading MrzReader::read(const platform::PixelBuffer& card) {
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
  float leastClearName = 0;
  for (std::size_t line = 0; line < kMrzLines; ++line) {
    LineReading best = LineReader(classifier(), smooth, *band, *grid, line).readBest();
    reading.lines.push_back(std::move(best.letters));
    leastClearName = best.leastClear;
  }
  auto mrz = parseMrz(reading.lines);
  if (mrz && leastClearName >= kClearMargin) reading.mrz = *std::move(mrz);
  return reading;
}

}  // namespace corvana::engine
