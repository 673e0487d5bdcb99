#include "app/record/EventLog.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <system_error>
#include <utility>

#include "app/record/Files.h"
#include "devices/film/FilmFault.h"
#include "engine/json/JsonText.h"

namespace corvana::app {
namespace {

using nlohmann::ordered_json;
using Kind = engine::RecorderEvent::Kind;

platform::Fault writeFault(const std::filesystem::path& path, int error) {
  const platform::FaultCause cause = devices::fileFaultCause(error);
  const bool isFull = cause == platform::FaultCause::diskFull;
  return {"The events can't be written to " + inQuotes(path) + " any more (" +
              std::strerror(error) +
              "): " + (isFull ? "free some space." : "check folder and disk."),
          cause};
}

/// Digits beyond these are noise to a reader and differ between CPU types.
constexpr double kDecimals = 1e4;

const char* nameOf(Kind kind) {
  switch (kind) {
    case Kind::state:
      return "state";
    case Kind::liveFace:
      return "liveFace";
    case Kind::mode:
      return "mode";
    case Kind::call:
      return "call";
    case Kind::hint:
      return "hint";
    case Kind::liveness:
      return "liveness";
    case Kind::task:
      return "task";
    case Kind::film:
      return "film";
    case Kind::sign:
      return "sign";
  }
  return "";
}

}  // namespace

ordered_json eventNumber(double value) {
  if (!std::isfinite(value)) return nullptr;
  return std::round(value * kDecimals) / kDecimals;
}

ordered_json eventValue(const std::variant<double, bool, std::string>& value) {
  if (const auto* number = std::get_if<double>(&value)) return eventNumber(*number);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  return std::get<std::string>(value);
}

EventLog::EventLog(const platform::RunLoop& loop, const std::filesystem::path& path,
                   OnFault onFault, std::shared_ptr<EventSums> sums)
    : loop_(loop),
      start_(loop.now()),
      path_(path),
      onFault_(std::move(onFault)),
      sums_(std::move(sums)),
      file_(path, std::ios::app) {
  std::error_code ignored;  // A file system without permissions is no reason to stop.
  std::filesystem::permissions(
      path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ignored);
}

void EventLog::add(const std::string& event, const ordered_json& fields) {
  if (broken_) return;
  ordered_json line = {{"t", eventNumber(platform::inSeconds(loop_.now() - start_))},
                       {"event", event}};
  line.update(fields);
  const std::string text = engine::compactJson(line) + "\n";
  errno = 0;
  file_ << text << std::flush;
  if (!file_) return breakOff(writeFault(path_, errno == 0 ? EIO : errno));
  bytes_ += text.size();
  if (sums_) sums_->add(loop_.now(), text);
  if (listener_) listener_(text);
  // A file that was removed can be written, but nobody will find it.
  std::error_code error;
  if (std::filesystem::exists(path_, error)) return;
  breakOff({"Files of the run in " + inQuotes(path_.parent_path()) +
                " were removed: start anew, and leave the folder alone until the end.",
            platform::FaultCause::folderLost});
}

void EventLog::breakOff(const platform::Fault& fault) {
  broken_ = true;
  file_.close();
  std::error_code ignored;  // The file may be gone altogether.
  std::filesystem::resize_file(path_, bytes_, ignored);
  onFault_(fault);
}

void EventLog::happened(const engine::RecorderEvent& event) {
  ordered_json fields = {{"name", event.name}};
  for (const auto& detail : event.details)
    fields[detail.first] = eventValue(detail.second);
  if (event.kind == Kind::call && event.name == "retry") ++retries_;
  add(nameOf(event.kind), fields);
}

void EventLog::decided(const corvana::Decision& decision) {
  ordered_json fields = {{"name", decision.name}};
  if (decision.value) fields["value"] = eventNumber(*decision.value);
  if (decision.threshold) fields["threshold"] = eventNumber(*decision.threshold);
  fields["passed"] = decision.passed;
  add("decision", fields);
}

}  // namespace corvana::app
