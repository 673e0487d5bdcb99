#include "platform/foundation/RunLoop.h"

#include <utility>

namespace corvana::platform {
namespace {

/// Takes as long as it takes.
class SerialWork final : public WorkQueue {
 public:
  SerialWork(RunLoop& loop, std::shared_ptr<DispatchQueue> queue)
      : loop_(loop), queue_(std::move(queue)) {}

  void async(Work work) override {
    queue_->async([&loop = loop_, work = std::move(work)] {
      if (Block outcome = work()) loop.mainQueue().async(std::move(outcome));
    });
  }

 private:
  RunLoop& loop_;
  std::shared_ptr<DispatchQueue> queue_;
};

}  // namespace

std::shared_ptr<WorkQueue> RunLoop::makeWorkQueue(const std::string& label, QualityOfService qos,
                                                  Duration) {
  return std::make_shared<SerialWork>(*this, makeSerialQueue(label, qos));
}

}  // namespace corvana::platform
