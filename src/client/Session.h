#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "client/Child.h"
#include "corvana/videoid.h"

namespace corvana::client {

/// How a call ended, and its answer as JSON; empty where there is none.
struct Answer {
  corvana_videoid_status status;
  std::string json;
};

/// A call's command, and the keys of its request whose values stand alone on the command line.
struct Command {
  std::string name;
  std::vector<std::string> positionals = {};
  bool answersInLines = false;   ///< its output is text, not JSON
  const char* always = nullptr;  ///< an option that it is given each time
};

/// What stands behind a handle: one call at a time. Any thread.
class Session {
 public:
  explicit Session(std::string program) : program_(std::move(program)) {}

  Answer call(const Command& command, const char* request,
              const corvana_videoid_follower* follower);
  /// False when no call runs.
  bool cancel();
  bool isBusy() const;

 private:
  /// Null while another call runs.
  std::shared_ptr<Child> begin();
  void finish();

  const std::string program_;
  mutable std::mutex mutex_;
  std::shared_ptr<Child> running_;
};

}  // namespace corvana::client
