#pragma once

#include <memory>

#include "platform/foundation/RunLoop.h"

namespace devices {

class Loudspeaker;

/// A short tone from the machine's loudspeaker; silence where there is none. Main queue.
class TonePlayer {
 public:
  explicit TonePlayer(platform::RunLoop& loop);

  /// Returns at once; ends a tone that is under way.
  void play();

 private:
  platform::RunLoop& loop_;
  std::shared_ptr<Loudspeaker> loudspeaker_;
};

}  // namespace devices
