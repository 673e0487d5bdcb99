#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "engine/selfie/Challenge.h"

namespace corvana::engine {
namespace {

using Phase = ChallengeJudge::Phase;
using Task = LivenessTask;

constexpr Challenge kTasks{Task::turnLeft, Task::comeNearer, Task::blinkTwice};

/// A head before the judge, ten looks a second. At rest it is held as people hold theirs: not quite
/// straight.
class Head {
 public:
  explicit Head(const Challenge& tasks = kTasks) : judge_(tasks, kLimits) {}

  struct Pose {
    double yaw = 0, pitch = 0, nearer = 1, lids = 1;
  };
  /// Holds a pose for so long, and notes what became of the tasks.
  Head& hold(double seconds, const Pose& pose) {
    for (int look = 0; look < static_cast<int>(seconds * 10 + 0.5); ++look)
      note(judge_.look(now_ += platform::seconds(0.1),
                       HeadLook{{3 + pose.yaw, 12 + pose.pitch, 0},
                                240 * pose.nearer,
                                {pose.lids, 0.3 * pose.lids, 0.3 * pose.lids, pose.lids}}));
    return *this;
  }
  Head& rest(double seconds) { return hold(seconds, {}); }
  Head& blink() { return hold(0.2, {.lids = 0.5}).rest(0.3); }
  Head& leave(double seconds) {
    for (int look = 0; look < static_cast<int>(seconds * 10 + 0.5); ++look)
      note(judge_.look(now_ += platform::seconds(0.1), {}));
    return *this;
  }
  Head& change() {
    note(judge_.interrupt(now_));
    return *this;
  }

  Phase phase() const { return judge_.phase(); }
  ChallengeJudge::WayBack wayBack() const { return judge_.wayBack(); }
  const std::string& told() const { return told_; }

 private:
  static constexpr ChallengeJudge::Limits kLimits{platform::seconds(5), 12, 8, 1.15, 0.91};

  void note(const std::optional<TaskEvent>& event) {
    static const std::map<TaskEvent::Step, std::string> kSigns{{TaskEvent::Step::asked, "?"},
                                                               {TaskEvent::Step::done, "+"},
                                                               {TaskEvent::Step::missed, "-"}};
    if (!event) return;
    told_ += (told_.empty() ? "" : " ") + std::string(nameOf(event->task)) + kSigns.at(event->step);
  }

  ChallengeJudge judge_;
  platform::TimePoint now_{};
  std::string told_;
};

TEST(Challenge, IsDoneByWhoDoesEachTaskInItsTurnAndComesBackBetween) {
  Head head;
  head.rest(1).hold(0.8, {.yaw = 16}).rest(1).hold(0.6, {.nearer = 1.25});
  head.hold(0.2, {.nearer = 1.12}).rest(1).blink().blink().rest(0.5);
  EXPECT_EQ(head.told(), "turnLeft? turnLeft+ comeNearer? comeNearer+ blinkTwice? blinkTwice+");
  EXPECT_EQ(head.phase(), Phase::done);
}

TEST(Challenge, TellsTheWayBackToRestAtOnceAndUntilThePersonIsThere) {
  using Way = ChallengeJudge::WayBack;
  Head head({Task::comeNearer, Task::turnLeft, Task::blinkTwice});
  head.rest(1).hold(0.2, {.nearer = 1.3});
  ASSERT_EQ(head.phase(), Phase::returning);
  EXPECT_EQ(head.wayBack(), Way::moveAway) << "in the look that ends the task";
  EXPECT_EQ(head.rest(0.2).wayBack(), Way::moveAway) << "no other words for a moment";
  head.rest(0.5).hold(0.2, {.yaw = 16});
  EXPECT_EQ(head.wayBack(), Way::lookStraight);
  head.rest(0.5).blink().blink();
  ASSERT_EQ(head.phase(), Phase::returning);
  EXPECT_EQ(head.wayBack(), Way::none) << "who blinked is at rest";

  Head mistaken({Task::turnLeft, Task::lookUp, Task::turnLeft});
  mistaken.rest(1).blink().blink();
  ASSERT_EQ(mistaken.phase(), Phase::returning);
  EXPECT_EQ(mistaken.wayBack(), Way::lookStraight) << "it is asked anew";
  Head tooNear({Task::turnLeft, Task::lookUp, Task::turnLeft});
  EXPECT_EQ(tooNear.rest(1).hold(0.2, {.nearer = 1.3}).wayBack(), Way::moveAway);
}

TEST(Challenge, TakesNoTaskForAnotherAndMissesOneAtMostOnce) {
  const Head::Pose left{.yaw = 20};
  const Head::Pose right{.yaw = -20};
  const Head::Pose up{.pitch = -13};
  const Head::Pose near{.nearer = 1.3};
  const Challenge tasks[] = {{Task::turnLeft, Task::lookUp, Task::turnLeft},
                             {Task::turnRight, Task::lookUp, Task::turnLeft},
                             {Task::lookUp, Task::turnLeft, Task::comeNearer},
                             {Task::comeNearer, Task::turnLeft, Task::lookUp},
                             {Task::blinkTwice, Task::turnLeft, Task::lookUp}};
  const Head::Pose all{.yaw = 20, .pitch = -13, .nearer = 1.3};
  const Head::Pose does[] = {left, right, up, near, all};
  for (std::size_t asked = 0; asked < std::size(tasks); ++asked)
    for (std::size_t done = 0; done < std::size(does); ++done) {
      Head head(tasks[asked]);
      head.rest(1).hold(0.5, does[done]).rest(0.5);
      const std::string name = nameOf(tasks[asked][0]);
      if (asked == done && done < 4) {
        EXPECT_EQ(head.told().substr(0, 2 * name.size() + 3), name + "? " + name + "+");
        continue;
      }
      EXPECT_EQ(head.told(), name + "? " + name + "- " + name + "?") << "did " << done;
      head.hold(0.5, does[done]);
      EXPECT_EQ(head.phase(), Phase::failed);
    }
}

TEST(Challenge, EachTaskHasItsTimeAndWhoIsReplacedMeanwhileStartsItAnew) {
  Head slow;
  slow.rest(6.5).hold(0.5, {.yaw = 16}).rest(1);
  EXPECT_EQ(slow.told(), "turnLeft? turnLeft- turnLeft? turnLeft+ comeNearer?");
  slow.leave(5.2);
  EXPECT_EQ(slow.phase(), Phase::failed) << "missed a second time";

  Head stuck;
  stuck.rest(1).hold(6, {.yaw = 16});
  EXPECT_EQ(stuck.told(), "turnLeft? turnLeft+ comeNearer-") << "it never came back to rest";

  Head replaced;
  replaced.rest(1).hold(0.5, {.yaw = 16}).change();
  EXPECT_EQ(replaced.told(), "turnLeft? turnLeft+ comeNearer-");
  replaced.change();
  EXPECT_EQ(replaced.phase(), Phase::failed);
}

TEST(Challenge, SingleBlinksAreNotAPairAndAPairCountsAtRestOnly) {
  Head head({Task::blinkTwice, Task::turnLeft, Task::blinkTwice});
  head.rest(1).blink().rest(2).blink().rest(1);
  EXPECT_EQ(head.told(), "blinkTwice?");
  head.blink().rest(0.5);
  EXPECT_EQ(head.told(), "blinkTwice? blinkTwice+ turnLeft?") << "the last two belong together";
  head.blink().rest(0.5).hold(0.2, {.yaw = 8, .lids = 0.5}).hold(0.4, {.yaw = 9});
  head.hold(0.4, {.yaw = 16});
  EXPECT_EQ(head.told().substr(head.told().size() - 9), "turnLeft+") << "it blinked as it turned";

  Head eager({Task::turnLeft, Task::blinkTwice, Task::turnLeft});
  eager.rest(1).blink().blink().rest(0.5).hold(0.4, {.yaw = 16});
  EXPECT_EQ(eager.told(), "turnLeft? turnLeft- turnLeft? turnLeft+") << "it did another task";

  Head asked({Task::blinkTwice, Task::turnLeft, Task::blinkTwice});
  asked.rest(1).blink().blink().hold(0.2, {.lids = 0.5}).rest(0.3);
  ASSERT_EQ(asked.told(), "blinkTwice? blinkTwice+ turnLeft?");
  asked.blink().rest(0.5);
  EXPECT_EQ(asked.told(), "blinkTwice? blinkTwice+ turnLeft?")
      << "the lids were down when it was asked for: that blink belongs to no pair";
}

std::vector<Challenge> allDraws() {
  constexpr Task kAll[] = {Task::turnLeft, Task::turnRight, Task::lookUp, Task::comeNearer,
                           Task::blinkTwice};
  std::vector<Challenge> draws;
  for (const Task first : kAll)
    for (const Task second : kAll)
      for (const Task third : kAll)
        if (first != second && second != third) draws.push_back({first, second, third});
  return draws;
}

TEST(Challenge, NoFilmOfFourMovementsFitsMoreThanFourDrawsHoweverOftenItBlinks) {
  for (const bool blinks : {false, true}) {
    int fits = 0;
    for (const Challenge& draw : allDraws()) {
      Head film(draw);
      film.rest(1);
      for (const Head::Pose& movement :
           {Head::Pose{.yaw = 16}, {.yaw = -16}, {.pitch = -12}, {.yaw = 16}}) {
        if (blinks) film.blink().blink();
        film.rest(0.5).hold(0.5, movement).rest(0.5);
      }
      fits += film.phase() == Phase::done ? 1 : 0;
    }
    EXPECT_EQ(fits, blinks ? 3 : 4);
  }
}

TEST(Challenge, WaitsForAHeadThatIsHeldStill) {
  Head head;
  for (int i = 0; i < 10; ++i)
    head.hold(0.2, {.yaw = i % 2 == 0 ? 9.0 : 0.0});
  EXPECT_EQ(head.told(), "");
  EXPECT_EQ(head.rest(1).told(), "turnLeft?");
}

TEST(Challenge, IsDrawnEvenlyAndNoTaskFollowsItself) {
  platform::SeededRandom random(7);
  std::map<Challenge, int> drawn;
  constexpr int kDraws = 8000;
  for (int i = 0; i < kDraws; ++i)
    ++drawn[drawChallenge(random)];
  EXPECT_EQ(drawn.size(), allDraws().size());
  EXPECT_EQ(drawn.size(), 80U);
  for (const auto& [tasks, count] : drawn) {
    EXPECT_NE(tasks[0], tasks[1]);
    EXPECT_NE(tasks[1], tasks[2]);
    EXPECT_NEAR(count, kDraws / 80, 50);
  }
  platform::SeededRandom one(3);
  platform::SeededRandom same(3);
  EXPECT_EQ(drawChallenge(one), drawChallenge(same));
}

}  // namespace
}  // namespace corvana::engine
