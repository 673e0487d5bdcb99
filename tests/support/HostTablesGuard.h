#pragma once

#include "corvana/HostTables.h"

namespace corvana::tests {

/// Gives the host's static tables back as they were, whatever a test wrote into them.
class HostTablesGuard {
 public:
  HostTablesGuard() = default;
  ~HostTablesGuard() { hostTables() = before_; }
  HostTablesGuard(const HostTablesGuard&) = delete;
  HostTablesGuard& operator=(const HostTablesGuard&) = delete;

 private:
  decltype(valuesOf(hostTables())) before_ = valuesOf(hostTables());
};

}  // namespace corvana::tests
