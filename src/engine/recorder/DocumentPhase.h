#pragma once

#include <optional>
#include <vector>

#include "corvana/IDCapture.h"
#include "engine/recorder/FrameAnalyzer.h"
#include "engine/recorder/Persistence.h"

namespace corvana::engine {

/// Turns what is seen frame by frame into the states of document capture, and into hints where
/// there is no state for what is wrong. For each side the order is detectingBox, detectedBox,
/// classifiedDocument, success; a card is classified before each success, and success comes at most
/// twice a second and not while the card has a flaw or looks like a copy. Pure.
class DocumentPhase {
 public:
  std::vector<corvana::IDCaptureState> judge(const DocumentView& view, platform::TimePoint now,
                                             const corvana::IDCapture::Options& limits);
  /// What was read last; empty when nothing was.
  const corvana::DetectedData& last() const { return last_; }
  /// Why the card in sight is not read, where no state says so; absent when nothing is wrong.
  const std::optional<FlawFound>& hint() const { return hint_; }

  /// What the user is told of the card's place and light.
  enum class Sight { none, moveCloser, moveAway, alignRectangle, tooMuchGlare, found };

  static constexpr platform::Duration kSuccessInterval = std::chrono::milliseconds(500);
  /// How long a card may be out of sight before the user is told to show it: a hand's tremor hides
  /// its outline for a frame or two.
  static constexpr platform::Duration kPatience = std::chrono::milliseconds(400);

 private:
  std::optional<corvana::IDCaptureState> change(Sight sight, platform::TimePoint now,
                                                platform::Duration patience);
  void watchFlaw(const std::optional<FlawFound>& flaw, platform::TimePoint now,
                 platform::Duration patience);
  void read(const corvana::DetectedData& data, platform::TimePoint now,
            std::vector<corvana::IDCaptureState>& states);

  std::optional<Sight> reported_;
  Persistence<Sight> sights_;
  Persistence<std::optional<CardFlaw>> flaws_;
  std::optional<FlawFound> hint_;
  /// Why the card in sight is no card to accept, as it was last read.
  std::optional<FlawFound> copy_;
  std::optional<platform::TimePoint> lastSuccess_;
  corvana::DetectedData last_;
};

/// Whether everything that such a card must carry was found on it.
bool isComplete(const corvana::DetectedData& data);

}  // namespace corvana::engine
