#include "engine/recorder/DocumentPhase.h"

#include "engine/document/copies/CopyFigures.h"

namespace corvana::engine {
namespace {

using corvana::DetectedData;
using corvana::IDCaptureState;
using Sight = DocumentPhase::Sight;

/// The flaw of a card in its place; in the dark also of a picture in which none is seen.
std::optional<FlawFound> flawIn(const DocumentView& view,
                                const corvana::IDCapture::Options& limits) {
  if (view.quality) return flawOf(*view.quality, limits);
  if (view.surroundings) return flawOf({.brightness = *view.surroundings}, limits);
  return {};
}

/// What makes a card too much of a copy to be accepted.
std::optional<FlawFound> copyIn(const DetectedData& data,
                                const corvana::IDCapture::Options& limits) {
  using Reject = corvana::IDCapture::RejectUnreal;
  if (!data.realness || limits.rejectUnreal == Reject::off) return {};
  const float limit = limits.rejectUnreal == Reject::all ? kSuspectCopy : kSureCopy;
  const float score = copyScore(*data.realness);
  if (score < limit) return {};
  return FlawFound{CardFlaw::copy, score, limit};
}

Sight sightOf(const DocumentView& view, const std::optional<FlawFound>& flaw) {
  switch (view.verdict) {
    case CardVerdict::none:
      break;
    case CardVerdict::found:
      return flaw && flaw->flaw == CardFlaw::tooMuchGlare ? Sight::tooMuchGlare : Sight::found;
    case CardVerdict::moveCloser:
      return Sight::moveCloser;
    case CardVerdict::moveAway:
      return Sight::moveAway;
    case CardVerdict::alignRectangle:
      return Sight::alignRectangle;
  }
  return Sight::none;
}

IDCaptureState stateOf(Sight sight) {
  switch (sight) {
    case Sight::none:
      break;
    case Sight::moveCloser:
      return {IDCaptureState::MoveCloser{}};
    case Sight::moveAway:
      return {IDCaptureState::MoveAway{}};
    case Sight::alignRectangle:
      return {IDCaptureState::AlignRectangle{}};
    case Sight::tooMuchGlare:
      return {IDCaptureState::TooMuchGlare{}};
    case Sight::found:
      return {IDCaptureState::DetectedBox{}};
  }
  return {IDCaptureState::DetectingBox{}};
}

}  // namespace

bool isComplete(const DetectedData& data) {
  return data.type && data.side && data.ocrStrings && !data.ocrStrings->empty() &&
         (!data.shouldHavePhoto || (data.isPhotoPresent && data.faceImage)) &&
         (!data.shouldHaveMrz || data.mrz) && (!data.shouldHaveBarcode || data.barcode);
}

std::optional<IDCaptureState> DocumentPhase::change(Sight sight, platform::TimePoint now,
                                                    platform::Duration patience) {
  const bool isGone = sight == Sight::none;
  const bool lasts = sights_.lasts(sight, now, isGone ? kPatience : patience,
                                   isGone ? 1 : Persistence<Sight>::kLeastShare);
  // A card in sight is told at once; a complaint must last.
  const bool atOnce = sight == Sight::found || !reported_;
  if (sight == reported_ || (!atOnce && !lasts)) return {};
  reported_ = sight;
  return stateOf(sight);
}

void DocumentPhase::watchFlaw(const std::optional<FlawFound>& flaw, platform::TimePoint now,
                              platform::Duration patience) {
  // Glare has a state of its own.
  const auto found = flaw && flaw->flaw != CardFlaw::tooMuchGlare ? flaw : std::nullopt;
  const auto kind = found ? std::optional(found->flaw) : std::nullopt;
  if (flaws_.lasts(kind, now, patience)) hint_ = found;
}

void DocumentPhase::read(const DetectedData& data, platform::TimePoint now,
                         std::vector<IDCaptureState>& states) {
  if (last_.side && data.side && last_.side != data.side) {
    states.push_back({IDCaptureState::DetectingBox{}});
    states.push_back({IDCaptureState::DetectedBox{}});
  }
  last_ = data;
  states.push_back({IDCaptureState::ClassifiedDocument{data}});
  const bool due = !lastSuccess_ || now - *lastSuccess_ >= kSuccessInterval;
  if (!due || copy_ || !isComplete(data)) return;
  lastSuccess_ = now;
  states.push_back({IDCaptureState::Success{data}});
}

std::vector<IDCaptureState> DocumentPhase::judge(const DocumentView& view, platform::TimePoint now,
                                                 const corvana::IDCapture::Options& limits) {
  std::vector<IDCaptureState> states;
  const auto patience = platform::seconds(limits.patienceSeconds);
  const auto flaw = flawIn(view, limits);
  if (view.reading) copy_ = copyIn(*view.reading, limits);
  if (view.verdict == CardVerdict::none) copy_.reset();
  // A card on the move is not measured, which says nothing of it.
  if (view.verdict != CardVerdict::found || view.quality)
    watchFlaw(flaw ? flaw : copy_, now, patience);
  // Each side begins with an empty frame, also when a card is in view from the start.
  const Sight sight = sightOf(view, flaw);
  if (!reported_ && sight != Sight::none) {
    states.push_back({IDCaptureState::DetectingBox{}});
  }
  if (auto state = change(sight, now, patience)) states.push_back(std::move(*state));
  if (sight == Sight::found && !flaw && view.reading) read(*view.reading, now, states);
  return states;
}

}  // namespace corvana::engine
