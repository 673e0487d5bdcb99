#pragma once

#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "CardView.h"
#include "Design.h"
#include "People.h"
#include "PersonView.h"
#include "Portrait.h"

namespace corvana::bench {

/// What goes wrong with a card that was held well; but for `strongLight`, in which the paper of a
/// white card saturates in places and nothing is wrong.
enum class Cause {
  tooNear,
  tooFar,
  partlyOutside,
  glare,
  blur,
  dark,
  finger,
  glareOnWhite,
  strongLight
};

inline constexpr const char* kCauseNames[] = {"tooNear", "tooFar",       "partlyOutside",
                                              "glare",   "blur",         "dark",
                                              "finger",  "glareOnWhite", "strongLight"};

/// What clips are made of.
struct ClipMatter {
  std::vector<photos::Design> designs;  ///< of cards
  std::vector<photos::NameList> names;
  std::vector<session::Portrait> portraits;

  static session::Result<ClipMatter> read(const std::string& designs, const std::string& portraits,
                                          const std::string& models);
};

/// Some seconds of a person who holds a card well, until within `kRamp` something goes wrong and
/// stays so. All settings come from the seed.
class Clip {
 public:
  Clip(const ClipMatter& matter, Cause cause, std::uint64_t seed);

  /// The camera's picture, RGB; times only grow.
  cv::Mat picture(double seconds);
  /// When all that is wrong has come about.
  double wrongAt() const { return wrongFrom_ + kRamp; }
  double wrongFrom() const { return wrongFrom_; }

  static constexpr double kRamp = 0.25;

 private:
  struct Place {
    double x = 0, y = 0, width = 0;
  };

  Place drawHeld();
  Place drawWrong(const Place& held);
  void paintCard(const ClipMatter& matter);
  session::CardPose poseAt(double seconds, double wrong) const;
  void shine(cv::Mat& picture, const session::CardPose& pose, double wrong) const;
  void layFinger(cv::Mat& picture, const session::CardPose& pose, double wrong) const;
  void drawLightOnWhite();
  bool isWhite() const { return cause_ == Cause::glareOnWhite || cause_ == Cause::strongLight; }
  void lightUnevenly(cv::Mat& picture, double wrong) const;
  void expose(cv::Mat& picture, const session::CardPose& pose, double wrong);

  Cause cause_;
  session::Random random_;
  double wrongFrom_ = 0;
  Place held_, wrong_;
  double roll_ = 0, lean_ = 0, noise_ = 0, gain_ = 1;
  double strength_ = 0;    ///< of blur (pixels) or darkness (gain)
  cv::Point2d slope_;      ///< of uneven light: gain over the picture's width and height
  cv::Point2d spot_;       ///< of glare or a finger's tip, in shares of the card
  double spotSize_ = 0;    ///< in card widths
  double fingerTurn_ = 0;  ///< degrees
  session::Wobble swayX_, swayY_;
  std::unique_ptr<session::PersonView> person_;
  std::unique_ptr<session::CardView> near_, card_;
  cv::Mat finger_;
};

}  // namespace corvana::bench
