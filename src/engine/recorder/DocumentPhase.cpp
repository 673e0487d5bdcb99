#include "engine/recorder/DocumentPhase.h"

namespace engine {
namespace {

using corvana::DetectedData;
using corvana::IDCaptureState;
using Verdict = DocumentView::Verdict;

IDCaptureState stateOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::none:
      break;
    case Verdict::moveCloser:
      return {IDCaptureState::MoveCloser{}};
    case Verdict::moveAway:
      return {IDCaptureState::MoveAway{}};
    case Verdict::alignRectangle:
      return {IDCaptureState::AlignRectangle{}};
    case Verdict::tooMuchGlare:
      return {IDCaptureState::TooMuchGlare{}};
    case Verdict::found:
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

std::optional<IDCaptureState> DocumentPhase::outlineState(const DocumentView& view,
                                                          platform::TimePoint now) {
  if (view.verdict == reported_) {
    pending_.reset();
    return {};
  }
  if (view.verdict != pending_) {
    pending_ = view.verdict;
    pendingSince_ = now;
  }
  // A card in sight is told at once; a complaint must last.
  const bool atOnce = view.verdict == Verdict::found || !reported_;
  if (!atOnce && now - pendingSince_ < kPatience) return {};
  reported_ = view.verdict;
  pending_.reset();
  return stateOf(view.verdict);
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
  if (!reported_ && view.verdict != Verdict::none) {
    states.push_back({IDCaptureState::DetectingBox{}});
  }
  if (auto state = outlineState(view, now)) states.push_back(std::move(*state));
  if (view.verdict == Verdict::found && view.reading) read(*view.reading, now, states);
  return states;
}

}  // namespace engine
