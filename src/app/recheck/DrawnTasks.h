#pragma once

#include <cstdint>
#include <optional>

#include "app/recheck/RunEvents.h"

namespace corvana::app {

/// A seed by which a flow draws the tasks that this attempt had; absent when it had none.
std::optional<std::uint32_t> seedOfTasks(const RunEvents& events);

}  // namespace corvana::app
