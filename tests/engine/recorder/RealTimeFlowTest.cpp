#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "capture/ControllerFactories.h"
#include "capture/Corvana+VideoCapture.h"
#include "devices/headless/HeadlessPerson.h"
#include "devices/headless/HeadlessStoryboard.h"
#include "devices/headless/SceneLayout.h"
#include "devices/screen/DirectoryBundle.h"
#include "devices/screen/ViewSearch.h"
#include "devices/scripted/PatternFaces.h"
#include "devices/scripted/ScriptedHost.h"
#include "devices/system/RealRunLoop.h"
#include "devices/system/TerminalSystem.h"
#include "engine/recorder/EngineHost.h"
#include "engine/recorder/Fakes.h"
#include "support/HostTablesGuard.h"

namespace corvana::tests {
namespace {

using corvana::VideoCaptureMode;
using platform::seconds;

/// Pushes samples of nothing into both devices at a steady pace, on the loop's device thread.
void tick(platform::RunLoop& loop, const devices::ScriptedMediaDevices& media) {
  auto sample = std::make_shared<platform::CMSampleBuffer>();
  sample->presentationTime = loop.now();
  media.camera->push(sample);
  media.microphone->push(sample);
  loop.scheduleDevice(loop.now() + seconds(0.02), platform::EventClass::frame,
                      [&loop, &media] { tick(loop, media); });
}

corvana::DetectedData referenceFront() {
  corvana::DetectedData data;
  data.type = "IDENTITY_CARD_FRONT";
  data.side = corvana::DocumentSide::front;
  data.ocrStrings = {{"MARTA", "EXEMPLAR"}};
  data.faceImage = devices::patternFace(0);
  return data;
}

/// The holder with their card; in the first run they walk away after the selfie.
void look(engine::Observation& observation) {
  const bool selfie = observation.task.mode == VideoCaptureMode::selfieCapture;
  if (observation.task.run == 0 && !selfie) {
    observation.liveFaceLostFor = seconds(1000);
    return;
  }
  observation.liveFace = platform::CGRect{200, 300, 300, 400};
  if (selfie) {
    observation.selfie.emplace().verdict = engine::SelfieVerdict::good;
    observation.selfie->selfie = {{}, devices::patternFace(0)};
  } else if (observation.task.mode == VideoCaptureMode::idCapture) {
    observation.document.emplace().verdict = engine::CardVerdict::found;
    observation.document->reading = referenceFront();
  }
}

// The virtual clock has one thread. Here everything has its own, for the thread sanitizer to see:
// two devices, capture, sound, analysis, film and the screen, over a retry to the result.
TEST(RealTimeFlow, EndsInAResultWhateverTheThreadsDo) {
  const HostTablesGuard tables;
  corvana::SelfieCapture::options.timeOutSeconds = 600;
  corvana::IDCapture::options.timeOutSeconds = 600;
  corvana::VideoCapture::options.readTextCountdownSeconds = 600;
  const ScratchFolder run;
  devices::RealRunLoop loop;
  platform::NotificationCenter notificationCenter;
  devices::StreamConsole console(std::cerr);
  devices::NoSettingsApplication application;
  devices::ScriptedMediaDevices media(loop);
  media.microphoneStatus = platform::AVAuthorizationStatus::notDetermined;
  devices::ScriptedSpeechAuthorization speechAuthorization(loop);
  devices::ReportingSystemSounds sounds([](auto) {});
  platform::SeededRandom randomness(0);
  FakeFilms films;
  const auto analyzer = std::make_shared<FakeAnalyzer>();
  analyzer->fill = look;
  const auto recognizer = std::make_shared<devices::ScriptedSpeechRecognizer>(loop);
  engine::EngineHost host({loop, notificationCenter, media, films, randomness, analyzer, recognizer,
                           run.path(), false, platform::CGSize{360, 640}});
  devices::DirectoryBundle bundle(TEST_RESOURCES,
                                  devices::headlessStoryboards(capture::controllerFactories(host)));
  devices::ScreenHub screen;
  platform::Environment environment{.runLoop = loop,
                                    .bundle = bundle,
                                    .notificationCenter = notificationCenter,
                                    .console = console,
                                    .application = application,
                                    .mediaDevices = media,
                                    .speechAuthorization = speechAuthorization,
                                    .systemSounds = sounds,
                                    .randomness = randomness,
                                    .mainScreen = {devices::kHeadlessScreen},
                                    .presentations = &screen};
  devices::HeadlessPerson person(loop, {.onRetry = devices::PersonHabits::OnRetry::retry});
  screen.add(person);

  std::vector<tl::expected<capture::VideoIdResult, corvana::IDError>> results;
  auto root = std::make_shared<platform::UIViewController>(environment);
  auto window = std::make_unique<platform::UIWindow>(root);
  capture::videoIDCapture(*root, referenceFront(), std::nullopt, "heron",
                          [&](const auto& result) { results.push_back(result); });
  const std::weak_ptr<platform::UIViewController> shown = window->topmost().weak_from_this();
  // Only ends what hangs.
  const auto end = loop.now() + std::chrono::minutes(20);
  tick(loop, media);
  // The microphone starts with the reading.
  EXPECT_EQ(loop.runUntil([&] { return recognizer->buffers() > 0; }, end),
            devices::RealRunLoop::Stop::condition);
  recognizer->hear("heron");
  bool heard = false;
  loop.mainQueue().async([&] { heard = true; });
  const auto touchesDone = [&] {
    auto* done = devices::findView<platform::UIButton>(window->topmost().view(), "doneButton");
    return heard && done && done->touchUpInside();
  };
  EXPECT_EQ(loop.runUntil(touchesDone, end), devices::RealRunLoop::Stop::condition);
  EXPECT_EQ(loop.runUntil([&] { return !results.empty(); }, end),
            devices::RealRunLoop::Stop::condition);

  window.reset();
  root.reset();
  loop.shutDown();
  EXPECT_TRUE(shown.expired());
  ASSERT_EQ(results.size(), 1u);
  EXPECT_TRUE(results[0].has_value());
  EXPECT_EQ(person.retries(), 1);
  EXPECT_EQ(films.log, (std::vector<std::string>{"open film.partial.mp4", "finish",
                                                 "open film.partial.mp4", "finish"}));
}

}  // namespace
}  // namespace corvana::tests
