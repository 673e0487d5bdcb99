#pragma once

#include <vector>

#include "app/machine/MachineCheck.h"
#include "app/run/Resources.h"
#include "platform/foundation/Fault.h"

namespace corvana::app {

/// Measures for some seconds how fast this machine encodes a film, searches a picture for faces and
/// reads a card, each against what a live run needs. Each finding names both figures; the cure of a
/// slow one is the option that asks less of the machine. The error says what could not be tried.
platform::Expected<std::vector<Finding>> measureMachine(const Resources& resources);

}  // namespace corvana::app
