#include "engine/document/DocumentAnalyzer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/document/BarcodeReader.h"
#include "engine/document/CardWarp.h"
#include "engine/document/StillCards.h"
#include "engine/document/TextLines.h"
#include "engine/vision/FaceCrop.h"
#include "engine/vision/ImageOps.h"

namespace corvana::engine {
namespace {

/// Of the lines known from an earlier picture so many are read again on the same card.
constexpr double kLeastShareReadAgain = 0.8;

/// The photo around a face that measures from brow to chin: as on passports, where the head takes
/// about half the width and two thirds of the height.
platform::CGRect photoAround(const platform::CGRect& face) {
  const double side = std::max(face.width, face.height);
  return {face.midX() - 0.95 * side, face.midY() - 1.25 * side, 1.9 * side, 2.4 * side};
}

Face scaled(const Face& face, double factor) {
  Face result = face;
  result.box = {face.box.x * factor, face.box.y * factor, face.box.width * factor,
                face.box.height * factor};
  for (auto& point : result.keypoints) {
    point = {point.x * factor, point.y * factor};
  }
  return result;
}

/// The face for the matcher. A photo printed small is scaled up first: the matcher refuses faces by
/// their pixels, of which a straightened card has more than the camera saw anyway.
platform::UIImageRef faceImageOf(const platform::PixelBuffer& card, const Face& face) {
  constexpr double kLeastPrintedWidth = 48;
  if (face.box.width >= kLeastFaceWidth) return cropFace(card, face);
  if (face.box.width < kLeastPrintedWidth) return nullptr;
  const double factor = 1.05 * kLeastFaceWidth / face.box.width;
  const auto larger = resized(card, static_cast<int>(std::lround(card.width() * factor)),
                              static_cast<int>(std::lround(card.height() * factor)));
  return cropFace(*larger, scaled(face, factor));
}

std::size_t letterCount(const corvana::DetectedData& data) {
  std::size_t count = 0;
  for (const std::string& line : *data.ocrStrings)
    count += characterCount(line);
  return count;
}

/// The detector also finds faces that lie on their side or their head.
bool isUpright(const Face& face) {
  const auto& right = face.keypoints[Face::rightEye];
  const auto& left = face.keypoints[Face::leftEye];
  const auto& mouth = face.keypoints[Face::mouth];
  const double across = left.x - right.x;
  return across > std::abs(left.y - right.y) && mouth.y > (left.y + right.y) / 2;
}

/// Whether the card was certainly read the right way up.
bool isUpright(const CardReading& reading) {
  return reading.data.mrz || reading.data.barcode ||
         (reading.faceBox && !reading.data.ocrStrings->empty());
}

}  // namespace

DocumentAnalyzer::DocumentAnalyzer(std::shared_ptr<FaceDetector> faces,
                                   std::unique_ptr<TextReader> text, MrzReader mrz)
    : faces_(std::move(faces)), text_(std::move(text)), mrz_(std::move(mrz)) {}

tl::expected<DocumentAnalyzer, corvana::IDError> DocumentAnalyzer::load(
    std::shared_ptr<FaceDetector> faces, const Setup& setup) {
  auto text = NetworkTextReader::load(setup.text);
  if (!text) return tl::unexpected(text.error());
  auto mrz = MrzReader::load(setup.ocrBFonts);
  if (!mrz) return tl::unexpected(mrz.error());
  return DocumentAnalyzer(std::move(faces), std::make_unique<NetworkTextReader>(std::move(*text)),
                          std::move(*mrz));
}

CardSighting DocumentAnalyzer::find(const platform::PixelBuffer& frame,
                                    const platform::CGRect& guide) const {
  return findCard(frame, guide);
}

CardView DocumentAnalyzer::view(const platform::PixelBuffer& frame, const Quad& outline) const {
  const auto picture = straightened(frame, outline);
  return {picture, cardSharpness(*picture), glareFraction(*picture)};
}

std::optional<Face> DocumentAnalyzer::portrait(const platform::PixelBuffer& card) {
  const auto faces = faces_->detect(card);
  const auto upright =
      std::ranges::find_if(faces, [](const Face& face) { return isUpright(face); });
  if (upright == faces.end()) return std::nullopt;
  return *upright;
}

std::vector<TextLine> DocumentAnalyzer::linesOf(const platform::PixelBuffer& card,
                                                const std::vector<TextLine>& known) {
  if (known.empty()) return text_->read(card);
  auto lines = text_->readAgain(card, known);
  const bool isTheSame =
      static_cast<double>(lines.size()) >= kLeastShareReadAgain * static_cast<double>(known.size());
  return isTheSame ? lines : text_->read(card);
}

CardReading DocumentAnalyzer::read(const CardView& card, const std::vector<TextLine>& known) {
  const platform::PixelBuffer& picture = *card.picture;
  CardReading reading;
  DocumentFeatures features;
  std::vector<platform::CGRect> blanks;

  const auto face = portrait(picture);
  features.hasFace = face.has_value();
  if (face) {
    reading.faceBox = face->box;
    reading.data.faceImage = faceImageOf(picture, *face);
    blanks.push_back(photoAround(face->box));
  }
  const MrzReading mrz = mrz_.read(picture);
  features.mrz = mrz.mrz;
  features.hasMrzBand = mrz.band.has_value();
  reading.mrzBand = mrz.band;
  // A front's lines of print may look like a zone; only what was read or stands alone is one.
  if (mrz.band && (mrz.mrz || !face)) blanks.push_back(*mrz.band);
  if (!mrz.mrz && !face) features.barcode = readBarcode(picture);
  reading.lines = linesOf(picture, known);
  for (const TextLine& line : reading.lines)
    features.lines.push_back(line.text);

  reading.data.isPhotoPresent = face.has_value();
  reading.data.mrz = features.mrz;
  reading.data.barcode = features.barcode;
  reading.data.ocrStrings = textLines(reading.lines, blanks);
  reading.data.image = std::make_shared<platform::UIImage>(card.picture);
  reading.familyMatches = familyMatches(features);
  classify(features, reading.data);
  return reading;
}

tl::expected<CardReading, corvana::IDError> DocumentAnalyzer::analyzeStill(
    const platform::PixelBuffer& picture) {
  auto cards = cardsInStill(picture);
  if (!cards) return tl::unexpected(cards.error());
  std::optional<CardReading> best;
  for (const StillCard& card : *cards) {
    CardReading reading = read(view(*card.picture, card.outline));
    if (isUpright(reading)) return reading;
    if (!best || letterCount(reading.data) > letterCount(best->data)) best = std::move(reading);
  }
  return *std::move(best);
}

}  // namespace corvana::engine
