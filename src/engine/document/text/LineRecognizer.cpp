#include "engine/document/text/LineRecognizer.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <future>
#include <numeric>
#include <string>
#include <utility>

#include "engine/document/text/LineCrop.h"
#include "engine/document/text/NetworkInput.h"

namespace corvana::engine {
namespace {

/// The network sees lines in steps of this many pixels, and none narrower than three of them.
constexpr int kWidthStep = 32;
constexpr int kLeastWidth = 3 * kWidthStep;
/// So many widths each thread keeps: fitting the network to one costs half as much as reading a
/// line.
constexpr std::size_t kWidths = 2;

int roundedUp(int width) {
  return std::max(kLeastWidth, (width + kWidthStep - 1) / kWidthStep * kWidthStep);
}

std::vector<std::string> linesOf(const std::filesystem::path& file) {
  std::vector<std::string> lines;
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

}  // namespace

platform::Expected<LineRecognizer> LineRecognizer::load(const std::filesystem::path& model,
                                                        const std::filesystem::path& alphabet) {
  std::vector<std::string> letters = linesOf(alphabet);
  if (letters.empty()) {
    return platform::failure("The alphabet " + alphabet.string() +
                             " is missing: install the program's models again.");
  }
  LineDecoder decoder(std::move(letters));
  const std::size_t values = decoder.classes() * kLeastWidth / kPixelsPerAnswer;
  auto network = TfliteModel::load(model, {{1, kLineHeight, kLeastWidth, 3}, {values}, true},
                                   inference::Runtime::xnnpack);
  if (!network) return tl::unexpected(network.error());
  return LineRecognizer(std::move(*network), std::move(decoder));
}

LineRecognizer::Networks::Networks(TfliteModel model) {
  fitted_.push_back({std::move(model), kLeastWidth, 0});
  while (fitted_.size() < kWidths)
    fitted_.push_back({fitted_.front().model.another(), kLeastWidth, 0});
}

TfliteModel& LineRecognizer::Networks::fittedTo(int width) {
  auto fitted = std::ranges::find(fitted_, width, &Fitted::width);
  if (fitted == fitted_.end()) {
    fitted = std::ranges::min_element(fitted_, {}, &Fitted::lastUse);
    fitted->model.resizeInput({1, kLineHeight, width, 3});
    fitted->width = width;
  }
  fitted->lastUse = ++uses_;
  return fitted->model;
}

LineReading LineRecognizer::Networks::read(const cv::Mat& line, const LineDecoder& decoder) {
  const int width = roundedUp(line.cols);
  TfliteModel& network = fittedTo(width);
  fillInput(network, line, {width, kLineHeight});
  network.run();
  const auto answers = static_cast<std::size_t>(width / kPixelsPerAnswer);
  return decoder.read(network.output(0).subspan(0, answers * decoder.classes()));
}

/// One thread begins with the narrowest line, the other with the widest, until they meet. Who reads
/// a line does not change what is read: networks of one file compute alike.
std::vector<LineReading> LineRecognizer::read(std::span<const cv::Mat> lines) {
  std::vector<std::size_t> byWidth(lines.size());
  std::iota(byWidth.begin(), byWidth.end(), std::size_t{0});
  std::ranges::stable_sort(byWidth, {}, [&](std::size_t line) { return lines[line].cols; });
  std::vector<LineReading> readings(lines.size());
  std::atomic<std::size_t> taken = 0;
  const auto readInTurn = [&](auto line, Networks& networks) {
    for (; taken++ < lines.size(); ++line)
      readings[*line] = networks.read(lines[*line], decoder_);
  };
  auto widest = std::async(std::launch::async, [&] { readInTurn(byWidth.rbegin(), wide_); });
  readInTurn(byWidth.begin(), narrow_);
  widest.get();
  return readings;
}

}  // namespace corvana::engine
