#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "devices/scripted/HostContractValidator.h"
#include "devices/scripted/ScriptedMedia.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::tests {
namespace {

using devices::HostContractValidator;
using Kind = devices::HostEvent::Kind;

platform::TimePoint at(double seconds) {
  return platform::TimePoint(platform::seconds(seconds));
}

/// `events` reads "0 speech start, 0.5 state detectingFace"; a "!" behind a name: on another queue.
std::vector<std::string> breachesOf(const std::string& events, double end = 0) {
  static const std::map<std::string, Kind> kKinds = {
      {"state", Kind::state},
      {"face", Kind::liveFace},
      {"mode", Kind::mode},
      {"call", Kind::call},
      {"speech", Kind::speech},
      {"frame", Kind::frame},
      {"completion", Kind::completion},
  };
  HostContractValidator validator({platform::seconds(20), platform::seconds(30)}, at(0));
  std::istringstream list(events);
  for (std::string event; std::getline(list, event, ',');) {
    std::istringstream words(event);
    double time = 0;
    std::string kind;
    std::string name;
    words >> time >> kind >> name;
    const bool elsewhere = name.back() == '!';
    if (elsewhere) name.pop_back();
    validator.observe({at(time), kKinds.at(kind), name, !elsewhere});
  }
  if (end > 0) validator.end(at(end));
  return validator.breaches();
}

TEST(HostContract, AGoodRunWithARetryBreaksNothing) {
  EXPECT_EQ(breachesOf("0 speech start, 0 frame 720x1280, 0.5 state detectingFace, 1 face found,"
                       "2 state selfieSuccess, 2.5 state selfieSuccess, 20 state selfieTimedOut,"
                       "21 state selfieTimedOut, 21 call stopVideoWriter, 20.4 speech stop,"
                       "22 call retry, 22 mode selfieCapture, 22 speech start, 22.1 frame 640x480,"
                       "23 state alignFace, 24 state selfieSuccess, 24 mode idCapture,"
                       "24.2 state detectingBox, 25 state detectedBox, 25 state tooMuchGlare,"
                       "26 state classifiedDocument, 26 state idSuccess,"
                       "26.2 state classifiedDocument, 26.2 call typeMismatch,"
                       "26.5 state idSuccess, 27 mode readingText, 28 speech result,"
                       "30 face found, 40 call stopVideoWriter, 40 completion expected,"
                       "40.2 completion film",
                       100),
            std::vector<std::string>{});
}

TEST(HostContract, EachBrokenPromiseIsNamedOnce) {
  const std::string seeking = "1 mode idCapture, 1 state detectingBox";
  const std::string found = seeking + ", 1 state detectedBox";
  const std::string classified = found + ", 1 state classifiedDocument";
  const std::string retried = "1 mode idCapture, 3 call retry, 3 mode selfieCapture";
  const std::string stopped = "3 call stopVideoWriter";
  const struct {
    std::string events;
    const char* breach;
    double end = 0;
  } cases[] = {
      {"1 state smiling", "\"smiling\" is no state"},
      {"1 state detectingBox", "detectingBox was reported in the mode selfieCapture"},
      {seeking + ", 2 state capturingFace", "capturingFace was reported in the mode idCapture"},
      {"1 mode idCapture, 1 state detectedBox", "detectedBox was reported before detectingBox"},
      {seeking + ", 1 state classifiedDocument", "reported before detectedBox"},
      {classified + ", 2 state detectingBox, 3 state classifiedDocument",
       "classifiedDocument was reported before detectedBox"},
      {found + ", 2 state idSuccess", "not classified"},
      {classified + ", 2 state idSuccess, 3 state idSuccess", "not classified"},
      {"1 state selfieSuccess, 1.4 state selfieSuccess", "more than twice a second"},
      {classified + ", 2 state idSuccess, 2 state classifiedDocument, 2.3 state idSuccess",
       "more than twice a second"},
      {"10 state selfieTimedOut", "selfieTimedOut came before its time"},
      {"1 state selfieSuccess, 30 state selfieSuccess, 31 state selfieSuccess",
       "lasted longer than its time-out"},
      {"1 mode idCapture", "the mode idCapture has lasted longer", 40},
      {"10 mode idCapture, 11 mode readingText, 200 state detectingBox",
       "detectingBox was reported in the mode readingText"},
      {"20 state selfieTimedOut", "selfieTimedOut was neither answered nor repeated", 23},
      {retried + ", 4.9 state selfieSuccess", "less than two seconds after a retry"},
      {"1 mode readingText, 1.4 face lost", "first half second"},
      {"20 state selfieTimedOut, 21 state detectingFace",
       "detectingFace was reported after selfieTimedOut"},
      {"2 state selfieFailed, 3 face found", "the live face was reported after selfieFailed"},
      {"1 mode idCapture, 3 face lost, 3.1 face lost",
       "the live face was reported after the loss of the live face"},
      {stopped + ", 4 state alignFace", "alignFace was reported after stopVideoWriter"},
      {"3 face lost", "lost before a selfie was accepted"},
      {"1 mode idCapture, 3 call retry, 4 state detectingBox", "did not return to the selfie mode"},
      {"1 mode idCapture, 3 call retry, 3 mode idCapture", "instead of the selfie mode"},
      {"0 speech start, 3 call retry, 3 mode selfieCapture, 4 state detectingFace",
       "did not start the recogniser again"},
      {"19 call retry, 19 mode selfieCapture, 25 state selfieTimedOut",
       "before its time, which starts afresh"},
      {"0 speech start, 1 speech stop, 2 speech result", "while the recogniser"},
      {"0 speech start, 2 speech result!", "a speech result came on another queue"},
      {stopped + ", 3 completion expected, 4 completion film!",
       "the film's completion came on another queue"},
      {stopped + ", 3 completion expected, 4 completion film, 5 completion film", "came twice"},
      {stopped + ", 3 completion expected", "completion never came", 60},
      {"1 frame 720x1280, 2 frame 2160x3840",
       "the film's frames changed from 720x1280 to 2160x3840"},
  };
  for (const auto& c : cases) {
    const auto breaches = breachesOf(c.events, c.end);
    ASSERT_EQ(breaches.size(), 1u) << c.breach;
    EXPECT_NE(breaches[0].find(c.breach), std::string::npos) << breaches[0];
    EXPECT_EQ(breaches[0].rfind("At ", 0), 0u) << breaches[0];
  }
}

TEST(ScriptedMedia, AnswersLaterAndKeepsTheAnswer) {
  using Status = platform::AVAuthorizationStatus;
  platform::VirtualRunLoop loop;
  devices::ScriptedMediaDevices media(loop);
  media.microphoneStatus = Status::notDetermined;
  media.grantsWhenAsked = false;
  std::vector<bool> answers;
  media.requestAccess(platform::AVMediaType::audio, [&](bool granted) { answers = {granted}; });
  EXPECT_TRUE(answers.empty());
  loop.advance({});
  EXPECT_EQ(answers, std::vector<bool>{false});
  EXPECT_EQ(media.authorizationStatus(platform::AVMediaType::audio), Status::denied);
}

}  // namespace
}  // namespace corvana::tests
