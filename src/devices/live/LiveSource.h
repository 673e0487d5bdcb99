#pragma once

#include <functional>
#include <string>

/// GStreamer's element, declared here so that who only passes sources on need not know it.
using GstElement = struct _GstElement;

namespace corvana::devices {

/// What stands at the head of a live pipeline. Real devices, made ones and those of tests differ
/// in nothing else.
struct LiveSource {
  std::string name;  ///< for people, such as "HD Pro Webcam"
  bool isVirtual = false;
  /// Launch line of the head. An element named `source` in it is given to `setUp` before the
  /// pipeline starts.
  std::string line;
  std::function<void(GstElement* source)> setUp;
  /// Called when the device's samples are wanted for the first time; may be null.
  std::function<void()> begin;
  bool claimsUsb = false;  ///< as `claimsUsb` tells; of no hardware
};

}  // namespace corvana::devices
