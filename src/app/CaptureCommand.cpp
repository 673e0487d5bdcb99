#include "app/CaptureCommand.h"

#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>

#include "app/CaptureFlow.h"
#include "app/Doctor.h"
#include "devices/loudspeaker/EspeakSynthesizer.h"
#include "engine/recorder/LateFrameAnalyzer.h"
#include "engine/recorder/VisionFrameAnalyzer.h"

namespace app {
namespace {

namespace fs = std::filesystem;

ExitCode complain(ExitCode code, const std::string& sentence) {
  std::cerr << "videoid: " << sentence << '\n';
  return code;
}

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
    return complain(ExitCode::machineLacks, written.fault);
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
    complain(ExitCode::flowError, written.fault);
  }
  return complain(ExitCode::flowError, fault.localizedDescription());
}

CLI::Option* addTime(CLI::App& command, CaptureArguments& arguments) {
  const std::map<std::string, TimeKind> kinds{{"media", TimeKind::media}, {"real", TimeKind::real}};
  return command
      .add_option("--time", arguments.time,
                  "media: as fast as the machine can, the recording's time counts (default for one "
                  "without a window); real: the wall clock (always with a live camera)")
      ->transform(CLI::CheckedTransformer(kinds).description(""));
}

void addVideoCodec(CLI::App& command, CaptureArguments& arguments) {
  using Choice = devices::VideoCodecChoice;
  const std::map<std::string, Choice> choices{
      {"auto", Choice::automatic}, {"h264", Choice::h264}, {"hevc", Choice::hevc}};
  command
      .add_option(
          "--video-codec", arguments.videoCodec,
          "of the film: auto (default: hevc where hardware encodes it, else h264), h264, or "
          "hevc, in software too, which takes a core of its own")
      ->transform(CLI::CheckedTransformer(choices).description(""));
}

void addScreen(CLI::App& command, CaptureArguments& arguments) {
  const std::map<std::string, ScreenKind> kinds{{"window", ScreenKind::window},
                                                {"headless", ScreenKind::headless}};
  command
      .add_option("--screen", arguments.screen,
                  "window: a person sees and answers it, in real time; headless: --on-retry, "
                  "--max-retries and --done answer. Default: window when the camera is live and "
                  "there is a display")
      ->transform(CLI::CheckedTransformer(kinds).description(""));
  command.add_flag("--full-screen", arguments.window.fullScreen, "the window fills the screen");
  command.add_option_function<std::string>(
      "--window-size",
      [&arguments](const std::string& value) {
        const std::size_t cross = value.find('x');
        platform::CGSize size;
        if (cross == std::string::npos ||
            !CLI::detail::lexical_cast(value.substr(0, cross), size.width) ||
            !CLI::detail::lexical_cast(value.substr(cross + 1), size.height) ||
            !(size.width >= 320 && size.height >= 320 && size.width <= 7680 &&
              size.height <= 7680)) {
          throw CLI::ValidationError("--window-size",
                                     "give width and height as 540x960, each from 320 to 7680");
        }
        arguments.window.size = size;
      },
      "width and height of the window in points (default 540x960, or less where there is no room)");
}

void addLooks(CLI::App& command, CaptureArguments& arguments) {
  command.add_flag("--spoken-hints", arguments.spokenHints,
                   "the window's prompts are spoken, in the language of the screens");
  command.add_option("--language", arguments.language,
                     "of the screens: ar, de, en (default), es or fr; the text to read is yours");
  command.add_option("--theme", arguments.theme,
                     "JSON file of colours, fonts, pictures, places and texts; see docs/screen.md");
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

std::unique_ptr<Driver> makeDriverFor(const CaptureArguments& arguments) {
  if (arguments.screen == ScreenKind::window) return makeWindowDriver();
  const TimeKind usual = arguments.source.isRecording() ? TimeKind::media : TimeKind::real;
  return makeDriver(arguments.time.value_or(usual));
}

std::unique_ptr<FlowScreen> makeScreenFor(const CaptureArguments& arguments,
                                          const WindowWishes& wishes, const Resources& resources,
                                          platform::RunLoop& loop) {
  if (arguments.screen == ScreenKind::window) return makeWindowScreen(loop, wishes, resources);
  return makeHeadlessScreen(loop);
}

using Analyzer = std::shared_ptr<engine::FrameAnalyzer>;

Expected<Analyzer> loadAnalyzer(const Resources& resources) {
  if (const auto lack = lacks(examineModels(resources)); !lack.empty()) {
    return tl::unexpected(lack);
  }
  auto loaded =
      engine::VisionFrameAnalyzer::load({resources.faceDetector(), resources.faceLandmarks()});
  if (!loaded) return tl::unexpected(loaded.error().localizedDescription());
  return *loaded;
}

/// A user does not wait for the models to see their picture; a replay has all the time it wants.
Expected<Analyzer> startAnalyzer(const Resources& resources, platform::RunLoop& loop) {
  if (loop.isVirtual()) return loadAnalyzer(resources);
  return engine::LateFrameAnalyzer::start(loop, [resources] { return loadAnalyzer(resources); });
}

void addHabits(CLI::App& command, CaptureArguments& arguments) {
  using OnRetry = devices::PersonHabits::OnRetry;
  const std::map<std::string, OnRetry> answers{{"retry", OnRetry::retry},
                                               {"cancel", OnRetry::cancel}};
  command
      .add_option("--on-retry", arguments.habits.onRetry,
                  "how a retry screen is answered: retry or cancel (default)")
      ->transform(CLI::CheckedTransformer(answers).description(""));
  command
      .add_option("--max-retries", arguments.habits.maxRetries,
                  "retry screens answered with retry before one is cancelled (default 3)")
      ->check(CLI::Range(0, 1000).description(""));
  command
      .add_option_function<std::string>(
          "--on-alert", [](const std::string&) {},
          "how an alert is answered: ok (default, the only answer)")
      ->check(CLI::IsMember(std::vector<std::string>{"ok"}).description(""));
  command.add_option_function<std::string>(
      "--done",
      [&arguments](const std::string& value) {
        if (value == "never") return arguments.habits.doneAfter.reset();
        double seconds = -1;
        if (!CLI::detail::lexical_cast(value, seconds) || seconds < 0 || seconds > 3600) {
          throw CLI::ValidationError("--done", "give seconds from 0 to 3600, or never");
        }
        arguments.habits.doneAfter = platform::seconds(seconds);
      },
      "touch Done so many seconds after it appears, or never (default)");
}

/// What is missing whatever the camera is; empty when nothing is.
std::string machineLack(const CaptureArguments& arguments) {
  if (auto lack = lacks(examineMachine()); !lack.empty()) return lack;
  if (!devices::realTimeVideoCodecs(arguments.videoCodec).empty()) return {};
  return "No encoder for the film's --video-codec is installed: install "
         "gstreamer1.0-plugins-bad for hevc, gstreamer1.0-plugins-ugly for h264.";
}

}  // namespace

void addCaptureCommand(CLI::App& app, ExitCode& exitCode) {
  auto arguments = std::make_shared<CaptureArguments>();
  CLI::App& command = *app.add_subcommand(
      "capture", "Run one video identification and leave film, selfie, events and result");
  command
      .add_option("--reference", arguments->reference,
                  "folder of the card's earlier capture, made by `videoid enroll`")
      ->required();
  auto* text = command.add_option("--text", arguments->text, "the text to be read aloud");
  command.add_option("--text-file", arguments->textFile, "file that holds the text")
      ->excludes(text);
  addCameraOptions(command, arguments->source);
  addVideoCodec(command, *arguments);
  addTime(command, *arguments);
  addScreen(command, *arguments);
  addLooks(command, *arguments);
  command.add_option("--output", arguments->output,
                     "new or empty folder for the run (default: videoid-run-N here)");
  command.add_option("--options", arguments->options,
                     "JSON file of options; `videoid options --print` lists them");
  addHabits(command, *arguments);
  command
      .add_option(
          "--max-duration", arguments->maxDurationSeconds,
          "seconds after which the flow is ended (default 600); the disk must have room for a "
          "film of that length, three times")
      ->check(CLI::Range(1.0, 7200.0).description(""));
  command.add_flag("--keep", arguments->keep, "keep the folder of a cancelled run, too");
  command.add_flag("--keep-failed-runs", arguments->keepFailedRuns,
                   "keep the films of runs that were retried, as film.run1.mp4 and so on");
  command.callback([arguments, &command, &exitCode] {
    chooseScreen(*arguments);
    choosePerson(command, *arguments);
    exitCode = runCapture(*arguments);
  });
}

ExitCode runCapture(const CaptureArguments& arguments) {
  if (!arguments.text && !arguments.textFile) {
    return complain(ExitCode::wrongUse, "Give the text to be read with --text or --text-file.");
  }
  if (const auto fault = screenFault(arguments); !fault.empty()) {
    return complain(ExitCode::wrongUse, fault);
  }
  const Resources resources = findResources();
  WindowWishes wishes = arguments.window;
  const auto dressed =
      applyLooks({arguments.screen == ScreenKind::window, arguments.language, arguments.theme},
                 resources, wishes.looks);
  if (!dressed) return complain(ExitCode::wrongUse, dressed.error());
  wishes.looks.spokenHints |= arguments.spokenHints;
  if (const auto fault = hintsFault(arguments, wishes.looks); !fault.empty()) {
    return complain(ExitCode::machineLacks, fault);
  }
  auto inputs = checkInputs(arguments);
  if (!inputs) return complain(ExitCode::wrongUse, inputs.error());
  if (const auto lack = machineLack(arguments); !lack.empty()) {
    return complain(ExitCode::machineLacks, lack);
  }
  FlowStage stage{makeDriverFor(arguments), nullptr};
  platform::RunLoop& loop = stage.driver->loop();
  auto media = inputs->openMedia(loop);
  if (!media) return complain(ExitCode::wrongUse, media.error());
  const auto needed = bytesNeeded((*media)->camera().get(), arguments.maxDurationSeconds);
  if (const auto lack = lacks({diskSpace(inputs->folder, needed)}); !lack.empty()) {
    return complain(ExitCode::machineLacks, lack);
  }
  auto analyzer = startAnalyzer(resources, loop);
  if (!analyzer) return complain(ExitCode::machineLacks, analyzer.error());
  if (auto made = makeEmptyFolder(inputs->folder); !made) {
    return complain(ExitCode::wrongUse, made.error());
  }
  stage.screen = makeScreenFor(arguments, wishes, resources, loop);
  CaptureFlow flow(arguments, *inputs, resources, stage, *media, *analyzer, printProgress);
  const RunRecord record = flow.run();
  const ExitCode code = finish(record, arguments, *inputs, resources);
  return (*analyzer)->fault() ? ExitCode::machineLacks : code;
}

}  // namespace app
