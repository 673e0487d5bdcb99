#include "devices/live/LiveMicrophone.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

constexpr int kSampleRate = 48000;
/// One second.
constexpr std::size_t kMostBlocks = 50;

/// The last element counts samples, so that the buffers follow each other without a seam; it
/// follows the device's clock again when they differ for a while.
const char* const kSoundConversion =
    "audioconvert ! audioresample ! audio/x-raw,format=S16LE,rate=48000,channels=1 ! "
    "audiobuffersplit output-buffer-duration=1/50 alignment-threshold=20000000";

}  // namespace

LiveMicrophone::LiveMicrophone(platform::RunLoop& loop, LiveSource source) : name_(source.name) {
  LiveStream::Setup setup;
  setup.kind = "microphone";
  setup.source = std::move(source);
  setup.line = kSoundConversion;
  setup.mostWaiting = kMostBlocks;
  setup.convert = [this](GstSample* sample) { return convert(sample); };
  stream_ = std::make_shared<LiveStream>(loop, std::move(setup));
}

platform::Expected<void> LiveMicrophone::open(platform::Duration patience) {
  return stream_->open(patience);
}

LiveStream::Sample LiveMicrophone::convert(GstSample* sample) {
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  auto converted = std::make_shared<platform::CMSampleBuffer>();
  converted->samples.resize(gst_buffer_get_size(buffer) / sizeof(std::int16_t));
  gst_buffer_extract(buffer, 0, converted->samples.data(),
                     converted->samples.size() * sizeof(std::int16_t));
  converted->sampleRate = kSampleRate;
  converted->channels = 1;
  converted->duration = platform::seconds(double(converted->samples.size()) / kSampleRate);
  const bool silent = std::ranges::all_of(converted->samples, [](auto s) { return s == 0; });
  silentSamples_ = silent ? silentSamples_ + converted->samples.size() : 0;
  return converted;
}

platform::Duration LiveMicrophone::silentFor() const {
  return platform::seconds(double(silentSamples_) / kSampleRate);
}

}  // namespace corvana::devices
