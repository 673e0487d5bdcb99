#include "app/run/FlowLoop.h"

#include "devices/system/RealRunLoop.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::app {

std::unique_ptr<platform::DrivenLoop> makeLoop(TimeKind kind) {
  if (kind == TimeKind::real) return std::make_unique<devices::RealRunLoop>();
  return std::make_unique<platform::VirtualRunLoop>(std::make_unique<devices::RealRunLoop>());
}

}  // namespace corvana::app
