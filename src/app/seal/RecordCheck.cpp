#include "app/seal/RecordCheck.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "app/run/Files.h"
#include "app/run/RunRecord.h"
#include "app/seal/Jws.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using platform::Expected;
using platform::failure;

constexpr std::uint64_t kMostResultBytes = 1 << 20;
constexpr std::uint64_t kMostSealBytes = 1 << 12;

class RecordChecker {
 public:
  RecordChecker(const fs::path& folder, const TrustedKeys* keys) : folder_(folder), keys_(keys) {}

  Expected<RecordReport> check() {
    auto text = readFile(folder_ / kResultFileName, kMostResultBytes);
    if (!text) return tl::unexpected(text.error());
    text_ = std::move(*text);
    auto object = parseJson(text_, (folder_ / kResultFileName).string());
    if (!object) {
      fail(kResultFileName, object.error().sentence);
      return report_;
    }
    result_ = std::move(*object);
    checkSeal();
    checkFiles();
    checkStrangers();
    return report_;
  }

 private:
  void add(const std::string& part, const std::string& sentence) {
    report_.findings.push_back({part, true, sentence});
  }
  void fail(const std::string& part, const std::string& sentence) {
    report_.findings.push_back({part, false, sentence});
  }

  RecordTime time() const {
    const json clock = result_.is_object() ? result_.value("clock", json()) : json();
    RecordTime time;
    if (clock.is_object() && clock.contains("end") && clock["end"].is_string()) {
      time.claimed = parseUtc(clock["end"].get<std::string>());
    }
    return time;
  }

  void checkSeal() {
    std::error_code error;
    const bool isSealed = fs::exists(folder_ / kResultSealName, error);
    if (!keys_) {
      return add(kResultFileName, isSealed ? "nobody vouches for it: name the public key of the "
                                             "machine that sealed it with --key"
                                           : "nobody vouches for it: the record has no seal");
    }
    if (!isSealed) {
      return fail(kResultSealName, "The record has no seal " + std::string(kResultSealName) +
                                       ": nobody vouches for it.");
    }
    const auto seal = readFile(folder_ / kResultSealName, kMostSealBytes);
    if (!seal) return fail(kResultSealName, seal.error().sentence);
    const auto key = verifyDetached(*seal, text_, *keys_);
    if (!key) {
      return fail(kResultSealName,
                  "The seal " + std::string(kResultSealName) + " " + key.error().sentence + ".");
    }
    if (const auto why = whyNotValid(**key, time())) {
      return fail(kResultSealName,
                  "The seal " + std::string(kResultSealName) + " does not hold: " + *why + ".");
    }
    add(kResultSealName, "sealed by the key " + (*key)->key.id());
  }

  void checkFiles() {
    const json sums = result_.is_object() ? result_.value("sha256", json()) : json();
    if (!sums.is_object() || sums.empty()) {
      return fail(kResultFileName, "\"" + (folder_ / kResultFileName).string() +
                                       "\" names no hashes; it is not a run's result.");
    }
    for (const auto& [name, sum] : sums.items())
      checkFile(name, sum);
  }

  void checkFile(const std::string& name, const json& sum) {
    if (fs::path(name).filename() != name) {
      return fail(kResultFileName, "\"" + (folder_ / kResultFileName).string() +
                                       "\" names a file outside its folder.");
    }
    bound_.push_back(name);
    const auto actual = sha256(folder_ / name);
    if (!actual) return fail(name, actual.error().sentence);
    if (sum.is_string() && sum.get<std::string>() == *actual) return add(name, "unchanged");
    fail(name,
         "\"" + name + "\" is not the file that the run left: its SHA-256 is " + *actual + ".");
  }

  /// What somebody put beside a record could be taken for a part of it.
  void checkStrangers() {
    std::vector<std::string> strangers;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder_, error)) {
      const std::string name = entry.path().filename().string();
      const bool isKnown = name == kResultFileName || name == kResultSealName ||
                           std::ranges::find(bound_, name) != bound_.end();
      if (!isKnown) strangers.push_back(name);
    }
    std::ranges::sort(strangers);
    for (const std::string& name : strangers) {
      fail(name, "\"" + name + "\" is no part of the record: take it out of the folder.");
    }
  }

  const fs::path folder_;
  const TrustedKeys* const keys_;
  std::string text_;  ///< result.json as it lies there
  json result_;
  std::vector<std::string> bound_;
  RecordReport report_;
};

}  // namespace

bool RecordReport::holds() const {
  return std::ranges::all_of(findings, &RecordFinding::holds);
}

Expected<RecordReport> checkRecord(const fs::path& folder, const TrustedKeys* keys) {
  std::error_code error;
  if (!fs::is_regular_file(folder / kResultFileName, error)) {
    return failure("\"" + folder.string() + "\" holds no " + kResultFileName +
                   ". Name the folder of a run.");
  }
  return RecordChecker(folder, keys).check();
}

}  // namespace corvana::app
