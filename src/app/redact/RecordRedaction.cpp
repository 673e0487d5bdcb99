#include "app/redact/RecordRedaction.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

#include "app/keys/Sha256.h"
#include "app/recheck/RecordedRun.h"
#include "app/record/EventLog.h"
#include "app/record/Files.h"
#include "app/record/JsonMembers.h"
#include "app/record/RecordFiles.h"
#include "app/record/RunRecord.h"
#include "app/redact/Disclosures.h"
#include "app/redact/RedactedEvidence.h"
#include "app/redact/RedactedPicture.h"
#include "app/report/Evidence.h"
#include "app/seal/RecordCheck.h"
#include "devices/pictures/ImageFile.h"
#include "engine/json/JsonText.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using nlohmann::ordered_json;
using platform::failure;

constexpr std::uint64_t kMostSealBytes = 1 << 12;

/// Why no copy can be made of this record; empty when one can.
std::string faultOf(const fs::path& folder, const RecordReport& report) {
  const auto broken = std::ranges::find(report.findings, false, &RecordFinding::holds);
  if (broken != report.findings.end()) {
    return "The record " + inQuotes(folder) +
           " does not hold, so no copy is made: " + broken->sentence;
  }
  if (!report.result.is_object()) return inQuotes(folder) + " holds no result of a run.";
  if (report.result.contains("redaction")) {
    return inQuotes(folder) + " is a redacted copy already: name the record that it was made of.";
  }
  if (report.result.contains("kept")) {
    return "The files of " + inQuotes(folder) +
           " were removed on purpose: there is nothing to copy.";
  }
  if (!filmIn(folder)) return inQuotes(folder) + " holds no film.";
  return {};
}

class RecordRedactor {
 public:
  RecordRedactor(const RecordRedaction& wishes, const RecordReport& report,
                 engine::HeadFinder& heads)
      : wishes_(wishes), report_(report), heads_(heads) {}

  Expected<RedactedPictures> redact() {
    return copySelfie()
        .and_then([&] { return copyFilms(); })
        .and_then([&] { return copyEvidence(); })
        .and_then([&] { return copyEvents(); })
        .and_then([&] { return writeResult(); })
        .and_then([&] { return writeDisclosures(); })
        .and_then([&] { return putOnDisk(wishes_.output); })
        .map([&] { return pictures_; });
  }

 private:
  bool isPart(const std::string& name) const {
    return memberIn(report_.result, "sha256").contains(name);
  }

  Expected<void> copySelfie() {
    if (!isPart(kSelfieFileName)) return {};
    const auto picture = devices::readImage(wishes_.folder / kSelfieFileName);
    if (!picture) return tl::unexpected(picture.error());
    const platform::PixelBuffer& selfie = **picture;
    film_.selfieFace = heads_.faceIn(selfie);
    film_.selfieSize = {static_cast<double>(selfie.width()), static_cast<double>(selfie.height())};
    const auto covered = redactedPicture(selfie, film_.selfieFace, heads_, wishes_.coversFace);
    return devices::writePng(wishes_.output / kSelfieFileName, *covered);
  }

  Expected<void> copyFilms() {
    film_.isSilent = wishes_.isSilent;
    film_.coversFace = wishes_.coversFace;
    film_.places = screenPlacesIn(report_.result);
    const std::string last = *filmIn(wishes_.folder);
    for (const auto& [name, sum] : report_.result["sha256"].items()) {
      if (fs::path(name).extension() != ".mp4") continue;
      FilmRedaction film = film_;
      // In an earlier attempt the person may have stood elsewhere, or have been another.
      if (name != last) film.selfieFace.reset();
      const auto made = redactFilm(wishes_.folder / name, wishes_.output / name, heads_, film);
      if (!made) return tl::unexpected(made.error());
      pictures_.all += made->all;
      pictures_.withHead += made->withHead;
    }
    return {};
  }

  Expected<void> copyEvidence() {
    if (!isPart(kEvidenceFileName)) return {};
    return redactEvidence({wishes_.folder, wishes_.output, wishes_.isSilent, wishes_.coversFace},
                          heads_, disclosures_);
  }

  Expected<void> copyEvents() {
    std::error_code error;
    fs::copy_file(wishes_.folder / EventLog::kFileName, wishes_.output / EventLog::kFileName,
                  fs::copy_options::overwrite_existing, error);
    if (!error) return {};
    return failure("The events could not be copied to " + inQuotes(wishes_.output) + ": " +
                   error.message() + ".");
  }

  Expected<ordered_json> redaction() const {
    auto record = sha256(wishes_.folder / kResultFileName);
    if (!record) return tl::unexpected(record.error());
    ordered_json object = {{"record", *record}};
    object["seal"] = nullptr;
    if (hasFile(wishes_.folder, kResultSealName).value_or(false)) {
      const auto seal = readFile(wishes_.folder / kResultSealName, kMostSealBytes);
      if (!seal) return tl::unexpected(seal.error());
      object["seal"] = sha256Of(*seal);
    }
    object["sealedBy"] = report_.sealer ? ordered_json(*report_.sealer) : ordered_json();
    object["sound"] = wishes_.isSilent ? "removed" : "kept";
    object["face"] = wishes_.coversFace ? "covered" : "shown";
    object["pictures"] = pictures_.all;
    object["picturesWithHead"] = pictures_.withHead;
    object["program"] = programToJson();
    object["digests"] = disclosures_.digests();
    return object;
  }

  /// Without what a short text could be guessed from: sums have no salt.
  void takeOutShortTexts(ordered_json& result) {
    if (const auto subject = textIn(memberIn(report_.result, "session"), "subject")) {
      disclosures_.add("subject", *subject);
      result["session"].erase("subject");
      if (result["session"].empty()) result.erase("session");
    }
    result["reference"] = nullptr;
    if (wishes_.isSilent) result["text"] = nullptr;
  }

  Expected<void> writeResult() {
    const auto bytes = readResultBytes(wishes_.folder);
    if (!bytes) return tl::unexpected(bytes.error());
    // The members stay in their order.
    auto result = ordered_json::parse(*bytes);
    takeOutShortTexts(result);
    result.erase("sha256");
    auto redacted = redaction();
    if (!redacted) return tl::unexpected(redacted.error());
    result["redaction"] = std::move(*redacted);
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(wishes_.output))
      files.push_back(entry.path());
    std::ranges::sort(files);
    auto sums = sumsOf(files);
    if (!sums) return tl::unexpected(sums.error());
    result["sha256"] = std::move(*sums);
    return writeSealedResult(engine::indentedJson(result) + "\n", wishes_.key, wishes_.output);
  }

  Expected<void> writeDisclosures() const {
    return writeFile(wishes_.disclosures, disclosures_.disclosures().dump(2) + "\n");
  }

  const RecordRedaction& wishes_;
  const RecordReport& report_;
  engine::HeadFinder& heads_;
  FilmRedaction film_;
  Disclosures disclosures_;
  RedactedPictures pictures_;
};

Expected<void> checkPlaces(const RecordRedaction& wishes) {
  if (auto outside = checkOutside(wishes.folder, wishes.output); !outside) return outside;
  return checkNewFile(wishes.folder, wishes.disclosures, "--disclosures");
}

}  // namespace

tl::expected<RedactedPictures, Refusal> redactRecord(const RecordRedaction& wishes,
                                                     const Resources& resources) {
  const auto report = checkRecord(wishes.folder, wishes.keys, wishes.authorities);
  if (!report) return wrongUse(report.error());
  if (const auto fault = faultOf(wishes.folder, *report); !fault.empty()) return wrongUse(fault);
  if (const auto free = checkPlaces(wishes); !free) return wrongUse(free.error());
  auto heads = engine::HeadFinder::load(resources.faceDetector(), resources.textReader().boxes);
  if (!heads) return tl::unexpected(Refusal{ExitCode::machineLacks, heads.error().sentence});
  if (const auto taken = takeFolder(wishes.output, EventLog::kFileName); !taken) {
    return wrongUse(taken.error());
  }
  auto pictures = RecordRedactor(wishes, *report, *heads).redact();
  if (pictures) return *pictures;
  std::error_code ignored;  // What it can't remove, its owner can.
  fs::remove_all(wishes.output, ignored);
  fs::remove(wishes.disclosures, ignored);
  return wrongUse(pictures.error());
}

}  // namespace corvana::app
