#include "devices/loudspeaker/EspeakSynthesizer.h"

#include <utility>

#include <gst/app/gstappsink.h>

#include "devices/gstreamer/GstSupport.h"
#include "devices/gstreamer/MediaElements.h"
#include "devices/loudspeaker/Loudspeaker.h"

namespace corvana::devices {
namespace {

constexpr const char* kElement = "espeak";
/// How often it is looked whether the voice has failed.
constexpr GstClockTime kPullSlice = 200 * GST_MSECOND;

std::string format() {
  return "audio/x-raw,format=S16LE,layout=interleaved,channels=1,rate=" +
         std::to_string(EspeakSynthesizer::kSampleRate);
}

void append(const GstSample& sample, std::vector<std::int16_t>& samples) {
  GstBuffer* buffer = gst_sample_get_buffer(const_cast<GstSample*>(&sample));
  const std::size_t before = samples.size();
  const std::size_t bytes = gst_buffer_get_size(buffer);
  samples.resize(before + bytes / sizeof(std::int16_t));
  gst_buffer_extract(buffer, 0, &samples[before], bytes);
}

bool hasFailed(const GstPtr<GstElement>& pipeline) {
  const GstPtr<GstBus> bus(gst_element_get_bus(pipeline.get()));
  return GstPtr<GstMessage>(gst_bus_pop_filtered(bus.get(), GST_MESSAGE_ERROR)) != nullptr;
}

}  // namespace

std::optional<std::string> EspeakSynthesizer::fault() {
  if (!isElementInstalled(kElement)) {
    return "Hints can't be spoken: install the package gstreamer1.0-espeak.";
  }
  if (!Loudspeaker::isThere()) {
    return "Hints can't be spoken: this machine has no loudspeaker; leave out spoken hints.";
  }
  return std::nullopt;
}

EspeakSynthesizer::EspeakSynthesizer(platform::RunLoop& loop, std::string voice)
    : voice_(std::move(voice)),
      queue_(loop.makeSerialQueue("SpeechSynthesizerQueue")),
      loudspeaker_(std::make_shared<Loudspeaker>()) {}

void EspeakSynthesizer::speak(const std::string& utterance) {
  loudspeaker_->stop();
  queue_->async(
      [loudspeaker = loudspeaker_, turn = loudspeaker_->nextTurn(), utterance, voice = voice_] {
        if (!loudspeaker->isTurn(turn)) return;
        const auto sound = samples(utterance, voice);
        if (sound.empty()) return;
        loudspeaker->play(turn, "appsrc name=source format=time caps=" + format(), sound);
      });
}

void EspeakSynthesizer::stopSpeaking() {
  loudspeaker_->stop();
}

std::vector<std::int16_t> EspeakSynthesizer::samples(const std::string& utterance,
                                                     const std::string& voice) {
  const auto pipeline = launch(std::string(kElement) + " name=voice ! audioconvert ! " + format() +
                               " ! appsink name=sink sync=false");
  if (!pipeline) return {};
  g_object_set(child(pipeline, "voice"), "text", utterance.c_str(), "voice", voice.c_str(),
               nullptr);
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  std::vector<std::int16_t> samples;
  GstAppSink* sink = GST_APP_SINK(child(pipeline, "sink"));
  while (!gst_app_sink_is_eos(sink)) {
    const GstPtr<GstSample> sample(gst_app_sink_try_pull_sample(sink, kPullSlice));
    if (sample) {
      append(*sample, samples);
    } else if (hasFailed(pipeline)) {
      return {};
    }
  }
  return samples;
}

}  // namespace corvana::devices
