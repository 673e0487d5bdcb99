#include "app/EventLog.h"

#include <cmath>
#include <utility>
#include <variant>

namespace app {
namespace {

using nlohmann::ordered_json;
using Kind = engine::RecorderEvent::Kind;

/// Digits beyond these are noise to a reader and differ between CPU types.
constexpr double kDecimals = 1e4;

ordered_json rounded(double value) {
  if (!std::isfinite(value)) return nullptr;
  return std::round(value * kDecimals) / kDecimals;
}

ordered_json valueOf(const engine::RecorderEvent::Detail& detail) {
  if (const auto* number = std::get_if<double>(&detail.second)) return rounded(*number);
  if (const auto* flag = std::get_if<bool>(&detail.second)) return *flag;
  return std::get<std::string>(detail.second);
}

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
  }
  return "";
}

}  // namespace

EventLog::EventLog(const platform::RunLoop& loop, const std::filesystem::path& path)
    : loop_(loop), start_(loop.now()), file_(path, std::ios::app) {
  std::error_code ignored;  // A file system without permissions is no reason to stop.
  std::filesystem::permissions(
      path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ignored);
}

void EventLog::add(const std::string& event, ordered_json fields) {
  ordered_json line = {{"t", rounded(platform::inSeconds(loop_.now() - start_))}, {"event", event}};
  line.update(fields);
  file_ << line.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n' << std::flush;
}

void EventLog::happened(const engine::RecorderEvent& event) {
  ordered_json fields = {{"name", event.name}};
  for (const auto& detail : event.details)
    fields[detail.first] = valueOf(detail);
  if (event.kind == Kind::call && event.name == "retry") ++retries_;
  add(nameOf(event.kind), std::move(fields));
}

void EventLog::decided(const corvana::Decision& decision) {
  ordered_json fields = {{"name", decision.name}};
  if (decision.value) fields["value"] = rounded(*decision.value);
  if (decision.threshold) fields["threshold"] = rounded(*decision.threshold);
  fields["passed"] = decision.passed;
  add("decision", std::move(fields));
}

}  // namespace app
