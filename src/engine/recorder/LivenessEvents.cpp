#include "engine/recorder/LivenessEvents.h"

#include <utility>

namespace corvana::engine {
namespace {

using Kind = RecorderEvent::Kind;

const char* nameOf(LivenessVerdict::Kind kind) {
  switch (kind) {
    case LivenessVerdict::Kind::undecided:
      return "undecided";
    case LivenessVerdict::Kind::living:
      return "living";
    case LivenessVerdict::Kind::spoof:
      return "spoof";
  }
  return "";
}

RecorderEvent eventOf(const LivenessVerdict& verdict) {
  std::vector<RecorderEvent::Detail> details{{"seconds", platform::inSeconds(verdict.watchedFor)}};
  if (!verdict.evidence.empty()) details.emplace_back("evidence", verdict.evidence);
  return {Kind::liveness, nameOf(verdict.kind), std::move(details)};
}

}  // namespace

RecorderEvent eventOf(const LivenessSign& sign) {
  return {Kind::sign,
          sign.name,
          {{"value", sign.value}, {"threshold", sign.limit}, {"seen", sign.isSeen}}};
}

RecorderEvent eventOf(const TaskEvent& event) {
  if (event.step == TaskEvent::Step::asked) {
    return {Kind::task, nameOf(event.task), {{"step", std::string("asked")}}};
  }
  const bool isDone = event.step == TaskEvent::Step::done;
  return {Kind::task,
          nameOf(event.task),
          {{"step", std::string(isDone ? "done" : "missed")},
           {"value", event.value},
           {"threshold", event.limit},
           {"seen", isDone}}};
}

std::vector<RecorderEvent> eventsOf(const Challenge& drawn) {
  std::vector<RecorderEvent> events;
  for (const LivenessTask task : drawn)
    events.push_back({Kind::task, nameOf(task), {{"step", std::string("drawn")}}});
  return events;
}

std::vector<RecorderEvent> LivenessEvents::take(const LivenessVerdict& verdict, bool asks) {
  std::vector<RecorderEvent> events;
  const bool isNew = std::exchange(kind_, verdict.kind) != verdict.kind;
  for (const LivenessSign& sign : verdict.signs) {
    const bool changed = std::exchange(seen_[sign.name], sign.isSeen) != sign.isSeen;
    if (changed || isNew) events.push_back(eventOf(sign));
  }
  if (isNew) events.push_back(eventOf(verdict));
  const bool didAsk = std::exchange(asked_, asks);
  if (asks && !didAsk) events.push_back({Kind::liveness, "asked", {}});
  return events;
}

}  // namespace corvana::engine
