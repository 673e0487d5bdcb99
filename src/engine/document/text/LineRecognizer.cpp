#include "engine/document/text/LineRecognizer.h"

#include <algorithm>
#include <fstream>
#include <span>

#include "engine/document/text/LineCrop.h"
#include "engine/document/text/NetworkInput.h"

namespace corvana::engine {
namespace {

/// The network sees lines in steps of this many pixels, and none narrower than three of them.
constexpr int kWidthStep = 32;
constexpr int kLeastWidth = 3 * kWidthStep;
/// Pixels for one answer.
constexpr int kStride = 8;
/// So many widths are kept: fitting the network to one costs half as much as reading a line.
constexpr std::size_t kNetworks = 4;

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

/// Connectionist temporal classification: of each answer the likeliest class; a letter that is
/// repeated without a pause (class 0) between stands once.
LineRecognizer::Reading decoded(std::span<const float> shares, std::size_t answers,
                                const std::vector<std::string>& letters) {
  LineRecognizer::Reading reading;
  const std::size_t classes = letters.size() + 1;
  std::size_t previous = 0;
  std::vector<float> confidences;
  for (std::size_t i = 0; i < answers; ++i) {
    const auto answer = shares.subspan(i * classes, classes);
    const auto likeliest = std::ranges::max_element(answer);
    const auto letter = static_cast<std::size_t>(likeliest - answer.begin());
    if (letter != 0 && letter != previous) {
      reading.text += letters[letter - 1];
      confidences.push_back(*likeliest);
    }
    previous = letter;
  }
  if (confidences.empty()) return reading;
  for (const float confidence : confidences)
    reading.confidence += confidence / static_cast<double>(confidences.size());
  reading.leastConfident = *std::ranges::min_element(confidences);
  return reading;
}

}  // namespace

platform::Expected<LineRecognizer> LineRecognizer::load(const std::filesystem::path& model,
                                                        const std::filesystem::path& alphabet) {
  std::vector<std::string> letters = linesOf(alphabet);
  if (letters.empty()) {
    return platform::failure("The alphabet " + alphabet.string() +
                             " is missing: install the program's models again.");
  }
  const std::size_t values = (letters.size() + 1) * kLeastWidth / kStride;
  std::vector<Fitted> networks;
  while (networks.size() < kNetworks) {
    auto network = TfliteModel::load(model, {{1, kLineHeight, kLeastWidth, 3}, {values}, true},
                                     inference::Runtime::xnnpack);
    if (!network) return tl::unexpected(network.error());
    networks.push_back({std::move(*network), kLeastWidth, 0});
  }
  return LineRecognizer(std::move(networks), std::move(letters));
}

TfliteModel& LineRecognizer::networkFor(int width) {
  auto fitted = std::ranges::find(networks_, width, &Fitted::width);
  if (fitted == networks_.end()) {
    fitted = std::ranges::min_element(networks_, {}, &Fitted::lastUse);
    fitted->model.resizeInput({1, kLineHeight, width, 3});
    fitted->width = width;
  }
  fitted->lastUse = ++uses_;
  return fitted->model;
}

LineRecognizer::Reading LineRecognizer::read(const cv::Mat& line) {
  const int width = roundedUp(line.cols);
  TfliteModel& network = networkFor(width);
  fillInput(network, line, {width, kLineHeight});
  network.run();
  return decoded(network.output(0), static_cast<std::size_t>(width / kStride), letters_);
}

}  // namespace corvana::engine
