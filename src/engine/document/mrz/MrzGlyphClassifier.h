#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/mrz/FontFace.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// Tells the 37 characters of a machine-readable zone apart: a linear support vector machine,
/// trained when it is made (about 0.2 s) on letters drawn from an OCR-B font and then blurred,
/// moved, stretched and roughened, always in the same way. Immutable once made.
class MrzGlyphClassifier {
 public:
  static constexpr std::string_view kAlphabet = "0123456789<ABCDEFGHIJKLMNOPQRSTUVWXYZ";

  /// What the classifier looks at: a cell around one letter, centred on it, this many samples wide
  /// and high, of which a capital's height fills `kCapSamples`.
  static constexpr int kCellWidth = 16;
  static constexpr int kCellHeight = 22;
  static constexpr double kCapSamples = 17;

  struct Reading {
    char letter = 0;
    /// How clearly it won against the runner-up; below about 0.3 it may well be another letter.
    float margin = 0;
  };

  /// Trains the classifier on an OCR-B font.
  static MrzGlyphClassifier train(FontFace& font);

  /// One row per cell: `kCellWidth * kCellHeight` grey values (CV_32F), dark letters on light.
  /// Answers, for each cell, the likeliest of the letters that are allowed there.
  std::vector<Reading> classify(const cv::Mat& cells,
                                const std::vector<std::string_view>& alphabets) const;

 private:
  MrzGlyphClassifier() = default;
  /// The letter whose hardest duel against another allowed one went best.
  Reading winner(const cv::Mat& cell, std::string_view alphabet) const;

  // One row and offset per pair of letters (i < j, in the order of the alphabet): a positive
  // decision is for i.
  cv::Mat weights_;
  cv::Mat offsets_;
};

/// The first of the fonts that exists. Error: none does, or it is broken.
platform::Expected<FontFace> ocrBFont(const std::vector<std::filesystem::path>& fonts);

/// Where Debian's package fonts-ocr-b puts the font.
std::vector<std::filesystem::path> defaultOcrBFonts();

}  // namespace corvana::engine
