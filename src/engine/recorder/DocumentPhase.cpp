#include "engine/recorder/DocumentPhase.h"

namespace corvana::engine {
namespace {

using corvana::DetectedData;
using corvana::IDCaptureState;
using Sight = DocumentPhase::Sight;

Sight sightOf(const DocumentView& view) {
  if (view.tooMuchGlare) return Sight::tooMuchGlare;
  switch (view.verdict) {
    case CardVerdict::none:
      break;
    case CardVerdict::found:
      return Sight::found;
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

std::optional<IDCaptureState> DocumentPhase::change(Sight sight, platform::TimePoint now) {
  if (sight == reported_) {
    pending_.reset();
    return {};
  }
  if (sight != pending_) {
    pending_ = sight;
    pendingSince_ = now;
  }
  // A card in sight is told at once; a complaint must last.
  const bool atOnce = sight == Sight::found || !reported_;
  if (!atOnce && now - pendingSince_ < kPatience) return {};
  reported_ = sight;
  pending_.reset();
  return stateOf(sight);
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
  if (!due || !isComplete(data)) return;
  lastSuccess_ = now;
  states.push_back({IDCaptureState::Success{data}});
}

std::vector<IDCaptureState> DocumentPhase::judge(const DocumentView& view,
                                                 platform::TimePoint now) {
  std::vector<IDCaptureState> states;
  // Each side begins with an empty frame, also when a card is in view from the start.
  const Sight sight = sightOf(view);
  if (!reported_ && sight != Sight::none) {
    states.push_back({IDCaptureState::DetectingBox{}});
  }
  if (auto state = change(sight, now)) states.push_back(std::move(*state));
  if (sight == Sight::found && view.reading) read(*view.reading, now, states);
  return states;
}

}  // namespace corvana::engine
