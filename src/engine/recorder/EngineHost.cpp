#include "engine/recorder/EngineHost.h"

#include "engine/recorder/Recorder.h"

namespace corvana::engine {
namespace {

RecorderEvent paceEvent(std::optional<int> limit) {
  if (!limit) return {RecorderEvent::Kind::film, "atFullRate", {}};
  return {RecorderEvent::Kind::film, "slowed", {{"value", static_cast<double>(*limit)}}};
}

}  // namespace

std::shared_ptr<corvana::CaptureSession> EngineHost::makeCaptureSession(corvana::CameraPosition) {
  auto session = corvana::CaptureSession::make(
      setup_.loop, setup_.mediaDevices.defaultDevice(platform::AVMediaType::video));
  captureSession_ = session;
  pictures_ = session->videoDataOutput().shared_from_this();
  return session;
}

std::shared_ptr<corvana::VideoCapture> EngineHost::makeVideoCapture(
    const platform::CGRect& selfieOverlayFrame, const platform::CGRect& idOverlayFrame,
    const std::optional<platform::WriterSettings>& videoSettings,
    const std::optional<platform::WriterSettings>& audioSettings) {
  auto film =
      Film::make(setup_.loop, setup_.assetWriterFactory,
                 {setup_.folder, setup_.keepFailedRuns, videoSettings, audioSettings,
                  setup_.onFilmFault, [observer = setup_.observer](std::optional<int> limit) {
                    if (observer) observer->happened(paceEvent(limit));
                  }});
  if (!film) {
    if (setup_.onFilmFault) setup_.onFilmFault(film.error());
    return nullptr;
  }
  film_ = std::move(*film);
  places_ =
      setup_.places.value_or(ScreenPlaces{setup_.screenSize, selfieOverlayFrame, idOverlayFrame});
  return Recorder::make({setup_.loop, setup_.notificationCenter, setup_.randomness, setup_.analyzer,
                         setup_.speechRecognizer, film_, captureSession_, places_->face,
                         places_->card, places_->screen, setup_.observer});
}

}  // namespace corvana::engine
