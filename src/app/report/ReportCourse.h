#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/report/ReportWords.h"

/// What happened when, as a report shows it.
namespace corvana::app {

/// The last run of a flow: what came before it was retried is in no film that is left.
class RunCourse {
 public:
  /// `filmSeconds`: the film's length, 0 where it is not known.
  RunCourse(const std::vector<nlohmann::json>& events, double filmSeconds);

  /// Its events, the oldest first.
  const std::vector<nlohmann::json>& events() const { return events_; }
  /// The last one of that kind and name; null where there is none.
  const nlohmann::json* last(const char* event, const std::string& name) const;
  /// The moment of an event in the film, in seconds.
  double inFilm(const nlohmann::json& event) const;
  double filmSeconds() const { return filmSeconds_; }

  /// The stretches of the film in which a face, a card, a voice was looked for.
  nlohmann::json phases(const ReportWords& words) const;
  /// The moments that a reviewer wants to see. Those of one instant are one.
  nlohmann::json marks(const ReportWords& words) const;

 private:
  std::vector<nlohmann::json> events_;
  double origin_ = 0;  ///< when the film began, in the time of the events
  double filmSeconds_ = 0;
};

/// 0:04.4
std::string clockTime(double seconds);
/// For a page's data, with a point.
std::string plainNumber(double value);

}  // namespace corvana::app
