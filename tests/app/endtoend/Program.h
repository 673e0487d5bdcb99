#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/Scratch.h"

namespace corvana::tests {

/// What a program left behind when it was run with these arguments.
struct ProgramRun {
  int exitCode = -1;
  std::string output;
  std::string errors;
};

ProgramRun runProgram(const std::filesystem::path& program,
                      const std::vector<std::string>& arguments);
ProgramRun runVideoid(const std::vector<std::string>& arguments);
/// Runs `videoid` with no more rights on files than their owner, even if that is root.
ProgramRun runAsPlainOwner(const std::vector<std::string>& arguments);

/// Runs `videoid` into the folder `run` and, once so much film is on disk that it plays whatever
/// happens, a shell command that finds it in $pid and the folder in $run.
ProgramRun runDisturbed(const std::vector<std::string>& arguments, const std::filesystem::path& run,
                        const std::string& command);

/// A session made from a script of samples/, and the reference enrolled from the stills of its
/// card. The tests `Sessions.*` make them, which ctest runs before.
struct Session {
  std::filesystem::path camera;
  std::filesystem::path text;
  std::filesystem::path reference;

  static Session of(const std::string& script);
};

/// The lines of events.jsonl, of that event and of that name when they are given.
std::vector<nlohmann::json> eventsOf(const std::filesystem::path& run,
                                     const std::string& event = {}, const std::string& name = {});

/// Where result.json and events.jsonl of that run differ from their schemas in docs/; empty when
/// they do not.
std::string schemaComplaints(const std::filesystem::path& run);

/// Where the host of that run broke a promise of docs/host-contract.md.
std::vector<std::string> breachesOf(const std::filesystem::path& run);

}  // namespace corvana::tests
