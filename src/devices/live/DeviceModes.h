#pragma once

#include <string>
#include <vector>

#include "devices/gstreamer/GstSupport.h"
#include "devices/live/CameraMode.h"

/// Camera modes on their way out of and into GStreamer; private to this folder.
namespace corvana::devices {

/// All modes that a camera offers and this program can read; of a range of sizes the usual ones.
std::vector<OfferedMode> modesOf(const GstCaps* caps);

/// Launch line that holds a source to this mode and decodes it.
std::string lineOf(const OfferedMode& mode);

}  // namespace corvana::devices
