#include "engine/document/mrz/MrzGlyphClassifier.h"

#include <algorithm>
#include <array>
#include <limits>

#include <opencv2/ml.hpp>

#include "engine/document/mrz/GlyphSamples.h"

namespace corvana::engine {
namespace {

constexpr std::size_t kLetters = MrzGlyphClassifier::kAlphabet.size();
constexpr int kPairs = static_cast<int>(kLetters * (kLetters - 1) / 2);

cv::Ptr<cv::ml::SVM> trained(const GlyphSamples& samples) {
  auto machine = cv::ml::SVM::create();
  machine->setType(cv::ml::SVM::C_SVC);
  machine->setKernel(cv::ml::SVM::LINEAR);
  machine->setC(0.01);
  machine->setTermCriteria({cv::TermCriteria::MAX_ITER + cv::TermCriteria::EPS, 1000, 1e-3});
  machine->train(samples.cells, cv::ml::ROW_SAMPLE, samples.labels);
  return machine;
}

std::vector<std::size_t> placesOf(std::string_view letters) {
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < kLetters; ++i) {
    if (letters.find(MrzGlyphClassifier::kAlphabet[i]) != std::string_view::npos)
      places.push_back(i);
  }
  return places;
}

/// Rows of the pairs (i, j), i < j, in the order (0, 1), (0, 2) ... (1, 2) ...
int rowOfPair(std::size_t i, std::size_t j) {
  return static_cast<int>(i * (2 * kLetters - i - 1) / 2 + j - i - 1);
}

}  // namespace

platform::Expected<FontFace> ocrBFont(const std::vector<std::filesystem::path>& fonts) {
  const auto found = std::find_if(fonts.begin(), fonts.end(), [](const auto& file) {
    std::error_code error;
    return std::filesystem::is_regular_file(file, error);
  });
  if (found == fonts.end()) {
    return platform::failure(
        "The OCR-B font, from which reading machine-readable zones is learned, was not found: "
        "install the package fonts-ocr-b.");
  }
  return FontFace::load(*found);
}

MrzGlyphClassifier MrzGlyphClassifier::train(FontFace& font) {
  const auto machine = trained(drawGlyphSamples(font));
  const cv::Mat vectors = machine->getSupportVectors();
  MrzGlyphClassifier classifier;
  classifier.weights_.create(kPairs, vectors.cols, CV_32F);
  classifier.offsets_.create(1, kPairs, CV_32F);
  for (int pair = 0; pair < kPairs; ++pair) {
    // A linear machine keeps one vector, already summed up, for each pair.
    cv::Mat alpha;
    cv::Mat index;
    const double rho = machine->getDecisionFunction(pair, alpha, index);
    const double scale = alpha.at<double>(0);
    cv::Mat(vectors.row(index.at<int>(0)) * scale).copyTo(classifier.weights_.row(pair));
    classifier.offsets_.at<float>(pair) = static_cast<float>(rho);
  }
  return classifier;
}

std::vector<MrzGlyphClassifier::Reading> MrzGlyphClassifier::classify(
    const cv::Mat& cells, const std::vector<std::string_view>& alphabets) const {
  cv::Mat normalized = cells.clone();
  normalizeCells(normalized);
  std::vector<Reading> readings;
  readings.reserve(static_cast<std::size_t>(cells.rows));
  for (int i = 0; i < cells.rows; ++i) {
    readings.push_back(winner(normalized.row(i), alphabets[static_cast<std::size_t>(i)]));
  }
  return readings;
}

MrzGlyphClassifier::Reading MrzGlyphClassifier::winner(const cv::Mat& cell,
                                                       std::string_view alphabet) const {
  const std::vector<std::size_t> places = placesOf(alphabet);
  std::array<float, kLetters> hardest;
  hardest.fill(std::numeric_limits<float>::max());
  for (auto i = places.begin(); i != places.end(); ++i) {
    for (auto j = i + 1; j != places.end(); ++j) {
      const int pair = rowOfPair(*i, *j);
      const auto decision =
          static_cast<float>(weights_.row(pair).dot(cell)) - offsets_.at<float>(pair);
      hardest[*i] = std::min(hardest[*i], decision);
      hardest[*j] = std::min(hardest[*j], -decision);
    }
  }
  Reading best{0, std::numeric_limits<float>::lowest()};
  for (const std::size_t place : places) {
    if (hardest[place] > best.margin) best = {kAlphabet[place], hardest[place]};
  }
  return best;
}

std::vector<std::filesystem::path> defaultOcrBFonts() {
  return {"/usr/share/fonts/opentype/ocr-b/OCRB.otf", "/usr/share/fonts/truetype/ocr-b/OCRB.ttf"};
}

}  // namespace corvana::engine
