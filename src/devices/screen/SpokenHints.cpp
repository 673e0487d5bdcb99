#include "devices/screen/SpokenHints.h"

#include <utility>

namespace corvana::devices {
namespace {

/// One after the other, with a pause between.
std::string joined(const std::string& first, const std::string& second) {
  return first.empty() || second.empty() ? first + second : first + ". " + second;
}

}  // namespace

SpokenHints::SpokenHints(platform::RunLoop& loop, platform::SpeechSynthesizer& voice)
    : loop_(loop),
      voice_(voice),
      reporter_(loop, [this](const FlowEvent& event) { happened(event); }) {}

SpokenHints::~SpokenHints() {
  voice_.stopSpeaking();
}

void SpokenHints::happened(const FlowEvent& event) {
  switch (event.kind) {
    case FlowEvent::Kind::screen:
      caption_ = prompt_ = hint_ = page_ = {};
      voice_.stopSpeaking();
      break;
    case FlowEvent::Kind::caption:
      show(caption_, event.text);
      break;
    case FlowEvent::Kind::prompt:
      show(prompt_, event.text);
      break;
    case FlowEvent::Kind::hint:
      show(hint_, event.text);
      break;
    case FlowEvent::Kind::retry:
      // Whatever it interrupts is over.
      reading_ = false;
      show(page_, event.text);
      break;
    case FlowEvent::Kind::alert:
      show(page_, event.text);
      break;
    case FlowEvent::Kind::text:
      reading_ = !event.text.empty();
      if (reading_) voice_.stopSpeaking();
      break;
    default:
      break;
  }
}

void SpokenHints::show(Place& place, const std::string& words) {
  // A prompt of another colour is the same prompt.
  if (place.words == words) return;
  place = {words, !words.empty()};
  speakSoon();
}

void SpokenHints::speakSoon() {
  loop_.mainQueue().asyncAfter(kSettling,
                               [this, change = ++changes_, alive = std::weak_ptr(alive_)] {
                                 if (!alive.expired() && change == changes_) speak();
                               });
}

std::string SpokenHints::take(Place& place) {
  if (!std::exchange(place.unsaid, false)) return {};
  const platform::TimePoint now = loop_.now();
  const auto last = said_.find(place.words);
  if (last != said_.end() && now - last->second < kRepetition) return {};
  said_[place.words] = now;
  return place.words;
}

void SpokenHints::speak() {
  if (reading_) {
    caption_.unsaid = prompt_.unsaid = hint_.unsaid = page_.unsaid = false;
    return;
  }
  const bool covered = !page_.words.empty();
  const std::string words =
      covered ? take(page_) : joined(joined(take(caption_), take(prompt_)), take(hint_));
  if (!words.empty()) voice_.speak(words);
}

}  // namespace corvana::devices
