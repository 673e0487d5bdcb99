#include <any>

#include "FlowTest.h"
#include "corvana/Notifications.h"

namespace corvana::tests {
namespace {

using platform::CGRect;
using platform::CGSize;
using Info = std::map<std::string, std::any>;

class DebugOverlays : public FlowTest {
 protected:
  DebugOverlays() { enter(); }

  void post(const char* name, Info info) {
    world.notificationCenter.post({name, std::make_shared<const Info>(std::move(info))});
  }
  void postSelfie(Info info = {}) { post(corvana::kSelfieCaptureDebugData, std::move(info)); }
  void postCard(const corvana::DebugData& data) {
    post(corvana::kIDCaptureDebugData, {{"debugData", data}});
  }
  bool shows(const char* stack) { return !world.view(stack).isHidden(); }
  std::vector<platform::CAShapeLayer*> shapes() {
    std::vector<platform::CAShapeLayer*> found;
    for (const auto& layer : world.view("captureLabel").root().layer().sublayers()) {
      if (auto* shape = dynamic_cast<platform::CAShapeLayer*>(layer.get())) found.push_back(shape);
    }
    return found;
  }

  const Info faceInfo{{"faceRect", CGRect{100, 200, 60, 80}}, {"fullSize", CGSize{720, 1280}},
                      {"faceLivenessScore", 0.75F},           {"leftEyeOpenProbability", 1.0F},
                      {"rightEyeOpenProbability", 0.5},  // not single precision: skipped
                      {"faceMaskProbability", 0.1F}};
  corvana::DebugData cardInfo{CGSize{720, 720}, CGRect{0, 0, 720, 360}, {}, {}, {}};
};

TEST_F(DebugOverlays, ShowTheFacesNumbersAndOneOutline) {
  postSelfie(faceInfo);
  postSelfie(faceInfo);
  EXPECT_TRUE(shows("selfieDebugStackView"));
  EXPECT_EQ(world.text("rightEyeOpenProbabilityLabel"), "");
  ASSERT_EQ(shapes().size(), 1u);
  EXPECT_EQ(shapes()[0]->pathRect, (CGRect{50, 100, 30, 40})) << "not mirrored";
  EXPECT_EQ(shapes()[0]->strokeColor, platform::colors::kYellow);
  EXPECT_EQ(shapes()[0]->fillColor, platform::colors::kClear);
  EXPECT_EQ(shapes()[0]->path, platform::CAShapeLayer::Path::rectangle);
  EXPECT_EQ(shapes()[0]->lineWidth, 2);
  world.advance(0.5);
  postSelfie();  // nothing measured: what is shown stays, for a second more
  world.advance(0.5);
  world.notificationCenter.post({corvana::kSelfieCaptureDebugData, nullptr});
  EXPECT_EQ(shapes().size(), 1u);
  world.advance(0.49);
  EXPECT_TRUE(shows("selfieDebugStackView"));
  world.advance(0.01);
  EXPECT_FALSE(shows("selfieDebugStackView"));
  EXPECT_TRUE(shapes().empty());
  postSelfie();
  EXPECT_TRUE(shows("selfieDebugStackView"));
  EXPECT_TRUE(shapes().empty());
}

TEST_F(DebugOverlays, ShowTheCardsNumbersAndOutlines) {
  cardInfo.faceLocation = CGRect{72, 72, 72, 72};
  cardInfo.realnessScores = corvana::RealnessScores{0.25F, 1, 0};
  cardInfo.topClassifierResults = {{"ID", 0.5F}, {"PASS", 0.25F}};
  postCard(cardInfo);
  EXPECT_TRUE(shows("idDebugStackView"));
  ASSERT_EQ(shapes().size(), 2u);
  EXPECT_EQ(shapes()[0]->pathRect, (CGRect{0, 140, 360, 180})) << "the whole picture is fitted in";
  EXPECT_EQ(shapes()[1]->pathRect, (CGRect{36, 176, 36, 36}));
  EXPECT_EQ(shapes()[1]->strokeColor, platform::colors::kPurple);

  cardInfo.topClassifierResults.emplace();
  cardInfo.realnessScores.reset();
  cardInfo.faceLocation.reset();
  postCard(cardInfo);
  EXPECT_EQ(world.text("topMatchesLabel"), "Top Matches:");
  EXPECT_EQ(world.text("realnessScoresLabel").substr(0, 9), "Photocopy") << "left as it was";
  EXPECT_EQ(shapes().size(), 1u);
}

TEST_F(DebugOverlays, AreQuietWhileABarcodeIsScannedOrNothingIsMeasured) {
  postCard({});
  post(corvana::kIDCaptureDebugData, {{"debugData", 1}});
  post(corvana::kIDCaptureMode, {{"captureMode", CaptureMode::barcode}});
  EXPECT_EQ(world.host.captureSession()->captureMode(), CaptureMode::barcode);
  post(corvana::kIDCaptureMode, {{"captureMode", "high"}});
  EXPECT_EQ(world.host.captureSession()->captureMode(), CaptureMode::barcode);
  postCard(cardInfo);
  EXPECT_FALSE(shows("idDebugStackView"));
  EXPECT_TRUE(shapes().empty());
  selfie(Face::Failed{});
  world.advance(1);
  postSelfie(faceInfo);
  EXPECT_FALSE(shows("selfieDebugStackView")) << "under the retry screen nobody listens";
}

}  // namespace
}  // namespace corvana::tests
