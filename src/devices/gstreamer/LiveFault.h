#pragma once

#include <string>

#include <gst/gst.h>

namespace devices {

/// What a device's error says to a person: one sentence that names the device and the cure. `kind`
/// is "camera" or "microphone", `details` GStreamer's debugging text. Any thread.
std::string liveFault(const std::string& kind, const std::string& name, const GError& error,
                      const std::string& details);

}  // namespace devices
