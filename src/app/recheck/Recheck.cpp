#include "app/recheck/Recheck.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "app/keys/Sha256.h"
#include "app/record/BuildId.h"
#include "app/record/EventLog.h"
#include "app/record/ScratchFolder.h"
#include "app/run/CaptureFlow.h"
#include "app/run/Preflight.h"
#include "app/settings/OptionTable.h"
#include "devices/recorded/MediaProbe.h"

namespace corvana::app {
namespace {

using nlohmann::json;
using platform::Expected;

/// A flow ends that much after its film at the latest.
constexpr double kMostSecondsAfterFilm = 60;
/// More than a film's last pictures are long.
constexpr double kSameLength = 0.5;

std::string inSeconds(double seconds) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f s", seconds);
  return text.data();
}

/// What the film's flow came to.
struct SecondFlow {
  Outcome outcome;
  RunEvents events;
  json referenceSums;
  std::string textSum;
  std::string documentsSum;
  json modelSums;
};

class Rechecker {
 public:
  Rechecker(const RecordedRun& run, const RecheckSources& sources)
      : run_(run), sources_(sources), recordedOptions_(run.result["options"]) {}

  tl::expected<RecheckReport, Refusal> recheck() {
    const auto film = devices::probe(run_.film);
    if (!film) return wrongUse(film.error());
    report_.folder = run_.folder;
    report_.isTrusted = run_.isTrusted;
    report_.filmSeconds = platform::inSeconds(film->duration);
    auto flow = runFlow();
    if (!flow) return tl::unexpected(flow.error());
    compareRecord();
    compareInputs(*flow);
    compareFindings(*flow);
    return std::move(report_);
  }

 private:
  Expected<CaptureArguments> arguments(const std::filesystem::path& scratch) const {
    auto reference = referenceFor(run_, sources_);
    if (!reference) return tl::unexpected(reference.error());
    auto text = textFor(run_, sources_);
    if (!text) return tl::unexpected(text.error());
    CaptureArguments arguments;
    arguments.reference = *reference;
    arguments.text = *text;
    arguments.source.camera = run_.film.string();
    arguments.time = TimeKind::media;
    arguments.screen = ScreenKind::headless;
    arguments.output = scratch;
    arguments.options = sources_.options;
    arguments.documents = {run_.date(), 0, sources_.documents};
    arguments.maxDurationSeconds = report_.filmSeconds + kMostSecondsAfterFilm;
    arguments.habits.reactionTime = {};
    if (const auto end = endOfReading(run_.events)) {
      arguments.habits.doneAt = platform::seconds(*end);
    }
    arguments.recordsFilms = false;
    arguments.keepsEvidence = false;
    arguments.places = run_.places();
    arguments.drawn = run_.drawn();
    return arguments;
  }

  /// Whatever the record does not know stands as if nobody had set it.
  Expected<void> applyRecordedOptions() const {
    json options = json::object();
    for (const OptionInfo& option : listOptions())
      options[option.key] = option.defaultValue;
    options.update(recordedOptions_);
    return applyOptions(options);
  }

  tl::expected<SecondFlow, Refusal> runFlow() {
    const auto scratch = ScratchFolder::make();
    if (!scratch) return wrongUse(scratch.error());
    if (const auto set = applyRecordedOptions(); !set) return wrongUse(set.error());
    const auto given = arguments(scratch->path());
    if (!given) return wrongUse(given.error());
    auto prepared = prepareCapture(*given);
    if (!prepared) return tl::unexpected(prepared.error());
    CaptureFlow flow(*given, *prepared, nullptr);
    const RunRecord record = flow.run();
    if (const auto fault = prepared->analyzer->fault()) {
      return tl::unexpected(Refusal{ExitCode::machineLacks, fault->sentence});
    }
    if (flow.wasInterrupted()) {
      return wrongUse("The recheck was interrupted.");
    }
    auto events = readRunEvents(scratch->path() / EventLog::kFileName);
    const auto models = sumsOf(prepared->resources.models());
    if (!events) return wrongUse(events.error());
    if (!models) return wrongUse(models.error());
    return SecondFlow{record.outcome, std::move(*events), record.reference,
                      record.text,    record.documents,   *models};
  }

  void compareRecord() {
    for (const RecordFinding& finding : run_.report.findings) {
      if (!finding.holds) report_.contradictions.push_back(finding.sentence);
    }
    if (!run_.isTrusted) {
      report_.notes.emplace_back("No key vouches for the record: its events are untrusted.");
    }
    const json recording = run_.result.value("recording", json());
    if (!recording.is_object() || !recording.value("seconds", json()).is_number()) return;
    const double seconds = recording["seconds"].get<double>();
    if (std::abs(seconds - report_.filmSeconds) <= kSameLength) return;
    report_.contradictions.push_back("The film is " + inSeconds(report_.filmSeconds) +
                                     " long, the record says " + inSeconds(seconds) + ".");
  }

  void compareInputs(const SecondFlow& flow) {
    if (flow.referenceSums != run_.result.value("reference", json())) {
      report_.contradictions.emplace_back("The reference is not the one that the record names.");
    }
    if (flow.textSum != run_.sum("text")) {
      report_.contradictions.emplace_back("The text is not the one that the record names.");
    }
    if (flow.documentsSum != run_.sum("documents")) {
      report_.notes.emplace_back("Other kinds of documents are known than then.");
    }
    if (flow.modelSums != run_.result.value("models", json())) {
      report_.notes.emplace_back("The models are others than then.");
    }
    const json program = run_.result.value("program", json());
    if (!program.is_object() || program.value("build", json()) != json(buildId())) {
      report_.notes.emplace_back("Another build of the program recorded it.");
    }
    noteOptions();
  }

  void noteOptions() {
    const json now = currentOptions();
    for (const auto& [key, value] : now.items()) {
      if (!recordedOptions_.contains(key)) {
        report_.notes.push_back("The record does not know the option " + key + ".");
      } else if (recordedOptions_[key] != value) {
        report_.notes.push_back("The option " + key + " is " + value.dump() + " in place of " +
                                recordedOptions_[key].dump() + ".");
      }
    }
  }

  void compareFindings(const SecondFlow& flow) {
    report_.judgements = compare(judgementsOf(run_.events, recordedOptions_),
                                 judgementsOf(flow.events, currentOptions()));
    report_.recordedEnding = endingOf(run_.events, run_.hasResult());
    report_.recheckedEnding = endingOf(flow.events, flow.outcome.has_value());
    if (report_.recheckedEnding.empty()) {
      report_.recheckedEnding = flow.outcome.error().localizedDescription();
    }
    if (flow.outcome && run_.hasResult()) compareFlags(*flow.outcome);
    noteWhatNoFilmShows();
  }

  void compareFlags(const capture::VideoIdResult& now) {
    const std::pair<const char*, bool> flags[] = {{"idToSelfieMatch", now.idToSelfieMatch},
                                                  {"idToIdPhotoMatch", now.idToIdPhotoMatch},
                                                  {"idFrontDataMatch", now.idFrontDataMatch},
                                                  {"idBackDataMatch", now.idBackDataMatch}};
    for (const auto& [name, flag] : flags) {
      const json& then = run_.result["result"];
      if (then.is_object() && then.value(name, json()) == json(flag)) continue;
      report_.contradictions.push_back(std::string("The flag ") + name + " is " +
                                       (flag ? "true" : "false") + ", in the record it is not.");
    }
  }

  void noteWhatNoFilmShows() {
    auto& missing = report_.notRechecked;
    missing.emplace_back("camera and microphone that took the film, clock, session and subject");
    missing.emplace_back("the selfie's file, beyond its sum");
    if (run_.events.earlierAttempts > 0) {
      missing.push_back(std::to_string(run_.events.earlierAttempts) +
                        " earlier attempts, which this film does not show");
    }
    if (report_.recordedEnding.empty()) {
      missing.emplace_back("how the run ended: not by anything that its film shows");
    }
  }

  const RecordedRun& run_;
  const RecheckSources& sources_;
  const json recordedOptions_;
  RecheckReport report_;
};

}  // namespace

bool RecheckReport::agrees() const {
  const bool endsAlike = recordedEnding.empty() || recordedEnding == recheckedEnding;
  return endsAlike && contradictions.empty() &&
         std::ranges::none_of(judgements, [](const ComparedJudgement& judgement) {
           return judgement.stand == Stand::turned;
         });
}

tl::expected<RecheckReport, Refusal> recheck(const RecordedRun& run,
                                             const RecheckSources& sources) {
  return Rechecker(run, sources).recheck();
}

}  // namespace corvana::app
