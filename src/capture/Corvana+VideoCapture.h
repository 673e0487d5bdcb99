#pragma once

#include <functional>
#include <optional>
#include <string>

#include <tl/expected.hpp>

#include "corvana/DetectedData.h"
#include "corvana/IDError.h"
#include "corvana/Selfie.h"
#include "corvana/VideoWriter.h"
#include "platform/uikit/UIViewController.h"

namespace corvana::capture {

/// What a finished run proves. A record with a false flag is never delivered: a check that fails
/// keeps the user in its phase.
struct VideoIdResult {
  corvana::FileURL videoURL;
  corvana::Selfie selfie;
  bool idToSelfieMatch = false;   ///< the photo on the card shown live is the selfie's face
  bool idToIdPhotoMatch = false;  ///< it is the photo of the reference front
  bool idFrontDataMatch = false;  ///< the text of the front shown live is the reference front's
  bool idBackDataMatch = false;   ///< the same for the back
};

/// Called on the main queue, at most once.
using Completion = std::function<void(const tl::expected<VideoIdResult, corvana::IDError>&)>;

/// Presents the capture screen on `from`, full screen, and lets the user show face, front and back
/// of the card, and read `text` aloud. `front` and `back` were captured earlier; `back` is absent
/// for a one-sided document. Main queue.
///
/// The completion is never called when the screen can't be built, nor when `from` can't present it:
/// a controller presents one screen at a time, so that a second entry on the same `from` is refused
/// with a line on the console. Enter on `presentedViewController()` of the first to show both.
void videoIDCapture(platform::UIViewController& from, corvana::DetectedData front,
                    std::optional<corvana::DetectedData> back, std::string text,
                    Completion completion);

}  // namespace corvana::capture
