#include "FlowTest.h"

namespace corvana::tests {
namespace {

class CaptureScreen : public FlowTest {};

TEST_F(CaptureScreen, PlacesPromptsWhereTheLayoutSays) {
  using corvana::LabelPosition;
  const std::pair<LabelPosition, const char*> cases[] = {{LabelPosition::top, "Above"},
                                                         {LabelPosition::center, "Center"},
                                                         {LabelPosition::bottom, "Below"}};
  for (const auto& [position, raised] : cases) {
    SelfieCapture::layout.labelPosition = position;
    IDCapture::layout.labelPosition = position;
    enter();
    for (const std::string group : {"selfie", "id"}) {
      for (const std::string place : {"Above", "Center", "Below"}) {
        EXPECT_EQ(world.constraint(group + "Label" + place + "Constraint").priority,
                  place == raised ? 1000 : 250)
            << group << place;
      }
    }
    world.tap("closeButton");
    world.advance(1);
  }
}

TEST_F(CaptureScreen, LiesOverThePreviewOnceTheCameraRuns) {
  enter();
  EXPECT_FALSE(world.view("selfieOverlayView").isHidden());
  EXPECT_TRUE(world.view("selfieDebugStackView").isHidden());
  EXPECT_TRUE(world.view("idDebugStackView").isHidden());
  for (const char* view :
       {"selfieOverlayView", "idOverlayView", "readingTextOverlayView", "overlayTopView"})
    EXPECT_EQ(world.view(view).layer().zPosition(), 1) << view;
  auto& screen = dynamic_cast<capture::VideoCaptureViewController&>(world.topmost());
  screen.videoPreviewLayer()->setZPosition(4);
  screen.captureSessionDidStartRunning();
  world.advance(0);
  EXPECT_EQ(world.view("overlayTopView").layer().zPosition(), 5);
  EXPECT_EQ(world.view("selfieOverlayImageBackground").tintColor(),
            platform::UIColor::white(0, 0.33));
  EXPECT_EQ(world.recorder().setup.selfieOverlayFrame,
            world.view("selfieOverlayImageView").frame());
  EXPECT_EQ(world.recorder().setup.idOverlayFrame, world.view("idFrameImageView").frame());
  EXPECT_FALSE(world.recorder().setup.selfieOverlayFrame.isEmpty());

  // However the storyboard has drawn them.
  world.view("overlayTopView").setBackgroundColor(platform::colors::kRed);
  world.view("selfieOverlayImageBackground").setHidden(true);
  screen.viewDidLoad();
  EXPECT_EQ(world.view("overlayTopView").backgroundColor(), platform::colors::kClear);
  EXPECT_FALSE(world.view("selfieOverlayImageBackground").isHidden());
  EXPECT_TRUE(world.view("selfieOverlayView").isHidden()) << "until the camera runs";
}

TEST_F(CaptureScreen, WithoutAPreviewTheSelfieOverlayStaysHidden) {
  capture::videoIDCapture(*world.root, front, back, text, nullptr);
  dynamic_cast<corvana::CaptureSessionViewController&>(
      *dynamic_cast<platform::UINavigationController&>(*world.root->presentedViewController())
           .rootViewController())
      .setVideoPreviewLayer(nullptr);
  world.advance(1);
  EXPECT_TRUE(world.view("selfieOverlayView").isHidden());
}

TEST_F(CaptureScreen, StaysUpSilentlyWithoutARecorder) {
  world.host.makesRecorder = false;
  VideoCapture::options.readTextWordMatchThreshold = 0;
  SelfieCapture::options.capture4K = true;
  enter();
  EXPECT_EQ(world.topmostScene(), "VideoCaptureViewController");
  EXPECT_EQ(world.host.captureSession()->captureMode(), CaptureMode::standard);
  EXPECT_TRUE(world.console.lines.empty());
  auto& screen = dynamic_cast<capture::VideoCaptureViewController&>(world.topmost());
  screen.update(Face{Face::Success{{nullptr, faceImage(kHolder)}}});
  screen.update(ID{ID::Success{front}});
  world.advance(3);
  auto other = back;
  other.type = "DRIVING_LICENCE_BACK";
  screen.update(ID{ID::ClassifiedDocument{other}});
  world.advance(0);
  EXPECT_EQ(world.text("idOverlayLabel"), IDCapture::strings.frontBackMismatch);
  EXPECT_TRUE(world.view("progressView").isHidden()) << "it is held back all the same";
  screen.update(ID{ID::Success{back}});
  world.advance(1);
  EXPECT_TRUE(world.tap("doneButton"));
  world.advance(1);
  EXPECT_EQ(world.topmostScene(), "VideoCaptureViewController") << "there is no film to end";
  screen.update(Face{Face::TimedOut{}});
  world.advance(1);
  EXPECT_EQ(world.topmostScene(), "VideoRetryViewController");
  EXPECT_TRUE(world.tap("retryButton"));
  world.advance(1);
  world.tap("closeButton");
  world.advance(5);
  ASSERT_EQ(results.size(), 1u);
  EXPECT_EQ(results[0].error(), IDError(IDError::Strings::canceled));
}

TEST_F(CaptureScreen, ChoosesTheCodecAndAsksAboutOneContainer) {
  using Codecs = std::vector<std::string>;
  const std::pair<Codecs, std::string> cases[] = {{{"avc1", "jpeg", "hvc1"}, "hvc1"},
                                                  {{"avc1", "jpeg"}, "avc1"},
                                                  {{"jpeg"}, "avc1"},
                                                  {{}, "avc1"}};
  for (const auto& [codecs, chosen] : cases) {
    world.mediaDevices.camera->codecs = codecs;
    enter();
    const auto& settings = world.recorder().setup.videoSettings;
    ASSERT_TRUE(settings);
    EXPECT_EQ(std::any_cast<std::string>(settings->at(platform::kAVVideoCodecKey)), chosen);
    EXPECT_TRUE(world.recorder().setup.audioSettings);
    world.tap("closeButton");
    world.advance(1);
  }
  for (const auto& device : {world.mediaDevices.camera, world.mediaDevices.microphone}) {
    EXPECT_FALSE(device->fileTypesAsked().empty());
    for (const auto& type : device->fileTypesAsked())
      EXPECT_EQ(type, corvana::VideoWriter::fileType);
  }
  world.mediaDevices.camera->recommendedVideo.reset();
  world.mediaDevices.microphone->recommendedAudio.reset();
  enter();
  EXPECT_FALSE(world.recorder().setup.videoSettings);
  EXPECT_FALSE(world.recorder().setup.audioSettings);
}

TEST_F(CaptureScreen, GoesOnWithoutAMicrophone) {
  const auto microphone = world.mediaDevices.microphone;
  microphone->canOpen = false;
  for (int i = 0; i < 2; ++i) {
    results.clear();
    enter();
    reachReading();
    readAndFinish();
    expectAccepted();
    EXPECT_EQ(microphone->starts(), 0);
    world.mediaDevices.microphone = nullptr;
  }
}

TEST_F(CaptureScreen, HearsAMicrophoneThatIsAllowedWhileTheTextIsRead) {
  world.mediaDevices.microphoneStatus = platform::AVAuthorizationStatus::notDetermined;
  world.mediaDevices.answerDelay = platform::seconds(10);
  enter();
  reachReading();
  EXPECT_FALSE(world.mediaDevices.microphone->isRunning());
  world.advance(10);
  ASSERT_TRUE(world.mediaDevices.microphone->isRunning());
  const auto sample = devices::silentSample(world.loop.now(), platform::seconds(0.1));
  world.mediaDevices.camera->push(sample);
  world.mediaDevices.microphone->push(sample);
  world.advance(0);
  EXPECT_EQ(world.recorder().framesReceived(), 1);
  EXPECT_EQ(world.recorder().audioCalls(), (std::vector<std::string>{"write", "append"}));
}

TEST_F(CaptureScreen, StartsTheMicrophoneOnTheWayBackFromTheSettings) {
  using enum platform::AVAuthorizationStatus;
  const auto& microphone = *world.mediaDevices.microphone;
  world.mediaDevices.microphoneStatus = denied;
  enter();
  ASSERT_NE(world.alert(), nullptr);
  world.alert()->choose(0);
  world.advance(1);
  world.mediaDevices.microphoneStatus = authorized;
  selfie(Face::TimedOut{});  // the screen goes and appears again, and so prepares the microphone
  world.advance(1);
  world.tap("retryButton");
  world.advance(1);
  EXPECT_FALSE(microphone.isRunning());
  world.postWillEnterForeground();
  world.advance(0);
  EXPECT_TRUE(microphone.isRunning());
  selfie(Face::TimedOut{});
  world.advance(1);
  world.tap("retryButton");
  world.advance(1);
  world.postWillEnterForeground();
  world.advance(0);
  EXPECT_FALSE(microphone.isRunning()) << "that was another way back";
}

/// Each refusal leads to an alert of its own, whose button leads to the settings.
TEST_F(CaptureScreen, SendsWhoeverRefusesToTheSettings) {
  using Microphone = platform::AVAuthorizationStatus;
  using Speech = platform::SFSpeechRecognizerAuthorizationStatus;
  world.mediaDevices.grantsWhenAsked = false;
  const struct {
    Microphone microphone;
    Speech speech;
    const char* message;
  } cases[] = {
      {Microphone::notDetermined, Speech::denied, "Microphone Permission Not Granted"},
      {Microphone::denied, Speech::authorized, "Microphone Permission Not Granted"},
      {Microphone::restricted, Speech::authorized, "Microphone Permission Not Granted"},
      {Microphone::authorized, Speech::notDetermined, "Speech Recognition Permission Not Granted"},
      {Microphone::authorized, Speech::denied, "Speech Recognition Permission Not Granted"},
      {Microphone::authorized, Speech::restricted, "Speech Recognition Permission Not Granted"},
  };
  for (const auto& test : cases) {
    const bool forSound = test.microphone != Microphone::authorized;
    world.mediaDevices.microphoneStatus = test.microphone;
    world.speechAuthorization.status = test.speech;
    enter();
    ASSERT_NE(world.alert(), nullptr);
    EXPECT_EQ(world.alert()->title(), "Error");
    EXPECT_EQ(world.alert()->message(), test.message);
    const int starts = world.speech().starts();
    world.postWillEnterForeground();
    world.advance(0);
    EXPECT_EQ(world.speech().starts(), starts) << "nobody has been to the settings yet";
    const std::size_t opened = world.application.opened.size();
    world.alert()->choose(0);
    world.advance(1);
    EXPECT_EQ(world.application.opened.size(), opened + 1);
    for (int i = 0; i < 2; ++i) {  // the second return finds nothing to do
      world.postWillEnterForeground();
      world.advance(0);
      EXPECT_EQ(world.speech().starts(), starts + (forSound ? 0 : 1));
    }
    world.tap("closeButton");
    world.advance(1);
  }
}

TEST_F(CaptureScreen, HasGoneWhenTheAnswerComesTooLate) {
  world.mediaDevices.microphoneStatus = platform::AVAuthorizationStatus::notDetermined;
  world.speechAuthorization.status = platform::SFSpeechRecognizerAuthorizationStatus::denied;
  world.mediaDevices.answerDelay = world.speechAuthorization.answerDelay = platform::seconds(10);
  for (const double seconds : {1, 12}) {  // before either answer
    enter();
    world.advance(seconds);
    world.tap("closeButton");
    world.advance(30);
    EXPECT_EQ(&world.topmost(), world.root.get());
    world.mediaDevices.microphoneStatus = platform::AVAuthorizationStatus::notDetermined;
  }
  EXPECT_EQ(world.speechAuthorization.requests(), 1);
}

TEST_F(CaptureScreen, ShowsTheTimeOfTheOptionsWhenTheScreenWasBuilt) {
  VideoCapture::strings.doneButton = "Finished";
  const std::pair<int, const char*> cases[] = {
      {0, "0:00"}, {59, "0:59"}, {65, "1:05"}, {90, "1:30"}, {600, "10:00"}};
  for (const auto& [seconds, shown] : cases) {
    VideoCapture::options.readTextCountdownSeconds = seconds;
    enter();
    VideoCapture::options.readTextCountdownSeconds = 99;
    EXPECT_EQ(world.button("doneButton").title(), "Finished");
    EXPECT_FALSE(world.tap("doneButton")) << "its overlay is not to be seen yet";
    reachReading();
    EXPECT_EQ(world.text("readingTextCountdownLabel"), shown);
    hear(text);
    EXPECT_TRUE(world.tap("doneButton"));
    world.advance(30);
    expectAccepted();
    results.clear();
  }
}

}  // namespace
}  // namespace corvana::tests
