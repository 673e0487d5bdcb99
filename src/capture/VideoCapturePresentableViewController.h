#pragma once

#include <optional>
#include <string>

#include "capture/Corvana+VideoCapture.h"

namespace corvana::capture {

/// What the entry writes into the capture screen, whatever class it is.
class VideoCapturePresentableViewController {
 public:
  virtual ~VideoCapturePresentableViewController() = default;

  Completion videoIdCompletion;  ///< empty once it was called
  std::optional<corvana::DetectedData> idValidationFront;
  std::optional<corvana::DetectedData> idValidationBack;
  std::optional<std::string> text;
};

}  // namespace corvana::capture
