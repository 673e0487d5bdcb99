#include "platform/foundation/Fault.h"

#include "platform/foundation/Require.h"

namespace corvana::platform {

const char* nameOf(FaultCause cause) {
  switch (cause) {
    case FaultCause::other:
      return "other";
    case FaultCause::canceled:
      return "canceled";
    case FaultCause::cameraLost:
      return "cameraLost";
    case FaultCause::recordingEnded:
      return "recordingEnded";
    case FaultCause::diskFull:
      return "diskFull";
    case FaultCause::folderLost:
      return "folderLost";
    case FaultCause::filmFailed:
      return "filmFailed";
    case FaultCause::timeLimit:
      return "timeLimit";
    case FaultCause::notAModel:
      return "notAModel";
    case FaultCause::modelNotSupported:
      return "modelNotSupported";
  }
  fatal("a fault has one of the known causes");
}

bool canTryAgain(FaultCause cause) {
  switch (cause) {
    case FaultCause::diskFull:
    case FaultCause::folderLost:
    case FaultCause::notAModel:
    case FaultCause::modelNotSupported:
      return false;
    default:
      return true;
  }
}

}  // namespace corvana::platform
