#include "devices/gstreamer/DeviceOrigin.h"

#include <algorithm>
#include <cctype>

namespace devices {
namespace {

/// Parts of the names that virtual drivers give themselves or their bus.
const char* const kMadeBySoftware[] = {"loopback", "vivid", "vimc",    "akvcam",  "vim2m",
                                       "vicodec",  "visl",  "virtual", "obs",     "dummy",
                                       "vhci",     "vudc",  "scrcpy",  "droidcam"};
/// How buses begin that end in a socket, a slot or a chip. Windows of the kernel into nothing have
/// no bus or one of another name.
const char* const kHardwareBuses[] = {"usb-", "PCI:", "PCIe:", "platform:", "I2C:", "ISA:"};

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

}  // namespace

bool isVirtualCamera(const std::string& driver, const std::string& bus) {
  const std::string names = lowerCase(driver + ' ' + bus);
  const bool named = std::ranges::any_of(
      kMadeBySoftware, [&](const char* part) { return names.find(part) != std::string::npos; });
  const bool hasHardwareBus = std::ranges::any_of(
      kHardwareBuses, [&](const char* start) { return bus.starts_with(start); });
  return named || !hasHardwareBus;
}

}  // namespace devices
