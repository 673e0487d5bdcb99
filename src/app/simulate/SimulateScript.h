#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <nlohmann/json.hpp>

#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/Time.h"
#include "platform/media/CaptureDevice.h"
#include "platform/media/Speech.h"

namespace corvana::app {

/// What happens at one moment of a simulation.
namespace steps {
struct Selfie {
  corvana::SelfieCaptureState state;
};
struct Card {
  corvana::IDCaptureState state;
};
struct LiveFace {
  bool found = true;
};
struct Speech {
  std::optional<std::string> heard;  ///< all that was said so far
  std::optional<std::string> error;
};
struct Tap {
  std::string button;  ///< name of a button, or "alert" for an alert's first button
};
struct Permission {
  std::optional<platform::AVAuthorizationStatus> microphone;
  std::optional<platform::SFSpeechRecognizerAuthorizationStatus> speech;
};
struct Film {
  std::optional<std::string> error;  ///< what the writer will answer; absent: success
};
/// Debug data, another capture mode, the return to the foreground.
struct Notice {
  platform::Notification notification;
};
struct Picture {
  std::string name;
};
using Action = std::variant<Selfie, Card, LiveFace, Speech, Tap, Permission, Film, Notice, Picture>;
}  // namespace steps

struct SimulateStep {
  platform::Duration at{};
  std::string label;  ///< as printed before what follows from it
  std::string where;  ///< "steps[3]", for complaints
  steps::Action action;
};

/// What the host's tables hold for one of its two captures instead of the defaults.
struct ScriptAppearance {
  corvana::Colors colors;
  platform::UIImageRef retryScreenImage;
};

/// A simulated flow: what the caller gives, the world it meets, and what happens when;
/// docs/simulate.md describes the format.
struct SimulateScript {
  nlohmann::json options = nlohmann::json::object();
  ScriptAppearance selfieAppearance;
  ScriptAppearance cardAppearance;
  std::string text;
  corvana::DetectedData front;
  std::optional<corvana::DetectedData> back;
  bool hasMicrophone = true;
  bool makesRecorder = true;
  bool hasSpeechRecognizer = true;
  std::optional<std::string> settingsURL;
  steps::Permission permissions;
  std::vector<SimulateStep> steps;
  platform::Duration until{};
};

/// Reads a script; pictures of faces are looked up beside it. The error is one sentence naming the
/// key or the byte.
platform::Expected<SimulateScript> loadSimulateScript(const std::filesystem::path& path);

}  // namespace corvana::app
