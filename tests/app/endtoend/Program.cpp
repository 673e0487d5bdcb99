#include "app/endtoend/Program.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <map>
#include <sstream>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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

RunningProgram::RunningProgram(const std::vector<std::string>& arguments) {
  std::vector<std::string> words{VIDEOID};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> raw;
  for (std::string& word : words)
    raw.push_back(word.data());
  raw.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  const std::string out = scratch_ / "out";
  const std::string err = scratch_ / "err";
  posix_spawn_file_actions_addopen(&files, 1, out.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&files, 2, err.c_str(), O_WRONLY | O_CREAT, 0600);
  EXPECT_EQ(posix_spawn(&id_, VIDEOID, &files, nullptr, raw.data(), environ), 0);
  posix_spawn_file_actions_destroy(&files);
}

RunningProgram::~RunningProgram() {
  if (id_ < 0) return;
  send(SIGKILL);
  end();
}

bool RunningProgram::waitFor(const std::function<bool()>& condition) {
  siginfo_t ended{};
  for (int i = 0; i < 6000 && !condition(); ++i) {
    waitid(P_PID, static_cast<id_t>(id_), &ended, WEXITED | WNOHANG | WNOWAIT);
    if (ended.si_pid != 0) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return condition();
}

void RunningProgram::send(int signal) const {
  kill(id_, signal);
}

ProgramRun RunningProgram::end() {
  int status = 0;
  waitpid(std::exchange(id_, -1), &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, bytesOf(scratch_ / "out"),
          bytesOf(scratch_ / "err")};
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
