#include "app/commands/CaptureCommand.h"

#include <iomanip>
#include <iostream>
#include <sstream>

#include "app/commands/CaptureOptions.h"
#include "app/record/RunRecord.h"
#include "app/run/CaptureFlow.h"
#include "app/run/Preflight.h"
#include "engine/json/JsonText.h"

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

void removeRun(const fs::path& folder) {
  std::error_code ignored;  // What can't be removed was not ours.
  fs::remove_all(folder, ignored);
}

ExitCode finish(const RunRecord& record, const CaptureArguments& arguments,
                const CaptureInputs& inputs, const Resources& resources) {
  WrittenRecord written = writeRunRecord(record, resources, inputs.folder);
  if (record.outcome && written.fault) {
    return complain(std::cerr, ExitCode::machineLacks, written.fault->sentence);
  }
  const Remains remains = remainsAfter(record.outcome, arguments);
  const bool removed = remains == Remains::nothing;
  if (removed) removeRun(inputs.folder);
  // Where the result could not be written, the files are all there is.
  if (remains == Remains::hashes && !written.fault) leaveHashesOnly(inputs.folder);
  std::error_code error;
  if (fs::exists(inputs.folder, error)) {
    written.content["folder"] = fs::absolute(inputs.folder).lexically_normal().string();
  }
  // What the caller calls the person is for the record, not for a console or its log.
  if (auto session = written.content.find("session"); session != written.content.end()) {
    session->erase("subject");
  }
  std::cout << engine::indentedJson(written.content) << std::endl;
  if (record.outcome) return ExitCode::result;
  const corvana::IDError& fault = record.outcome.error();
  // What keeps result.json away has often ended the run as well: a full disk, a chip that no longer
  // answers.
  const bool isNew = written.fault && written.fault->sentence != fault.localizedDescription();
  if (!removed && isNew && platform::canTryAgain(fault.cause())) {
    complain(std::cerr, ExitCode::flowError, written.fault->sentence);
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

ExitCode runCapture(const CaptureArguments& arguments) {
  auto prepared = prepareCapture(arguments);
  if (!prepared) return complain(std::cerr, prepared.error());
  CaptureFlow flow(arguments, *prepared, printProgress);
  const RunRecord record = flow.run();
  const ExitCode code = finish(record, arguments, prepared->inputs, prepared->resources);
  return prepared->analyzer->fault() ? ExitCode::machineLacks : code;
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
