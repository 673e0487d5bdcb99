#include <gtest/gtest.h>

#include "engine/redaction/ShownHeads.h"

namespace corvana::engine {
namespace {

using std::chrono::milliseconds;

/// A second of pictures at 30 a second, a close look at every third.
std::vector<HeadSighting> second() {
  std::vector<HeadSighting> all;
  for (int i = 0; i < 30; ++i) {
    HeadSighting sighting;
    sighting.time = platform::TimePoint(milliseconds(33 * i));
    sighting.face = platform::CGRect{100.0 + i, 100, 50, 50};
    sighting.isClose = i % 3 == 0;
    all.push_back(sighting);
  }
  return all;
}

TEST(ShownHeads, ShowNoHeadThatTheNextPicturesDoNotShow) {
  auto all = second();
  all[10].face.reset();
  for (const auto& [index, shown] :
       {std::pair{7, true}, {8, false}, {9, false}, {10, false}, {12, false}, {13, true}}) {
    EXPECT_EQ(!shownPartsAt(all, index).faces.empty(), shown) << index;
  }
  EXPECT_EQ(shownPartsAt(all, 20).faces.size(), 5U) << "what moves is shown where it stays";
}

TEST(ShownHeads, CoverWhatACloseLookFoundAlsoBetweenTheLooks) {
  auto all = second();
  const Quad found{{{{1, 1}, {9, 1}, {9, 5}, {1, 5}}}};
  all[12].print = {found};
  all[12].card = found;
  for (int i = 0; i < 30; ++i) {
    const ShownParts parts = shownPartsAt(all, i);
    const bool isNear = i >= 6 && i <= 18;
    EXPECT_EQ(!parts.covered.empty(), isNear) << i;
    EXPECT_EQ(!parts.cards.empty(), isNear) << i;
  }
}

TEST(ShownHeads, ShowNothingNearAFurtherFace) {
  auto all = second();
  all[12].isCrowded = true;
  for (const auto& [index, shown] : {std::pair{5, true}, {6, false}, {18, false}, {19, true}})
    EXPECT_EQ(!shownPartsAt(all, index).faces.empty(), shown) << index;
}

TEST(ShownHeads, ShowNothingWhereNobodyLookedClosely) {
  auto all = second();
  for (HeadSighting& sighting : all)
    sighting.isClose = false;
  all[0].isClose = true;
  EXPECT_FALSE(shownPartsAt(all, 6).faces.empty());
  EXPECT_TRUE(shownPartsAt(all, 7).faces.empty());
}

}  // namespace
}  // namespace corvana::engine
