#pragma once

#include "platform/Environment.h"
#include "platform/foundation/Bundle.h"

namespace corvana::capture {

/// Says which bundle is the module's, and nothing else.
class BundleAnchor {};

/// Where the module's own resources are: the storyboard "VideoCapture", the drawings
/// "overlay_portrait_id_front" and "overlay_landscape_id_back", and the model "facenet.tflite".
inline platform::Bundle& moduleBundle(platform::Environment& environment) {
  return environment.bundleFor(typeid(BundleAnchor));
}

}  // namespace corvana::capture
