#pragma once

#include <ostream>

#include <nlohmann/json.hpp>

#include "app/recheck/Recheck.h"

namespace corvana::app {

/// docs/recheck.schema.json gives its shape.
nlohmann::ordered_json reportToJson(const RecheckReport& report);

/// The whole report for a reader.
void printReport(std::ostream& out, const RecheckReport& report);

/// The report in one line, for one run among many.
void printSummary(std::ostream& out, const RecheckReport& report);

}  // namespace corvana::app
