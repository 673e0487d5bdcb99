#include "engine/document/text/TesseractReader.h"

#include <algorithm>
#include <array>
#include <utility>

#include <leptonica/allheaders.h>
#include <omp.h>
#include <opencv2/imgproc.hpp>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include "engine/document/text/LineCrop.h"
#include "engine/document/text/TextLines.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

namespace fs = std::filesystem;

constexpr int kDotsPerInch = 300;
/// What lies behind the card's rounded corners and beside its sides is no print.
constexpr int kRim = 14;
/// Wider than a stroke of large print, so that closing leaves nothing but the paper.
constexpr int kStroke = 25;
/// White around a line that is read by itself, pixels.
constexpr int kMargin = 10;
constexpr const char* kLatinData = "Latin";

bool hasData(const fs::path& tessdata, const std::string& language) {
  std::error_code error;
  return fs::is_regular_file(tessdata / (language + ".traineddata"), error);
}

/// While it lives, OpenMP makes no threads for this one's parallel sections.
class SingleThread {
 public:
  SingleThread() { omp_set_max_active_levels(0); }
  ~SingleThread() { omp_set_max_active_levels(levels_); }
  SingleThread(const SingleThread&) = delete;
  SingleThread& operator=(const SingleThread&) = delete;

 private:
  int levels_ = omp_get_max_active_levels();
};

/// The card in grey on even white paper: patterns, shadows and colours of the ground vanish when
/// the picture is divided by what is left of it without its print.
cv::Mat flattened(const platform::PixelBuffer& card) {
  const cv::Mat gray = grayMat(card);
  cv::Mat paper;
  cv::morphologyEx(gray, paper, cv::MORPH_CLOSE,
                   cv::getStructuringElement(cv::MORPH_RECT, {kStroke, kStroke}));
  cv::GaussianBlur(paper, paper, {}, kStroke / 2.0);
  cv::Mat flat;
  cv::divide(gray, paper, flat, 255);
  cv::rectangle(flat, cv::Rect(cv::Point(), flat.size()), cv::Scalar(255), 2 * kRim);
  return flat;
}

platform::CGRect unionOf(const platform::CGRect& a, const platform::CGRect& b) {
  const double x = std::min(a.minX(), b.minX());
  const double y = std::min(a.minY(), b.minY());
  return {x, y, std::max(a.maxX(), b.maxX()) - x, std::max(a.maxY(), b.maxY()) - y};
}

/// Adds a word to a line, whose confidence is that of its letters in the mean.
void append(TextLine& line, const TextLine& word) {
  const auto before = static_cast<double>(characterCount(line.text));
  const auto added = static_cast<double>(characterCount(word.text));
  line.confidence = (line.confidence * before + word.confidence * added) / (before + added);
  line.text += ' ' + word.text;
  line.box = unionOf(line.box, word.box);
}

std::vector<TextLine> recognizedLines(tesseract::TessBaseAPI& tesseract) {
  std::vector<TextLine> lines;
  constexpr auto kWord = tesseract::RIL_WORD;
  const std::unique_ptr<tesseract::ResultIterator> found(tesseract.GetIterator());
  if (!found) return lines;
  bool startsLine = true;
  do {
    if (found->IsAtBeginningOf(tesseract::RIL_TEXTLINE)) startsLine = true;
    const std::unique_ptr<const char[]> text(found->GetUTF8Text(kWord));
    std::array<int, 4> edge{};
    if (!text || !found->BoundingBox(kWord, &edge[0], &edge[1], &edge[2], &edge[3])) continue;
    const TextLine word{
        text.get(),
        {double(edge[0]), double(edge[1]), double(edge[2] - edge[0]), double(edge[3] - edge[1])},
        found->Confidence(kWord) / 100};
    if (!isSure(word)) continue;
    if (std::exchange(startsLine, false)) {
      lines.push_back(word);
    } else {
      append(lines.back(), word);
    }
  } while (found->Next(kWord));
  return lines;
}

}  // namespace

TesseractReader::TesseractReader(std::unique_ptr<tesseract::TessBaseAPI> tesseract,
                                 std::string language)
    : tesseract_(std::move(tesseract)), language_(std::move(language)) {}
TesseractReader::TesseractReader(TesseractReader&&) noexcept = default;
TesseractReader& TesseractReader::operator=(TesseractReader&&) noexcept = default;
TesseractReader::~TesseractReader() = default;

platform::Expected<TesseractReader> TesseractReader::load(const fs::path& tessdata) {
  // Leptonica, beneath Tesseract, prints a line for each speck it cannot crop.
  setMsgSeverity(L_SEVERITY_NONE);
  for (const char* language : {kLatinData, "eng"}) {
    if (!hasData(tessdata, language)) continue;
    auto tesseract = std::make_unique<tesseract::TessBaseAPI>();
    if (tesseract->Init(tessdata.c_str(), language, tesseract::OEM_LSTM_ONLY) != 0) continue;
    tesseract->SetVariable("debug_file", "/dev/null");
    tesseract->SetPageSegMode(tesseract::PSM_SPARSE_TEXT);
    return TesseractReader(std::move(tesseract), language);
  }
  return platform::failure("Tesseract's English data was not found in " + tessdata.string() +
                           ": install the package tesseract-ocr-eng.");
}

std::vector<TextLine> TesseractReader::read(const platform::PixelBuffer& card) {
  const SingleThread alone;
  const cv::Mat flat = flattened(card);
  tesseract_->SetImage(flat.data, flat.cols, flat.rows, 1, static_cast<int>(flat.step));
  tesseract_->SetSourceResolution(kDotsPerInch);
  // What was learned from the last card must not colour the next.
  tesseract_->ClearAdaptiveClassifier();
  if (tesseract_->Recognize(nullptr) != 0) return {};
  auto lines = recognizedLines(*tesseract_);
  tesseract_->Clear();
  return lines;
}

std::vector<TextLine> TesseractReader::readAgain(const platform::PixelBuffer& card,
                                                 const std::vector<TextLine>& known) {
  const SingleThread alone;
  cv::Mat flat;
  cv::cvtColor(flattened(card), flat, cv::COLOR_GRAY2RGB);
  std::vector<TextLine> lines;
  tesseract_->SetPageSegMode(tesseract::PSM_SINGLE_LINE);
  for (const TextLine& line : known) {
    cv::Mat print = lineCrop(flat, boxOf(line, kMargin));
    cv::copyMakeBorder(print, print, kMargin, kMargin, kMargin, kMargin, cv::BORDER_CONSTANT,
                       cv::Scalar::all(255));
    tesseract_->SetImage(print.data, print.cols, print.rows, 3, static_cast<int>(print.step));
    tesseract_->SetSourceResolution(kDotsPerInch);
    tesseract_->ClearAdaptiveClassifier();
    const std::unique_ptr<const char[]> text(tesseract_->GetUTF8Text());
    if (!text) continue;
    TextLine again = line;
    again.text = trimmed(text.get());
    again.confidence = tesseract_->MeanTextConf() / 100.0;
    again.leastConfidence = again.confidence;
    if (isSure(again)) lines.push_back(again);
  }
  tesseract_->Clear();
  tesseract_->SetPageSegMode(tesseract::PSM_SPARSE_TEXT);
  return lines;
}

bool TesseractReader::hasLatinData(const fs::path& tessdata) {
  return hasData(tessdata, kLatinData);
}

std::string TesseractReader::name() const {
  return std::string("Tesseract ") + tesseract::TessBaseAPI::Version() + " " + language_;
}

}  // namespace corvana::engine
