#include "engine/speech/MonoResampler.h"

#include <samplerate.h>

#include "platform/foundation/Require.h"

namespace corvana::engine {
namespace {

constexpr float kFullScale = 32768.0F;

std::vector<float> mono(const platform::CMSampleBuffer& buffer) {
  const auto channels = static_cast<std::size_t>(buffer.channels);
  std::vector<float> result(buffer.samples.size() / channels);
  for (std::size_t i = 0; i < result.size(); ++i) {
    float sum = 0;
    for (std::size_t c = 0; c < channels; ++c)
      sum += static_cast<float>(buffer.samples[i * channels + c]);
    result[i] = sum / (kFullScale * static_cast<float>(channels));
  }
  return result;
}

}  // namespace

struct MonoResampler::Converter {
  SRC_STATE* state = nullptr;

  Converter() {
    int error = 0;
    state = src_new(SRC_SINC_MEDIUM_QUALITY, 1, &error);
    platform::require(state != nullptr, "the sample rate converter cannot be made");
  }
  ~Converter() { src_delete(state); }
};

MonoResampler::MonoResampler(int outputRate)
    : outputRate_(outputRate), converter_(std::make_unique<Converter>()) {}

MonoResampler::~MonoResampler() = default;

void MonoResampler::reset() {
  src_reset(converter_->state);
}

std::vector<std::int16_t> MonoResampler::convert(const platform::CMSampleBuffer& buffer) {
  const double ratio = static_cast<double>(outputRate_) / buffer.sampleRate;
  if (buffer.channels < 1 || buffer.sampleRate < 1 || !src_is_valid_ratio(ratio)) return {};
  if (buffer.sampleRate != inputRate_) {
    inputRate_ = buffer.sampleRate;
    reset();
  }
  std::vector<float> input = mono(buffer);
  if (inputRate_ != outputRate_) {
    // The converter may give back a little more than the ratio when it lets go of what it held.
    std::vector<float> output(static_cast<std::size_t>(static_cast<double>(input.size()) * ratio) +
                              64);
    SRC_DATA data{};
    data.data_in = input.data();
    data.input_frames = static_cast<long>(input.size());
    data.data_out = output.data();
    data.output_frames = static_cast<long>(output.size());
    data.src_ratio = ratio;
    src_process(converter_->state, &data);
    output.resize(static_cast<std::size_t>(data.output_frames_gen));
    input = std::move(output);
  }
  std::vector<std::int16_t> samples(input.size());
  src_float_to_short_array(input.data(), samples.data(), static_cast<int>(input.size()));
  return samples;
}

}  // namespace corvana::engine
