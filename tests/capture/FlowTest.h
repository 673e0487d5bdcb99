#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "capture/ControllerFactories.h"
#include "capture/Corvana+VideoCapture.h"
#include "capture/VideoCaptureViewController.h"
#include "corvana/Decision.h"
#include "support/TestImages.h"
#include "support/TestWorld.h"

namespace corvana::tests {

using corvana::CaptureMode;
using corvana::DetectedData;
using corvana::DocumentSide;
using corvana::IDCapture;
using corvana::IDCaptureState;
using corvana::IDError;
using corvana::SelfieCapture;
using corvana::SelfieCaptureState;
using corvana::VideoCapture;
using corvana::VideoCaptureMode;

/// Drives the module through its entry: a world, a reference card, and the steps of a person who
/// does everything right.
class FlowTest : public testing::Test, protected corvana::DecisionObserver {
 protected:
  using ID = IDCaptureState;
  using Face = SelfieCaptureState;
  using Result = tl::expected<capture::VideoIdResult, IDError>;

  static constexpr int kHolder = 0;
  static constexpr int kStranger = 1;

  FlowTest() {
    world.factories = capture::controllerFactories(world.host, this);
    front.type = "IDENTITY_CARD_FRONT";
    front.side = DocumentSide::front;
    front.ocrStrings = {{"MARTA", "EXEMPLAR"}};
    front.faceImage = faceImage(kHolder);
    back.type = "IDENTITY_CARD_BACK";
    back.side = DocumentSide::back;
    back.ocrStrings = {{"HARBOUR", "LANE 7"}};
    back.mrz.emplace().lines = {"I<UTO1", "8001", "EXEMPLAR"};
  }

  /// A running countdown holds its screen: it has to run out before the world may go.
  ~FlowTest() override {
    world.root->dismiss(false);
    world.advance(1000);
  }

  void enter() {
    capture::videoIDCapture(*world.root, front, oneSided ? std::nullopt : std::optional(back), text,
                            [this](const Result& result) { results.push_back(result); });
    world.advance(1);
  }

  void selfie(Face::Value state) {
    world.recorder().report(Face{std::move(state)});
    world.advance(0);
  }
  void card(ID::Value state) {
    world.recorder().report(ID{std::move(state)});
    world.advance(0);
  }
  void showFace(int person) {
    shownFace = faceImage(person);
    selfie(Face::Success{{.image = shownFace, .faceImage = shownFace}});
  }
  void showSide(const DetectedData& side) {
    card(ID::ClassifiedDocument{side});
    card(ID::Success{side});
  }
  void hear(const std::string& transcript) {
    world.speech().hear(transcript);
    world.advance(0);
  }

  void passSelfie() { showFace(kHolder), world.advance(0.5); }
  void passFront() { showSide(front), world.advance(2); }
  void passBack() { showSide(back), world.advance(0.5); }
  /// From the entry, or the answer of a retry screen, to the text being read.
  void reachReading() {
    passSelfie();
    passFront();
    if (!oneSided) passBack();
  }
  void readAndFinish() {
    hear(text);
    world.tap("doneButton");
    world.advance(1);
  }
  void expectAccepted() {
    ASSERT_EQ(results.size(), 1u);
    ASSERT_TRUE(results[0]) << results[0].error().localizedDescription();
  }
  VideoCaptureMode mode() { return world.recorder().mode(); }
  void decided(const corvana::Decision& decision) override { decisions.push_back(decision); }

  TestWorld world;
  DetectedData front;
  DetectedData back;
  bool oneSided = false;
  std::string text = "Seven grey herons";
  platform::UIImageRef shownFace;  ///< last
  std::vector<Result> results;
  std::vector<corvana::Decision> decisions;
};

}  // namespace corvana::tests
