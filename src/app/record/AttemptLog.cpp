#include "app/record/AttemptLog.h"

#include <map>
#include <utility>

#include "app/record/EventLog.h"

namespace corvana::app {
namespace {

using engine::RecorderEvent;
using nlohmann::ordered_json;
using Kind = RecorderEvent::Kind;

constexpr const char* kAccepted = "accepted";

/// The part of the flow that a mode of the recorder begins; empty when it begins none.
std::string phaseOf(const std::string& mode) {
  static const std::map<std::string, std::string> kPhases{
      {"selfieCapture", "selfie"}, {"idCapture", "document"}, {"readingText", "reading"}};
  const auto phase = kPhases.find(mode);
  return phase == kPhases.end() ? "" : phase->second;
}

/// How a state ends what is under way; empty when it does not.
std::string endBy(const std::string& state) {
  if (state == "selfieTimedOut" || state == "idTimedOut") return "timedOut";
  if (state == "selfieFailed" || state == "idFailed") return "failed";
  return {};
}

ordered_json detailsOf(const RecorderEvent& event) {
  ordered_json details = ordered_json::object();
  for (const auto& detail : event.details)
    details[detail.first] = eventValue(detail.second);
  return details;
}

}  // namespace

void AttemptLog::begin(const std::string& mode) {
  // A mode that begins while another is under way says that what the other wanted was found.
  end(kAccepted);
  if (const auto phase = phaseOf(mode); !phase.empty()) open_ = Attempt{phase, loop_.now()};
}

void AttemptLog::end(const std::string& reason) {
  const auto ended = std::exchange(open_, std::nullopt);
  if (!ended) return;
  const auto seconds = [this](platform::TimePoint time) {
    return eventNumber(platform::inSeconds(time - start_));
  };
  ordered_json attempt{{"run", run_},
                       {"phase", ended->phase},
                       {"from", seconds(ended->from)},
                       {"to", seconds(loop_.now())},
                       {"reason", reason}};
  if (reason != kAccepted && !ended->lastState.empty()) attempt["lastState"] = ended->lastState;
  if (reason != kAccepted && !ended->issue.empty()) attempt["issue"] = ended->issue;
  attempt["figures"] = ordered_json::array();
  for (const std::string& name : ended->names)
    attempt["figures"].push_back(ended->figures.at(name));
  attempts_.push_back(std::move(attempt));
}

void AttemptLog::measure(const std::string& name, ordered_json figure) {
  if (!open_ || !figure.contains("threshold")) return;
  figure.erase("step");
  ordered_json named{{"name", name}};
  named.update(figure);
  if (!open_->figures.contains(name)) open_->names.push_back(name);
  open_->figures[name] = std::move(named);
}

void AttemptLog::sawState(const RecorderEvent& event) {
  if (!open_) return;
  if (const auto reason = endBy(event.name); !reason.empty()) return end(reason);
  open_->lastState = event.name;
  const ordered_json details = detailsOf(event);
  open_->issue = details.value("issue", "");
}

void AttemptLog::happened(const RecorderEvent& event) {
  switch (event.kind) {
    case Kind::mode:
      begin(event.name);
      break;
    case Kind::state:
      sawState(event);
      break;
    case Kind::liveFace:
      if (event.name == "lost") end(detailsOf(event).value("cause", "outOfSight"));
      break;
    case Kind::call:
      if (event.name != "retry") break;
      lipsWereAtRest_ = false;
      ++run_;
      break;
    case Kind::sign:
      if (event.name == "lipsAtRest") lipsWereAtRest_ = detailsOf(event).value("seen", false);
      [[fallthrough]];
    case Kind::task:
    case Kind::hint:
      measure(event.name, detailsOf(event));
      break;
    case Kind::liveness:
    case Kind::film:
      break;
  }
}

void AttemptLog::decided(const corvana::Decision& decision) {
  ordered_json figure = ordered_json::object();
  if (decision.value) figure["value"] = eventNumber(*decision.value);
  if (decision.threshold) figure["threshold"] = eventNumber(*decision.threshold);
  figure["passed"] = decision.passed;
  measure(decision.name, std::move(figure));
  if (decision.name == "spokenWords" && !decision.passed) end("tooFewWords");
}

void AttemptLog::finish(const Outcome& outcome) {
  end(outcome ? kAccepted : platform::nameOf(outcome.error().cause()));
}

}  // namespace corvana::app
