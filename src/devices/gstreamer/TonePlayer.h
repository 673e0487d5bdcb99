#pragma once

#include <memory>

#include "platform/foundation/RunLoop.h"

namespace devices {

/// A short tone from the machine's loudspeaker; silence where there is none. Main queue.
class TonePlayer {
 public:
  explicit TonePlayer(platform::RunLoop& loop);
  ~TonePlayer();

  /// Returns at once; ends a tone that is under way.
  void play();

 private:
  class Voice;

  platform::RunLoop& loop_;
  std::shared_ptr<Voice> voice_;
};

}  // namespace devices
