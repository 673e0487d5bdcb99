#include <algorithm>
#include <iterator>
#include <utility>

#include "engine/document/BarcodeReader.h"
#include "engine/document/DocumentAnalyzer.h"
#include "engine/document/copies/CopyFigures.h"
#include "engine/document/mrz/MrzLayout.h"
#include "engine/document/mrz/MrzPrint.h"
#include "engine/document/outline/CardChoice.h"
#include "engine/document/outline/CardWarp.h"
#include "engine/document/outline/FacesInStill.h"
#include "engine/document/outline/ZoneBelow.h"
#include "engine/document/text/SecondOpinion.h"
#include "engine/document/text/TextLines.h"

/// What the analyzer does with a photo or scan, for which there is more time than for a frame.
namespace corvana::engine {
namespace {

/// The lines of a card as they lie once it is turned by half a turn.
std::vector<TextLine> onTheirHead(std::vector<TextLine> lines, const platform::PixelBuffer& card) {
  for (TextLine& line : lines) {
    line.box.x = card.width() - 1 - line.box.maxX();
    line.box.y = card.height() - 1 - line.box.maxY();
  }
  return lines;
}

/// What is inside the outline, before anything of it is known.
CardLook straightenedBy(const platform::PixelBuffer& picture, const Quad& outline) {
  CardLook look;
  look.outline = outline;
  look.card = straightened(picture, outline);
  look.turned = straightened(picture, upsideDown(outline));
  return look;
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

/// Whether a side was read by what tells it from the other.
bool hasMark(const corvana::DetectedData& side) {
  return side.isPhotoPresent || side.mrz || side.barcode;
}

}  // namespace

CardLook DocumentAnalyzer::lookAt(const platform::PixelBuffer& picture, const Quad& outline) {
  return lookInto(straightenedBy(picture, outline));
}

CardLook DocumentAnalyzer::lookInto(CardLook look) {
  look.faceScore = faceScore(*look.card);
  look.faceScoreTurned = faceScore(*look.turned);
  // Lines found in a card that lies upright need not be found again when it is read.
  if (look.faceScore < look.faceScoreTurned) look.turn();
  look.lines = text_.find(*look.card);
  if (!look.isCertainlyACard()) look.barcode = readBarcode(*look.card);
  return look;
}

CardLook DocumentAnalyzer::lookAtBarcode(const platform::PixelBuffer& picture,
                                         const Quad& outline) {
  CardLook look = straightenedBy(picture, outline);
  look.barcode = searchBarcode(*look.card);
  return look.barcode ? lookInto(std::move(look)) : CardLook();
}

std::optional<DocumentAnalyzer::StillReading> DocumentAnalyzer::readUpright(const CardLook& look) {
  const auto readAs = [&](CardTurn turn) {
    CardMemory nothing;
    const bool isUpright = turn == CardTurn::upright;
    const auto& card = isUpright ? look.card : look.turned;
    auto places = isUpright ? look.lines : onTheirHead(look.lines, *card);
    auto reading = understood(card, text_.readAgain(*card, places), nothing, [&](const auto& side) {
      return look.barcode ? look.barcode : searchBarcode(side);
    });
    return StillReading{std::move(reading), std::move(places)};
  };
  const TurnSigns signs{.lines = text_.turnSign(*look.card, look.lines),
                        .face = faceSign(look.faceScore, look.faceScoreTurned)};
  if (const auto turn = cardTurn(signs)) {
    StillReading reading = readAs(*turn);
    if (reading.card.data.mrz || !isZoneOnItsHead(reading.card.lines)) return reading;
  }
  StillReading asItLies = readAs(CardTurn::upright);
  StillReading turned = readAs(CardTurn::upsideDown);
  const auto turn = turnByReading(asItLies.card, turned.card);
  if (!turn) return std::nullopt;
  return *turn == CardTurn::upright ? std::move(asItLies) : std::move(turned);
}

platform::Expected<CardLook> DocumentAnalyzer::cardIn(const StillPicture& still) {
  const LookAt look = [this](const auto& picture, const Quad& outline) {
    return lookAt(picture, outline);
  };
  auto card = cardAmongPrint(still, look);
  if (card && card->isCertainlyACard()) return lookCloser(still, *card, look);
  auto closer = cardAmongPrint(lookedAtInParts(still, text_.boxes()), look);
  const bool isBetter =
      closer && (!card || closer->isCertainlyACard() || closer->content() > card->content());
  if (isBetter) card = std::move(closer);
  if (!card) return card;
  return lookCloser(still, *card, look);
}

std::optional<CardLook> DocumentAnalyzer::cardAroundFace(const StillPicture& still) {
  const LookAt look = [this](const auto& picture, const Quad& outline) {
    return lookAt(picture, outline);
  };
  for (const platform::CGRect& face : facesInStill(*still.picture, *faces_)) {
    const auto part = partAroundFace(still, face, text_.boxes());
    if (!part) continue;
    auto card = cardAmongPrint(part->still, look);
    if (!card || !card->isCertainlyACard() || !card->hasSureFace()) continue;
    card->outline = shifted(card->outline, part->origin);
    return *std::move(card);
  }
  return std::nullopt;
}

CardLook DocumentAnalyzer::lookCloser(const StillPicture& still, const CardLook& seen,
                                      const LookAt& lookAt) {
  const auto part = partAround(still, seen.outline, text_.boxes());
  if (!part) return seen;
  auto closer = cardAmongPrint(part->still, lookAt);
  if (!closer) return seen;
  closer->outline = shifted(closer->outline, part->origin);
  return clearer(seen, *std::move(closer));
}

std::optional<CardLook> DocumentAnalyzer::cardWithBarcode(const StillPicture& still) {
  const LookAt look = [this](const auto& picture, const Quad& outline) {
    return lookAtBarcode(picture, outline);
  };
  auto card = cardAmongPrint(lookedAtInParts(still, text_.boxes()), look);
  if (!card || !card->barcode) return std::nullopt;
  return *std::move(card);
}

platform::Expected<CardLook> DocumentAnalyzer::cardAmongPrint(const StillPicture& still,
                                                              const LookAt& lookAt) {
  constexpr double kMeasuredAlike = 0.004;       // of the width
  std::vector<std::pair<Quad, CardLook>> looks;  // both searches may find the same outline
  const auto look = [&](const Quad& outline) {
    const auto known = std::ranges::find_if(
        looks, [&](const auto& earlier) { return apart(earlier.first, outline) < kMeasuredAlike; });
    if (known != looks.end()) return known->second;
    return looks.emplace_back(outline, lookAt(*still.picture, outline)).second;
  };
  const auto lookAtPrint = [&](const Quad& outline) {
    return mayHavePrint(still, outline) ? look(outline) : CardLook();
  };
  std::vector<Quad> all;
  const auto search = [&](Search how) {
    auto outlines = cardsInStill(still, how);
    if (outlines) {
      std::ranges::copy(outlines->seen, std::back_inserter(all));
      std::ranges::copy(outlines->wholes, std::back_inserter(all));
    }
    return outlines;
  };
  std::optional<CardLook> best;
  platform::Fault fault = noCardSeen();
  for (const Search how : {Search::coarse, Search::fine}) {
    const auto outlines = search(how);
    if (!outlines) {
      fault = outlines.error();
      continue;
    }
    auto found = chooseCard(*outlines, lookAtPrint);
    if (found && found->isCertainlyACard()) {
      if (how == Search::coarse && !found->outline.hasDocumentsShape()) search(Search::fine);
      // There is print in its place, even if the still did not show it.
      return inDocumentsShape(*std::move(found), all, look);
    }
    if (found && (!best || found->content() > best->content())) best = std::move(found);
  }
  if (!best) return tl::unexpected(fault);
  return inDocumentsShape(*std::move(best), all, look);
}

platform::Expected<CardReading> DocumentAnalyzer::analyzeStill(
    const platform::PixelBufferRef& picture) {
  const StillPicture still = stillPicture(picture, text_.boxes());
  auto look = cardIn(still);
  if (!look) return tl::unexpected(look.error());
  auto reading = readUpright(*look);
  if (!reading || !hasMark(reading->card.data)) {
    auto other = cardWithBarcode(still);
    if (!other) other = cardAroundFace(still);
    if (other) {
      look = *std::move(other);
      reading = readUpright(*look);
    }
  }
  if (!reading) {
    return platform::failure(
        "It can't be told which way up the card in the picture lies: take a sharper photo, from "
        "nearer and without glare.");
  }
  bool isZoneMissing = false;
  // What was found may be so small a part that the first look below it shows half of the zone.
  for (int looks = 0; looks < 2 && reading; ++looks) {
    const auto whole = withZoneBelow(*still.picture, *look, reading->card);
    if (!whole) break;
    look = lookAt(*still.picture, *whole);
    reading = readUpright(*look);
    // It must not be taken for a document that has none.
    isZoneMissing = !reading || !(reading->card.data.mrz || reading->card.data.shouldHaveMrz);
  }
  if (isZoneMissing) {
    return platform::failure(
        "The machine-readable zone of the document in the picture could not be read: take a "
        "sharper photo, from nearer, on a plain ground of another colour.");
  }
  auto& [card, places] = *reading;
  addSmallLabels(card);
  askSecondReader(card, places);
  const platform::PixelBuffer& side = *card.data.image->pixels();
  judgeRealness(realnessOf(copyFigures(side, printSharpness(side)), card.data.isPhotoPresent),
                card.data);
  return std::move(card);
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
    if (runsUpOrDown(line)) return true;
    const auto label = tables_->labels.labelledText(line.text);
    return !label || !label->hasWords;
  });
  if (small.empty()) return;
  std::ranges::move(small, std::back_inserter(reading.lines));
  reading.data.fields = fieldsOf(reading);
}

/// Its data take as much memory as all the rest, so they are only loaded for a still.
void DocumentAnalyzer::askSecondReader(CardReading& reading, const std::vector<TextLine>& places) {
  if (!TesseractReader::hasLatinData(tessdata_)) return;
  auto second = TesseractReader::load(tessdata_);
  if (!second) return;
  const platform::PixelBuffer& card = *reading.data.image->pixels();
  reading.lines = withSecondOpinion(card, std::move(reading.lines), places, *second);
  reading.data.fields = fieldsOf(reading);
}

}  // namespace corvana::engine
