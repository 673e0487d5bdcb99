#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "corvana/DetectedData.h"
#include "corvana/Selfie.h"

namespace corvana::engine {

/// Something that the recorder reported, or that was asked of it.
struct RecorderEvent {
  enum class Kind {
    state,     ///< a state of selfie or document capture, by its name
    liveFace,  ///< "found" or "lost"
    mode,      ///< the new mode, by its name
    call,      ///< "stopVideoWriter", "retry", "typeMismatch"
    hint,      ///< why card or face cannot be judged, if no state says so; "none" when it is over
    liveness,  ///< what is known of the face: "undecided", "living", "spoof"; "asked" for a sign
    task,      ///< of the active mode, by its name: drawn, asked, done or missed
    film,      ///< "slowed" to so many pictures a second, or "atFullRate" again
    sign,      ///< of life, of fraud or of a person, by its name, with figure and limit
  };
  using Detail = std::pair<std::string, std::variant<double, bool, std::string>>;

  Kind kind;
  std::string name;
  /// What was measured, and nothing that identifies a person.
  std::vector<Detail> details;
};

/// Hears all that passes between recorder and screen, on the main queue, before the screen does.
class RecorderObserver {
 public:
  virtual ~RecorderObserver() = default;
  virtual void happened(const RecorderEvent& event) = 0;
  /// A face was fit for a selfie; whose it is, is the screen's to judge.
  virtual void selfieTaken(const corvana::Selfie& selfie) { (void)selfie; }
  /// A side of the card was read whole; whose it is, is the screen's to judge.
  virtual void cardRead(const corvana::DetectedData& side) { (void)side; }
};

}  // namespace corvana::engine
