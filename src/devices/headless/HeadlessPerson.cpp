#include "devices/headless/HeadlessPerson.h"

#include <algorithm>
#include <string>
#include <utility>

#include "corvana/OutletNames.h"
#include "devices/screen/ViewSearch.h"
#include "platform/uikit/Controls.h"
#include "platform/uikit/UIViewController.h"

namespace corvana::devices {
namespace {

using platform::UIButton;

constexpr auto kSecondTry = std::chrono::seconds(1);

}  // namespace

void HeadlessPerson::after(platform::Duration delay, platform::Block block) {
  loop_.mainQueue().asyncAfter(delay, std::move(block));
}

void HeadlessPerson::didPresent(platform::UIViewController& controller) {
  if (!appeared_) appeared_ = loop_.now();
  if (auto* alert = dynamic_cast<platform::UIAlertController*>(&controller)) {
    answerAlert(*alert);
  } else if (findView<UIButton>(shownBy(controller).view(), outlets::kRetryButton)) {
    answerRetryScreen(shownBy(controller));
  }
}

void HeadlessPerson::answerAlert(platform::UIAlertController& alert) {
  after(habits_.reactionTime, [weak = alert.weak_from_this()] {
    const auto shown = std::dynamic_pointer_cast<platform::UIAlertController>(weak.lock());
    if (shown) shown->choose(0);
  });
}

void HeadlessPerson::answerRetryScreen(platform::UIViewController& screen) {
  const bool again =
      habits_.onRetry == PersonHabits::OnRetry::retry && retries_ < habits_.maxRetries;
  if (again) ++retries_;
  after(habits_.reactionTime, [weak = screen.weak_from_this(), again] {
    const auto shown = weak.lock();
    if (!shown) return;
    auto* button =
        findView<UIButton>(shown->view(), again ? outlets::kRetryButton : outlets::kCancelButton);
    if (button) button->touchUpInside();
  });
}

std::optional<platform::Duration> HeadlessPerson::delayOfDone() const {
  if (!habits_.doneAt || !appeared_) return habits_.doneAfter;
  return std::max(*appeared_ + *habits_.doneAt - loop_.now(), platform::Duration::zero());
}

void HeadlessPerson::viewChanged(platform::UIView& view, const char* property) {
  const std::string_view what = property;
  const auto delay = delayOfDone();
  if (!delay || (what != "alpha" && what != "hidden")) return;
  auto* button = findView<UIButton>(view.root(), outlets::kDoneButton);
  if (!button || std::exchange(seesDone_, isInSight(*button)) == isInSight(*button)) return;
  ++sighting_;
  if (!seesDone_) return;
  after(*delay, [this, weak = button->weak_from_this(), sighting = sighting_] {
    touchDone(weak, sighting);
  });
}

void HeadlessPerson::touchDone(const std::weak_ptr<platform::UIView>& button, int sighting) {
  const auto shown = std::dynamic_pointer_cast<UIButton>(button.lock());
  if (!shown || sighting != sighting_) return;
  // Something lies over the button at the moment, as an alert.
  if (!shown->touchUpInside()) {
    after(kSecondTry, [this, button, sighting] { touchDone(button, sighting); });
  }
}

}  // namespace corvana::devices
