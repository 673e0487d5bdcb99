#include "app/commands/CaptureOptions.h"

#include <map>
#include <string>
#include <vector>

#include "app/commands/DocumentOptions.h"

namespace corvana::app {
namespace {

/// The parser's own ranges take "nan" for a number within.
auto within(int least, int most) {
  return [least, most](const std::string& text) {
    double number = 0;
    const bool isWithin =
        CLI::detail::lexical_cast(text, number) && number >= least && number <= most;
    if (isWithin) return std::string();
    return "give a number from " + std::to_string(least) + " to " + std::to_string(most);
  };
}

void addCameraOptions(CLI::App& command, CameraChoice& choice) {
  using devices::CameraTurn;
  command.add_option("--camera", choice.camera,
                     "id of a camera (`videoid devices` lists them), default (the first one), or a "
                     "recorded video that stands in for camera and microphone");
  command.add_option("--microphone", choice.microphone,
                     "id of a microphone, default, or none: a film without sound");
  command.add_option_function<std::string>(
      "--camera-mode",
      [&choice](const std::string& text) {
        const auto mode = devices::parseCameraMode(text);
        if (!mode) {
          throw CLI::ValidationError("--camera-mode",
                                     "give width, height and pictures a second as 1920x1080@30");
        }
        choice.mode = *mode;
      },
      "asked of a live camera, as 1920x1080@30; the nearest that it offers is taken (default: "
      "1280x720@30, or what this machine is fast enough for)");
  const std::map<std::string, CameraTurn> turns{{"0", CameraTurn::none},
                                                {"90", CameraTurn::right},
                                                {"180", CameraTurn::around},
                                                {"270", CameraTurn::left}};
  command
      .add_option("--camera-turn", choice.turn,
                  "degrees clockwise by which the pictures of a live camera that is mounted "
                  "sideways are turned: 0 (default), 90, 180, 270")
      ->transform(CLI::Transformer(turns).description(""))
      ->check(CLI::IsMember({0, 90, 180, 270}).description(""));
  command.add_flag("--allow-virtual-camera", choice.allowVirtual,
                   "also take a camera that is software, to try things; the result says so");
  command.add_flag(
      "--refuse-injected-camera", choice.refuseInjected,
      "end a run whose live camera shows signs of a stream that software feeds in; see "
      "docs/devices.md");
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
                     "of the screens: " + languageHelp() + "; the text to read is yours");
  command.add_option("--theme", arguments.theme,
                     "JSON file of colours, fonts, pictures, places and texts; see docs/screen.md");
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
        const bool isNumber = CLI::detail::lexical_cast(value, seconds);
        if (!isNumber || !(seconds >= 0 && seconds <= 3600)) {
          throw CLI::ValidationError("--done", "give seconds from 0 to 3600, or never");
        }
        arguments.habits.doneAfter = platform::seconds(seconds);
      },
      "touch Done so many seconds after it appears, or never (default)");
}

void addSeal(CLI::App& command, CaptureArguments& arguments) {
  command.add_option("--key", arguments.key,
                     "private key that seals the record, made by `videoid key new`; see "
                     "docs/evidence.md");
  command.add_option("--session-id", arguments.sessionId,
                     "name of this identification in the record (default: a random one in real "
                     "time, none in media time)");
  command.add_option("--subject", arguments.subject,
                     "whom you take the person for, in the record only; better a number of yours "
                     "than a name");
}

void addCaller(CLI::App& command, CaptureArguments& arguments) {
  command
      .add_option("--caller", arguments.caller.socket,
                  "descriptor of a Unix socket (SOCK_SEQPACKET) by which the program that "
                  "started this one follows the events; see docs/embedding-c.md")
      ->check([](const std::string& text) {
        int socket = -1;
        const bool isSocket =
            CLI::detail::lexical_cast(text, socket) && CallerLink::isPossible(socket);
        return isSocket ? std::string() : "it is no open Unix socket of whole messages";
      });
  command
      .add_option("--caller-pictures", arguments.caller.picturesPerSecond,
                  "pictures of the window a second that the caller gets (default 0)")
      ->check([](const std::string& text) {
        // Of a lower rate the time to the first picture is beyond any clock.
        constexpr double kLeast = 0.01;
        constexpr double kMost = 30;
        double rate = -1;
        const bool isWithin = CLI::detail::lexical_cast(text, rate) &&
                              (rate == 0 || (rate >= kLeast && rate <= kMost));
        return std::string(isWithin ? "" : "give 0, or a number from 0.01 to 30");
      });
}

void addPrivacy(CLI::App& command, CaptureArguments& arguments) {
  const std::map<std::string, Remains> remains{
      {"keep", Remains::all}, {"hashes", Remains::hashes}, {"remove", Remains::nothing}};
  command.add_option("--consent", arguments.consent,
                     "JSON file that says what the person agreed to; it is kept in the record, see "
                     "docs/privacy.md");
  command.add_flag("--require-consent", arguments.requiresConsent,
                   "record nothing without --consent");
  command
      .add_option(
          "--retain-days", arguments.retainDays,
          "days for which the run is to be kept, for `videoid purge` (default: without end)")
      ->check(CLI::Range(0, 36500).description(""));
  auto* cancelled =
      command
          .add_option("--cancelled", arguments.afterCancellation,
                      "what is left of a cancelled run: remove (default: nothing), hashes (its "
                      "result, with the SHA-256 of what was there), or keep (all)")
          ->transform(CLI::CheckedTransformer(remains).description(""));
  command
      .add_option("--failed", arguments.afterFailure,
                  "the same for a run that a fault ended (default: keep)")
      ->transform(CLI::CheckedTransformer(remains).description(""));
  command
      .add_flag_callback(
          "--keep", [&arguments] { arguments.afterCancellation = Remains::all; },
          "keep the folder of a cancelled run, too, as --cancelled keep does")
      ->excludes(cancelled);
  command.add_flag(
      "!--no-evidence", arguments.keepsEvidence,
      "keep no words and pictures of what was compared; `videoid report` then lacks them");
}

}  // namespace

void addCaptureOptions(CLI::App& command, CaptureArguments& arguments) {
  command
      .add_option("--reference", arguments.reference,
                  "folder of the card's earlier capture, made by `videoid enroll`")
      ->required();
  auto* text = command.add_option("--text", arguments.text, "the text to be read aloud");
  command.add_option("--text-file", arguments.textFile, "file that holds the text")->excludes(text);
  addCameraOptions(command, arguments.source);
  addVideoCodec(command, arguments);
  addTime(command, arguments);
  addScreen(command, arguments);
  addLooks(command, arguments);
  command.add_option("--output", arguments.output,
                     "new or empty folder for the run (default: videoid-run-N here)");
  command.add_option("--options", arguments.options,
                     "JSON file of options; `videoid options --print` lists them");
  addDocumentOptions(command, arguments.documents);
  addSeal(command, arguments);
  addHabits(command, arguments);
  addCaller(command, arguments);
  command
      .add_option(
          "--max-duration", arguments.maxDurationSeconds,
          "seconds after which the flow is ended (default 600); the disk must have room for a "
          "film of that length, three times")
      ->check(within(1, 7200));
  command.add_option(
      "--challenge-seed", arguments.challengeSeed,
      "whole number from which the tasks of selfieCapture.liveness active are drawn, "
      "to try things (default: the system's randomness, in media time 0)");
  command.add_flag(
      "--refuse-voice-without-lips", arguments.refusesVoiceWithoutLips,
      "lose a face whose lips rest while a voice reads the text; see docs/liveness.md");
  addPrivacy(command, arguments);
  command.add_flag("--keep-failed-runs", arguments.keepFailedRuns,
                   "keep the films of runs that were retried, as film.run1.mp4 and so on");
}

}  // namespace corvana::app
