#include "engine/speech/Transcriber.h"

#include <algorithm>
#include <utility>

namespace corvana::engine {
namespace {

/// 100 ms: results come soon enough to follow a reader, and the search is entered seldom.
constexpr std::size_t kChunkSamples = SpeechModel::kSampleRate / 10;

}  // namespace

Transcriber::Transcriber(SpeechModel& model) : model_(model) {
  model_.reset();
  model_.startUtterance();
}

Transcriber::~Transcriber() {
  model_.endUtterance();
}

void Transcriber::append(std::span<const std::int16_t> samples, const Report& report) {
  while (!samples.empty()) {
    const std::size_t taken = std::min(kChunkSamples - chunk_.size(), samples.size());
    const auto next = samples.first(taken);
    chunk_.insert(chunk_.end(), next.begin(), next.end());
    samples = samples.subspan(taken);
    if (chunk_.size() == kChunkSamples) decodeChunk(report);
  }
}

void Transcriber::decodeChunk(const Report& report) {
  model_.process(chunk_);
  chunk_.clear();
  const bool ended = heardSpeech_ && !model_.inSpeech();
  heardSpeech_ = model_.inSpeech();
  if (ended) model_.endUtterance();
  std::vector<std::string> words = model_.words();
  const bool changed = words != current_;
  current_ = std::move(words);
  if (changed || (ended && !current_.empty())) report(transcript(ended));
  if (!ended) return;
  finished_.insert(finished_.end(), current_.begin(), current_.end());
  current_.clear();
  model_.startUtterance();
}

platform::SFSpeechRecognitionResult Transcriber::transcript(bool isFinal) const {
  platform::SFSpeechRecognitionResult result;
  result.isFinal = isFinal;
  for (const auto* words : {&finished_, &current_}) {
    for (const std::string& word : *words)
      result.bestTranscription.segments.push_back({word});
  }
  return result;
}

}  // namespace corvana::engine
