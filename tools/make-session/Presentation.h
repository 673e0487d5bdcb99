#pragma once

#include <array>
#include <cmath>

#include <opencv2/core.hpp>

#include "PersonMotion.h"
#include "Random.h"
#include "Script.h"

namespace corvana::session {

/// What an impostor holds before the camera: a print or a display in a hand, with the room behind
/// it, or a film that somebody has already prepared. A living person passes through untouched. One
/// thread.
class Presentation {
 public:
  Presentation(const PresentationScript& script, Random& random);

  /// The moment of the person's motion that is to be seen at `seconds`.
  double momentShown(double seconds) const;
  /// What is left of a living person's pose.
  PersonPose shown(const PersonPose& living) const;
  /// Makes of the person's picture (RGB) what the camera sees.
  void show(double seconds, cv::Mat& picture);

 private:
  /// The cosine and sine of an angle, which every place on the sheet needs.
  struct Turn {
    explicit Turn(double radians) : c(std::cos(radians)), s(std::sin(radians)) {}
    double c, s;
  };
  /// How print or display is held at one moment.
  struct Hold {
    Turn yaw, pitch, roll;
    double x, y;  ///< of its middle from the picture's middle, pixels
    double bend;  ///< radians from one side to the other
  };
  Hold holdAt(double seconds) const;
  cv::Point2d seenAt(cv::Point2d onSheet, const Hold& hold) const;
  void mapSheet(const Hold& hold);
  void showHeld(double seconds, cv::Mat& picture);
  void shake(cv::Mat& picture);

  PresentationScript script_;
  Random random_;
  Wobble yaw_, pitch_, roll_, x_, y_, bend_, cameraX_, cameraY_;
  Turn bendAxis_;        ///< from upright
  double pixelPitch_;    ///< of the display's pixels, in those of the person's picture
  double flickerSpeed_;  ///< hertz, as the camera's frames see it
  cv::Mat room_;
  cv::Mat mapX_, mapY_;
  cv::Mat held_;
};

}  // namespace corvana::session
