#include "devices/live/InjectionJudge.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numeric>
#include <string>
#include <string_view>

namespace corvana::devices {
namespace {

namespace fs = std::filesystem;

/// Every so manieth row is looked at: noise is in all of them.
constexpr int kRowStep = 8;
/// Between the darkest and the lightest pixel, steps of luma.
constexpr int kLeastDetail = 24;

double shareOf(const auto& values, auto isCounted) {
  return static_cast<double>(std::ranges::count_if(values, isCounted)) /
         static_cast<double>(values.size());
}

}  // namespace

void InjectionJudge::note(const char* name, double value, double limit, bool isSeen) {
  const bool isKnown =
      std::ranges::any_of(signs_, [&](const CameraSign& sign) { return sign.name == name; });
  if (isSeen && !isKnown) signs_.push_back({name, value, limit});
}

void InjectionJudge::judgeTimes() {
  if (intervals_.size() < kIntervals) return;
  double sum = 0;
  double squares = 0;
  for (const Interval& interval : intervals_)
    sum += interval.microseconds;
  const double mean = sum / static_cast<double>(intervals_.size());
  for (const Interval& interval : intervals_)
    squares += (interval.microseconds - mean) * (interval.microseconds - mean);
  const double deviation = std::sqrt(squares / static_cast<double>(intervals_.size()));
  note("regularTimes", deviation, limits_.regularMicroseconds,
       deviation < limits_.regularMicroseconds);
  const double tooShort =
      shareOf(intervals_, [](const Interval& interval) { return interval.isTooShort; });
  note("foreignTimes", tooShort, limits_.mostShortIntervals, tooShort > limits_.mostShortIntervals);
}

void InjectionJudge::judgePicture(const Picture& picture) {
  if (!picture.hasDetail) return;
  while (!seen_.empty() && picture.time - seen_.front().time > kMemory) {
    const auto known = firstSeen_.find(seen_.front().fingerprint);
    if (known != firstSeen_.end() && known->second == seen_.front().time) firstSeen_.erase(known);
    seen_.pop_front();
  }
  const auto [earlier, isNew] = firstSeen_.try_emplace(picture.fingerprint, picture.time);
  seen_.push_back(picture);
  identical_.push_back(!isNew && picture.time - earlier->second >= kApart);
  if (identical_.size() > kIntervals) identical_.pop_front();
  if (identical_.size() < kIntervals) return;
  const double share = shareOf(identical_, [](bool isIdentical) { return isIdentical; });
  note("identicalPictures", share, limits_.mostIdentical, share > limits_.mostIdentical);
}

void InjectionJudge::add(const Picture& picture) {
  if (last_) {
    const platform::Duration interval = picture.time - *last_;
    const bool isTooShort =
        picture.interval && interval < limits_.shortInterval * *picture.interval;
    intervals_.push_back({1e6 * platform::inSeconds(interval), isTooShort});
    if (intervals_.size() > kIntervals) intervals_.pop_front();
  }
  last_ = picture.time;
  judgeTimes();
  judgePicture(picture);
}

InjectionJudge::Picture look(const platform::PixelBuffer& picture) {
  InjectionJudge::Picture looked;
  int darkest = 255;
  int lightest = 0;
  for (int row = 0; row < picture.height(); row += kRowStep) {
    const auto* start = picture.plane(0) + static_cast<std::ptrdiff_t>(row) * picture.stride(0);
    const std::string_view bytes(reinterpret_cast<const char*>(start),
                                 static_cast<std::size_t>(picture.width()));
    looked.fingerprint = 31 * looked.fingerprint + std::hash<std::string_view>{}(bytes);
    const auto [least, most] = std::minmax_element(start, start + picture.width());
    darkest = std::min<int>(darkest, *least);
    lightest = std::max<int>(lightest, *most);
  }
  looked.hasDetail = lightest - darkest >= kLeastDetail;
  return looked;
}

bool claimsUsb(const std::string& device, const std::string& bus, const fs::path& sysfs) {
  if (!bus.starts_with("usb-")) return false;
  std::error_code error;
  const fs::path node = fs::canonical(device, error).filename();
  const fs::path hardware = fs::canonical(sysfs / "class/video4linux" / node / "device", error);
  // Below a USB hub's node, which is called usb and its number.
  return error || std::ranges::none_of(hardware, [](const fs::path& part) {
           const std::string name = part.string();
           return name.size() > 3 && name.starts_with("usb") &&
                  std::all_of(name.begin() + 3, name.end(),
                              [](char c) { return c >= '0' && c <= '9'; });
         });
}

}  // namespace corvana::devices
