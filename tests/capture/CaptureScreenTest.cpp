#include "FlowTest.h"

namespace tests {
namespace {

class CaptureScreen : public FlowTest {
 protected:
  void expectAlert(const std::string& message, const std::string& button) {
    ASSERT_NE(world.alert(), nullptr) << message;
    EXPECT_EQ(world.alert()->title(), "Error");
    EXPECT_EQ(world.alert()->message(), message);
    ASSERT_EQ(world.alert()->actions().size(), 1u);
    EXPECT_EQ(world.alert()->actions()[0].title, button);
  }
  void answerAlert() {
    world.alert()->choose(0);
    world.advance(1);
  }
};

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
  EXPECT_EQ(world.view("selfieOverlayImageBackground").tintColor(),
            platform::UIColor::white(0, 0.33));
  EXPECT_EQ(world.recorder().setup.selfieOverlayFrame,
            world.view("selfieOverlayImageView").frame());
  EXPECT_EQ(world.recorder().setup.idOverlayFrame, world.view("idFrameImageView").frame());
  EXPECT_FALSE(world.recorder().setup.selfieOverlayFrame.isEmpty());
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

TEST_F(CaptureScreen, RaisesTheCameraForEither4KOptionOnly) {
  for (const auto& [selfie4K, id4K] : {std::pair{false, false}, {true, false}, {false, true}}) {
    SelfieCapture::options.capture4K = selfie4K;
    IDCapture::options.capture4K = id4K;
    enter();
    EXPECT_EQ(world.host.captureSession()->captureMode(),
              selfie4K || id4K ? CaptureMode::high : CaptureMode::standard);
    world.tap("closeButton");
    world.advance(1);
  }
}

TEST_F(CaptureScreen, MakesOneRecorderAndStartsSpeechOnceForAllItsAppearances) {
  enter();
  EXPECT_EQ(world.speech().starts(), 1);
  world.topmost().present(std::make_shared<platform::UIViewController>(world.environment), true);
  world.advance(1);
  EXPECT_FALSE(world.speech().isRunning());
  SelfieCapture::options.capture4K = true;
  world.topmost().dismiss(true);
  world.advance(1);
  EXPECT_EQ(world.topmostScene(), "VideoCaptureViewController");
  EXPECT_EQ(world.host.recordersMade(), 1);
  EXPECT_EQ(world.speech().starts(), 1);
  EXPECT_EQ(world.host.captureSession()->captureMode(), CaptureMode::high) << "looked at anew";
}

TEST_F(CaptureScreen, SaysWhenSpeechCannotBeRecognised) {
  for (const bool hasRecognizer : {true, false}) {
    world.host.setup.hasSpeechRecognizer = hasRecognizer;
    world.host.setup.speechAvailable = false;
    SelfieCapture::options.capture4K = true;
    enter();
    world.advance(1);
    expectAlert("Speech Recognition Is Not Available", "OK");
    EXPECT_EQ(world.alert()->actions()[0].style, platform::UIAlertAction::Style::cancel);
    EXPECT_EQ(world.host.captureSession()->captureMode(), CaptureMode::standard)
        << "the capture mode is not looked at";
    answerAlert();
    showFace(kHolder);
    EXPECT_EQ(mode(), VideoCaptureMode::idCapture) << "the recorder is kept";
    world.tap("closeButton");
    world.advance(1);
  }
}

TEST_F(CaptureScreen, StaysUpSilentlyWithoutARecorder) {
  world.host.makesRecorder = false;
  SelfieCapture::options.capture4K = true;
  enter();
  EXPECT_EQ(world.topmostScene(), "VideoCaptureViewController");
  EXPECT_EQ(world.host.captureSession()->captureMode(), CaptureMode::standard);
  EXPECT_TRUE(world.console.lines.empty());
  auto& screen = dynamic_cast<capture::VideoCaptureViewController&>(world.topmost());
  screen.update(Face{Face::Success{{nullptr, faceImage(kHolder)}}});
  screen.update(ID{ID::Success{front}});
  screen.update(Face{Face::TimedOut{}});
  world.advance(1);
  EXPECT_EQ(world.topmostScene(), "VideoRetryViewController");
  EXPECT_TRUE(world.tap("retryButton"));
  world.advance(1);
  world.tap("closeButton");
  world.advance(5);
  expectFailed(IDError::Strings::canceled);
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

TEST_F(CaptureScreen, AsksOnceForTheMicrophone) {
  world.mediaDevices.microphoneStatus = platform::AVAuthorizationStatus::notDetermined;
  world.mediaDevices.answerDelay = platform::seconds(0.1);
  enter();
  EXPECT_EQ(world.mediaDevices.requests(), 1);
  EXPECT_EQ(world.speechAuthorization.requests(), 1);
  EXPECT_TRUE(world.recorder().setup.audioSettings) << "the microphone was prepared";
  EXPECT_EQ(world.alert(), nullptr);
}

TEST_F(CaptureScreen, LeadsToTheSettingsForTheMicrophone) {
  using enum platform::AVAuthorizationStatus;
  for (const auto status : {denied, restricted, notDetermined}) {
    world.mediaDevices.microphoneStatus = status;
    world.mediaDevices.grantsWhenAsked = false;
    world.application.opened.clear();
    const int starts = world.mediaDevices.microphone->starts();
    enter();
    expectAlert("Microphone Permission Not Granted", "Settings");
    EXPECT_EQ(world.alert()->actions()[0].style, platform::UIAlertAction::Style::standard);
    EXPECT_EQ(world.speechAuthorization.requests(), 0);
    world.postWillEnterForeground();
    answerAlert();
    EXPECT_EQ(world.application.opened, std::vector<std::string>{"app-settings:"});
    world.postWillEnterForeground();
    world.postWillEnterForeground();
    world.advance(0);
    EXPECT_EQ(world.mediaDevices.microphone->starts(), starts) << "it was never prepared";
    EXPECT_EQ(world.speech().starts(), 1);
    world.tap("closeButton");
    world.advance(1);
  }
}

TEST_F(CaptureScreen, LeadsToTheSettingsForSpeech) {
  using enum platform::SFSpeechRecognizerAuthorizationStatus;
  for (const auto status : {denied, restricted, notDetermined}) {
    world.speechAuthorization.status = status;
    world.application.settingsURL = "app-settings:";
    enter();
    expectAlert("Speech Recognition Permission Not Granted", "Settings");
    world.postWillEnterForeground();
    EXPECT_EQ(world.speech().starts(), 1);
    answerAlert();
    world.postWillEnterForeground();
    world.postWillEnterForeground();
    EXPECT_EQ(world.speech().starts(), 2) << "once for one way to the settings";
    world.tap("closeButton");
    world.advance(1);

    world.application.settingsURL.reset();
    enter();
    expectAlert("Speech Recognition Permission Not Granted", "OK");
    answerAlert();
    world.postWillEnterForeground();
    EXPECT_EQ(world.speech().starts(), 1);
    world.tap("closeButton");
    world.advance(1);
  }
}

TEST_F(CaptureScreen, StopsTheProgramWhenAnOutletIsMissing) {
  EXPECT_DEATH(capture::VideoCaptureViewController(world.environment).view(), "not connected");
  EXPECT_DEATH(capture::VideoRetryViewController(world.environment).view(), "not connected");
}

}  // namespace
}  // namespace tests
