#include "app/recheck/Judgements.h"

#include <algorithm>

namespace corvana::app {
namespace {

/// The last of each name in its phase.
class LastJudgements {
 public:
  void put(Judgement judgement) {
    const auto same = std::ranges::find_if(all_, [&](const Judgement& other) {
      return other.phase == judgement.phase && other.name == judgement.name;
    });
    if (same != all_.end()) all_.erase(same);
    all_.push_back(std::move(judgement));
  }
  std::vector<Judgement> take() { return std::move(all_); }

 private:
  std::vector<Judgement> all_;
};

/// Whether a state ends what its phase is for, one way or the other. All others come and go with
/// the hand that holds the card.
bool isFinal(const std::string& state) {
  static constexpr const char* kFinal[] = {"selfieSuccess", "selfieTimedOut", "selfieFailed",
                                           "idSuccess",     "idTimedOut",     "idFailed"};
  return std::ranges::find(kFinal, state) != std::end(kFinal);
}

std::optional<Judgement> judgementOf(const RunEvent& event, const std::string& phase) {
  Judgement judgement{phase, event.name, event.value, event.threshold, event.passed, {}};
  if (event.event == "decision") return judgement;
  if (event.event == "sign" && event.name == "samePerson") return judgement;
  judgement = {phase, event.event, {}, {}, {}, event.name};
  if (event.event == "liveness" && event.name != "asked") return judgement;
  if (event.event == "state" && isFinal(event.name)) return judgement;
  if (event.event == "liveFace" && event.name == "lost") {
    judgement.word += " " + event.cause;
    return judgement;
  }
  return std::nullopt;
}

/// How long a phase took that came to its end, against its time-out.
Judgement timeOf(const std::string& phase, double seconds, const nlohmann::json& options) {
  Judgement judgement{phase, "time", seconds, {}, {}, {}};
  const auto limit = options.find(phase + ".timeOutSeconds");
  if (limit != options.end() && limit->is_number()) judgement.limit = limit->get<double>();
  return judgement;
}

}  // namespace

std::vector<Judgement> judgementsOf(const RunEvents& events, const nlohmann::json& options) {
  LastJudgements last;
  std::string phase;
  double began = events.start();
  for (const RunEvent& event : events.all) {
    if (event.event == "mode") {
      if (!phase.empty()) last.put(timeOf(phase, event.t - began, options));
      phase = event.name;
      began = event.t;
    } else if (auto judgement = judgementOf(event, phase)) {
      last.put(std::move(*judgement));
    }
  }
  return last.take();
}

std::string endingOf(const RunEvents& events, bool hasResult) {
  if (hasResult) return "result";
  std::string reason;
  for (const RunEvent& event : events.all) {
    const bool isLoss = event.event == "liveFace" && event.name == "lost";
    const bool isState = event.event == "state" && isFinal(event.name);
    const bool isMiss = event.event == "decision" && !event.passed.value_or(true);
    if (isLoss || isState || isMiss) reason = isLoss ? "the live face was lost" : event.name;
    if (event.event == "retry" && !event.text.empty()) return "retry after " + reason;
  }
  return {};
}

std::optional<double> endOfReading(const RunEvents& events) {
  for (const RunEvent& event : events.all) {
    const bool counted = event.event == "decision" && event.name == "spokenWords";
    if (counted) return event.t - events.start();
  }
  return std::nullopt;
}

}  // namespace corvana::app
