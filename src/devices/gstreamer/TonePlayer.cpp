#include "devices/gstreamer/TonePlayer.h"

#include <filesystem>
#include <mutex>
#include <system_error>

#include "devices/gstreamer/GstSupport.h"

namespace devices {
namespace {

/// 880 Hz for 0.15 s, softly.
constexpr const char* kTone =
    "audiotestsrc freq=880 volume=0.25 samplesperbuffer=1200 num-buffers=6 ! "
    "audio/x-raw,rate=48000 ! audioconvert ! audioresample ! autoaudiosink";

/// Without a sound card the system's libraries would complain at length on standard error.
bool hasSoundCard() {
  std::error_code error;
  return std::filesystem::exists("/dev/snd", error);
}

}  // namespace

/// Opening the loudspeaker takes time, so this is done by a worker.
class TonePlayer::Voice {
 public:
  void sound() {
    const std::lock_guard lock(mutex_);
    pipeline_ = launch(kTone);
    if (pipeline_) gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
  }

 private:
  std::mutex mutex_;
  GstPtr<GstElement> pipeline_;
};

TonePlayer::TonePlayer(platform::RunLoop& loop) : loop_(loop) {
  if (hasSoundCard()) voice_ = std::make_shared<Voice>();
}

TonePlayer::~TonePlayer() = default;

void TonePlayer::play() {
  if (!voice_) return;
  loop_.globalQueue(platform::QualityOfService::userInitiated).async([voice = voice_] {
    voice->sound();
  });
}

}  // namespace devices
