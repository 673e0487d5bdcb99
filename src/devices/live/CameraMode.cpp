#include "devices/live/CameraMode.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <tuple>

namespace corvana::devices {
namespace {

constexpr int kLeastSize = 64;
constexpr int kMostSize = 4096;
constexpr double kLeastRate = 1;
constexpr double kMostRate = 120;
/// 29.97 is as good as 30.
constexpr double kSameRate = 0.05;

/// Pictures that are missing count more than pictures too many.
double rateFault(double offered, double wanted) {
  const double difference = offered - wanted;
  if (std::abs(difference) <= kSameRate * wanted) return 0;
  return difference < 0 ? -2 * difference : difference;
}

/// Shape and scale alike: a picture of half the width is as far away as one of half the height.
double sizeFault(const CameraMode& offered, const CameraMode& wanted) {
  return std::abs(std::log(double(offered.width) / wanted.width)) +
         std::abs(std::log(double(offered.height) / wanted.height));
}

int formatCost(const std::string& format) {
  if (format == "H.264") return 2;
  return format == "MJPEG" ? 1 : 0;
}

/// A rate of less than this share is no moving picture: rather another size.
constexpr double kUsableShare = 0.6;

}  // namespace

std::optional<CameraMode> parseCameraMode(const std::string& text) {
  CameraMode mode;
  std::istringstream in(text);
  char cross = 0;
  char at = '@';
  if (!(in >> mode.width >> cross >> mode.height) || cross != 'x') return {};
  if (in >> at && !(at == '@' && in >> mode.framesPerSecond)) return {};
  if (in >> at) return {};
  const bool sane = std::min(mode.width, mode.height) >= kLeastSize &&
                    std::max(mode.width, mode.height) <= kMostSize &&
                    mode.framesPerSecond >= kLeastRate && mode.framesPerSecond <= kMostRate;
  return sane ? std::optional(mode) : std::nullopt;
}

std::string nameOf(const CameraMode& mode) {
  std::ostringstream text;
  text << mode.width << 'x' << mode.height << '@' << std::round(mode.framesPerSecond * 100) / 100;
  return text.str();
}

const OfferedMode* nearestMode(const std::vector<OfferedMode>& offers, const CameraMode& wanted) {
  const auto fault = [&](const OfferedMode& offer) {
    const double share = offer.mode.framesPerSecond / wanted.framesPerSecond;
    return std::tuple(share < kUsableShare, sizeFault(offer.mode, wanted),
                      rateFault(offer.mode.framesPerSecond, wanted.framesPerSecond),
                      formatCost(offer.format));
  };
  const auto nearest = std::ranges::min_element(offers, {}, fault);
  return nearest == offers.end() ? nullptr : &*nearest;
}

}  // namespace corvana::devices
