#include "engine/document/DocumentAnalyzer.h"

#include <algorithm>
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
#include "engine/document/outline/CardChoice.h"
#include "engine/document/outline/CardWarp.h"
#include "engine/document/outline/StillCards.h"
#include "engine/document/outline/ZoneBelow.h"
#include "engine/document/text/SecondOpinion.h"
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

/// The lines of a card as they lie once it is turned by half a turn.
std::vector<TextLine> onTheirHead(std::vector<TextLine> lines, const platform::PixelBuffer& card) {
  for (TextLine& line : lines) {
    line.box.x = card.width() - 1 - line.box.maxX();
    line.box.y = card.height() - 1 - line.box.maxY();
  }
  return lines;
}

/// Where a card has print other than its machine-readable zone, which stands at the bottom.
platform::CGRect outsideZone(const CardReading& reading) {
  constexpr double kHighestZone = 0.35;  // of the card; more is a title that was taken for a line
  const platform::PixelBuffer& card = *reading.data.image->pixels();
  platform::CGRect area{0, 0, double(card.width()), double(card.height())};
  const bool isZone = reading.data.mrz && reading.mrzBand &&
                      reading.mrzBand->minY() > (1 - kHighestZone) * area.height;
  if (isZone) area.height = reading.mrzBand->minY();
  return area;
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

/// Which way up a card lies that was read both ways.
std::optional<CardTurn> turnByReading(const CardReading& asItLies, const CardReading& turned) {
  if (asItLies.data.mrz.has_value() != turned.data.mrz.has_value()) {
    return asItLies.data.mrz ? CardTurn::upright : CardTurn::upsideDown;
  }
  return cardTurnByReading(senseOf(asItLies), senseOf(turned));
}

}  // namespace

DocumentAnalyzer::DocumentAnalyzer(std::shared_ptr<FaceDetector> faces, NetworkTextReader text,
                                   MrzReader mrz, const Setup& setup)
    : faces_(std::move(faces)),
      text_(std::move(text)),
      tessdata_(setup.tessdata),
      mrz_(std::move(mrz)),
      tables_(setup.documents),
      today_(setup.today) {}

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

CardReading DocumentAnalyzer::readFirst(const platform::PixelBufferRef& card, CardMemory& memory) {
  const auto places = text_.find(*card);
  const auto readTurned = [&](CardMemory& as) {
    as.isUpsideDown = true;
    const auto turned = onItsHead(*card);
    return understood(turned, text_.read(*turned), as);
  };
  const auto turn = turnOf(*card, places);
  if (turn == CardTurn::upsideDown) return readTurned(memory);
  CardReading asItLies = understood(card, text_.readAgain(*card, places), memory);
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
  const auto open = std::ranges::partition(
      lines, [&](const TextLine& line) { return mayRepeat && memory.isSettled(line); });
  auto read = text_.readAgain(upright, {open.begin(), open.end()});
  lines.erase(open.begin(), open.end());
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
  return understood(upright, std::move(lines), memory);
}

CardReading DocumentAnalyzer::read(const CardView& card, CardMemory& memory) {
  const auto picture = straightened(*card.frame, card.outline);
  CardReading reading =
      memory.lines.empty() ? readFirst(picture, memory) : readAgain(picture, card.isAsRead, memory);
  reading.isUpsideDown = memory.isUpsideDown;
  if (memory.repeats == 0 || !memory.realness) {
    memory.realness =
        realnessOf(copyFigures(*picture, card.quality.sharpness), reading.data.isPhotoPresent);
  }
  judgeRealness(*memory.realness, reading.data);
  return reading;
}

CardReading DocumentAnalyzer::read(const CardView& card) {
  CardMemory nothing;
  return read(card, nothing);
}

CardReading DocumentAnalyzer::understood(const platform::PixelBufferRef& card,
                                         std::vector<TextLine> lines, CardMemory& memory) {
  memory.lines = std::move(lines);
  if (memory.repeats == 0) memory.votes.add(mrzVotesOf(memory.lines));
  const platform::PixelBuffer& picture = *card;
  CardReading reading;
  DocumentFeatures features;
  std::vector<platform::CGRect> blanks;

  reading.lines = memory.lines;
  for (const TextLine& line : reading.lines)
    features.lines.push_back(line.text);
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
  // A face takes a side for a front, few of which have a barcode.
  const bool mayHaveCode = !face || documentKind(features, tables_->kinds).front.code;
  if (!mrz.mrz && mayHaveCode) features.barcode = readBarcode(picture);
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

CardLook DocumentAnalyzer::lookAt(const platform::PixelBuffer& picture, const Quad& outline) {
  CardLook look;
  look.outline = outline;
  look.card = straightened(picture, outline);
  look.turned = straightened(picture, upsideDown(outline));
  look.faceScore = faceScore(*look.card);
  look.faceScoreTurned = faceScore(*look.turned);
  // Lines found in a card that lies upright need not be found again when it is read.
  if (look.faceScore < look.faceScoreTurned) look.turn();
  look.lines = text_.find(*look.card);
  if (!look.isCertainlyACard()) look.hasBarcode = readBarcode(*look.card).has_value();
  return look;
}

std::optional<CardReading> DocumentAnalyzer::readUpright(const CardLook& look) {
  const auto readAs = [&](CardTurn turn) {
    CardMemory nothing;
    const bool isUpright = turn == CardTurn::upright;
    const auto& card = isUpright ? look.card : look.turned;
    const auto lines = isUpright ? look.lines : onTheirHead(look.lines, *card);
    return understood(card, text_.readAgain(*card, lines), nothing);
  };
  const TurnSigns signs{.lines = text_.turnSign(*look.card, look.lines),
                        .face = faceSign(look.faceScore, look.faceScoreTurned)};
  if (const auto turn = cardTurn(signs)) {
    CardReading reading = readAs(*turn);
    if (reading.data.mrz || !isZoneOnItsHead(reading.lines)) return reading;
  }
  CardReading asItLies = readAs(CardTurn::upright);
  CardReading turned = readAs(CardTurn::upsideDown);
  const auto turn = turnByReading(asItLies, turned);
  if (!turn) return std::nullopt;
  return *turn == CardTurn::upright ? std::move(asItLies) : std::move(turned);
}

platform::Expected<CardLook> DocumentAnalyzer::cardIn(const StillPicture& still) {
  auto card = cardAmongPrint(still);
  if (card && card->isCertainlyACard()) return card;
  auto closer = cardAmongPrint(lookedAtInParts(still, text_.boxes()));
  const bool isBetter =
      closer && (!card || closer->isCertainlyACard() || closer->content() > card->content());
  return isBetter ? closer : card;
}

platform::Expected<CardLook> DocumentAnalyzer::cardAmongPrint(const StillPicture& still) {
  constexpr double kMeasuredAlike = 0.004;       // of the width
  std::vector<std::pair<Quad, CardLook>> looks;  // both searches may find the same outline
  const auto look = [&](const Quad& outline) {
    const auto known = std::ranges::find_if(
        looks, [&](const auto& earlier) { return apart(earlier.first, outline) < kMeasuredAlike; });
    if (known != looks.end()) return known->second;
    CardLook seen;
    if (mayHavePrint(still, outline)) seen = lookAt(*still.picture, outline);
    return looks.emplace_back(outline, std::move(seen)).second;
  };
  std::optional<CardLook> best;
  platform::Fault fault = noCardSeen();
  for (const Search search : {Search::coarse, Search::fine}) {
    const auto outlines = cardsInStill(still, search);
    if (!outlines) {
      fault = outlines.error();
      continue;
    }
    auto found = chooseCard(*outlines, look);
    if (found && found->isCertainlyACard()) return *std::move(found);
    if (found && (!best || found->content() > best->content())) best = std::move(found);
  }
  if (!best) return tl::unexpected(fault);
  return *std::move(best);
}

platform::Expected<CardReading> DocumentAnalyzer::analyzeStill(
    const platform::PixelBufferRef& picture) {
  const StillPicture still = stillPicture(picture, text_.boxes());
  const auto look = cardIn(still);
  if (!look) return tl::unexpected(look.error());
  auto reading = readUpright(*look);
  if (!reading) {
    return platform::failure(
        "It can't be told which way up the card in the picture lies: take a sharper photo, from "
        "nearer and without glare.");
  }
  if (const auto whole = withZoneBelow(*still.picture, *look, *reading)) {
    reading = readUpright(lookAt(*still.picture, *whole));
    // It must not be taken for a document that has none.
    if (!reading || !(reading->data.mrz || reading->data.shouldHaveMrz)) {
      return platform::failure(
          "The machine-readable zone of the document in the picture could not be read: take a "
          "sharper photo, from nearer, on a plain ground of another colour.");
    }
  }
  addSmallLabels(*reading);
  askSecondReader(*reading);
  const platform::PixelBuffer& card = *reading->data.image->pixels();
  judgeRealness(realnessOf(copyFigures(card, printSharpness(card)), reading->data.isPhotoPresent),
                reading->data);
  return *std::move(reading);
}

std::optional<Quad> DocumentAnalyzer::withZoneBelow(const platform::PixelBuffer& picture,
                                                    const CardLook& look,
                                                    const CardReading& reading) {
  if (reading.data.mrz || reading.data.barcode) return std::nullopt;
  const bool isTurned = reading.data.image->pixels() != look.card;
  const Quad outline = isTurned ? upsideDown(look.outline) : look.outline;
  const int height = straightenedHeight(outline);
  const auto around = straightened(picture, quadInPicture(ZoneBelow::around(height), outline));
  const ZoneBelow below(height, around->height());
  auto lines = text_.find(*around);
  std::erase_if(lines, [&](const TextLine& line) { return !below.mayBeOfZone(line); });
  lines = text_.readAgain(*around, lines);
  std::erase_if(lines, [](const TextLine& line) { return !isZoneLine(line.text); });
  if (lines.size() < ZoneBelow::kFewestLines) return std::nullopt;
  return quadInPicture(below.document(lines), outline);
}

/// Only labels: what else is small must not get into the text that pictures are compared by.
void DocumentAnalyzer::addSmallLabels(CardReading& reading) {
  const platform::PixelBuffer& card = *reading.data.image->pixels();
  auto small = text_.readSmall(card, outsideZone(reading), reading.lines);
  std::erase_if(small, [this](const TextLine& line) {
    const auto label = tables_->labels.labelledText(line.text);
    return !label || !label->hasWords;
  });
  if (small.empty()) return;
  std::ranges::move(small, std::back_inserter(reading.lines));
  reading.data.fields = fieldsOf(reading);
}

/// Its data take as much memory as all the rest, so they are only loaded for a still.
void DocumentAnalyzer::askSecondReader(CardReading& reading) {
  if (!TesseractReader::hasLatinData(tessdata_)) return;
  auto second = TesseractReader::load(tessdata_);
  if (!second) return;
  const platform::PixelBuffer& card = *reading.data.image->pixels();
  reading.lines = withSecondOpinion(card, std::move(reading.lines), text_.find(card), *second);
  reading.data.fields = fieldsOf(reading);
}

}  // namespace corvana::engine
