#include "client/Session.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sstream>
#include <utility>

#include <nlohmann/json.hpp>

#include "client/Request.h"

namespace corvana::client {
namespace {

using nlohmann::ordered_json;

constexpr int kNoSuchProgram = 127;
constexpr int kLastExitCode = CORVANA_VIDEOID_MACHINE_LACKS;
constexpr const char* kComplaint = "videoid: ";

std::string dumped(const ordered_json& answer) {
  return answer.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

Answer failed(corvana_videoid_status status, const std::string& sentence) {
  return {status, dumped({{"error", sentence}})};
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

/// The program's own sentences among what it wrote, or all of it when there is none.
std::string complaintsIn(const std::string& errors) {
  std::string complaints;
  for (const std::string& line : linesOf(errors)) {
    if (!line.starts_with(kComplaint)) continue;
    complaints += (complaints.empty() ? "" : " ") + line.substr(std::strlen(kComplaint));
  }
  if (!complaints.empty()) return complaints;
  return errors.empty() ? "It found a difference." : errors;
}

Answer endedWithoutWord(const ChildEnd& end) {
  const std::string how =
      end.signal != 0 ? std::string("was ended by a signal (") + strsignal(end.signal) + ")"
                      : "ended, and nobody knows how: let nothing else wait for its process";
  const auto lines = linesOf(end.errors);
  return failed(CORVANA_VIDEOID_CRASHED,
                "The program " + how + (lines.empty() ? "." : "; it last said: " + lines.back()));
}

/// The loader names a library that is missing; a shell, the program.
Answer notStarted(const ChildEnd& end) {
  const auto lines = linesOf(end.errors);
  const std::string what = lines.empty() ? "The program could not be started" : lines.back();
  if (end.startFault == E2BIG)
    return failed(CORVANA_VIDEOID_WRONG_USE, what + ": give a long text as \"text-file\".");
  const bool isBusy = end.startFault == EMFILE || end.startFault == ENFILE ||
                      end.startFault == EAGAIN || end.startFault == ENOMEM;
  const std::string remedy =
      isBusy             ? "let this process and others close what they have open."
      : !end.isWatchable ? "it takes Linux 5.3 or newer, and in a container a filter of system "
                           "calls that lets pidfd_open and pidfd_send_signal through."
                         : "install the package corvana-videoid with all that it depends on.";
  return failed(CORVANA_VIDEOID_MACHINE_LACKS, what + ": " + remedy);
}

corvana_videoid_status statusOf(const ChildEnd& end) {
  return end.exitCode <= kLastExitCode ? static_cast<corvana_videoid_status>(end.exitCode)
                                       : CORVANA_VIDEOID_WRONG_USE;
}

Answer answerOf(const Command& command, const ChildEnd& end) {
  if (!end.started || end.exitCode == kNoSuchProgram) {
    return notStarted(end);
  }
  // It did not listen yet, or was told twice.
  if (end.wasTerminated && end.signal == SIGTERM)
    return failed(CORVANA_VIDEOID_FLOW_ERROR,
                  "The call was cancelled, and its process ended at once.");
  if (end.exitCode < 0) return endedWithoutWord(end);
  const corvana_videoid_status status = statusOf(end);
  ordered_json result = command.answersInLines ? ordered_json{{"report", linesOf(end.output)}}
                                               : ordered_json::parse(end.output, nullptr, false);
  if (status == CORVANA_VIDEOID_RESULT) {
    if (result.is_object()) return {status, dumped(result)};
    return failed(CORVANA_VIDEOID_CRASHED, "The program's answer is no JSON object.");
  }
  ordered_json answer = {{"error", complaintsIn(end.errors)}};
  if (result.is_object() && status == CORVANA_VIDEOID_FLOW_ERROR) answer["result"] = result;
  return {status, dumped(answer)};
}

ChildEvents eventsOf(const corvana_videoid_follower* follower) {
  ChildEvents events;
  if (!follower) return events;
  if (follower->on_event) {
    events.onEvent = [follower](const std::string& json) {
      follower->on_event(follower->context, json.c_str());
    };
  }
  if (follower->on_picture && follower->pictures_per_second > 0) {
    events.onPicture = [follower](const corvana_videoid_picture& picture) {
      follower->on_picture(follower->context, &picture);
    };
  }
  return events;
}

}  // namespace

std::shared_ptr<Child> Session::begin() {
  const std::lock_guard lock(mutex_);
  if (running_) return nullptr;
  running_ = std::make_shared<Child>();
  return running_;
}

void Session::finish() {
  const std::lock_guard lock(mutex_);
  running_.reset();
}

bool Session::isBusy() const {
  const std::lock_guard lock(mutex_);
  return running_ != nullptr;
}

bool Session::cancel() {
  std::shared_ptr<Child> child;
  {
    const std::lock_guard lock(mutex_);
    child = running_;
  }
  if (child) child->terminate();
  return child != nullptr;
}

Answer Session::call(const Command& command, const char* request,
                     const corvana_videoid_follower* follower) {
  auto arguments = argumentsOf(request, command.name, command.positionals);
  if (!arguments) return failed(CORVANA_VIDEOID_WRONG_USE, arguments.error());
  if (command.always) arguments->insert(arguments->begin() + 1, command.always);
  const ChildEvents events = eventsOf(follower);
  if (events.onPicture) {
    // As JSON has it: the caller's locale may have another sign for decimals than the program.
    arguments->push_back("--caller-pictures=" + ordered_json(follower->pictures_per_second).dump());
  }
  const auto child = begin();
  if (!child) return failed(CORVANA_VIDEOID_BUSY, "A call on this handle has not ended yet.");
  const auto guard = std::shared_ptr<void>(nullptr, [this](void*) { finish(); });
  return answerOf(command, child->run(program_, std::move(*arguments), events));
}

}  // namespace corvana::client
