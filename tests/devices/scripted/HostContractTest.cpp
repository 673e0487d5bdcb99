#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "devices/scripted/HostContractValidator.h"
#include "support/TestWorld.h"

namespace {

using corvana::IDCaptureState;
using corvana::SelfieCaptureState;
using devices::HostContract;
using devices::HostContractValidator;
using devices::HostEvent;
using Kind = HostEvent::Kind;

platform::TimePoint at(double seconds) {
  return platform::TimePoint(platform::seconds(seconds));
}

HostEvent state(double time, const char* name) {
  return {at(time), Kind::state, name};
}
HostEvent mode(double time, const char* name) {
  return {at(time), Kind::mode, name};
}
HostEvent call(double time, const char* name) {
  return {at(time), Kind::call, name};
}
HostEvent speech(double time, const char* name, bool onMain = true) {
  return {at(time), Kind::speech, name, onMain};
}
HostEvent completion(double time, const char* name, bool onMain = true) {
  return {at(time), Kind::completion, name, onMain};
}
HostEvent face(double time, const char* name) {
  return {at(time), Kind::liveFace, name};
}
HostEvent frame(double time, const char* size) {
  return {at(time), Kind::frame, size};
}

std::vector<std::string> breachesOf(const std::vector<HostEvent>& events, double end = 0) {
  HostContract contract;
  contract.selfieTimeOut = platform::seconds(20);
  contract.idTimeOut = platform::seconds(30);
  HostContractValidator validator(contract, at(0));
  for (const HostEvent& event : events)
    validator.observe(event);
  if (end > 0) validator.end(at(end));
  return validator.breaches();
}

/// From the first state to the film, with a retry in between.
const std::vector<HostEvent> kGoodRun = {
    speech(0, "start"),
    frame(0, "720x1280"),
    state(0.5, "detectingFace"),
    face(1, "found"),
    state(2, "selfieSuccess"),
    state(2.5, "selfieSuccess"),
    state(20, "selfieTimedOut"),
    state(21, "selfieTimedOut"),
    call(21, "stopVideoWriter"),
    speech(20.4, "stop"),
    call(22, "retry"),
    mode(22, "selfieCapture"),
    speech(22, "start"),
    frame(22.1, "640x480"),
    state(23, "alignFace"),
    state(24, "selfieSuccess"),
    mode(24, "idCapture"),
    state(24.2, "detectingBox"),
    state(25, "detectedBox"),
    state(25, "tooMuchGlare"),
    state(26, "classifiedDocument"),
    state(26, "idSuccess"),
    state(26.2, "classifiedDocument"),
    call(26.2, "typeMismatch"),
    state(26.5, "idSuccess"),
    mode(27, "readingText"),
    speech(28, "result"),
    face(30, "found"),
    call(40, "stopVideoWriter"),
    completion(40, "expected"),
    completion(40.2, "film"),
};

TEST(HostContract, AGoodRunBreaksNothing) {
  EXPECT_EQ(breachesOf(kGoodRun, 100), std::vector<std::string>{});
}

TEST(HostContract, EachBrokenPromiseIsNamedOnce) {
  struct Case {
    std::vector<HostEvent> events;
    const char* breach;
    double end = 0;
  };
  const auto idMode = mode(1, "idCapture");
  const auto seeking = state(1, "detectingBox");
  const auto found = state(1, "detectedBox");
  const auto classified = state(1, "classifiedDocument");
  const Case cases[] = {
      {{state(1, "smiling")}, "\"smiling\" is no state"},
      {{state(1, "detectingBox")}, "detectingBox was reported in the mode selfieCapture"},
      {{idMode, state(2, "capturingFace")}, "capturingFace was reported in the mode idCapture"},
      {{idMode, found}, "detectedBox was reported before detectingBox"},
      {{idMode, seeking, classified}, "classifiedDocument was reported before detectedBox"},
      {{idMode, seeking, found, classified, state(2, "detectingBox"),
        state(3, "classifiedDocument")},
       "classifiedDocument was reported before detectedBox"},
      {{idMode, seeking, found, state(2, "idSuccess")}, "not classified"},
      {{idMode, seeking, found, classified, state(2, "idSuccess"), state(3, "idSuccess")},
       "not classified"},
      {{state(1, "selfieSuccess"), state(1.4, "selfieSuccess")}, "more than twice a second"},
      {{idMode, seeking, found, classified, state(2, "idSuccess"), state(2, "classifiedDocument"),
        state(2.3, "idSuccess")},
       "more than twice a second"},
      {{state(10, "selfieTimedOut")}, "selfieTimedOut came before its time"},
      {{state(1, "selfieSuccess"), state(30, "selfieSuccess"), state(31, "selfieSuccess")},
       "lasted longer than its time-out"},
      {{idMode}, "the mode idCapture has lasted longer", 40},
      {{mode(10, "idCapture"), mode(11, "readingText"), state(200, "detectingBox")},
       "detectingBox was reported in the mode readingText"},
      {{state(20, "selfieTimedOut")}, "selfieTimedOut was neither answered nor repeated", 23},
      {{idMode, call(3, "retry"), mode(3, "selfieCapture"), state(4.9, "selfieSuccess")},
       "less than two seconds after a retry"},
      {{mode(1, "readingText"), face(1.4, "lost")}, "first half second"},
      {{state(20, "selfieTimedOut"), state(21, "detectingFace")},
       "detectingFace was reported after selfieTimedOut"},
      {{state(2, "selfieFailed"), face(3, "found")},
       "the live face was reported after selfieFailed"},
      {{idMode, face(3, "lost"), face(3.1, "lost")},
       "the live face was reported after the loss of the live face"},
      {{call(3, "stopVideoWriter"), state(4, "alignFace")},
       "alignFace was reported after stopVideoWriter"},
      {{face(3, "lost")}, "lost before a selfie was accepted"},
      {{idMode, call(3, "retry"), state(4, "detectingBox")}, "did not return to the selfie mode"},
      {{idMode, call(3, "retry"), mode(3, "idCapture")}, "instead of the selfie mode"},
      {{speech(0, "start"), call(3, "retry"), mode(3, "selfieCapture"), state(4, "detectingFace")},
       "did not start the recogniser again"},
      {{call(19, "retry"), mode(19, "selfieCapture"), state(25, "selfieTimedOut")},
       "before its time, which starts afresh"},
      {{speech(0, "start"), speech(1, "stop"), speech(2, "result")}, "while the recogniser"},
      {{speech(0, "start"), speech(2, "result", false)}, "a speech result came on another queue"},
      {{call(3, "stopVideoWriter"), completion(3, "expected"), completion(4, "film", false)},
       "the film's completion came on another queue"},
      {{call(3, "stopVideoWriter"), completion(3, "expected"), completion(4, "film"),
        completion(5, "film")},
       "came twice"},
      {{call(3, "stopVideoWriter"), completion(3, "expected")}, "completion never came", 60},
      {{frame(1, "720x1280"), frame(2, "2160x3840")},
       "the film's frames changed from 720x1280 to 2160x3840"},
  };
  for (const Case& c : cases) {
    const auto breaches = breachesOf(c.events, c.end);
    ASSERT_EQ(breaches.size(), 1u) << c.breach;
    EXPECT_NE(breaches[0].find(c.breach), std::string::npos) << breaches[0];
    EXPECT_EQ(breaches[0].rfind("At ", 0), 0u) << breaches[0];
  }
}

/// A module that listens to a recorder, nothing more.
class Listener final : public corvana::VideoCaptureDelegate,
                       public corvana::SpeechRecognizerDelegate {
 public:
  void update(const SelfieCaptureState& s) override { heard.push_back(corvana::nameOf(s)); }
  void update(const IDCaptureState& s) override { heard.push_back(corvana::nameOf(s)); }
  void foundLiveFace(const std::optional<platform::CGRect>& frame, const platform::CGSize&,
                     corvana::VideoCaptureMode m) override {
    heard.push_back((frame ? "face " : "no face ") + std::string(corvana::nameOf(m)));
  }
  void speechRecognition(const platform::SFSpeechRecognitionResult& result) override {
    std::string line = "speech";
    for (const auto& segment : result.bestTranscription.segments)
      line += " " + segment.substring;
    heard.push_back(line);
  }
  void speechRecognition(const corvana::IDError& error) override {
    heard.push_back("error " + error.localizedDescription());
  }
  std::vector<std::string> heard;
};

TEST(ScriptedHost, KeepsTheContractWhileItsScriptDoes) {
  tests::TestWorld world;
  const auto recorder = world.host.makeVideoCapture({}, {}, {}, {});
  auto& scripted = world.recorder();
  HostContractValidator validator({}, world.loop.now());
  scripted.onEvent = [&](const HostEvent& event) { validator.observe(event); };
  const auto listener = std::make_shared<Listener>();
  recorder->setDelegate(listener);
  recorder->speechRecognizer()->setDelegate(listener);

  world.speech().hear("too early");
  recorder->speechRecognizer()->start();
  scripted.report(SelfieCaptureState{SelfieCaptureState::CapturingFace{}});
  scripted.reportLiveFace();
  world.advance(1);
  recorder->setMode(corvana::VideoCaptureMode::idCapture);
  scripted.reportLiveFaceLost();
  world.speech().hear("dropped, since");
  world.speech().stop();
  world.advance(1);
  recorder->stopVideoWriter(nullptr);
  recorder->retry();
  EXPECT_EQ(recorder->mode(), corvana::VideoCaptureMode::selfieCapture);
  world.speech().hear("hello  world");
  world.speech().fail("deaf");
  int films = 0;
  recorder->stopVideoWriter([&](const auto& film) { films += film ? 1 : 100; });
  world.advance(1);
  validator.end(world.loop.now());

  EXPECT_EQ(listener->heard,
            (std::vector<std::string>{"capturingFace", "face selfieCapture", "no face liveFaceLost",
                                      "speech hello world", "error deaf"}));
  EXPECT_EQ(scripted.calls(), (std::vector<std::string>{"setMode idCapture", "stopVideoWriter",
                                                        "retry", "stopVideoWriter"}));
  EXPECT_EQ(films, 1);
  EXPECT_EQ(validator.breaches(), std::vector<std::string>{});

  scripted.report(SelfieCaptureState{SelfieCaptureState::CapturingFace{}});
  world.advance(0);
  ASSERT_EQ(validator.breaches().size(), 1u) << "the script broke its word";
  EXPECT_EQ(validator.breaches()[0],
            "At 3.000 s: capturingFace was reported after stopVideoWriter, before a retry.");
}

TEST(ScriptedHost, EveryStateHasANameThatTheContractKnows) {
  const SelfieCaptureState selfie[] = {{SelfieCaptureState::DetectedIssue{}},
                                       {SelfieCaptureState::Success{}},
                                       {SelfieCaptureState::CapturingFace{}}};
  for (const auto& s : selfie)
    EXPECT_TRUE(HostContractValidator::isKnownState(corvana::nameOf(s)));
  const IDCaptureState id[] = {{IDCaptureState::DetectingBox{}},
                               {IDCaptureState::Failed{}},
                               {IDCaptureState::AlignRectangle{}}};
  for (const auto& s : id)
    EXPECT_TRUE(HostContractValidator::isKnownState(corvana::nameOf(s)));
  EXPECT_STREQ(corvana::nameOf(selfie[1]), "selfieSuccess");
  EXPECT_STREQ(corvana::nameOf(id[1]), "idFailed");
  EXPECT_FALSE(HostContractValidator::isKnownState(""));
}

TEST(ScriptedMedia, SettingsAndSamplesFollowTheScript) {
  tests::TestWorld world;
  auto& microphone = *world.mediaDevices.microphone;
  int samples = 0;
  microphone.push(devices::silentSample({}, platform::seconds(0.1)));
  microphone.start(
      [&](const auto& sample) { samples += static_cast<int>(sample->samples.size()); });
  microphone.push(devices::silentSample({}, platform::seconds(0.1)));
  microphone.stop();
  microphone.push(devices::silentSample({}, platform::seconds(0.1)));
  EXPECT_EQ(samples, 1600);

  world.mediaDevices.microphoneStatus = platform::AVAuthorizationStatus::notDetermined;
  world.mediaDevices.grantsWhenAsked = false;
  std::vector<bool> answers;
  world.mediaDevices.requestAccess(platform::AVMediaType::audio,
                                   [&](bool granted) { answers.push_back(granted); });
  EXPECT_TRUE(answers.empty()) << "a user answers later";
  world.advance(0);
  EXPECT_EQ(answers, std::vector<bool>{false});
  EXPECT_EQ(world.mediaDevices.authorizationStatus(platform::AVMediaType::audio),
            platform::AVAuthorizationStatus::denied);
}

}  // namespace
