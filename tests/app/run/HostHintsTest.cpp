#include <gtest/gtest.h>

#include "app/run/HostHints.h"
#include "corvana/SelfieCapture.h"
#include "engine/recorder/StateEvents.h"

namespace corvana::tests {
namespace {

using engine::CardFlaw;
using engine::FaceFlaw;
using engine::RecorderEvent;

TEST(HostHints, HaveWordsForWhateverIsWrongWithCardOrFaceAndNoneWhenItIsOver) {
  std::vector<std::string> shown;
  app::HostHints hints([&](const std::string& words) { shown.push_back(words); });
  for (const CardFlaw flaw :
       {CardFlaw::tooDark, CardFlaw::blurred, CardFlaw::covered, CardFlaw::copy}) {
    hints.happened(eventOf(engine::FlawFound{flaw}));
    EXPECT_NE(shown.back(), "") << nameOf(flaw);
  }
  for (const FaceFlaw flaw : {FaceFlaw::tooFar, FaceFlaw::tooDark, FaceFlaw::hidden,
                              FaceFlaw::turnedAway, FaceFlaw::blurred, FaceFlaw::outOfSight}) {
    hints.happened(eventOf(engine::FaceFlawFound{flaw}));
    EXPECT_NE(shown.back(), "") << nameOf(flaw);
  }
  EXPECT_EQ(shown[7], corvana::SelfieCapture::strings.lookStraight);
  hints.happened({RecorderEvent::Kind::hint, "none", {}});
  EXPECT_EQ(shown.back(), "");
  EXPECT_EQ(shown.size(), 11U);
}

}  // namespace
}  // namespace corvana::tests
