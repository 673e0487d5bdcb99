#include "app/report/RunFolder.h"

#include <algorithm>
#include <sstream>

#include "app/record/EventLog.h"
#include "app/record/Files.h"
#include "app/record/RecordFiles.h"
#include "app/report/Evidence.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr std::uint64_t kMostEventBytes = 1 << 26;
constexpr std::uint64_t kMostEvidenceBytes = 1 << 20;
constexpr std::uint64_t kMostPictureBytes = 1 << 22;
constexpr std::string_view kJpegBegins = "\xff\xd8\xff";

bool isThere(const fs::path& file) {
  std::error_code error;
  return fs::is_regular_file(file, error);
}

std::optional<json> readObject(const fs::path& file, std::uint64_t mostBytes) {
  const auto text = readFile(file, mostBytes);
  if (!text) return std::nullopt;
  const auto object = parseJson(*text, file.string());
  if (!object || !object->is_object()) return std::nullopt;
  return *object;
}

void readEvents(RunFolder& run) {
  const auto text = readFile(run.folder / EventLog::kFileName, kMostEventBytes);
  if (!text) return;
  std::istringstream lines(*text);
  for (std::string line; std::getline(lines, line);) {
    auto event = parseJson(line, EventLog::kFileName);
    if (event && event->is_object()) {
      run.events.push_back(std::move(*event));
    } else {
      ++run.brokenEvents;
    }
  }
}

/// What was put in the place of a picture must not be taken for one.
bool isAsTheRunLeftIt(const RunFolder& run, const std::string& name) {
  return std::ranges::any_of(run.check.findings, [&](const RecordFinding& finding) {
    return finding.part == name && finding.holds;
  });
}

void readEvidence(RunFolder& run) {
  for (const std::string& name : evidenceFileNames()) {
    if (!isThere(run.folder / name)) continue;
    if (!isAsTheRunLeftIt(run, name)) {
      run.altered.push_back(name);
    } else if (name == kEvidenceFileName) {
      auto object = readObject(run.folder / name, kMostEvidenceBytes);
      run.hasEvidence = object.has_value();
      if (object) run.evidence = std::move(*object);
    } else if (auto bytes = readFile(run.folder / name, kMostPictureBytes);
               bytes && bytes->starts_with(kJpegBegins)) {
      run.pictures[name] = std::move(*bytes);
    }
  }
}

}  // namespace

platform::Expected<RunFolder> RunFolder::read(const fs::path& folder, const TrustedKeys* keys,
                                              const StampAuthorities* authorities) {
  auto check = checkRecord(folder, keys, authorities);
  if (!check) return tl::unexpected(check.error());
  RunFolder run;
  run.folder = folder;
  run.check = std::move(*check);
  run.hasResult = run.check.result.is_object();
  if (run.hasResult) run.result = run.check.result;
  readEvents(run);
  readEvidence(run);
  run.film = filmIn(folder);
  return run;
}

}  // namespace corvana::app
