#pragma once

#include <string>

namespace devices {

/// Whether a video device is made by software, as far as its driver and its bus tell: a loopback, a
/// driver's test picture, a camera plugged into a bus that is itself simulated. Who rules the
/// machine can rename all that, so `false` is a hint and no proof.
bool isVirtualCamera(const std::string& driver, const std::string& bus);

}  // namespace devices
