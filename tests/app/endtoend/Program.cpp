#include "app/endtoend/Program.h"

#include <cstdlib>
#include <map>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "devices/scripted/HostContractValidator.h"

namespace tests {
namespace {

namespace fs = std::filesystem;

std::string quoted(const std::string& word) {
  std::string result = "'";
  for (const char c : word)
    result += c == '\'' ? "'\\''" : std::string(1, c);
  return result + "'";
}

}  // namespace

ProgramRun runProgram(const fs::path& program, const std::vector<std::string>& arguments) {
  const ScratchFolder scratch;
  std::string command = quoted(program);
  for (const std::string& argument : arguments)
    command += " " + quoted(argument);
  command += " >" + quoted(scratch / "out") + " 2>" + quoted(scratch / "err") + " </dev/null";
  const int status = std::system(command.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, bytesOf(scratch / "out"),
          bytesOf(scratch / "err")};
}

ProgramRun runVideoid(const std::vector<std::string>& arguments) {
  return runProgram(VIDEOID, arguments);
}

ProgramRun runDisturbed(const std::vector<std::string>& arguments, const fs::path& run,
                        const std::string& command) {
  // With job control the program does not begin with SIGINT ignored. Two fragments of film must
  // have reached the disk: how long that takes is the machine's affair.
  const std::string script =
      "set -m; run=$1; shift; \"$@\" & pid=$!; "
      "until [ \"$(grep -aos moof \"$run/film.partial.mp4\" | wc -l)\" -ge 2 ] || ! kill -0 $pid; "
      "do sleep 0.05; done; " +
      command + "; wait $pid";
  std::vector<std::string> words{"-c", script, "bash", run, VIDEOID};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return runProgram("bash", words);
}

Session Session::make(const std::string& script, const ScratchFolder& scratch) {
  const fs::path folder = scratch / "session";
  const ProgramRun made = runProgram(MAKE_SESSION, {std::string(SAMPLES) + "/" + script, "--cache",
                                                    SESSION_CACHE, "--output", folder.string()});
  EXPECT_EQ(made.exitCode, 0) << made.errors;
  const ProgramRun enrolled = runVideoid({"enroll", "--front", folder / "front.png", "--back",
                                          folder / "back.png", "--output", scratch / "reference"});
  EXPECT_EQ(enrolled.exitCode, 0) << enrolled.errors;
  return {folder / "session.mp4", folder / "text.txt", scratch / "reference"};
}

std::vector<nlohmann::json> eventsOf(const fs::path& run, const std::string& event,
                                     const std::string& name) {
  std::vector<nlohmann::json> found;
  std::istringstream lines(bytesOf(run / "events.jsonl"));
  for (std::string line; std::getline(lines, line);) {
    auto object = nlohmann::json::parse(line);
    if (!event.empty() && object["event"] != event) continue;
    if (!name.empty() && object.value("name", "") != name) continue;
    found.push_back(std::move(object));
  }
  return found;
}

std::vector<std::string> breachesOf(const fs::path& run) {
  using Kind = devices::HostEvent::Kind;
  const std::map<std::string, Kind> kinds{{"state", Kind::state},
                                          {"liveFace", Kind::liveFace},
                                          {"mode", Kind::mode},
                                          {"call", Kind::call}};
  devices::HostContractValidator validator({std::chrono::seconds(20), std::chrono::seconds(30)},
                                           {});
  for (const auto& event : eventsOf(run)) {
    const auto kind = kinds.find(event["event"]);
    if (kind == kinds.end()) continue;
    validator.observe(
        {platform::TimePoint(platform::seconds(event["t"])), kind->second, event["name"]});
  }
  return validator.breaches();
}

}  // namespace tests
