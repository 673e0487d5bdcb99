#include "app/CaptureCommand.h"

#include <iomanip>
#include <iostream>
#include <sstream>

#include "app/CaptureFlow.h"
#include "app/Doctor.h"
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
  return !outcome && outcome.error() == corvana::IDError(corvana::IDError::Strings::canceled);
}

void removeRun(const fs::path& folder) {
  std::error_code ignored;  // What can't be removed was not ours.
  fs::remove_all(folder, ignored);
}

ExitCode finish(const RunRecord& record, const CaptureArguments& arguments,
                const CaptureInputs& inputs, const Resources& resources) {
  auto result = writeRunRecord(record, resources, inputs.folder);
  if (!result) return complain(ExitCode::machineLacks, result.error());
  if (wasCanceled(record.outcome) && !arguments.keep) {
    removeRun(inputs.folder);
  } else {
    (*result)["folder"] = fs::absolute(inputs.folder).lexically_normal().string();
  }
  std::cout << result->dump(2) << std::endl;
  if (record.outcome) return ExitCode::result;
  return complain(ExitCode::flowError, record.outcome.error().localizedDescription());
}

CLI::Option* addTime(CLI::App& command, CaptureArguments& arguments) {
  const std::map<std::string, TimeKind> kinds{{"media", TimeKind::media}, {"real", TimeKind::real}};
  return command
      .add_option("--time", arguments.time,
                  "media: as fast as the machine can, the file's time counts (default); "
                  "real: the wall clock")
      ->transform(CLI::CheckedTransformer(kinds).description(""));
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
  command
      .add_option("--camera", arguments->camera,
                  "a recorded video that stands in for camera and microphone")
      ->required();
  addTime(command, *arguments);
  command.add_option("--output", arguments->output,
                     "new or empty folder for the run (default: videoid-run-N here)");
  command.add_option("--options", arguments->options,
                     "JSON file of options; `videoid options --print` lists them");
  addHabits(command, *arguments);
  command
      .add_option("--max-duration", arguments->maxDurationSeconds,
                  "seconds after which the flow is ended (default 600)")
      ->check(CLI::Range(1.0, 7200.0).description(""));
  command.add_flag("--keep", arguments->keep, "keep the folder of a cancelled run, too");
  command.add_flag("--keep-failed-runs", arguments->keepFailedRuns,
                   "keep the films of runs that were retried");
  command.callback([arguments, &exitCode] { exitCode = runCapture(*arguments); });
}

ExitCode runCapture(const CaptureArguments& arguments) {
  if (!arguments.text && !arguments.textFile) {
    return complain(ExitCode::wrongUse, "Give the text to be read with --text or --text-file.");
  }
  auto inputs = checkInputs(arguments);
  if (!inputs) return complain(ExitCode::wrongUse, inputs.error());
  const Resources resources = findResources();
  if (const auto lack = lacks(examine(resources, inputs->folder)); !lack.empty()) {
    return complain(ExitCode::machineLacks, lack);
  }
  auto analyzer =
      engine::VisionFrameAnalyzer::load({resources.faceDetector(), resources.faceLandmarks()});
  if (!analyzer) {
    return complain(ExitCode::machineLacks, analyzer.error().localizedDescription());
  }
  const auto driver = makeDriver(arguments.time);
  auto media = devices::MediaFile::open(driver->loop(), arguments.camera);
  if (!media) return complain(ExitCode::wrongUse, media.error());
  if (auto made = makeEmptyFolder(inputs->folder); !made) {
    return complain(ExitCode::wrongUse, made.error());
  }
  CaptureFlow flow(arguments, *inputs, resources, *driver, *media, std::move(*analyzer),
                   printProgress);
  return finish(flow.run(), arguments, *inputs, resources);
}

}  // namespace app
