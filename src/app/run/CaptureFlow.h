#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/card/CardWatch.h"
#include "app/record/AttemptLog.h"
#include "app/record/EventLog.h"
#include "app/report/EvidenceWatch.h"
#include "app/run/DebugFigures.h"
#include "app/run/DrawnNumbers.h"
#include "app/run/FlowEnd.h"
#include "app/run/FlowWorld.h"
#include "app/run/HostHints.h"
#include "app/run/ObserverList.h"
#include "app/run/Preflight.h"
#include "app/run/SourceMediaDevices.h"
#include "app/seal/RunSeal.h"
#include "devices/film/FilmWriter.h"
#include "devices/screen/FlowReporter.h"
#include "devices/system/TerminalSystem.h"
#include "devices/system/TerminationSignals.h"
#include "engine/recorder/EngineHost.h"

namespace corvana::app {

/// What is left in the folder of a run that ended so.
Remains remainsAfter(const Outcome& outcome, const CaptureArguments& arguments);

/// The world of one run, from the entry to the closed film. While it lives, SIGINT and SIGTERM
/// cancel it. Main thread; used once.
class CaptureFlow final : private corvana::DecisionObserver {
 public:
  /// What the user would see, line by line; may be empty.
  using Progress = std::function<void(platform::TimePoint now, const devices::FlowEvent& event)>;

  CaptureFlow(const CaptureArguments& arguments, PreparedCapture& prepared, Progress progress);
  ~CaptureFlow() override;

  /// Runs to the end and closes film and events: every flow ends, with a result or an error.
  RunRecord run();
  /// Whether a signal ended it.
  bool wasInterrupted() const { return signals_.arrived(); }

 private:
  std::vector<engine::RecorderObserver*> observers();
  engine::EngineHost::Setup hostSetup();
  std::optional<RunSeal> makeSeal();
  void followedByCaller();
  std::unique_ptr<platform::AssetWriterFactory> makeFilms();
  std::shared_ptr<corvana::SpeechRecognizer> recognizer();
  void start();
  void watchWorld();
  /// What has ended by itself or by a signal.
  bool hasEnded();
  /// A line of events or of the seal that is missing spoils the evidence.
  void recordFailed(const platform::Fault& fault);
  void suspect(const devices::CameraSign& sign);
  /// Tells the terminal and the record of the run, not the person before a window.
  void warn(const std::string& sentence);
  /// After the camera's end; a film that is being stopped is waited for.
  void endAfterGrace(bool filmWasStopping = false);
  void close();
  std::vector<DocumentHint> hints() const;
  RunRecord makeRecord(std::optional<ClockReading> started) const;
  std::optional<ClockReading> readClock() const;
  nlohmann::ordered_json makeTerms() const;
  void report(const devices::FlowEvent& event);
  void decided(const corvana::Decision& decision) override;
  void prompted(corvana::PromptPlace place, corvana::PromptType type) override {
    reporter_.prompted(place, type);
  }

  const CaptureArguments& arguments_;
  const CaptureInputs& inputs_;
  const DocumentRules rules_;
  const RunIdentity identity_;
  const nlohmann::ordered_json terms_;
  platform::DrivenLoop& loop_;
  FlowScreen& screen_;
  std::shared_ptr<devices::MediaSource> media_;
  std::shared_ptr<engine::FrameAnalyzer> analyzer_;
  std::shared_ptr<corvana::SpeechRecognizer> recognizer_;
  Progress progress_;
  FlowEnd end_;
  devices::TerminationSignals signals_;

  std::optional<RunSeal> seal_;  ///< where there is a key
  EventLog events_;
  std::optional<CallerLink> caller_;  ///< where one follows the run
  CardWatch card_;
  devices::FlowReporter reporter_;
  HostHints hostHints_;
  DebugFigures debugFigures_;
  AttemptLog attempts_;
  std::optional<EvidenceWatch> evidence_;  ///< where it is kept
  ObserverList observers_;
  devices::HeadlessPerson person_;
  devices::StreamConsole console_;
  devices::NoSettingsApplication application_;
  SourceMediaDevices sourceDevices_;
  std::unique_ptr<platform::MediaDevices> watchedDevices_;
  platform::MediaDevices& mediaDevices_;
  LocalSpeechAuthorization speechAuthorization_;
  DrawnNumbers randomness_;
  devices::ReportingSystemSounds sounds_;
  FlowWorld world_;
  std::unique_ptr<platform::AssetWriterFactory> films_;
  engine::EngineHost host_;
};

}  // namespace corvana::app
