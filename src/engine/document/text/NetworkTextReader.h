#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/text/LineRecognizer.h"
#include "engine/document/text/LineTurn.h"
#include "engine/document/text/TextBoxes.h"
#include "engine/document/text/TextReader.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// Reads with neural networks: one finds the lines, one reads them, one tells whether they stand on
/// their head. Lines that run up or down are read too, and have no words' places. Knows the letters
/// of all Latin alphabets, rare capitals less well. Movable.
class NetworkTextReader final : public TextReader {
 public:
  static constexpr const char* kName = "PP-OCRv6 small Latin, 2";

  struct Models {
    std::filesystem::path boxes;
    std::filesystem::path recognizer;
    std::filesystem::path alphabet;
    std::filesystem::path turn;

    static Models inFolder(const std::filesystem::path& resources);
    std::vector<std::filesystem::path> files() const;
  };

  /// Loads the models (0.3 s). Error: one is missing or broken.
  static platform::Expected<NetworkTextReader> load(const Models& models);

  /// What finds lines, for pictures other than straightened cards.
  TextBoxes& boxes() { return boxes_; }
  /// The places of lines, without their text: most of what reading costs, bar a few lines.
  std::vector<TextLine> find(const platform::PixelBuffer& card);
  /// Reads lines in an area of the card that `read` overlooks because they are small or pale: it is
  /// looked at with more contrast and in up to four parts, each of which costs as much as `find`.
  /// Without known lines.
  std::vector<TextLine> readSmall(const platform::PixelBuffer& card, const platform::CGRect& area,
                                  const std::vector<TextLine>& known);
  /// Whether lines stand upright (1) or on their head (-1), in the mean by their length; 0 without
  /// lines.
  double turnSign(const platform::PixelBuffer& card, const std::vector<TextLine>& lines);

  std::vector<TextLine> read(const platform::PixelBuffer& card) override;
  std::vector<TextLine> readAgain(const platform::PixelBuffer& card,
                                  const std::vector<TextLine>& known) override;
  std::string name() const override { return kName; }

 private:
  /// The line as the recogniser wants it: level, and the right way up.
  cv::Mat pictureOf(const cv::Mat& card, const TextLine& line);

  NetworkTextReader(TextBoxes boxes, LineRecognizer recognizer, LineTurn turn);

  TextBoxes boxes_;
  LineRecognizer recognizer_;
  LineTurn turn_;
};

}  // namespace corvana::engine
