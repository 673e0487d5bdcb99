#pragma once

#include <string>
#include <utility>

#include <tl/expected.hpp>

namespace corvana::platform {

/// What went wrong in the world around a flow, as far as a program may want to tell cases apart.
enum class FaultCause {
  other,
  canceled,        ///< the user or the system ended the flow
  cameraLost,      ///< unplugged, or it delivers nothing any more
  recordingEnded,  ///< the recorded file that stands in for a camera is over
  diskFull,
  folderLost,         ///< the folder of the run is gone or may not be written any more
  filmFailed,         ///< the encoder or the multiplexer gave up
  timeLimit,          ///< the flow took longer than it is allowed to
  notAModel,          ///< a network's file is missing, or holds no TensorFlow Lite model
  modelNotSupported,  ///< a network needs what the installed TensorFlow Lite does not offer
};

/// One sentence for the user of the program (what, where, what to do), and its cause.
struct Fault {
  std::string sentence;
  FaultCause cause = FaultCause::other;
};

/// A value, or why there is none: the one currency for errors below the host's public face, where
/// they become an `IDError`.
template <class T>
using Expected = tl::expected<T, Fault>;

/// What an `Expected` of any value is given when there is none.
inline tl::unexpected<Fault> failure(std::string sentence, FaultCause cause = FaultCause::other) {
  return tl::unexpected(Fault{std::move(sentence), cause});
}

/// The name of a cause in results and logs, such as "diskFull".
const char* nameOf(FaultCause cause);

/// The same person may well succeed at a second attempt; false where somebody has to see to the
/// machine first.
bool canTryAgain(FaultCause cause);

}  // namespace corvana::platform
