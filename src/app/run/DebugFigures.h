#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/recorder/RecorderObserver.h"

namespace corvana::app {

/// What the host itself judges by, for `VideoCapture::options.isDebugMode`: a line for each sign of
/// life, of fraud or of the person, and for each task, as it was last told, with figure and limit.
/// Passes everything on. Main queue.
class DebugFigures final : public engine::RecorderObserver {
 public:
  /// Shows lines in place of those before.
  using Show = std::function<void(const std::string& lines)>;

  DebugFigures(engine::RecorderObserver& next, Show show) : next_(next), show_(std::move(show)) {}

  void happened(const engine::RecorderEvent& event) override;
  void selfieTaken(const corvana::Selfie& selfie) override { next_.selfieTaken(selfie); }
  void cardRead(const corvana::DetectedData& side) override { next_.cardRead(side); }

 private:
  struct Figure {
    std::string name;
    std::string line;
  };

  void keep(const std::string& name, std::string line);

  engine::RecorderObserver& next_;
  const Show show_;
  std::vector<Figure> figures_;  ///< in the order in which the run first told of them
};

}  // namespace corvana::app
