#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/geometry/Geometry.h"

namespace corvana::devices {

/// One view of a scene.
struct SceneView {
  enum class Kind { view, label, imageView, button, progressView, stackView };

  std::string name;
  Kind kind = Kind::view;
  platform::CGRect frame;   ///< points of the screen
  std::string parent = {};  ///< empty: directly below the root view
  double alpha = 1;
  bool hidden = false;
  std::string action = {};  ///< what a touch of the button calls; empty: nothing
};

/// A screenful as a table: what a storyboard needs to build it without a layout engine.
struct SceneLayout {
  std::string identifier;
  std::vector<SceneView> views;  ///< parents before their children, back to front
  std::vector<std::string> constraints;
  std::map<std::string, std::vector<std::string>> collections;  ///< names of their views
};

inline constexpr platform::CGRect kHeadlessScreen{0, 0, 360, 640};

/// The scenes of the storyboard "VideoCapture" at the size of `kHeadlessScreen`.
const std::vector<SceneLayout>& videoCaptureScenes();

}  // namespace corvana::devices
