#include "engine/document/TextReader.h"

#include <leptonica/allheaders.h>
#include <omp.h>
#include <opencv2/imgproc.hpp>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include "engine/document/TextLines.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

constexpr int kDotsPerInch = 300;
/// What lies behind the card's rounded corners and beside its sides is no print.
constexpr int kRim = 14;

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

/// The card in grey with its rim and the blanks painted over in the shade of its paper.
cv::Mat printOnly(const platform::PixelBuffer& card, const std::vector<platform::CGRect>& blanks) {
  cv::Mat gray = grayMat(card).clone();
  cv::Mat paper;
  cv::blur(gray, paper, cv::Size(25, 25));
  double brightest = 0;
  cv::minMaxLoc(paper, nullptr, &brightest);
  cv::rectangle(gray, cv::Rect(cv::Point(), gray.size()), cv::Scalar(brightest), 2 * kRim);
  for (const platform::CGRect& blank : blanks) {
    gray(pixelRect(blank, gray.size())).setTo(brightest);
  }
  return gray;
}

std::vector<TextWord> recognizedWords(tesseract::TessBaseAPI& tesseract) {
  std::vector<TextWord> words;
  constexpr auto kWord = tesseract::RIL_WORD;
  const std::unique_ptr<tesseract::ResultIterator> found(tesseract.GetIterator());
  if (!found) return words;
  do {
    const std::unique_ptr<const char[]> text(found->GetUTF8Text(kWord));
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    if (!text || !found->BoundingBox(kWord, &left, &top, &right, &bottom)) continue;
    words.push_back({text.get(),
                     {double(left), double(top), double(right - left), double(bottom - top)},
                     found->Confidence(kWord)});
  } while (found->Next(kWord));
  return words;
}

}  // namespace

TextReader::TextReader(std::unique_ptr<tesseract::TessBaseAPI> tesseract)
    : tesseract_(std::move(tesseract)) {}
TextReader::TextReader(TextReader&&) noexcept = default;
TextReader& TextReader::operator=(TextReader&&) noexcept = default;
TextReader::~TextReader() = default;

platform::Expected<TextReader> TextReader::load(const std::filesystem::path& tessdata) {
  // Leptonica, beneath Tesseract, prints a line for each speck it cannot crop.
  setMsgSeverity(L_SEVERITY_NONE);
  auto tesseract = std::make_unique<tesseract::TessBaseAPI>();
  std::error_code error;
  if (!std::filesystem::is_regular_file(tessdata / "eng.traineddata", error) ||
      tesseract->Init(tessdata.c_str(), "eng", tesseract::OEM_LSTM_ONLY) != 0) {
    return platform::failure("Tesseract's English data was not found in " + tessdata.string() +
                             ": install the package tesseract-ocr-eng.");
  }
  tesseract->SetVariable("debug_file", "/dev/null");
  tesseract->SetPageSegMode(tesseract::PSM_SPARSE_TEXT);
  return TextReader(std::move(tesseract));
}

std::vector<std::string> TextReader::read(const platform::PixelBuffer& card,
                                          const std::vector<platform::CGRect>& blanks) {
  const SingleThread alone;
  const cv::Mat gray = printOnly(card, blanks);
  tesseract_->SetImage(gray.data, gray.cols, gray.rows, 1, static_cast<int>(gray.step));
  tesseract_->SetSourceResolution(kDotsPerInch);
  // What was learned from the last card must not colour the next.
  tesseract_->ClearAdaptiveClassifier();
  if (tesseract_->Recognize(nullptr) != 0) return {};
  auto lines = textLines(recognizedWords(*tesseract_));
  tesseract_->Clear();
  return lines;
}

}  // namespace corvana::engine
