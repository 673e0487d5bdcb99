#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <mutex>

#include "client/Session.h"
#include "corvana/videoid.h"

namespace {

using corvana::client::Answer;
using corvana::client::Command;
using corvana::client::Session;

constexpr const char* kProgram = "videoid";

/// Every handle that lives. The one thing that all callers of a library share: only so can a handle
/// that was destroyed be told from one that was not.
class Handles {
 public:
  corvana_videoid* add(std::shared_ptr<Session> session) {
    const std::lock_guard lock(mutex_);
    sessions_[++last_] = std::move(session);
    return reinterpret_cast<corvana_videoid*>(last_);  // NOLINT: a number that is no address
  }

  std::shared_ptr<Session> find(const corvana_videoid* handle) {
    const std::lock_guard lock(mutex_);
    const auto found = sessions_.find(reinterpret_cast<std::uintptr_t>(handle));
    return found == sessions_.end() ? nullptr : found->second;
  }

  corvana_videoid_status remove(const corvana_videoid* handle) {
    const std::lock_guard lock(mutex_);
    const auto found = sessions_.find(reinterpret_cast<std::uintptr_t>(handle));
    if (found == sessions_.end()) return CORVANA_VIDEOID_BAD_HANDLE;
    if (found->second->isBusy()) return CORVANA_VIDEOID_BUSY;
    sessions_.erase(found);
    return CORVANA_VIDEOID_RESULT;
  }

 private:
  std::mutex mutex_;
  std::uintptr_t last_ = 0;
  std::map<std::uintptr_t, std::shared_ptr<Session>> sessions_;
};

Handles& handles() {
  static auto& all = *new Handles;  // Never destroyed: threads may outlive main.
  return all;
}

void handOut(const std::string& text, char** answer) {
  if (!answer || text.empty()) return;
  *answer = static_cast<char*>(std::malloc(text.size() + 1));
  if (*answer) std::memcpy(*answer, text.c_str(), text.size() + 1);
}

corvana_videoid_status call(corvana_videoid* handle, const Command& command, const char* request,
                            const corvana_videoid_follower* follower, char** answer) noexcept {
  if (answer) *answer = nullptr;
  try {
    const auto session = handles().find(handle);
    if (!session) return CORVANA_VIDEOID_BAD_HANDLE;
    if (!request) return CORVANA_VIDEOID_BAD_ARGUMENT;
    if (follower && follower->size != sizeof *follower) return CORVANA_VIDEOID_BAD_ARGUMENT;
    const Answer given = session->call(command, request, follower);
    handOut(given.json, answer);
    return given.status;
  } catch (const std::exception&) {
    return CORVANA_VIDEOID_MACHINE_LACKS;  // Memory: nothing else throws here.
  }
}

}  // namespace

extern "C" {

corvana_videoid_status corvana_videoid_create(const corvana_videoid_setup* setup,
                                              corvana_videoid** handle) {
  if (!handle) return CORVANA_VIDEOID_BAD_ARGUMENT;
  *handle = nullptr;
  if (setup && setup->size != sizeof *setup) return CORVANA_VIDEOID_BAD_ARGUMENT;
  try {
    const char* program = setup && setup->program ? setup->program : kProgram;
    *handle = handles().add(std::make_shared<Session>(program));
    return CORVANA_VIDEOID_RESULT;
  } catch (const std::exception&) {
    return CORVANA_VIDEOID_MACHINE_LACKS;
  }
}

corvana_videoid_status corvana_videoid_destroy(corvana_videoid* handle) {
  return handles().remove(handle);
}

corvana_videoid_status corvana_videoid_enroll(corvana_videoid* handle, const char* request,
                                              char** answer) {
  return call(handle, {"enroll"}, request, nullptr, answer);
}

corvana_videoid_status corvana_videoid_capture(corvana_videoid* handle, const char* request,
                                               const corvana_videoid_follower* follower,
                                               char** answer) {
  return call(handle, {"capture"}, request, follower, answer);
}

corvana_videoid_status corvana_videoid_verify(corvana_videoid* handle, const char* request,
                                              char** answer) {
  return call(handle, {"verify", {"folder"}, true}, request, nullptr, answer);
}

corvana_videoid_status corvana_videoid_recheck(corvana_videoid* handle, const char* request,
                                               char** answer) {
  return call(handle, {"recheck", {"run"}, false, "--json"}, request, nullptr, answer);
}

corvana_videoid_status corvana_videoid_compare(corvana_videoid* handle, const char* request,
                                               char** answer) {
  return call(handle, {"compare", {"first", "second"}}, request, nullptr, answer);
}

corvana_videoid_status corvana_videoid_cancel(corvana_videoid* handle) {
  const auto session = handles().find(handle);
  if (!session) return CORVANA_VIDEOID_BAD_HANDLE;
  return session->cancel() ? CORVANA_VIDEOID_RESULT : CORVANA_VIDEOID_IDLE;
}

void corvana_videoid_free(char* text) {
  std::free(text);
}

const char* corvana_videoid_status_text(corvana_videoid_status status) {
  switch (status) {
    case CORVANA_VIDEOID_RESULT:
      return "a result";
    case CORVANA_VIDEOID_FLOW_ERROR:
      return "the flow ended with an error, or a check found a difference";
    case CORVANA_VIDEOID_WRONG_USE:
      return "wrong use";
    case CORVANA_VIDEOID_MACHINE_LACKS:
      return "the machine lacks something";
    case CORVANA_VIDEOID_CRASHED:
      return "the program ended without a word";
    case CORVANA_VIDEOID_BUSY:
      return "a call on this handle has not ended yet";
    case CORVANA_VIDEOID_BAD_HANDLE:
      return "the handle is null, destroyed, or was never made";
    case CORVANA_VIDEOID_BAD_ARGUMENT:
      return "something needed is null, or a structure has another size than this library knows";
    case CORVANA_VIDEOID_IDLE:
      return "no call runs";
  }
  return "no status of this library";
}

const char* corvana_videoid_version(void) {
  return CORVANA_VERSION;
}
}
