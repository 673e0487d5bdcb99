#include "devices/loudspeaker/TonePlayer.h"

#include "devices/loudspeaker/Loudspeaker.h"

namespace corvana::devices {
namespace {

/// 880 Hz for 0.15 s, softly.
constexpr const char* kTone =
    "audiotestsrc freq=880 volume=0.25 samplesperbuffer=1200 num-buffers=6 ! "
    "audio/x-raw,rate=48000";

}  // namespace

TonePlayer::TonePlayer(platform::RunLoop& loop) : loop_(loop) {
  if (Loudspeaker::isThere()) loudspeaker_ = std::make_shared<Loudspeaker>();
}

void TonePlayer::play() {
  if (!loudspeaker_) return;
  loop_.globalQueue(platform::QualityOfService::userInitiated)
      .async([loudspeaker = loudspeaker_, turn = loudspeaker_->nextTurn()] {
        loudspeaker->play(turn, kTone);
      });
}

}  // namespace corvana::devices
