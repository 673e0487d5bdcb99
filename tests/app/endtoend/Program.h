#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/Scratch.h"

namespace tests {

/// What a program left behind when it was run with these arguments.
struct ProgramRun {
  int exitCode = -1;
  std::string output;
  std::string errors;
};

ProgramRun runProgram(const std::filesystem::path& program,
                      const std::vector<std::string>& arguments);
ProgramRun runVideoid(const std::vector<std::string>& arguments);

/// A program that runs beside the test, with nothing between the two that could swallow a signal.
class RunningProgram {
 public:
  /// Of `videoid`.
  explicit RunningProgram(const std::vector<std::string>& arguments);
  ~RunningProgram();
  /// False when it ended before, or within a minute did not get so far.
  bool waitFor(const std::function<bool()>& condition);
  void send(int signal) const;
  /// Waits for its end; the exit code is -1 when a signal killed it.
  ProgramRun end();

 private:
  const ScratchFolder scratch_;
  int id_ = -1;
};

/// A session made from a script of samples/, and the reference enrolled from its stills. Made once,
/// then taken from the cache of the build.
struct Session {
  std::filesystem::path camera;
  std::filesystem::path text;
  std::filesystem::path reference;

  static Session make(const std::string& script, const ScratchFolder& scratch);
};

/// The lines of events.jsonl, of that event and of that name when they are given.
std::vector<nlohmann::json> eventsOf(const std::filesystem::path& run,
                                     const std::string& event = {}, const std::string& name = {});

/// Where the host of that run broke a promise of docs/host-contract.md.
std::vector<std::string> breachesOf(const std::filesystem::path& run);

}  // namespace tests
