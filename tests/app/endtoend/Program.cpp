#include "app/endtoend/Program.h"

#include <cstdlib>
#include <map>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "devices/scripted/HostContractValidator.h"

namespace corvana::tests {
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

ProgramRun runAsPlainOwner(const std::vector<std::string>& arguments) {
  if (geteuid() != 0) return runVideoid(arguments);
  std::vector<std::string> words{"--bounding-set", "-dac_override,-dac_read_search", VIDEOID};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return runProgram("setpriv", words);
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

Session Session::of(const std::string& script) {
  const fs::path sessions = SESSIONS;
  Session session{sessions / script / "session.mp4", sessions / script / "text.txt",
                  sessions / "reference"};
  EXPECT_TRUE(fs::exists(session.camera) && fs::exists(session.reference))
      << "make it first: ctest -R Sessions";
  return session;
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

std::string schemaComplaints(const fs::path& run) {
  const ProgramRun checked = runProgram(PYTHON, {SOURCES "/fits_schema.py", DOCS, run});
  return checked.exitCode == 0 ? "" : checked.output + checked.errors;
}

std::vector<std::string> breachesOf(const fs::path& run) {
  using Kind = devices::HostEvent::Kind;
  const std::map<std::string, Kind> kinds{{"state", Kind::state},
                                          {"liveFace", Kind::liveFace},
                                          {"mode", Kind::mode},
                                          {"call", Kind::call}};
  const auto options = nlohmann::json::parse(bytesOf(run / "result.json"))["options"];
  const auto limit = [&](const char* name) { return platform::seconds(options[name]); };
  auto selfieLimit = limit("selfieCapture.timeOutSeconds");
  // Three tasks, and one that may be missed.
  if (options["selfieCapture.liveness"] == "active")
    selfieLimit += 4 * limit("selfieCapture.livenessTaskSeconds");
  devices::HostContractValidator validator({selfieLimit, limit("idCapture.timeOutSeconds")}, {});
  for (const auto& event : eventsOf(run)) {
    const auto kind = kinds.find(event["event"]);
    if (kind == kinds.end()) continue;
    validator.observe(
        {platform::TimePoint(platform::seconds(event["t"])), kind->second, event["name"]});
  }
  return validator.breaches();
}

}  // namespace corvana::tests
