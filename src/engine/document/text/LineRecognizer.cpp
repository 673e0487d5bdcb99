#include "engine/document/text/LineRecognizer.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <utility>

#include "engine/document/text/LineCrop.h"
#include "engine/document/text/NetworkInput.h"

namespace corvana::engine {
namespace {

/// The network sees lines in steps of this many pixels, and none narrower than three of them.
constexpr int kWidthStep = 32;
constexpr int kLeastWidth = 3 * kWidthStep;
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
  std::vector<Fitted> networks;
  networks.push_back({std::move(*network), kLeastWidth, 0});
  while (networks.size() < kNetworks)
    networks.push_back({networks.front().model.another(), kLeastWidth, 0});
  return LineRecognizer(std::move(networks), std::move(decoder));
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

LineReading LineRecognizer::read(const cv::Mat& line) {
  const int width = roundedUp(line.cols);
  TfliteModel& network = networkFor(width);
  fillInput(network, line, {width, kLineHeight});
  network.run();
  const auto answers = static_cast<std::size_t>(width / kPixelsPerAnswer);
  return decoder_.read(network.output(0).subspan(0, answers * decoder_.classes()));
}

}  // namespace corvana::engine
