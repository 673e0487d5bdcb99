#include "app/seal/RecordCheck.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <utility>

#include "app/keys/Jws.h"
#include "app/keys/Sha256.h"
#include "app/privacy/Consent.h"
#include "app/privacy/RunTerms.h"
#include "app/record/EventLog.h"
#include "app/record/Files.h"
#include "app/record/JsonMembers.h"
#include "app/record/RecordFiles.h"
#include "app/report/ReportFile.h"
#include "app/seal/FilmComparison.h"
#include "app/seal/SealLog.h"
#include "app/seal/SealReading.h"
#include "app/stamp/Stamps.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using platform::Expected;
using platform::failure;

constexpr std::uint64_t kMostSealBytes = 1 << 12;
constexpr std::uint64_t kMostLogBytes = 1 << 28;

std::string inSeconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f s", seconds);
  return text;
}

/// One check of one folder. Methods add to the report.
class RecordChecker {
 public:
  RecordChecker(const fs::path& folder, const TrustedKeys* keys,
                const StampAuthorities* authorities)
      : folder_(folder), keys_(keys), authorities_(authorities) {}

  Expected<RecordReport> checkEnded() {
    auto text = readResultBytes(folder_);
    if (!text) return tl::unexpected(text.error());
    text_ = std::move(*text);
    known_ = {kResultFileName, kResultSealName};
    auto object = parseResult(text_, folder_);
    if (!object) {
      fail(kResultFileName, object.error().sentence);
      return report_;
    }
    if (object->is_object()) result_ = *object;
    report_.result = std::move(*object);
    checkStamps();
    checkSeal();
    checkRedaction();
    checkFiles();
    if (isThere(SealLog::kFileName)) checkFilmsOfEnded();
    checkStrangers();
    return report_;
  }

  RecordReport checkUnended() {
    known_ = {SealLog::kFileName, EventLog::kFileName};
    const auto reading = readSealLog();
    if (!reading) return report_;
    if (reading->chains.empty()) {
      fail(SealLog::kFileName,
           "No film was sealed: the run was killed at once, or lines are gone.");
      return report_;
    }
    checkTimeOf(*reading);
    double wholeTo = 0;
    for (std::size_t i = 0; i < reading->chains.size(); ++i) {
      const bool isLast = i + 1 == reading->chains.size();
      const auto compared = checkFilm(reading->chains[i], isLast, i + 1);
      if (isLast) wholeTo = compared.wholeTo;
    }
    checkEvents(reading->chains, wholeTo);
    checkConsent(reading->chains.front().head);
    checkStrangers();
    fail(kResultFileName, reading->chains.back().ended
                              ? "The film ended at " + inSeconds(wholeTo) +
                                    ", but there is no result: it was taken away, or the run was "
                                    "killed before it."
                              : "The run never ended: it is whole to " + inSeconds(wholeTo) +
                                    "; a later cut cannot be told from a kill.");
    return report_;
  }

 private:
  void add(const std::string& part, const std::string& sentence) {
    report_.findings.push_back({part, true, sentence});
  }
  void fail(const std::string& part, const std::string& sentence) {
    report_.findings.push_back({part, false, sentence});
  }
  bool isThere(const std::string& name) const {
    std::error_code error;
    return fs::exists(folder_ / name, error);
  }

  std::optional<UtcTime> clockIn(const json& object, const char* end) const {
    const json clock = object.value("clock", json());
    if (!clock.is_object() || !clock.contains(end) || !clock[end].is_string()) return std::nullopt;
    return parseUtc(clock[end].get<std::string>());
  }

  void checkStamps() {
    for (const StoredStamp& stamp : stampsIn(folder_)) {
      known_.insert(known_.end(), {stamp.request, stamp.answer});
      const auto time = timeOf(stamp);
      if (!time) {
        fail(stamp.answer, "The time stamp " + stamp.answer + " " + time.error().sentence + ".");
      } else if (!authorities_) {
        add(stamp.answer, "says " + formatUtc(*time) +
                              ", but nobody vouches for it: name its authority with --stamp-ca");
      } else {
        add(stamp.answer, "the seal was there at " + formatUtc(*time));
        stamped_ = std::min(*time, stamped_.value_or(*time));
      }
    }
  }

  Expected<UtcTime> timeOf(const StoredStamp& stamp) const {
    const auto request = readFile(folder_ / stamp.request, kMostStampBytes);
    const auto answer = readFile(folder_ / stamp.answer, kMostStampBytes);
    const auto seal = readFile(folder_ / kResultSealName, kMostSealBytes);
    if (!request || !answer || !seal)
      return failure("can't be checked: a file of it is missing or can't be read");
    return checkStamp(*answer, *request, *seal, authorities_);
  }

  void checkSeal() {
    const bool isSealed = isThere(kResultSealName);
    if (!keys_) {
      return add(kResultFileName, isSealed ? "nobody vouches for it: name the public key of the "
                                             "machine that sealed it with --key"
                                           : "nobody vouches for it: the record has no seal");
    }
    const std::string name = kResultSealName;
    if (!isSealed) {
      return fail(name, "The record has no seal " + name + ": nobody vouches for it.");
    }
    const auto seal = readFile(folder_ / name, kMostSealBytes);
    if (!seal) return fail(name, seal.error().sentence);
    const auto key = verifyDetached(*seal, text_, *keys_);
    if (!key) return fail(name, "The seal " + name + " " + key.error().sentence + ".");
    if (const auto why = whyNotValid(**key, {clockIn(result_, "end"), stamped_})) {
      return fail(name, "The seal " + name + " does not hold: " + *why + ".");
    }
    report_.sealer = (*key)->key.id();
    add(name, "sealed by the key " + *report_.sealer);
  }

  void checkRedaction() {
    const json& redaction = memberIn(result_, "redaction");
    if (redaction.is_null()) return;
    const auto record = textIn(redaction, "record");
    if (!record)
      return fail("redaction", "It is not said of which record this is a redacted copy.");
    const auto sealer = textIn(redaction, "sealedBy");
    add("redaction", "a redacted copy of the record whose result.json has the SHA-256 " + *record +
                         (sealer ? ", which was sealed by the key " + *sealer
                                 : ", for which nobody vouched when it was copied"));
  }

  void checkFiles() {
    const json sums = result_.value("sha256", json());
    if (!sums.is_object() || sums.empty()) {
      return fail(kResultFileName, inQuotes(folder_ / kResultFileName) +
                                       " names no hashes; it is not a run's result.");
    }
    for (const auto& [name, sum] : sums.items())
      checkFile(name, sum);
  }

  void checkFile(const std::string& name, const json& sum) {
    if (fs::path(name).filename() != name) {
      return fail(kResultFileName,
                  inQuotes(folder_ / kResultFileName) + " names a file outside its folder.");
    }
    known_.push_back(name);
    if (result_.value("kept", json()) == kKeptHashes && !isThere(name)) {
      return add(name, "removed on purpose; its SHA-256 stays");
    }
    const auto actual = sha256(folder_ / name);
    if (!actual) return fail(name, actual.error().sentence);
    if (sum.is_string() && sum.get<std::string>() == *actual) return add(name, "unchanged");
    fail(name,
         inQuotes(name) + " is not the file that the run left: its SHA-256 is " + *actual + ".");
  }

  /// The lines that hold; absent when the file can't be read at all.
  std::optional<SealReading> readSealLog() {
    const std::string name = SealLog::kFileName;
    auto text = readFile(folder_ / name, kMostLogBytes);
    if (!text) {
      fail(name, text.error().sentence);
      return std::nullopt;
    }
    sealText_ = std::move(*text);
    SealReading reading = readSeal(sealText_, keys_);
    if (reading.fault) {
      fail(name, "The seal " + name + " breaks: " + *reading.fault + ".");
    } else {
      add(name, std::to_string(reading.lines) + " lines hang together" +
                    (reading.key ? ", signed by the key " + reading.key->key.id()
                                 : ", and nobody vouches for them"));
    }
    return reading;
  }

  void checkTimeOf(const SealReading& reading) {
    if (!reading.key) return;
    const auto why = whyNotValid(*reading.key, {clockIn(reading.chains.front().head, "start"), {}});
    if (why) fail(SealLog::kFileName, "The seal does not hold: " + *why + ".");
  }

  void checkFilmsOfEnded() {
    const auto reading = readSealLog();
    if (!reading) return;
    for (std::size_t i = 0; i < reading->chains.size(); ++i) {
      checkHead(reading->chains[i].head);
      checkFilm(reading->chains[i], i + 1 == reading->chains.size(), i + 1);
    }
  }

  /// What was said at the beginning must still be so at the end.
  void checkHead(const json& head) {
    for (const char* field : {"session", "options", "program", "reference", "documents", "text",
                              "consent", "retention"}) {
      if (head.value(field, json()) == result_.value(field, json())) continue;
      return fail(SealLog::kFileName, std::string("The seal ") + SealLog::kFileName +
                                          " belongs to another run: it names another " + field +
                                          ".");
    }
  }

  std::string filmOf(bool isLast, std::size_t number) const {
    return isLast ? filmIn(folder_).value_or(kPartialFilmFileName) : retriedFilmName(number);
  }

  FilmComparison checkFilm(const SealChain& chain, bool isLast, std::size_t number) {
    const std::string name = filmOf(isLast, number);
    known_.push_back(name);
    // Films of runs that were retried are removed, unless the caller wants them.
    if (!isThere(name)) {
      if (isLast) fail(name, "There is no film " + inQuotes(name) + ".");
      return {};
    }
    const FilmComparison compared = compareFilm(folder_ / name, chain);
    const std::string whole = inSeconds(compared.wholeTo);
    if (compared.differs) {
      fail(name,
           inQuotes(name) + " is not the film that was sealed: it is whole to " + whole + ".");
    } else if (compared.isLonger) {
      fail(name, inQuotes(name) + " goes on after the end that was sealed, " + whole + ".");
    } else if (compared.isCut && chain.ended) {
      fail(name, inQuotes(name) + " was cut: it is whole to " + whole + ".");
    } else {
      add(name, "as it was sealed while it was recorded, to " + whole);
    }
    return compared;
  }

  void checkEvents(const std::vector<SealChain>& chains, double wholeTo) {
    const std::string name = EventLog::kFileName;
    const auto text = readFile(folder_ / name, kMostLogBytes);
    if (!text) return fail(name, text.error().sentence);
    const json* last = nullptr;
    for (const json& period : chains.back().periods) {
      if (period["t"].get<double>() <= wholeTo) last = &period["events"];
    }
    if (!last) return add(name, "nothing of it was sealed");
    const auto bytes = (*last)["bytes"].get<std::uint64_t>();
    if (bytes <= text->size() && sha256Of(std::string_view(*text).substr(0, bytes)) ==
                                     (*last)["sha256"].get<std::string>()) {
      return add(name, "its first " + std::to_string(bytes) + " bytes are as they were sealed");
    }
    fail(name, inQuotes(name) + " is not the file that was sealed.");
  }

  /// It was there before the first picture.
  void checkConsent(const json& head) {
    const json consent = head.value("consent", json());
    if (!consent.is_null()) checkFile(kConsentFileName, consent);
  }

  /// What somebody put beside a record could be taken for a part of it.
  void checkStrangers() {
    if (isThere(kReportFileName)) {
      known_.emplace_back(kReportFileName);
      add(kReportFileName,
          "made afterwards, and nothing vouches for it: make your own with `videoid report`");
    }
    std::vector<std::string> strangers;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder_, error)) {
      const std::string name = entry.path().filename().string();
      if (std::ranges::find(known_, name) == known_.end()) strangers.push_back(name);
    }
    std::ranges::sort(strangers);
    for (const std::string& name : strangers) {
      fail(name, inQuotes(name) + " is no part of the record: take it out of the folder.");
    }
  }

  const fs::path folder_;
  const TrustedKeys* const keys_;
  const StampAuthorities* const authorities_;
  std::optional<UtcTime> stamped_;  ///< the earliest time that a third party names
  std::string text_;                ///< result.json as it lies there
  std::string sealText_;            ///< seal.jsonl likewise
  json result_ = json::object();
  std::vector<std::string> known_;  ///< names of the record's files
  RecordReport report_;
};

}  // namespace

bool RecordReport::holds() const {
  return std::ranges::all_of(findings, &RecordFinding::holds);
}

Expected<RecordReport> checkRecord(const fs::path& folder, const TrustedKeys* keys,
                                   const StampAuthorities* authorities) {
  const auto hasEnded = hasFile(folder, kResultFileName);
  if (!hasEnded) return tl::unexpected(hasEnded.error());
  if (*hasEnded) return RecordChecker(folder, keys, authorities).checkEnded();
  if (hasFile(folder, SealLog::kFileName).value_or(false)) {
    return RecordChecker(folder, keys, authorities).checkUnended();
  }
  return failure(inQuotes(folder) + " holds no " + kResultFileName + ". Name the folder of a run.");
}

}  // namespace corvana::app
