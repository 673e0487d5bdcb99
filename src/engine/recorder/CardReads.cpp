#include "engine/recorder/CardReads.h"

#include <utility>

namespace corvana::engine {

CardReads::CardReads(std::shared_ptr<DocumentAnalyzer> documents,
                     std::shared_ptr<platform::WorkQueue> queue)
    : documents_(std::move(documents)), queue_(std::move(queue)) {}

bool CardReads::isBusy() const {
  const std::lock_guard lock(desk_->mutex);
  return desk_->isBusy;
}

void CardReads::start(Order order) {
  {
    const std::lock_guard lock(desk_->mutex);
    desk_->isBusy = true;
    desk_->isWanted = true;
    desk_->done.reset();
  }
  const auto result = std::make_shared<Result>(Result{std::move(order), {}});
  queue_->async([documents = documents_, desk = desk_, result] {
    result->reading = documents->read(result->order.card, result->order.memory);
    return [desk, result] {
      const std::lock_guard lock(desk->mutex);
      desk->isBusy = false;
      if (desk->isWanted) desk->done = std::move(*result);
    };
  });
}

std::optional<CardReads::Result> CardReads::take() {
  const std::lock_guard lock(desk_->mutex);
  return std::exchange(desk_->done, std::nullopt);
}

void CardReads::drop() {
  const std::lock_guard lock(desk_->mutex);
  desk_->isWanted = false;
  desk_->done.reset();
}

}  // namespace corvana::engine
