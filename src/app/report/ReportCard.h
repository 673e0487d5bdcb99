#pragma once

#include <nlohmann/json.hpp>

#include "app/report/ReportCourse.h"
#include "app/report/RunFolder.h"

/// What was read: aloud, and on the card.
namespace corvana::app {

/// The text with the words that were heard; false where it was not kept.
nlohmann::json readingModel(const RunFolder& run, const ReportWords& words);
/// A list: the print of each side and the zone, in the film and captured earlier, with what
/// differs.
nlohmann::json sidesModel(const RunFolder& run, const ReportWords& words);
/// A list: how the print of each field stands to zone or code.
nlohmann::json fieldsModel(const RunFolder& run, const RunCourse& course, const ReportWords& words);
/// A list: where each field was known from, in the film and in what was captured earlier.
nlohmann::json originsModel(const RunFolder& run, const ReportWords& words);

}  // namespace corvana::app
