#pragma once

#include <filesystem>
#include <string>

#include "app/report/ReportWords.h"
#include "app/report/RunFolder.h"

namespace corvana::app {

/// A page of HTML that needs nothing but itself and the film: no network, no other script and no
/// other style, and whatever the record says stays text. `filmSource` is the film's address for
/// the page. The error: the template in `resources` can't be used.
platform::Expected<std::string> makeReportPage(const RunFolder& run, const ReportWords& words,
                                               bool hasKeys, const std::string& filmSource,
                                               const std::filesystem::path& resources);

}  // namespace corvana::app
