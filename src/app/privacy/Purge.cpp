#include "app/privacy/Purge.h"

#include <algorithm>
#include <chrono>
#include <set>

#include "app/keys/Jws.h"
#include "app/privacy/Consent.h"
#include "app/privacy/RunTerms.h"
#include "app/record/EventLog.h"
#include "app/record/Files.h"
#include "app/record/JsonMembers.h"
#include "app/record/RecordFiles.h"
#include "app/report/Evidence.h"
#include "app/report/ReportFile.h"
#include "app/seal/SealLog.h"
#include "app/stamp/Stamps.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

constexpr int kMostReceipts = 1000;

bool isFile(const fs::path& path) {
  std::error_code error;
  return fs::symlink_status(path, error).type() == fs::file_type::regular;
}

Expected<nlohmann::json> resultOf(const fs::path& folder) {
  return readResultBytes(folder).and_then(
      [&](const std::string& bytes) { return parseResult(bytes, folder); });
}

/// Nothing was written into the folder for so long.
bool hasRested(const fs::path& folder, int days) {
  const auto limit = fs::file_time_type::clock::now() - std::chrono::days(days);
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    const auto written = entry.last_write_time(error);
    if (error || written > limit) return false;
  }
  return !error;
}

bool isReadable(const fs::path& folder) {
  std::error_code error;
  fs::directory_iterator(folder, error);
  return !error;
}

/// Fails where it can't be told.
platform::Expected<std::optional<OverdueRun>> overdue(const fs::path& folder,
                                                      const PurgeRules& rules) {
  if (!isReadable(folder)) return platform::failure(inQuotes(folder) + " can't be read.");
  if (isFile(folder / kResultFileName)) {
    const auto result = resultOf(folder);
    if (!result) return tl::unexpected(result.error());
    const auto until = keptUntil(*result);
    if (!until || *until >= rules.today) return std::nullopt;
    return sha256(folder / kResultFileName).map([&](const std::string& sum) {
      return std::optional(OverdueRun{folder, sum, until});
    });
  }
  if (!rules.unendedDays || !isFile(folder / EventLog::kFileName)) return std::nullopt;
  if (!hasRested(folder, *rules.unendedDays)) return std::nullopt;
  return sha256(folder / EventLog::kFileName).map([&](const std::string& sum) {
    return std::optional(OverdueRun{folder, sum, std::nullopt});
  });
}

std::set<std::string> namesOfRecord(const fs::path& folder) {
  std::set<std::string> names{kResultFileName,    kResultSealName, kSelfieFileName,
                              kConsentFileName,   kReportFileName, EventLog::kFileName,
                              SealLog::kFileName, kFilmFileName,   kPartialFilmFileName};
  for (const std::string& name : evidenceFileNames())
    names.insert(name);
  for (const StoredStamp& stamp : stampsIn(folder))
    names.insert({stamp.request, stamp.answer});
  for (std::size_t attempt = 1; isFile(folder / retriedFilmName(attempt)); ++attempt)
    names.insert(retriedFilmName(attempt));
  if (const auto result = resultOf(folder)) {
    for (const auto& [name, sum] : memberIn(*result, "sha256").items()) {
      if (fs::path(name).filename() == name) names.insert(name);
    }
  }
  return names;
}

ordered_json receiptOf(const std::vector<OverdueRun>& runs, const PurgeRules& rules,
                       const SigningKey& key, UtcTime now, bool isDone) {
  ordered_json receipt{{"formatVersion", 1},
                       {"program", {{"name", "videoid"}, {"version", CORVANA_VERSION}}},
                       {"key", key.publicKey().id()},
                       {"time", formatUtc(now)},
                       {"day", engine::isoDate(rules.today)},
                       {"done", isDone},
                       {"runs", ordered_json::array()}};
  for (const OverdueRun& run : runs) {
    ordered_json entry{{"record", run.record}, {"until", nullptr}, {"removed", run.removed}};
    if (run.until) entry["until"] = engine::isoDate(*run.until);
    receipt["runs"].push_back(std::move(entry));
  }
  return receipt;
}

platform::Expected<fs::path> chooseReceipt(const fs::path& folder, UtcTime now) {
  std::string stem = "purge-" + formatUtc(now);
  std::erase_if(stem, [](char letter) { return letter == ':'; });
  for (int number = 1; number < kMostReceipts; ++number) {
    const fs::path file =
        folder / (stem + (number > 1 ? "-" + std::to_string(number) : "") + ".json");
    std::error_code error;
    if (!fs::exists(file, error)) return file;
  }
  return platform::failure("The folder " + inQuotes(folder) + " is full of receipts of now.");
}

platform::Expected<void> writeSigned(const fs::path& file, const ordered_json& receipt,
                                     const SigningKey& key) {
  const std::string bytes = receipt.dump(2) + "\n";
  return writeFile(file, bytes)
      .and_then([&] { return sealDetached(key, bytes); })
      .and_then([&](const std::string& seal) {
        return writeFile(fs::path(file).replace_extension(".jws"), seal);
      });
}

}  // namespace

platform::Expected<OverdueRuns> findOverdue(const fs::path& folder, const PurgeRules& rules) {
  std::error_code error;
  OverdueRuns found;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    std::error_code ignored;
    if (entry.symlink_status(ignored).type() != fs::file_type::directory) continue;
    auto run = overdue(entry.path(), rules);
    if (!run) {
      found.unclear.push_back(entry.path());
    } else if (*run) {
      found.runs.push_back(std::move(**run));
    }
  }
  if (error) {
    return platform::failure("The folder " + inQuotes(folder) +
                             " can't be read: " + error.message() + "; name a folder of runs.");
  }
  std::ranges::sort(found.runs, {}, &OverdueRun::folder);
  std::ranges::sort(found.unclear);
  return found;
}

bool removeRecord(const fs::path& folder) {
  std::error_code error;
  for (const std::string& name : namesOfRecord(folder)) {
    // The last to go is what says how long it is kept: whoever breaks off can begin again.
    if (name != kResultFileName && isFile(folder / name)) fs::remove(folder / name, error);
  }
  std::vector<fs::path> left;
  for (const auto& entry : fs::directory_iterator(folder, error))
    left.push_back(entry.path());
  const bool isClear = !error && std::ranges::all_of(left, [](const fs::path& path) {
    return path.filename() == kResultFileName;
  });
  if (!isClear) return false;
  fs::remove(folder / kResultFileName, error);
  return fs::remove(folder, error) && !error;
}

platform::Expected<fs::path> purge(const fs::path& folder, std::vector<OverdueRun>& runs,
                                   const PurgeRules& rules, const SigningKey& key, UtcTime now) {
  auto file = chooseReceipt(folder, now);
  if (!file) return file;
  if (const auto begun = writeSigned(*file, receiptOf(runs, rules, key, now, false), key); !begun) {
    return tl::unexpected(begun.error());
  }
  for (OverdueRun& run : runs)
    run.removed = removeRecord(run.folder);
  return writeSigned(*file, receiptOf(runs, rules, key, now, true), key).map([&] { return *file; });
}

}  // namespace corvana::app
