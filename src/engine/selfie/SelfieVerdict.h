#pragma once

namespace corvana::engine {

/// What a frame is worth as a selfie.
enum class SelfieVerdict {
  noFace,
  multipleFaces,
  moveCloser,
  moveAway,
  alignFace,
  issue,  ///< the face is in place but not fit for a selfie: `issueMessage` says what to do
  good,
};

}  // namespace corvana::engine
