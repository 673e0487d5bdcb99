#include "engine/vision/FaceEmbedder.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

constexpr int kInputSide = 160;
constexpr std::size_t kEmbeddingSize = 128;

}  // namespace

double distance(const FaceEmbedding& a, const FaceEmbedding& b) {
  double squares = 0;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
    squares += static_cast<double>((a[i] - b[i]) * (a[i] - b[i]));
  return std::sqrt(squares);
}

platform::Expected<FaceEmbedder> FaceEmbedder::load(const std::filesystem::path& model) {
  return TfliteModel::load(model, {{1, kInputSide, kInputSide, 3}, {kEmbeddingSize}},
                           inference::Runtime::xnnpack)
      .map([](TfliteModel&& loaded) { return FaceEmbedder(std::move(loaded)); });
}

FaceEmbedding FaceEmbedder::embed(const platform::PixelBuffer& faceCrop) {
  cv::Mat face;
  cv::resize(rgbMat(faceCrop), face, {kInputSide, kInputSide}, 0, 0, cv::INTER_LINEAR);
  // The network was trained on pictures whitened over all channels together.
  const cv::Mat bytes = face.reshape(1);
  cv::Scalar mean;
  cv::Scalar deviation;
  cv::meanStdDev(bytes, mean, deviation);
  const double scale = 1 / std::max(deviation[0], 1.0 / kInputSide);
  cv::Mat values(kInputSide, kInputSide, CV_32FC3, model_.input().data());
  face.convertTo(values, CV_32FC3, scale, -mean[0] * scale);
  model_.run();
  const auto output = model_.output(0);
  FaceEmbedding embedding(output.begin(), output.end());
  double squares = 0;
  for (const float value : embedding)
    squares += static_cast<double>(value * value);
  const auto length = static_cast<float>(std::max(std::sqrt(squares), 1e-6));
  for (float& value : embedding)
    value /= length;
  return embedding;
}

}  // namespace corvana::engine
