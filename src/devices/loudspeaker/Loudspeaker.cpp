#include "devices/loudspeaker/Loudspeaker.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <gst/app/gstappsrc.h>

#include "devices/gstreamer/GstSupport.h"

namespace corvana::devices {
namespace {

void feed(GstAppSrc* source, std::span<const std::int16_t> samples) {
  GstBuffer* buffer = gst_buffer_new_memdup(samples.data(), samples.size_bytes());
  gst_app_src_push_buffer(source, buffer);
  gst_app_src_end_of_stream(source);
}

}  // namespace

class Loudspeaker::Sound {
 public:
  Sound(GstPtr<GstElement> pipeline, std::uint64_t turn)
      : turn_(turn), pipeline_(std::move(pipeline)) {}
  /// A device may be slow to close, which is left to a thread of GStreamer.
  ~Sound() {
    GstElement* pipeline = pipeline_.release();
    gst_element_call_async(
        pipeline, [](GstElement* it, gpointer) { gst_element_set_state(it, GST_STATE_NULL); },
        nullptr, nullptr);
    gst_object_unref(pipeline);
  }
  Sound(const Sound&) = delete;
  Sound& operator=(const Sound&) = delete;

  void start() { gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING); }

  std::uint64_t turn() const { return turn_; }

 private:
  std::uint64_t turn_;
  GstPtr<GstElement> pipeline_;
};

bool Loudspeaker::isThere() {
  std::error_code error;
  if (std::filesystem::exists("/dev/snd", error) || std::getenv("PULSE_SERVER")) return true;
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  return folder && std::filesystem::exists(std::filesystem::path(folder) / "pulse/native", error);
}

Loudspeaker::Loudspeaker() = default;
Loudspeaker::~Loudspeaker() = default;

void Loudspeaker::play(std::uint64_t turn, const std::string& source,
                       std::span<const std::int16_t> samples) {
  auto pipeline = launch(source + " ! audioconvert ! audioresample ! autoaudiosink");
  if (!pipeline) return;
  if (!samples.empty()) feed(GST_APP_SRC(child(pipeline, "source")), samples);
  {
    const std::lock_guard lock(mutex_);
    if (turn != turn_) return;
    sound_ = std::make_unique<Sound>(std::move(pipeline), turn);
    sound_->start();
  }
  // Whoever wanted silence while the device was being opened did not wait for it.
  const std::lock_guard lock(mutex_);
  if (sound_ && sound_->turn() != turn_) sound_.reset();
}

void Loudspeaker::stop() {
  ++turn_;
  const std::unique_lock lock(mutex_, std::try_to_lock);
  if (lock) sound_.reset();
}

}  // namespace corvana::devices
