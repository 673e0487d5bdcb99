#include "app/recheck/RecordedRun.h"

#include <array>
#include <tuple>

#include "app/record/EventLog.h"
#include "app/record/Files.h"
#include "app/record/JsonMembers.h"
#include "app/record/RecordFiles.h"
#include "app/report/Evidence.h"
#include "engine/selfie/Challenge.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using platform::Expected;

constexpr std::uint64_t kMostEvidenceBytes = 1 << 24;

template <std::size_t count>
std::optional<std::array<double, count>> numbersAt(const json& object, const char* key) {
  const json list = object.value(key, json());
  if (!list.is_array() || list.size() != count) return std::nullopt;
  std::array<double, count> numbers{};
  for (std::size_t i = 0; i < count; ++i) {
    if (!list[i].is_number()) return std::nullopt;
    numbers[i] = list[i].get<double>();
  }
  return numbers;
}

std::optional<platform::CGRect> rectAt(const json& object, const char* key) {
  const auto numbers = numbersAt<4>(object, key);
  if (!numbers) return std::nullopt;
  return platform::CGRect{(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3]};
}

Expected<void> checkResult(const json& result, const fs::path& folder) {
  const fs::path file = folder / kResultFileName;
  std::error_code error;
  if (!fs::exists(file, error)) {
    return platform::failure(inQuotes(folder) +
                             " has no result that could be judged again: the run never ended.");
  }
  if (result.contains("redaction")) {
    return platform::failure(
        inQuotes(folder) +
        " is a redacted copy, whose film shows no card: judge the record that it "
        "was made of.");
  }
  const bool isResult = memberIn(result, "options").is_object() &&
                        (result.contains("result") || result.contains("error"));
  if (isResult) return {};
  return platform::failure(inQuotes(file) + " is not the result of a run.");
}

/// Where the record keeps what a reviewer has to see beside events and film.
std::optional<std::string> keptText(const fs::path& folder) {
  const auto content = readFile(folder / kEvidenceFileName, kMostEvidenceBytes);
  if (!content) return std::nullopt;
  const auto object = parseJson(*content, "");
  return object ? textIn(*object, "text") : std::nullopt;
}

}  // namespace

std::string RecordedRun::sum(const char* name) const {
  const json bound = result.value(name, json());
  return bound.is_string() ? bound.get<std::string>() : "";
}

std::optional<engine::CalendarDate> RecordedRun::date() const {
  return engine::calendarDate(sum("date"));
}

std::optional<engine::ScreenPlaces> screenPlacesIn(const json& result) {
  const json& screen = memberIn(result, "screen");
  if (!screen.is_object()) return std::nullopt;
  const auto size = numbersAt<2>(screen, "size");
  const auto face = rectAt(screen, "face");
  const auto card = rectAt(screen, "card");
  if (!size || !face || !card) return std::nullopt;
  return engine::ScreenPlaces{{(*size)[0], (*size)[1]}, *face, *card};
}

std::optional<engine::ScreenPlaces> RecordedRun::places() const {
  return screenPlacesIn(result);
}

std::vector<std::uint32_t> RecordedRun::drawn() const {
  constexpr std::size_t kOfOneRun = std::tuple_size_v<engine::Challenge>;
  const json numbers = result.value("drawn", json());
  if (!numbers.is_array() || numbers.size() < kOfOneRun) return {};
  std::vector<std::uint32_t> last;
  for (std::size_t i = numbers.size() - kOfOneRun; i < numbers.size(); ++i)
    last.push_back(numbers[i].is_number_unsigned() ? numbers[i].get<std::uint32_t>() : 0);
  return last;
}

Expected<RecordedRun> readRecordedRun(const fs::path& folder, const TrustedKeys* keys,
                                      const StampAuthorities* authorities) {
  auto report = checkRecord(folder, keys, authorities);
  if (!report) return tl::unexpected(report.error());
  if (const auto checked = checkResult(report->result, folder); !checked) {
    return tl::unexpected(checked.error());
  }
  const auto film = filmIn(folder);
  if (!film) return platform::failure(inQuotes(folder) + " holds no film.");
  auto events = readRunEvents(folder / EventLog::kFileName);
  if (!events) return tl::unexpected(events.error());
  const bool isTrusted = keys && report->holds();
  return RecordedRun{.folder = folder,
                     .film = folder / *film,
                     .result = report->result,
                     .events = std::move(*events),
                     .report = std::move(*report),
                     .isTrusted = isTrusted,
                     .text = keptText(folder)};
}

}  // namespace corvana::app
