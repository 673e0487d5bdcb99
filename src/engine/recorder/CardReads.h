#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "engine/document/DocumentAnalyzer.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::engine {

/// Has cards read beside the looks at them: a reading takes as long as several looks. One at a
/// time.
class CardReads {
 public:
  /// What was seen of a card in one picture, and what earlier pictures told of it.
  struct Order {
    CardView card;
    CardMemory memory;
  };
  struct Result {
    Order order;  ///< with all that is known now in its memory
    CardReading reading;
  };

  /// Reads on the queue. The analyzer's reader is nobody else's.
  CardReads(std::shared_ptr<DocumentAnalyzer> documents,
            std::shared_ptr<platform::WorkQueue> queue);

  bool isBusy() const;
  /// Begins to read; only when not busy.
  void start(Order order);
  /// What was read since, once.
  std::optional<Result> take();
  /// Forgets what was read and what is being read: it is of a card that has left its place.
  void drop();

 private:
  /// What looks and the outcomes of readings share.
  struct Desk {
    std::mutex mutex;
    bool isBusy = false;
    bool isWanted = false;
    std::optional<Result> done;
  };
  std::shared_ptr<DocumentAnalyzer> documents_;
  std::shared_ptr<platform::WorkQueue> queue_;
  std::shared_ptr<Desk> desk_ = std::make_shared<Desk>();
};

}  // namespace corvana::engine
