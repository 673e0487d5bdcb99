#pragma once

#include <deque>
#include <optional>
#include <vector>

#include "platform/foundation/Time.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// Looks for a stretch of pictures that has been seen before: a film that begins again. Two moments
/// of a living person are never alike in everything that moves. Pure; times come with the frames.
class RepetitionWatch {
 public:
  void add(platform::TimePoint time, const platform::PixelBuffer& picture);
  /// Difference to the most similar earlier stretch, over that from one picture to the next, in
  /// the mean of its pictures; absent before anything can be said.
  std::optional<double> difference() const { return difference_; }

 private:
  struct Picture {
    platform::TimePoint time;
    std::vector<float> values;  ///< about their mean
    double contrast;            ///< root of their mean square
    /// Difference to the picture before it, by how many came between.
    std::vector<double> differences;
  };
  static double difference(const Picture& a, const Picture& b);
  double movement() const;
  double movementAt(std::size_t index) const;
  double shareBetween(std::size_t lag) const;
  double unlikeness(std::size_t lag) const;

  std::deque<Picture> pictures_;  ///< the newest first
  std::optional<double> difference_;
};

}  // namespace corvana::engine
