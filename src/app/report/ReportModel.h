#pragma once

#include <nlohmann/json.hpp>

#include "app/report/ReportWords.h"
#include "app/report/RunFolder.h"

namespace corvana::app {

/// All that a report's page shows, under the names that its template asks for. The same record
/// gives the same page.
nlohmann::json makeReportModel(const RunFolder& run, const ReportWords& words, bool hasKeys);

}  // namespace corvana::app
