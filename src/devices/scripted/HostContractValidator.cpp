#include "devices/scripted/HostContractValidator.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace corvana::devices {
namespace {

using Kind = HostEvent::Kind;
using Names = std::array<std::string_view, 11>;

constexpr Names kSelfieStates = {"detectedIssue",
                                 "selfieSuccess",
                                 "selfieTimedOut",
                                 "selfieFailed",
                                 "detectingFace",
                                 "multipleFacesDetected",
                                 "selfieMoveCloser",
                                 "selfieMoveAway",
                                 "alignFace",
                                 "capturingFace",
                                 ""};
constexpr Names kIDStates = {"detectingBox", "detectedBox", "classifiedDocument", "idSuccess",
                             "idTimedOut",   "idFailed",    "autofill",           "tooMuchGlare",
                             "idMoveCloser", "idMoveAway",  "alignRectangle"};
constexpr std::array<std::string_view, 4> kFinalStates = {"selfieTimedOut", "selfieFailed",
                                                          "idTimedOut", "idFailed"};
/// Twice a second, less a hair for the rounding of frame times.
constexpr platform::Duration kSuccessInterval = std::chrono::milliseconds(499);
/// The delayed steps of the module's animations are over by then.
constexpr platform::Duration kQuietAfterRetry = std::chrono::milliseconds(1999);
constexpr platform::Duration kQuietBeforeReading = std::chrono::milliseconds(499);
constexpr platform::Duration kRepetition = std::chrono::seconds(1);

template <class Array>
bool contains(const Array& names, const std::string& name) {
  return !name.empty() && std::ranges::find(names, name) != names.end();
}

std::string timeText(platform::TimePoint time) {
  std::array<char, 32> text{};
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
  // Put together from integers: a locale would put its own decimal sign.
  std::snprintf(text.data(), text.size(), "%lld.%03lld",
                static_cast<long long>(milliseconds / 1000),
                static_cast<long long>(milliseconds % 1000));
  return text.data();
}

}  // namespace

bool HostContractValidator::isKnownState(const std::string& name) {
  return contains(kSelfieStates, name) || contains(kIDStates, name);
}

HostContractValidator::HostContractValidator(const HostContract& contract,
                                             platform::TimePoint start)
    : contract_(contract), now_(start), modeStart_(start) {}

void HostContractValidator::breach(const std::string& sentence) {
  breaches_.push_back("At " + timeText(now_) + " s: " + sentence + ".");
}

void HostContractValidator::observe(const HostEvent& event) {
  now_ = event.time;
  checkTimeOut();
  checkRepetition();
  switch (event.kind) {
    case Kind::state:
      return observeState(event.name);
    case Kind::liveFace:
      return observeLiveFace(event.name);
    case Kind::mode:
      return observeMode(event.name);
    case Kind::call:
      return observeCall(event.name);
    case Kind::completion:
      return observeCompletion(event);
    case Kind::speech:
      return observeSpeech(event);
    case Kind::frame:
      return observeFrame(event.name);
  }
}

void HostContractValidator::end(platform::TimePoint time) {
  now_ = time;
  checkTimeOut();
  checkRepetition();
  if (openStops_ > 0) breach("the film was stopped, and its completion never came");
}

std::optional<platform::Duration> HostContractValidator::timeOut() const {
  if (mode_ == "selfieCapture") return contract_.selfieTimeOut;
  if (mode_ == "idCapture") return contract_.idTimeOut;
  return {};
}

void HostContractValidator::checkTimeOut() {
  const auto limit = timeOut();
  if (!limit || !timeOutDue_ || !paused_.empty()) return;
  if (now_ - modeStart_ <= *limit + contract_.tolerance) return;
  timeOutDue_ = false;
  breach("the mode " + mode_ + " has lasted longer than its time-out, which never came");
}

void HostContractValidator::checkRepetition() {
  if (!unanswered_ || now_ - *unanswered_ <= kRepetition + contract_.tolerance) return;
  unanswered_.reset();
  breach(paused_ + " was neither answered nor repeated");
}

void HostContractValidator::pause(const std::string& reason) {
  paused_ = reason;
  timeOutDue_ = false;
}

void HostContractValidator::requireReportable(const std::string& what) {
  if (!paused_.empty()) {
    breach(what + " was reported after " + paused_ + ", before a retry");
  } else if (owesMode_) {
    breach(what + " was reported after a retry that did not return to the selfie mode");
    owesMode_ = false;
  } else if (owesSpeech_) {
    breach(what + " was reported after a retry that did not start the recogniser again");
    owesSpeech_ = false;
  }
}

void HostContractValidator::observeState(const std::string& name) {
  if (unanswered_ && name == paused_) {
    unanswered_ = now_;
    return;
  }
  requireReportable(name);
  if (contains(kSelfieStates, name)) {
    observeSelfieState(name);
  } else if (contains(kIDStates, name)) {
    observeIDState(name);
  } else {
    breach("\"" + name + "\" is no state");
  }
  if (!contains(kFinalStates, name)) return;
  const auto limit = timeOut();
  const bool isTimeOut = name.ends_with("TimedOut");
  if (isTimeOut && limit && paused_.empty() && now_ - modeStart_ < *limit - contract_.tolerance) {
    breach(name + " came before its time, which starts afresh with each mode and each retry");
  }
  pause(name);
  unanswered_ = now_;
}

void HostContractValidator::observeSelfieState(const std::string& name) {
  if (mode_ != "selfieCapture") breach(name + " was reported in the mode " + mode_);
  if (name == "selfieSuccess") observeSuccess(name);
}

void HostContractValidator::observeIDState(const std::string& name) {
  if (mode_ != "idCapture") breach(name + " was reported in the mode " + mode_);
  if (name == "detectingBox") {
    boxSought_ = true;
    boxFound_ = classified_ = false;
  } else if (name == "detectedBox") {
    if (!boxSought_) breach("detectedBox was reported before detectingBox");
    boxFound_ = true;
  } else if (name == "classifiedDocument") {
    if (!boxFound_) breach("classifiedDocument was reported before detectedBox");
    classified_ = true;
  } else if (name == "idSuccess") {
    if (!classified_) breach("idSuccess was reported for a card that was not classified before it");
    classified_ = false;
    observeSuccess(name);
  }
}

void HostContractValidator::observeSuccess(const std::string& name) {
  if (lastSuccess_ && now_ - *lastSuccess_ < kSuccessInterval) {
    breach(name + " was reported more than twice a second");
  }
  lastSuccess_ = now_;
  if (retried_ && now_ - *retried_ < kQuietAfterRetry) {
    breach(name + " was reported less than two seconds after a retry");
  }
}

void HostContractValidator::observeLiveFace(const std::string& name) {
  requireReportable("the live face");
  if (name != "lost") return;
  if (mode_ == "selfieCapture") breach("a live face was lost before a selfie was accepted");
  if (mode_ == "readingText" && now_ - modeStart_ < kQuietBeforeReading) {
    breach("a live face was lost in the first half second of the mode readingText");
  }
  pause("the loss of the live face");
}

void HostContractValidator::observeMode(const std::string& name) {
  if (owesMode_ && name != "selfieCapture") {
    breach("a retry led to the mode " + name + " instead of the selfie mode");
  }
  owesMode_ = false;
  mode_ = name;
  modeStart_ = now_;
  timeOutDue_ = paused_.empty();
  boxSought_ = boxFound_ = classified_ = false;
  lastSuccess_.reset();
}

void HostContractValidator::observeCall(const std::string& name) {
  if (name == "stopVideoWriter") {
    unanswered_.reset();
    pause("stopVideoWriter");
  }
  if (name != "retry") return;
  retried_ = now_;
  paused_.clear();
  owesMode_ = true;
  owesSpeech_ = speech_ != Speech::unknown;
  frameSize_.clear();
}

void HostContractValidator::observeCompletion(const HostEvent& event) {
  if (event.name == "expected") {
    ++openStops_;
    return;
  }
  if (!event.onMainQueue) breach("the film's completion came on another queue than the main one");
  if (openStops_ == 0) {
    breach("the film's completion came twice, or though nobody had asked for it");
  } else {
    --openStops_;
  }
}

void HostContractValidator::observeSpeech(const HostEvent& event) {
  if (event.name == "start") {
    speech_ = Speech::running;
    owesSpeech_ = false;
  } else if (event.name == "stop") {
    // The module also stops a recogniser that it has found unavailable and never started.
    if (speech_ != Speech::unknown) speech_ = Speech::stopped;
  } else {
    if (!event.onMainQueue) breach("a speech " + event.name + " came on another queue");
    if (speech_ != Speech::running) {
      breach("a speech " + event.name + " came while the recogniser was not started");
    }
  }
}

void HostContractValidator::observeFrame(const std::string& size) {
  if (!frameSize_.empty() && size != frameSize_) {
    breach("the film's frames changed from " + frameSize_ + " to " + size);
  }
  frameSize_ = size;
}

}  // namespace corvana::devices
