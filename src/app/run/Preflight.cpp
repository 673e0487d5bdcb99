#include "app/run/Preflight.h"

#include <string>

#include "app/card/DocumentFolders.h"
#include "app/card/DocumentHints.h"
#include "app/machine/MachineCheck.h"
#include "app/privacy/Consent.h"
#include "app/record/EventLog.h"
#include "corvana/SelfieCapture.h"
#include "devices/loudspeaker/EspeakSynthesizer.h"
#include "engine/recorder/LateFrameAnalyzer.h"
#include "engine/recorder/VisionFrameAnalyzer.h"
#include "engine/speech/PocketSphinxRecognizer.h"

namespace corvana::app {
namespace {

tl::unexpected<Refusal> refuse(ExitCode code, std::string sentence) {
  return tl::unexpected(Refusal{code, std::move(sentence)});
}

/// Why the screen and the time that were asked for can't be had; empty when they can.
std::string screenFault(const CaptureArguments& arguments) {
  if (!arguments.source.isRecording() && arguments.time == TimeKind::media) {
    return "A live camera works in real time; leave out --time media, or name a recorded video "
           "with --camera.";
  }
  if (arguments.screen != ScreenKind::window) {
    return arguments.spokenHints ? "Hints are spoken only with --screen window." : "";
  }
  if (arguments.time == TimeKind::media) {
    return "A window shows a run in real time; leave out --time media, or use --screen headless.";
  }
  if (!windowIsPossible()) {
    return "There is no display for a window; use --screen headless, or set DISPLAY.";
  }
  return {};
}

std::string hintsFault(const CaptureArguments& arguments, const WindowLooks& looks) {
  if (arguments.screen != ScreenKind::window || !looks.spokenHints) return {};
  return devices::EspeakSynthesizer::fault().value_or("");
}

std::unique_ptr<platform::DrivenLoop> makeLoopFor(const CaptureArguments& arguments) {
  if (arguments.screen == ScreenKind::window) return makeWindowLoop();
  const TimeKind usual = arguments.source.isRecording() ? TimeKind::media : TimeKind::real;
  return makeLoop(arguments.time.value_or(usual));
}

std::unique_ptr<FlowScreen> makeScreenFor(const CaptureArguments& arguments,
                                          const WindowWishes& wishes, const Resources& resources,
                                          platform::RunLoop& loop) {
  if (arguments.screen == ScreenKind::window) return makeWindowScreen(loop, wishes, resources);
  return makeHeadlessScreen(loop);
}

using Analyzer = std::shared_ptr<engine::FrameAnalyzer>;

using Tables = std::shared_ptr<const engine::DocumentTables>;

using Models = engine::VisionFrameAnalyzer::Models;

/// Of a card with a title only fronts are accepted on which it is read too.
std::optional<std::string> kindWithoutTitle(const Reference& reference) {
  return hasHint(reference.hints, kUntitled) ? reference.front.type : std::nullopt;
}

Models modelsFor(const PreparedCapture& prepared, const Tables& documents) {
  const Resources& resources = prepared.resources;
  return {.faceDetector = resources.faceDetector(),
          .faceLandmarks = resources.faceLandmarks(),
          .faceEmbedding = resources.faceModel(),
          .text = resources.textReader(),
          .documents = documents,
          .today = prepared.rules.today,
          .knownType = kindWithoutTitle(prepared.inputs.reference),
          .readQueue = engine::VisionFrameAnalyzer::makeReadQueue(*prepared.stage.loop)};
}

Expected<Analyzer> loadAnalyzer(const Resources& resources, const Models& models) {
  if (const auto lack = lacks({examineFaceModel(resources)}); !lack.empty()) {
    return platform::failure(lack);
  }
  auto loaded = engine::VisionFrameAnalyzer::load(models);
  if (!loaded) return tl::unexpected(loaded.error());
  return *loaded;
}

/// A user does not wait for the models to see their picture; a replay has all the time it wants.
Expected<Analyzer> startAnalyzer(const Resources& resources, const Models& models,
                                 platform::RunLoop& loop) {
  if (loop.isVirtual()) return loadAnalyzer(resources, models);
  return engine::LateFrameAnalyzer::start(loop, [=] { return loadAnalyzer(resources, models); });
}

std::shared_ptr<corvana::SpeechRecognizer> makeRecognizer(platform::RunLoop& loop,
                                                          const std::string& text) {
  auto recognizer = std::make_shared<engine::PocketSphinxRecognizer>(
      loop, engine::SpeechModelPaths::inFolder(engine::kDebianSpeechModelFolder), text);
  // A user wants to see their picture first; a replay's models are loaded side by side.
  if (loop.isVirtual()) recognizer->prepare();
  return recognizer;
}

/// Where the program's own kinds of documents are missing, its models mostly are too, which says
/// more.
Refusal withModelsLack(const Refusal& refusal, const Resources& resources) {
  const std::string lack = lacks({examineFaceModel(resources)});
  const bool isMachines = refusal.code == ExitCode::machineLacks;
  return isMachines && !lack.empty() ? Refusal{ExitCode::machineLacks, lack} : refusal;
}

/// What is missing whatever the camera is; empty when nothing is.
std::string machineLack(const CaptureArguments& arguments) {
  if (auto lack = lacks(examineMachine()); !lack.empty()) return lack;
  if (!arguments.recordsFilms) return {};
  if (!devices::realTimeVideoCodecs(arguments.videoCodec).empty()) return {};
  return "No encoder for the film's --video-codec is installed: install "
         "gstreamer1.0-plugins-bad for hevc, gstreamer1.0-plugins-ugly for h264.";
}

std::string diskLack(const CaptureArguments& arguments, const std::filesystem::path& folder,
                     const devices::MediaSource& media) {
  if (!arguments.recordsFilms) return {};
  const auto needed = bytesNeeded(media.camera().get(), arguments.maxDurationSeconds);
  return lacks({diskSpace(folder, needed)});
}

/// Dresses the screen as it was asked for.
tl::expected<WindowWishes, Refusal> chooseLooks(const CaptureArguments& arguments,
                                                const Resources& resources) {
  WindowWishes wishes = arguments.window;
  const auto dressed =
      applyLooks({arguments.screen == ScreenKind::window, arguments.language, arguments.theme},
                 resources, wishes.looks);
  if (!dressed) return refuse(ExitCode::wrongUse, dressed.error().sentence);
  wishes.looks.spokenHints |= arguments.spokenHints;
  if (const auto fault = hintsFault(arguments, wishes.looks); !fault.empty()) {
    return refuse(ExitCode::machineLacks, fault);
  }
  return wishes;
}

/// Whoever turns the head away does not see what to do next: tasks are spoken where there is a
/// voice.
WindowWishes withSpokenTasks(WindowWishes wishes) {
  using corvana::SelfieCapture;
  const bool hasTasks = SelfieCapture::options.liveness == SelfieCapture::Liveness::active;
  wishes.looks.spokenHints |= hasTasks && !devices::EspeakSynthesizer::fault();
  return wishes;
}

/// Why no card before the camera could come to be what the reference is of; empty when one can.
std::string kindFault(const Reference& reference, const engine::DocumentKinds& kinds) {
  for (const auto* side : {&reference.front, reference.back ? &*reference.back : nullptr}) {
    if (side == nullptr || !side->type || kinds.ofType(*side->type)) continue;
    return "The reference is of a " + *side->type +
           ", of which no kind of document that is known tells; give the folder of --documents "
           "that it was enrolled with.";
  }
  return {};
}

/// It lies in the folder before the first picture does.
Expected<void> keepConsent(const CaptureInputs& inputs) {
  if (!inputs.consent) return {};
  return writeFile(inputs.folder / kConsentFileName, *inputs.consent);
}

/// Why the options can't be obeyed, before any file is opened; empty when they can.
std::string optionsFault(const CaptureArguments& arguments) {
  if (!arguments.text && !arguments.textFile) {
    return "Give the text to be read with --text or --text-file.";
  }
  return screenFault(arguments);
}

}  // namespace

tl::expected<PreparedCapture, Refusal> prepareCapture(const CaptureArguments& arguments) {
  if (const auto fault = optionsFault(arguments); !fault.empty()) {
    return refuse(ExitCode::wrongUse, fault);
  }
  PreparedCapture prepared;
  prepared.resources = findResources();
  const auto tables = loadDocuments(prepared.resources, arguments.documents);
  if (!tables) return tl::unexpected(withModelsLack(tables.error(), prepared.resources));
  const auto wishes = chooseLooks(arguments, prepared.resources);
  if (!wishes) return tl::unexpected(wishes.error());
  prepared.rules = documentRules(arguments.documents);
  auto inputs = checkInputs(arguments);
  if (!inputs) return refuse(ExitCode::wrongUse, inputs.error().sentence);
  prepared.inputs = std::move(*inputs);
  if (const auto fault = kindFault(prepared.inputs.reference, (*tables)->kinds); !fault.empty()) {
    return refuse(ExitCode::wrongUse, fault);
  }
  const auto sum = sumOver((*tables)->files);
  if (!sum) return refuse(ExitCode::machineLacks, sum.error().sentence);
  prepared.inputs.documentsSum = *sum;
  if (const auto lack = machineLack(arguments); !lack.empty()) {
    return refuse(ExitCode::machineLacks, lack);
  }
  prepared.stage.loop = makeLoopFor(arguments);
  platform::RunLoop& loop = *prepared.stage.loop;
  prepared.identity = identify(arguments.sessionId, arguments.subject, loop.isVirtual());
  // Not shown yet, and made while the media library goes on with what it began.
  prepared.stage.screen =
      makeScreenFor(arguments, withSpokenTasks(*wishes), prepared.resources, loop);
  auto media = prepared.inputs.openMedia(loop);
  if (!media) return refuse(ExitCode::wrongUse, media.error().sentence);
  prepared.media = *media;
  const std::filesystem::path& folder = prepared.inputs.folder;
  if (const auto lack = diskLack(arguments, folder, *prepared.media); !lack.empty()) {
    return refuse(ExitCode::machineLacks, lack);
  }
  prepared.recognizer = makeRecognizer(loop, prepared.inputs.text);
  auto analyzer = startAnalyzer(prepared.resources, modelsFor(prepared, *tables), loop);
  if (!analyzer) return refuse(ExitCode::machineLacks, analyzer.error().sentence);
  prepared.analyzer = *analyzer;
  if (auto taken = takeFolder(folder, EventLog::kFileName); !taken) {
    return refuse(ExitCode::wrongUse, taken.error().sentence);
  }
  if (auto kept = keepConsent(prepared.inputs); !kept) {
    std::error_code ignored;  // Nothing has begun: the folder stays free.
    std::filesystem::remove(folder / EventLog::kFileName, ignored);
    return refuse(ExitCode::machineLacks, kept.error().sentence);
  }
  return prepared;
}

}  // namespace corvana::app
