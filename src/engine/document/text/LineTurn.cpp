#include "engine/document/text/LineTurn.h"

#include <algorithm>

#include "engine/document/text/LineCrop.h"
#include "engine/document/text/NetworkInput.h"

namespace corvana::engine {
namespace {

constexpr int kWidth = 192;

}  // namespace

platform::Expected<LineTurn> LineTurn::load(const std::filesystem::path& model) {
  return TfliteModel::load(model, {{1, kLineHeight, kWidth, 3}, {2}}, inference::Runtime::xnnpack)
      .map([](TfliteModel&& loaded) { return LineTurn(std::move(loaded)); });
}

double LineTurn::upsideDown(const cv::Mat& line) {
  const int width = std::min(line.cols, kWidth);
  fillInput(model_, line.colRange(0, width), {kWidth, kLineHeight});
  model_.run();
  return model_.output(0)[1];
}

}  // namespace corvana::engine
