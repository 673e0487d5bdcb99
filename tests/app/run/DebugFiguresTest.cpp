#include <gtest/gtest.h>

#include "app/run/DebugFigures.h"
#include "corvana/VideoCapture.h"
#include "engine/recorder/LivenessEvents.h"
#include "support/HostTablesGuard.h"

namespace corvana::tests {
namespace {

using engine::LivenessSign;
using engine::RecorderEvent;
using engine::TaskEvent;

TEST(DebugFigures, HaveTheLastOfEachSignAndTaskWithItsLimitInDebugModeAlone) {
  const HostTablesGuard tables;
  std::vector<std::string> shown;
  app::DebugFigures figures([&](const std::string& lines) { shown.push_back(lines); });
  const auto blink = [](double value, bool isSeen) {
    return eventOf(LivenessSign{"blink", LivenessSign::SpeaksFor::life, value, 0.91, isSeen});
  };
  figures.happened(blink(0.97, false));
  EXPECT_TRUE(shown.empty());

  corvana::VideoCapture::options.isDebugMode = true;
  figures.happened(blink(0.97, false));
  EXPECT_EQ(shown.back(), "blink: value 0.97, threshold 0.91, not seen");
  figures.happened(eventOf(TaskEvent{engine::LivenessTask::turnLeft, TaskEvent::Step::asked}));
  figures.happened(blink(0.8514, true));
  EXPECT_EQ(shown.back(), "blink: value 0.851, threshold 0.91, seen\nturnLeft: asked");
  figures.happened({RecorderEvent::Kind::liveness, "living", {{"evidence", std::string("blink")}}});
  EXPECT_EQ(shown.back(),
            "blink: value 0.851, threshold 0.91, seen\nturnLeft: asked\nlife: living: blink");

  figures.happened({RecorderEvent::Kind::call, "retry", {}});
  EXPECT_EQ(shown.back(), "") << "the next run is judged anew";
}

}  // namespace
}  // namespace corvana::tests
