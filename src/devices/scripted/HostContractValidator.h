#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/Time.h"

namespace corvana::devices {

/// Something that passed between a recorder and the module, in the order in which it happened.
struct HostEvent {
  enum class Kind {
    state,       ///< reported: "detectingFace", "idSuccess" and so on, see `isKnownState`
    liveFace,    ///< reported: "found" or "lost"
    mode,        ///< the new mode: "selfieCapture", "idCapture", "readingText", "liveFaceLost"
    call,        ///< asked of the recorder: "stopVideoWriter", "retry", "typeMismatch"
    completion,  ///< of the film: "expected" when one was asked for, "film" or "error" when it came
    speech,      ///< "start", "stop", "result", "error"; a stream may have none of these
    frame,       ///< a frame went into the film: its size as "720x1280"
  };

  platform::TimePoint time;
  Kind kind = Kind::state;
  std::string name = {};
  bool onMainQueue = true;  ///< where a completion or speech came
};

/// What a host has promised in numbers; an absent limit is not checked.
struct HostContract {
  std::optional<platform::Duration> selfieTimeOut = {};
  std::optional<platform::Duration> idTimeOut = {};
  /// How early or late a time-out may come.
  platform::Duration tolerance = std::chrono::seconds(1);
};

/// Watches a recorder and states each breach of docs/host-contract.md as one sentence with its
/// time. Knows no host: the scripted one and a real one are told to it alike. One thread.
class HostContractValidator {
 public:
  /// `start` is when the recorder was made.
  HostContractValidator(const HostContract& contract, platform::TimePoint start);

  void observe(const HostEvent& event);
  /// Ends the run: states as a breach whatever should have come by `time` and has not.
  void end(platform::TimePoint time);
  const std::vector<std::string>& breaches() const { return breaches_; }

  /// Whether it is the name of a state, as the events of a run give it.
  static bool isKnownState(const std::string& name);

 private:
  enum class Speech { unknown, stopped, running };

  void breach(const std::string& sentence);
  void observeState(const std::string& name);
  void observeSelfieState(const std::string& name);
  void observeIDState(const std::string& name);
  void observeSuccess(const std::string& name);
  void observeLiveFace(const std::string& name);
  void observeMode(const std::string& name);
  void observeCall(const std::string& name);
  void observeCompletion(const HostEvent& event);
  void observeSpeech(const HostEvent& event);
  void observeFrame(const std::string& size);
  void requireReportable(const std::string& what);
  void checkTimeOut();
  void checkRepetition();
  std::optional<platform::Duration> timeOut() const;
  void pause(const std::string& reason);

  HostContract contract_;
  platform::TimePoint now_;
  std::vector<std::string> breaches_;

  std::string mode_ = "selfieCapture";
  platform::TimePoint modeStart_;
  bool timeOutDue_ = true;
  /// Why nothing may be reported at the moment; empty: it may.
  std::string paused_;
  /// What a retry owes before the first report.
  bool owesMode_ = false;
  bool owesSpeech_ = false;
  bool boxSought_ = false;
  bool boxFound_ = false;
  bool classified_ = false;
  std::optional<platform::TimePoint> lastSuccess_;
  std::optional<platform::TimePoint> retried_;
  /// When a final state was reported that no `stopVideoWriter` has answered yet.
  std::optional<platform::TimePoint> unanswered_;
  int openStops_ = 0;
  Speech speech_ = Speech::unknown;
  std::string frameSize_;
};

}  // namespace corvana::devices
