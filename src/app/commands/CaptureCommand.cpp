#include "app/commands/CaptureCommand.h"

#include <iomanip>
#include <iostream>
#include <sstream>

#include "app/commands/CaptureOptions.h"
#include "app/commands/Doctor.h"
#include "app/run/CaptureFlow.h"
#include "devices/loudspeaker/EspeakSynthesizer.h"
#include "engine/recorder/LateFrameAnalyzer.h"
#include "engine/recorder/VisionFrameAnalyzer.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

std::string clockTime(platform::TimePoint now) {
  std::ostringstream text;
  text << '[' << std::setw(6) << std::fixed << std::setprecision(1)
       << platform::inSeconds(now.time_since_epoch()) << " s]";
  return text.str();
}

bool isForTerminal(devices::FlowEvent::Kind kind) {
  using Kind = devices::FlowEvent::Kind;
  return kind != Kind::outline && kind != Kind::silhouette && kind != Kind::countdown &&
         kind != Kind::progress;
}

void printProgress(platform::TimePoint now, const devices::FlowEvent& event) {
  if (isForTerminal(event.kind)) {
    std::cerr << clockTime(now) << "  " << devices::describe(event) << std::endl;
  }
}

bool wasCanceled(const Outcome& outcome) {
  return !outcome && outcome.error().cause() == platform::FaultCause::canceled;
}

void removeRun(const fs::path& folder) {
  std::error_code ignored;  // What can't be removed was not ours.
  fs::remove_all(folder, ignored);
}

ExitCode finish(const RunRecord& record, const CaptureArguments& arguments,
                const CaptureInputs& inputs, const Resources& resources) {
  WrittenRecord written = writeRunRecord(record, resources, inputs.folder);
  if (record.outcome && !written.fault.empty()) {
    return complain(std::cerr, ExitCode::machineLacks, written.fault);
  }
  const bool removed = wasCanceled(record.outcome) && !arguments.keep;
  if (removed) removeRun(inputs.folder);
  std::error_code error;
  if (fs::exists(inputs.folder, error)) {
    written.content["folder"] = fs::absolute(inputs.folder).lexically_normal().string();
  }
  std::cout << written.content.dump(2) << std::endl;
  if (record.outcome) return ExitCode::result;
  const corvana::IDError& fault = record.outcome.error();
  // What keeps result.json away has often ended the run as well.
  if (!removed && !written.fault.empty() && platform::canTryAgain(fault.cause())) {
    complain(std::cerr, ExitCode::flowError, written.fault);
  }
  return complain(std::cerr, ExitCode::flowError, fault.localizedDescription());
}

/// A person stands before a live camera, and wants to see what is asked of them.
void chooseScreen(CaptureArguments& arguments) {
  if (arguments.screen || arguments.source.isRecording()) return;
  arguments.screen = windowIsPossible() ? ScreenKind::window : ScreenKind::headless;
}

/// Whoever says how a person behaves wants that person, not one before the window.
void choosePerson(const CLI::App& command, CaptureArguments& arguments) {
  const bool told = command.count("--on-retry") + command.count("--max-retries") +
                        command.count("--done") + command.count("--on-alert") >
                    0;
  arguments.personIsVirtual = arguments.screen != ScreenKind::window || told;
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

Expected<Analyzer> loadAnalyzer(const Resources& resources) {
  if (const auto lack = lacks({examineFaceModel(resources)}); !lack.empty()) {
    return tl::unexpected(lack);
  }
  auto loaded = engine::VisionFrameAnalyzer::load(
      {resources.faceDetector(), resources.faceLandmarks(), resources.textReader()});
  if (!loaded) return tl::unexpected(loaded.error().localizedDescription());
  return *loaded;
}

/// A user does not wait for the models to see their picture; a replay has all the time it wants.
Expected<Analyzer> startAnalyzer(const Resources& resources, platform::RunLoop& loop) {
  if (loop.isVirtual()) return loadAnalyzer(resources);
  return engine::LateFrameAnalyzer::start(loop, [resources] { return loadAnalyzer(resources); });
}

/// What is missing whatever the camera is; empty when nothing is.
std::string machineLack(const CaptureArguments& arguments) {
  if (auto lack = lacks(examineMachine()); !lack.empty()) return lack;
  if (!devices::realTimeVideoCodecs(arguments.videoCodec).empty()) return {};
  return "No encoder for the film's --video-codec is installed: install "
         "gstreamer1.0-plugins-bad for hevc, gstreamer1.0-plugins-ugly for h264.";
}

ExitCode runCapture(const CaptureArguments& arguments) {
  if (!arguments.text && !arguments.textFile) {
    return complain(std::cerr, ExitCode::wrongUse,
                    "Give the text to be read with --text or --text-file.");
  }
  if (const auto fault = screenFault(arguments); !fault.empty()) {
    return complain(std::cerr, ExitCode::wrongUse, fault);
  }
  const Resources resources = findResources();
  WindowWishes wishes = arguments.window;
  const auto dressed =
      applyLooks({arguments.screen == ScreenKind::window, arguments.language, arguments.theme},
                 resources, wishes.looks);
  if (!dressed) return complain(std::cerr, ExitCode::wrongUse, dressed.error());
  wishes.looks.spokenHints |= arguments.spokenHints;
  if (const auto fault = hintsFault(arguments, wishes.looks); !fault.empty()) {
    return complain(std::cerr, ExitCode::machineLacks, fault);
  }
  auto inputs = checkInputs(arguments);
  if (!inputs) return complain(std::cerr, ExitCode::wrongUse, inputs.error());
  if (const auto lack = machineLack(arguments); !lack.empty()) {
    return complain(std::cerr, ExitCode::machineLacks, lack);
  }
  FlowStage stage{makeLoopFor(arguments), nullptr};
  platform::RunLoop& loop = *stage.loop;
  auto media = inputs->openMedia(loop);
  if (!media) return complain(std::cerr, ExitCode::wrongUse, media.error());
  const auto needed = bytesNeeded((*media)->camera().get(), arguments.maxDurationSeconds);
  if (const auto lack = lacks({diskSpace(inputs->folder, needed)}); !lack.empty()) {
    return complain(std::cerr, ExitCode::machineLacks, lack);
  }
  auto analyzer = startAnalyzer(resources, loop);
  if (!analyzer) return complain(std::cerr, ExitCode::machineLacks, analyzer.error());
  if (auto made = makeEmptyFolder(inputs->folder); !made) {
    return complain(std::cerr, ExitCode::wrongUse, made.error());
  }
  stage.screen = makeScreenFor(arguments, wishes, resources, loop);
  CaptureFlow flow(arguments, *inputs, resources, stage, *media, *analyzer, printProgress);
  const RunRecord record = flow.run();
  const ExitCode code = finish(record, arguments, *inputs, resources);
  return (*analyzer)->fault() ? ExitCode::machineLacks : code;
}

}  // namespace

void addCaptureCommand(CLI::App& app, ExitCode& exitCode) {
  auto arguments = std::make_shared<CaptureArguments>();
  CLI::App& command = *app.add_subcommand(
      "capture", "Run one video identification and leave film, selfie, events and result");
  addCaptureOptions(command, *arguments);
  command.callback([arguments, &command, &exitCode] {
    chooseScreen(*arguments);
    choosePerson(command, *arguments);
    exitCode = runCapture(*arguments);
  });
}

}  // namespace corvana::app
