#include "engine/document/DocumentAnalyzer.h"

#include <algorithm>
#include <future>
#include <iterator>
#include <utility>

#include "engine/document/BarcodeReader.h"
#include "engine/document/CardPortrait.h"
#include "engine/document/copies/CopyFigures.h"
#include "engine/document/fields/DocumentFields.h"
#include "engine/document/guidance/Glare.h"
#include "engine/document/mrz/MrzLayout.h"
#include "engine/document/mrz/MrzPrint.h"
#include "engine/document/mrz/MrzRepair.h"
#include "engine/document/outline/CardWarp.h"
#include "engine/document/text/TextLines.h"

namespace corvana::engine {
namespace {

/// A place in millimetres on the picture of the straightened document.
platform::CGRect inPixels(const platform::CGRect& place, const DocumentKind& kind,
                          const platform::PixelBuffer& card) {
  const platform::CGSize size = millimetresOf(kind.size);
  const double across = card.width() / size.width;
  const double down = card.height() / size.height;
  return {place.x * across, place.y * down, place.width * across, place.height * down};
}

/// Holders' faces are wider beside a zone: photos are 26 mm wide at the least (ICAO 9303), heads
/// half of that, and the cards with zones of two lines 105 mm. Ghost images are half as wide.
bool isGhost(const Face& face, const platform::PixelBuffer& card) {
  constexpr double kLeastShare = 0.12;
  return face.box.width < kLeastShare * card.width();
}

/// What lines of print may say as well.
std::vector<std::string> doubtfulTexts(const std::vector<TextLine>& lines) {
  std::vector<std::string> texts;
  for (const TextLine& line : lines) {
    if (!isZoneLine(line.text)) std::ranges::copy(line.others, std::back_inserter(texts));
  }
  return texts;
}

/// What was made of the print: sure letters count, doubtful ones less.
double senseOf(const CardReading& reading) {
  double sense = 0;
  for (const TextLine& line : reading.lines)
    sense += line.confidence * static_cast<double>(characterCount(line.text));
  return sense;
}

}  // namespace

DocumentAnalyzer::DocumentAnalyzer(std::shared_ptr<FaceDetector> faces, NetworkTextReader text,
                                   MrzReader mrz, const Setup& setup)
    : faces_(std::move(faces)),
      text_(std::move(text)),
      tessdata_(setup.tessdata),
      mrz_(std::move(mrz)),
      tables_(setup.documents),
      today_(setup.today),
      known_(setup.knownType ? tables_->kinds.ofType(*setup.knownType) : nullptr) {}

platform::Expected<DocumentAnalyzer> DocumentAnalyzer::load(std::shared_ptr<FaceDetector> faces,
                                                            const Setup& setup) {
  auto text = NetworkTextReader::load(setup.text);
  if (!text) return tl::unexpected(text.error());
  auto mrz = MrzReader::load(setup.ocrBFonts);
  if (!mrz) return tl::unexpected(mrz.error());
  return DocumentAnalyzer(std::move(faces), std::move(*text), std::move(*mrz), setup);
}

CardSighting DocumentAnalyzer::find(const platform::PixelBuffer& frame,
                                    const platform::CGRect& guide) const {
  return findCard(frame, guide, corvana::IDCapture::options);
}

/// Of most looks the card's colours are never asked for, which cost far more than its grey.
CardView DocumentAnalyzer::view(const platform::PixelBufferRef& frame, const Quad& outline) const {
  const auto gray = straightenedGray(*frame, outline);
  const double glare = mayHaveGlare(*gray) ? glareFraction(*straightened(*frame, outline)) : 0;
  return {
      .frame = frame,
      .outline = outline,
      .gray = gray,
      .quality = {
          .sharpness = printSharpness(*gray), .glare = glare, .brightness = brightnessOf(*gray)}};
}

std::optional<Face> DocumentAnalyzer::portrait(const platform::PixelBuffer& card,
                                               const DocumentKind& kind) {
  auto faces = faces_->detect(card);
  std::erase_if(faces, [](const Face& face) { return !isUpright(face); });
  if (faces.empty()) return std::nullopt;
  if (!kind.front.photo || !kind.front.photo->place) return faces.front();
  const platform::CGRect photo = inPixels(*kind.front.photo->place, kind, card);
  const auto inPlace = std::ranges::find_if(faces, [&](const Face& face) {
    return photo.minX() < face.box.midX() && face.box.midX() < photo.maxX() &&
           photo.minY() < face.box.midY() && face.box.midY() < photo.maxY();
  });
  return inPlace == faces.end() ? faces.front() : *inPlace;
}

std::vector<corvana::DocumentField> DocumentAnalyzer::fieldsOf(
    const CardReading& reading, const std::vector<corvana::DocumentField>& otherRecord) const {
  const corvana::DetectedData& data = reading.data;
  std::vector<PlacedField> places;
  if (const auto* kind = data.type ? tables_->kinds.ofType(*data.type) : nullptr) {
    const bool isFront = data.side == corvana::DocumentSide::front;
    places = isFront ? kind->front.fields : kind->back->fields;
    for (PlacedField& field : places)
      field.place = inPixels(field.place, *kind, *data.image->pixels());
  }
  return documentFields(data, reading.lines, tables_->labels, today_, places, otherRecord);
}

void DocumentAnalyzer::settleByOtherSide(CardReading& side,
                                         const corvana::DetectedData& other) const {
  const auto record = recordOf(other);
  if (!record.empty()) side.data.fields = fieldsOf(side, record);
}

std::optional<CardTurn> DocumentAnalyzer::turnOf(const platform::PixelBuffer& card,
                                                 const std::vector<TextLine>& lines) {
  TurnSigns signs{.lines = text_.turnSign(card, lines)};
  // Users are asked to hold the card upright: mostly the lines alone are clear.
  if (const auto turn = cardTurn(signs); turn == CardTurn::upright) return turn;
  signs.face = faceSign(faceScore(card), faceScore(*onItsHead(card)));
  return cardTurn(signs);
}

std::optional<CardTurn> DocumentAnalyzer::turnByReading(const CardReading& asItLies,
                                                        const CardReading& turned) {
  if (asItLies.data.mrz.has_value() != turned.data.mrz.has_value()) {
    return asItLies.data.mrz ? CardTurn::upright : CardTurn::upsideDown;
  }
  return cardTurnByReading(senseOf(asItLies), senseOf(turned));
}

CardReading DocumentAnalyzer::readFirst(const platform::PixelBufferRef& card, CardMemory& memory) {
  const auto places = text_.find(*card);
  const auto readTurned = [&](CardMemory& as) {
    as.isUpsideDown = true;
    const auto turned = onItsHead(*card);
    return understood(turned, text_.read(*turned), as, readBarcode);
  };
  const auto turn = turnOf(*card, places);
  if (turn == CardTurn::upsideDown) return readTurned(memory);
  CardReading asItLies = understood(card, text_.readAgain(*card, places), memory, readBarcode);
  const bool isSure = turn && !isZoneOnItsHead(asItLies.lines);
  if (isSure || asItLies.data.mrz) return asItLies;
  CardMemory otherMemory;
  CardReading other = readTurned(otherMemory);
  if (turnByReading(asItLies, other) != CardTurn::upsideDown) return asItLies;
  memory = std::move(otherMemory);
  return other;
}

std::vector<TextLine> DocumentAnalyzer::linesAgain(const platform::PixelBuffer& upright,
                                                   bool isAsRead, CardMemory& memory) {
  const bool mayRepeat = memory.repeatsFor(isAsRead);
  std::vector<TextLine> lines = memory.lines;
  const auto open = std::partition(lines.begin(), lines.end(), [&](const TextLine& line) {
    return mayRepeat && memory.isSettled(line);
  });
  auto read = text_.readAgain(upright, {open, lines.end()});
  lines.erase(open, lines.end());
  std::ranges::move(read, std::back_inserter(lines));
  sortFromTop(lines);
  memory.confirmBy(lines);
  return lines;
}

CardReading DocumentAnalyzer::readAgain(const platform::PixelBufferRef& card, bool isAsRead,
                                        CardMemory& memory) {
  const auto upright = memory.isUpsideDown ? onItsHead(*card) : card;
  auto lines = linesAgain(*upright, isAsRead, memory);
  if (!memory.isOf(lines)) {
    memory.unsettle();
    lines = text_.read(*upright);
  }
  return understood(upright, std::move(lines), memory, readBarcode);
}

CardReading DocumentAnalyzer::read(const CardView& card, CardMemory& memory) {
  const auto picture = straightened(*card.frame, card.outline);
  // Measured beside the reading, but only when asked for where the last ones may stand.
  const bool mayStand = memory.realness && card.isAsRead;
  auto figures = std::async(mayStand ? std::launch::deferred : std::launch::async,
                            [&] { return copyFigures(*picture, card.quality.sharpness); });
  CardReading reading =
      memory.lines.empty() ? readFirst(picture, memory) : readAgain(picture, card.isAsRead, memory);
  reading.isUpsideDown = memory.isUpsideDown;
  if (memory.repeats == 0 || !memory.realness) {
    memory.realness = realnessOf(figures.get(), reading.data.isPhotoPresent);
  }
  judgeRealness(*memory.realness, reading.data);
  return reading;
}

CardReading DocumentAnalyzer::read(const CardView& card) {
  CardMemory nothing;
  return read(card, nothing);
}

CardReading DocumentAnalyzer::understood(const platform::PixelBufferRef& card,
                                         std::vector<TextLine> lines, CardMemory& memory,
                                         const BarcodeSource& barcodeOf) {
  memory.lines = std::move(lines);
  if (memory.repeats == 0) memory.votes.add(mrzVotesOf(memory.lines));
  const platform::PixelBuffer& picture = *card;
  CardReading reading;
  DocumentFeatures features;
  features.known = known_;
  std::vector<platform::CGRect> blanks;

  reading.lines = memory.lines;
  for (const TextLine& line : reading.lines)
    features.lines.push_back(line.text);
  // A title may run upward; the holder's data and their labels are level.
  std::erase_if(reading.lines, runsUpOrDown);
  const auto face = portrait(picture, documentKind(features, tables_->kinds));
  features.hasFace = face.has_value();
  if (face) {
    reading.faceBox = face->box;
    reading.data.faceImage = faceImageOf(picture, *face);
    blanks.push_back(photoAround(face->box));
  }
  MrzReading mrz = mrzInPrint(reading.lines);
  if (!mrz.mrz) mrz.mrz = memory.votes.result();
  if (!mrz.mrz) {
    features.glimpsedMrz = glimpsedMrz(mrz.lines);
    mrz = mrz_.read(picture);
  }
  features.mrz = mrz.mrz;
  // Backs bear a ghost image beside their zone.
  if (features.mrz && face && isGhost(*face, picture)) features.hasFace = false;
  // A face takes a side for a front, few of which have a barcode.
  const bool mayHaveCode = !face || documentKind(features, tables_->kinds).front.code;
  if (!mrz.mrz && mayHaveCode) features.barcode = barcodeOf(picture);
  // A barcode's bars look like a zone's lines.
  if (features.barcode) mrz.band.reset();
  features.hasMrzBand = mrz.band.has_value();
  reading.mrzBand = mrz.band;
  memory.hasOpenZone = (features.hasMrzBand || features.glimpsedMrz) && !features.mrz;
  // A front's lines of print may look like a zone; only what was read or stands alone is one.
  if (mrz.band && (mrz.mrz || !face)) blanks.push_back(*mrz.band);

  reading.data.isPhotoPresent = face.has_value();
  reading.data.mrz = features.mrz;
  reading.data.barcode = features.barcode;
  reading.data.ocrStrings = textLines(reading.lines, blanks);
  reading.data.doubtfulStrings = doubtfulTexts(reading.lines);
  reading.data.image = std::make_shared<platform::UIImage>(card);
  reading.familyMatches = familyMatches(features, tables_->kinds);
  classify(features, tables_->kinds, reading.data);
  reading.data.fields = fieldsOf(reading);
  return reading;
}

double DocumentAnalyzer::faceScore(const platform::PixelBuffer& card) {
  const auto faces = faces_->detect(card);
  const auto surest = std::ranges::max_element(faces, {}, &Face::score);
  return surest == faces.end() ? 0.0 : static_cast<double>(surest->score);
}

}  // namespace corvana::engine
