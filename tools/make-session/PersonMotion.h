#pragma once

#include <optional>
#include <vector>

#include "Random.h"
#include "Script.h"

namespace corvana::session {

/// How the person is seen at one moment.
struct PersonPose {
  double yaw = 0.0;    ///< degrees; positive: the nose goes to the picture's right
  double pitch = 0.0;  ///< degrees; positive: the nose goes down
  double roll = 0.0;   ///< degrees, clockwise in the picture
  double swayX = 0.0;  ///< of the head, in face widths
  double swayY = 0.0;
  double breath = 0.0;   ///< of the shoulders, −1 to 1
  double lids = 0.0;     ///< 0 open to 1 closed
  double mouth = 0.0;    ///< 0 closed to 1 as open as in speech
  double cameraX = 0.0;  ///< of the whole picture, in pixels
  double cameraY = 0.0;
  double nearness = 1.0;  ///< how much larger all is seen than at rest

  bool operator==(const PersonPose&) const = default;
};

/// The person's motion through the session: looks around in the selfie phase, down at the card
/// while it moves, and holds still but alive otherwise.
class PersonMotion {
 public:
  PersonMotion(const Script& script, double length, Random& random);

  /// mouth: how open the mouth is, 0 to 1.
  PersonPose at(double seconds, double mouth) const;
  const std::vector<double>& blinks() const { return blinks_; }

 private:
  void dropBlinksBeside(double pair);
  double lids(double seconds) const;
  double away(double seconds) const;
  void doTasks(double seconds, PersonPose& pose) const;

  /// How a task is done.
  struct Performance {
    double strength = 1;  ///< share of what is usual
    double rise = 0;      ///< seconds from rest to there
  };

  TimeScript time_;
  PersonScript person_;
  std::optional<double> leavesAt_;
  double leavesSeconds_;
  double turnDegrees_;
  Wobble yaw_, pitch_, roll_, swayX_, swayY_, handX_, handY_;
  std::vector<double> blinks_;
  std::vector<Performance> performances_;  ///< of the person's tasks
};

}  // namespace corvana::session
