#pragma once

#include <memory>

#include <tl/expected.hpp>

#include "app/record/RunIdentity.h"
#include "app/run/CaptureArguments.h"
#include "app/run/CaptureInputs.h"
#include "app/run/ExitCode.h"
#include "app/run/FlowScreen.h"
#include "app/run/Resources.h"
#include "corvana/SpeechRecognizer.h"
#include "devices/film/MediaSource.h"
#include "engine/recorder/FrameAnalyzer.h"

namespace corvana::app {

/// All that a flow runs on: looked at, opened and loaded.
struct PreparedCapture {
  CaptureInputs inputs;
  DocumentRules rules;
  Resources resources;
  RunIdentity identity;
  FlowStage stage;
  std::shared_ptr<devices::MediaSource> media;
  std::shared_ptr<corvana::SpeechRecognizer> recognizer;
  std::shared_ptr<engine::FrameAnalyzer> analyzer;
};

/// Finds whatever would keep a flow from its end before its user sees a screen, from options that
/// contradict each other to a disk that is too small. Sets the host's options and looks, and makes
/// the folder of the run last.
tl::expected<PreparedCapture, Refusal> prepareCapture(const CaptureArguments& arguments);

}  // namespace corvana::app
