#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "corvana/HostFactories.h"
#include "engine/recorder/Film.h"
#include "engine/recorder/FrameAnalyzer.h"
#include "engine/recorder/RecorderObserver.h"
#include "engine/recorder/ScreenPlaces.h"
#include "platform/foundation/NotificationCenter.h"

namespace corvana::engine {

/// The reference host: recorders that see, read and hear for themselves. Main queue; one flow at a
/// time, since analyzer and recognizer are shared.
class EngineHost final : public corvana::HostFactories {
 public:
  struct Setup {
    platform::RunLoop& loop;
    platform::NotificationCenter& notificationCenter;
    platform::MediaDevices& mediaDevices;
    platform::AssetWriterFactory& assetWriterFactory;
    platform::RandomSource& randomness;  ///< draws the tasks of the active mode
    std::shared_ptr<FrameAnalyzer> analyzer;
    /// Null when the host has none.
    std::shared_ptr<corvana::SpeechRecognizer> speechRecognizer;
    /// Folder of the run.
    std::filesystem::path folder;
    bool keepFailedRuns = false;
    platform::CGSize screenSize;
    RecorderObserver* observer = nullptr;
    /// Told on the main queue that no film can be recorded, or no further; may be empty.
    std::function<void(const platform::Fault&)> onFilmFault = {};
    /// By which pictures are judged, whatever the module's screen says; absent: the screen's.
    std::optional<ScreenPlaces> places = {};
  };

  explicit EngineHost(Setup setup) : setup_(std::move(setup)) {}

  std::shared_ptr<corvana::CaptureSession> makeCaptureSession(
      corvana::CameraPosition position) override;
  std::shared_ptr<corvana::VideoCapture> makeVideoCapture(
      const platform::CGRect& selfieOverlayFrame, const platform::CGRect& idOverlayFrame,
      const std::optional<platform::WriterSettings>& videoSettings,
      const std::optional<platform::WriterSettings>& audioSettings) override;

  /// The last recorder's film; null before. It outlives the recorder, so that its end can be
  /// awaited.
  const std::shared_ptr<Film>& film() const { return film_; }
  /// By which the last recorder judges; absent before.
  const std::optional<ScreenPlaces>& places() const { return places_; }
  /// How many pictures of the last session the recorder was too busy to take.
  std::uint64_t framesDropped() const { return pictures_ ? pictures_->samplesDropped() : 0; }

 private:
  Setup setup_;
  std::weak_ptr<corvana::CaptureSession> captureSession_;
  std::shared_ptr<platform::AVCaptureOutput> pictures_;
  std::shared_ptr<Film> film_;
  std::optional<ScreenPlaces> places_;
};

}  // namespace corvana::engine
