#pragma once

#include <deque>
#include <optional>

#include "engine/selfie/BlinkWatch.h"
#include "engine/selfie/Liveness.h"
#include "engine/selfie/PlaceWatch.h"
#include "engine/selfie/ReliefWatch.h"
#include "engine/selfie/RepetitionWatch.h"
#include "engine/vision/FaceLandmarks.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// Tells a living face from a picture of one, by what time shows: looks come in, a verdict comes
/// out. Life is believed after a while of watching, from a blink or from relief that moves, and not
/// beside a sign of fraud, which also makes it forget what it took for life. Pure; times come with
/// the frames.
class LivenessJudge {
 public:
  struct Look {
    platform::TimePoint time;
    const platform::PixelBuffer& picture;  ///< of any format; a grey one is turned grey no more
    const platform::CGRect& face;
    const FaceDetails& details;
    /// What the single picture speaks for by itself, 0 to 1.
    float passiveScore = 0;
  };

  struct Limits {
    platform::Duration watchTime{};  ///< before a face is believed
    double blinkShare = 0;           ///< as `BlinkWatch` has it
    double relief = 0;               ///< least `reliefMotion` of life
    double repetition = 0;           ///< greatest difference of a film that begins again
    double edges = 0;                ///< most of `edgesAround` a living face
  };

  explicit LivenessJudge(const Limits& limits);

  /// Takes the next look at a face that is in place.
  LivenessVerdict add(const Look& look);
  /// The lids in the last look.
  const BlinkWatch::Lids& lids() const { return lids_; }

  /// How long a sign of fraud outlasts what showed it.
  static constexpr platform::Duration kFraudMemory = std::chrono::seconds(5);
  /// Out of sight for longer, or elsewhere all at once, it may be another face.
  static constexpr platform::Duration kLongestGap = std::chrono::seconds(1);

 private:
  struct Fraud {
    LivenessSign sign;
    std::optional<platform::TimePoint> seenAt;
    int looks = 0;  ///< in a row that speak for it
  };

  void startAnew(platform::TimePoint time);
  void look(const Look& look);
  void follow(const Look& look);
  /// Takes what a look measured, if it measured anything, and whether that speaks for the fraud.
  void note(Fraud& fraud, std::optional<double> value, bool isFraud, platform::TimePoint time);
  LivenessSign blinkSign() const;
  LivenessSign reliefSign() const;
  float score() const;

  Limits limits_;
  std::optional<platform::TimePoint> since_;
  std::optional<platform::TimePoint> last_;
  PlaceWatch place_;
  std::deque<FaceView> views_;  ///< the last ones
  BlinkWatch::Lids lids_;
  BlinkWatch blink_;
  ReliefWatch relief_;
  RepetitionWatch repetition_;
  Fraud repeated_;
  Fraud edges_;
  int looks_ = 0;
  double passiveSum_ = 0;
  int passiveCount_ = 0;
};

}  // namespace corvana::engine
