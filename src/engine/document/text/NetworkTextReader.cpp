#include "engine/document/text/NetworkTextReader.h"

#include <algorithm>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "engine/document/text/LetterRepair.h"
#include "engine/document/text/LineCrop.h"
#include "engine/document/text/TextLines.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

/// Lines less sure than this are patterns that looked like print.
constexpr double kLeastConfidence = 0.7;

/// The boxes that lines are read in reach beyond the letters, in pixels of a straightened card:
/// what the network marks is that much wider at any size of print.
constexpr float kHalo = 10;

TextLine lineIn(const cv::RotatedRect& box) {
  const auto& [x, y] = box.center;
  const float width = std::max(1.0F, box.size.width - kHalo);
  const float height = std::max(1.0F, box.size.height - kHalo);
  TextLine line;
  line.box = {x - width / 2, y - height / 2, width, height};
  line.tilt = box.angle;
  return line;
}

/// Where the words lie on the card that were read in the picture of a line.
std::vector<WordReach> wordsOf(const LineReading& reading, const TextLine& line,
                               const cv::Mat& picture) {
  const double left = line.box.x - kHalo / 2;
  const double scale = (line.box.width + kHalo) / picture.cols;
  const auto place = [&](std::size_t answer) {
    return left + scale * LineRecognizer::kPixelsPerAnswer * (double(answer) + 0.5);
  };
  std::vector<WordReach> words;
  for (const auto& [first, last] : reading.words)
    words.push_back({place(first), place(last)});
  return words;
}

/// Pale print made black on a ground made white.
cv::Mat emphasised(const cv::Mat& rgb) {
  constexpr int kReach = 21;      // of letters
  constexpr double kBlack = 0.5;  // of the ground's brightness
  cv::Mat gray;
  cv::cvtColor(rgb, gray, cv::COLOR_RGB2GRAY);
  cv::Mat ground;
  cv::morphologyEx(gray, ground, cv::MORPH_CLOSE, cv::Mat::ones(kReach, kReach, CV_8U));
  cv::GaussianBlur(ground, ground, {}, kReach / 3.0);
  cv::Mat share;
  cv::divide(gray, ground, share, 1, CV_32F);
  const double stretch = 255 / (1 - kBlack);
  share.convertTo(gray, CV_8U, stretch, -stretch * kBlack);
  cv::Mat result;
  cv::cvtColor(gray, result, cv::COLOR_GRAY2RGB);
  return result;
}

/// Of the card's sides, in a part of it that is looked at by itself.
constexpr double kPart = 0.7;

/// Where parts begin that cover a length together.
std::vector<int> starts(int from, int length, int part) {
  if (part == length) return {from};
  return {from, from + length - part};
}

/// Whether the line may go on beyond the part of the card in which it was found.
bool isCut(const platform::CGRect& line, const cv::Rect& part, cv::Size card) {
  constexpr double kRim = 8;
  const auto right = part.x + part.width;
  const auto bottom = part.y + part.height;
  return (part.x > 0 && line.minX() < part.x + kRim) ||
         (right < card.width && line.maxX() > right - kRim) ||
         (part.y > 0 && line.minY() < part.y + kRim) ||
         (bottom < card.height && line.maxY() > bottom - kRim);
}

}  // namespace

NetworkTextReader::Models NetworkTextReader::Models::inFolder(
    const std::filesystem::path& resources) {
  return {resources / "ppocrv6_det_small_448x704_fp16.tflite",
          resources / "ppocrv6_rec_small_latin_fp16.tflite", resources / "ppocrv6_latin.txt",
          resources / "ppocr_cls_v2_192.tflite"};
}

std::vector<std::filesystem::path> NetworkTextReader::Models::files() const {
  return {boxes, recognizer, alphabet, turn};
}

NetworkTextReader::NetworkTextReader(TextBoxes boxes, LineRecognizer recognizer, LineTurn turn)
    : boxes_(std::move(boxes)), recognizer_(std::move(recognizer)), turn_(std::move(turn)) {}

platform::Expected<NetworkTextReader> NetworkTextReader::load(const Models& models) {
  auto boxes = TextBoxes::load(models.boxes);
  if (!boxes) return tl::unexpected(boxes.error());
  auto recognizer = LineRecognizer::load(models.recognizer, models.alphabet);
  if (!recognizer) return tl::unexpected(recognizer.error());
  auto turn = LineTurn::load(models.turn);
  if (!turn) return tl::unexpected(turn.error());
  return NetworkTextReader(std::move(*boxes), std::move(*recognizer), std::move(*turn));
}

std::vector<TextLine> NetworkTextReader::find(const platform::PixelBuffer& card) {
  std::vector<TextLine> found;
  for (const cv::RotatedRect& box : boxes_.find(rgbMat(card)))
    found.push_back(lineIn(box));
  return found;
}

std::vector<TextLine> NetworkTextReader::readSmall(const platform::PixelBuffer& card,
                                                   const platform::CGRect& area,
                                                   const std::vector<TextLine>& known) {
  const cv::Mat rgb = emphasised(rgbMat(card));
  const cv::Rect inside = pixelRect(area, rgb.size());
  const cv::Size part(std::min(cvRound(kPart * rgb.cols), inside.width),
                      std::min(cvRound(kPart * rgb.rows), inside.height));
  std::vector<TextLine> found;
  for (const int left : starts(inside.x, inside.width, part.width)) {
    for (const int top : starts(inside.y, inside.height, part.height)) {
      const cv::Rect place({left, top}, part);
      for (cv::RotatedRect& box : boxes_.find(rgb(place))) {
        box.center += cv::Point2f(place.tl());
        const TextLine line = lineIn(box);
        const bool isNew = !isCut(line.box, place, rgb.size()) && !isAmong(known, line.box) &&
                           !isAmong(found, line.box);
        if (isNew) found.push_back(line);
      }
    }
  }
  return readAgain(*pixelBufferFrom(rgb), found);
}

double NetworkTextReader::turnSign(const platform::PixelBuffer& card,
                                   const std::vector<TextLine>& lines) {
  double sum = 0;
  double length = 0;
  for (const TextLine& line : lines) {
    if (runsUpOrDown(line)) continue;
    const double upsideDown = turn_.upsideDown(lineCrop(rgbMat(card), boxOf(line, kHalo)));
    sum += (1 - 2 * upsideDown) * line.box.width;
    length += line.box.width;
  }
  return length > 0 ? sum / length : 0;
}

std::vector<TextLine> NetworkTextReader::read(const platform::PixelBuffer& card) {
  return readAgain(card, find(card));
}

cv::Mat NetworkTextReader::pictureOf(const cv::Mat& card, const TextLine& line) {
  cv::RotatedRect box = boxOf(line, kHalo);
  if (!runsUpOrDown(line)) return lineCrop(card, box);
  box.angle -= 90;
  std::swap(box.size.width, box.size.height);
  cv::Mat upward = lineCrop(card, box);
  if (turn_.upsideDown(upward) > 0.5) cv::rotate(upward, upward, cv::ROTATE_180);
  return upward;
}

std::vector<TextLine> NetworkTextReader::readAgain(const platform::PixelBuffer& card,
                                                   const std::vector<TextLine>& known) {
  const cv::Mat rgb = rgbMat(card);
  std::vector<cv::Mat> pictures;
  pictures.reserve(known.size());
  for (const TextLine& line : known)
    pictures.push_back(pictureOf(rgb, line));
  const std::vector<LineReading> readings = recognizer_.read(pictures);
  std::vector<TextLine> read;
  for (std::size_t i = 0; i < known.size(); ++i) {
    const LineReading& reading = readings[i];
    TextLine line = known[i];
    line.text = repairedLetters(trimmed(reading.text));
    line.others.clear();
    for (const std::string& other : reading.others)
      line.others.push_back(repairedLetters(trimmed(other)));
    line.words.clear();
    if (!runsUpOrDown(line)) line.words = wordsOf(reading, line, pictures[i]);
    line.confidence = reading.confidence;
    line.leastConfidence = reading.leastConfident;
    if (!line.text.empty() && line.confidence >= kLeastConfidence) read.push_back(std::move(line));
  }
  sortFromTop(read);
  return read;
}

}  // namespace corvana::engine
