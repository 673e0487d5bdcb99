#pragma once

#include <algorithm>

#include <gtest/gtest.h>

#include "corvana/StateNames.h"
#include "devices/scripted/HostContractValidator.h"
#include "engine/recorder/Fakes.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::tests {

using corvana::VideoCaptureMode;
using engine::Observation;
using Names = std::vector<std::string>;

inline void showGoodFace(Observation& observation) {
  observation.liveFace = platform::CGRect{200, 300, 300, 400};
  if (observation.task.mode != VideoCaptureMode::selfieCapture) return;
  observation.selfie.emplace().verdict = engine::SelfieVerdict::good;
  observation.selfie->selfie = corvana::Selfie{};
}

inline std::function<void(Observation&)> showCard(corvana::DocumentSide side) {
  return [side](Observation& observation) {
    showGoodFace(observation);
    if (observation.task.mode != VideoCaptureMode::idCapture) return;
    observation.document.emplace().verdict = engine::CardVerdict::found;
    auto& data = observation.document->reading.emplace();
    data.type = "IDENTITY_CARD";
    data.side = side;
    data.ocrStrings = {"TEXT"};
  };
}

inline std::function<void(Observation&)> faceLostFor(int milliseconds) {
  return [=](Observation& o) { o.liveFaceLostFor = std::chrono::milliseconds(milliseconds); };
}

/// Everything a recorder needs, on a virtual clock; the test is its delegate.
class RecorderTest : public testing::Test,
                     public corvana::VideoCaptureDelegate,
                     public engine::RecorderObserver {
 protected:
  RecorderTest() { recorder->setDelegate(delegate); }
  /// Order and pace of all that is reported is the contract's matter.
  void TearDown() override { EXPECT_EQ(contract.breaches(), Names{}); }

  /// Frames at 30 a second for so long.
  void film(double seconds) {
    for (int i = 0; i < static_cast<int>(seconds * 30); ++i) {
      auto frame = std::make_shared<platform::CMSampleBuffer>();
      frame->presentationTime = loop.now();
      recorder->capturedVideo(frame);
      loop.advance(std::chrono::nanoseconds(33'333'333));
    }
  }
  long countHeard(const std::string& name) const { return std::ranges::count(heard, name); }

  void update(const corvana::SelfieCaptureState& s) override {
    heard.push_back(nameOf(s));
    if (const auto* issue = std::get_if<corvana::SelfieCaptureState::DetectedIssue>(&s.value)) {
      issues.push_back(issue->message);
    }
  }
  void update(const corvana::IDCaptureState& s) override { heard.push_back(nameOf(s)); }
  void foundLiveFace(const std::optional<platform::CGRect>& face, const platform::CGSize&,
                     VideoCaptureMode) override {
    if (!face) heard.push_back("liveFaceLost");
  }
  void happened(const engine::RecorderEvent& event) override {
    using Kind = engine::RecorderEvent::Kind;
    if (event.kind == Kind::hint) return hints.push_back(event.name);
    if (event.kind > Kind::call) return noted.push_back(event.name);
    // Both enumerations name their first four kinds alike, in this order.
    contract.observe({loop.now(), static_cast<devices::HostEvent::Kind>(event.kind), event.name});
  }

  platform::VirtualRunLoop loop;
  platform::NotificationCenter notificationCenter;
  platform::SeededRandom randomness{0};
  devices::HostContractValidator contract{
      {engine::selfieTimeOut(corvana::SelfieCapture::options),
       platform::seconds(corvana::IDCapture::options.timeOutSeconds)},
      loop.now()};
  Names heard;
  Names hints;
  Names issues;
  Names noted;  ///< of liveness
  const std::shared_ptr<RecorderTest> delegate{this, [](auto*) {}};
  const ScratchFolder folder;
  FakeFilms films;
  const std::shared_ptr<FakeAnalyzer> analyzer = std::make_shared<FakeAnalyzer>();
  std::vector<platform::Fault> faults;
  engine::FilmSettings filmSettings{
      folder.path(), true, {}, {}, [this](const auto& fault) { faults.push_back(fault); }};
  const std::shared_ptr<engine::Film> openFilm = *engine::Film::make(loop, films, filmSettings);
  static constexpr platform::CGRect kOval{60, 100, 240, 320};
  static constexpr platform::CGRect kCard{20, 400, 320, 202};
  std::shared_ptr<engine::Recorder> recorder = engine::Recorder::make({loop,
                                                                       notificationCenter,
                                                                       randomness,
                                                                       analyzer,
                                                                       nullptr,
                                                                       openFilm,
                                                                       {},
                                                                       kOval,
                                                                       kCard,
                                                                       {360, 640},
                                                                       this});
};

}  // namespace corvana::tests
