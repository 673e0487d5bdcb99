#include "engine/recorder/LateFrameAnalyzer.h"

#include <utility>

namespace corvana::engine {

std::shared_ptr<LateFrameAnalyzer> LateFrameAnalyzer::start(platform::RunLoop& loop, Load load) {
  std::shared_ptr<LateFrameAnalyzer> self(new LateFrameAnalyzer);
  loop.globalQueue(platform::QualityOfService::userInitiated)
      .async([&loop, self, load = std::move(load)] {
        auto loaded = load();
        if (loaded) {
          self->analyzer_ = std::move(*loaded);
          self->ready_ = true;
          return;
        }
        loop.mainQueue().async(
            [self, sentence = std::move(loaded.error())] { self->fault_ = {sentence}; });
      });
  return self;
}

}  // namespace corvana::engine
