#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/recorder/RecorderObserver.h"

namespace corvana::app {

/// What the host itself judges by, for `VideoCapture::options.isDebugMode`: a line for each sign of
/// life, of fraud or of the person, and for each task, as it was last told, with figure and limit.
/// Main queue.
class DebugFigures final : public engine::RecorderObserver {
 public:
  /// Shows lines in place of those before.
  using Show = std::function<void(const std::string& lines)>;

  explicit DebugFigures(Show show) : show_(std::move(show)) {}

  void happened(const engine::RecorderEvent& event) override;

 private:
  struct Figure {
    std::string name;
    std::string line;
  };

  void keep(const std::string& name, std::string line);

  const Show show_;
  std::vector<Figure> figures_;  ///< in the order in which the run first told of them
};

}  // namespace corvana::app
