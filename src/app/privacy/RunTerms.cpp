#include "app/privacy/RunTerms.h"

#include <system_error>
#include <vector>

#include "app/keys/Sha256.h"
#include "app/record/JsonMembers.h"
#include "app/record/RunRecord.h"

namespace corvana::app {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

ordered_json termsToJson(const RunTerms& terms, const engine::CalendarDate& today) {
  ordered_json object = ordered_json::object();
  if (terms.consent) object["consent"] = sha256Of(*terms.consent);
  object["retention"] = {{"days", nullptr}, {"until", nullptr}};
  if (terms.retainDays) {
    const auto until = std::chrono::sys_days(today) + std::chrono::days(*terms.retainDays);
    object["retention"] = {{"days", *terms.retainDays}, {"until", engine::isoDate(until)}};
  }
  return object;
}

std::optional<engine::CalendarDate> keptUntil(const nlohmann::json& result) {
  const auto until = textIn(memberIn(result, "retention"), "until");
  return until ? engine::calendarDate(*until) : std::nullopt;
}

void leaveHashesOnly(const fs::path& folder) {
  std::vector<fs::path> others;
  std::error_code ignored;  // What can't be removed is told by whoever looks for it.
  for (const auto& entry : fs::directory_iterator(folder, ignored)) {
    const std::string name = entry.path().filename().string();
    if (name != kResultFileName && name != kResultSealName) others.push_back(entry.path());
  }
  for (const fs::path& other : others)
    fs::remove_all(other, ignored);
}

}  // namespace corvana::app
