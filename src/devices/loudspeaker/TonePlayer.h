#pragma once

#include <memory>

#include "platform/foundation/RunLoop.h"

namespace corvana::devices {

class Loudspeaker;

/// A short tone from the machine's loudspeaker; silence where there is none. Main queue.
class TonePlayer {
 public:
  explicit TonePlayer(platform::RunLoop& loop);

  /// Plays the tone, in place of one that is under way, and returns at once.
  void play();

 private:
  platform::RunLoop& loop_;
  std::shared_ptr<Loudspeaker> loudspeaker_;
};

}  // namespace corvana::devices
