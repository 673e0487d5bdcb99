#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "corvana/CameraWatch.h"
#include "devices/film/MediaSource.h"
#include "platform/foundation/Time.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::devices {

/// Tells pictures of a sensor from a stream that software feeds in, by what a sensor cannot do:
/// keep time to the microsecond, be faster than its own rate, or show the same noise twice. Pure:
/// times are the device's own.
class InjectionJudge {
 public:
  /// What is looked at in a picture.
  struct Picture {
    platform::Duration time{};
    /// From picture to picture in the device's mode; absent when it names none.
    std::optional<platform::Duration> interval;
    std::uint64_t fingerprint = 0;  ///< the same only for pictures that are the same
    bool hasDetail = false;         ///< a covered lens shows the same black again and again
  };

  using Limits = corvana::CameraWatch::Options;

  explicit InjectionJudge(const Limits& limits = corvana::CameraWatch::options) : limits_(limits) {}

  void add(const Picture& picture);
  /// The signs that have been seen so far, each with the figure by which it was seen first.
  const std::vector<CameraSign>& signs() const { return signs_; }

  /// So many intervals are looked at together.
  static constexpr std::size_t kIntervals = 150;
  /// Pictures at least so far apart have to differ; a slow sensor's may come twice in a row.
  static constexpr platform::Duration kApart = std::chrono::milliseconds(500);
  static constexpr platform::Duration kMemory = std::chrono::seconds(60);

 private:
  void judgeTimes();
  void judgePicture(const Picture& picture);
  void note(const char* name, double value, double limit, bool isSeen);

  Limits limits_;
  std::optional<platform::Duration> last_;
  struct Interval {
    double microseconds = 0;
    bool isTooShort = false;
  };
  std::deque<Interval> intervals_;
  std::deque<Picture> seen_;
  std::unordered_map<std::uint64_t, platform::Duration> firstSeen_;
  std::deque<bool> identical_;
  std::vector<CameraSign> signs_;
};

/// What the judge looks at in a picture with a plane of luma.
InjectionJudge::Picture look(const platform::PixelBuffer& picture);

/// Whether a video device says that it is plugged into USB and the system knows of no such socket.
/// `sysfs` is where the system shows its devices.
bool claimsUsb(const std::string& device, const std::string& bus,
               const std::filesystem::path& sysfs = "/sys");

}  // namespace corvana::devices
