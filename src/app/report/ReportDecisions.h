#pragma once

#include <nlohmann/json.hpp>

#include "app/report/ReportCourse.h"
#include "app/report/RunFolder.h"

namespace corvana::app {

/// A list: each comparison by its last outcome, in the order of the flow, with value, limit, the
/// distance between them, the moment in the film and the pair of pictures.
nlohmann::json decisionsModel(const RunFolder& run, const RunCourse& course,
                              const ReportWords& words);

}  // namespace corvana::app
