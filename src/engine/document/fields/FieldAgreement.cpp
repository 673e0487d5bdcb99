#include "engine/document/fields/FieldAgreement.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

#include "engine/document/fields/EditDistance.h"
#include "engine/document/fields/Transliteration.h"
#include "engine/document/fields/ValueAgreement.h"
#include "engine/document/fields/ValueReader.h"
#include "engine/document/mrz/MrzLayout.h"

namespace corvana::engine {
namespace {

using corvana::DetectedData;
using corvana::DocumentField;
using corvana::FieldAgreement;
using corvana::FieldCheck;
using corvana::FieldName;
using corvana::FieldSource;

/// Print below it may be misread, which is no conflict.
constexpr float kClearPrint = 0.8F;
/// The confidence of a line that counts as sure.
constexpr float kSureLine = 0.8F;
/// Shorter names are found by chance.
constexpr std::size_t kLeastNearName = 4;
/// One letter in so many may differ in a value that is nearly the same.
constexpr std::size_t kLettersPerChange = 4;
constexpr std::size_t kMostChangedDigits = 2;

/// The dates of a line, read either way where day and month could be exchanged.
std::vector<std::string> datesNear(const std::string& line, const std::string& iso) {
  const auto around = calendarDate(iso);
  return around ? datesEitherWay(line, *around) : std::vector<std::string>();
}

/// Calls back with each run of a line's words until one pleases.
template <class Pleases>
bool anyRun(const std::string& line, bool toTheEnd, const Pleases& pleases) {
  const auto all = wordsBetweenBlanks(line);
  for (std::size_t first = 0; first < all.size(); ++first) {
    std::string run;
    for (std::size_t last = first; last < all.size(); ++last) {
      run += all[last];
      if ((!toTheEnd || last + 1 == all.size()) && pleases(run)) return true;
    }
  }
  return false;
}

bool holds(const std::string& line, const DocumentField& field) {
  if (isDate(field.name)) {
    const auto dates = datesNear(line, field.value);
    return std::ranges::find(dates, field.value) != dates.end();
  }
  const std::string wanted = skeletonOf(field.name, field.value);
  return !wanted.empty() && anyRun(line, false, [&](const std::string& run) {
    return skeletonOf(field.name, run) == wanted ||
           (isName(field.name) && isLikeWhereMarked(run, field.value));
  });
}

std::size_t changedDigits(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return std::max(a.size(), b.size());
  return std::inner_product(a.begin(), a.end(), b.begin(), std::size_t{0}, std::plus<>(),
                            std::not_equal_to<>());
}

std::string yearOf(const std::string& iso) {
  return iso.substr(0, 4);
}

bool isNearDate(const std::string& date, const DocumentField& field) {
  return changedDigits(date, field.value) <= kMostChangedDigits;
}

std::string withDayAndMonthExchanged(const std::string& iso) {
  return iso.size() == 10 ? iso.substr(0, 5) + iso.substr(8) + iso.substr(4, 3) : iso;
}

/// Whether words are nearly, but not quite, the number or name.
bool isNear(const std::string& run, const DocumentField& field) {
  const std::string wanted = skeletonOf(field.name, field.value);
  if (field.name == FieldName::documentNumber) {
    return wanted.size() >= kLeastNearNumber &&
           changedDigits(skeletonOf(field.name, run), wanted) <= kMostChangedDigits;
  }
  return isName(field.name) && !field.isTruncated && wanted.size() >= kLeastNearName &&
         !isMisread(run, field.value) &&
         editDistance(letterSkeleton(run), wanted) <=
             std::max<std::size_t>(1, wanted.size() / kLettersPerChange);
}

/// Sets one field of a record against the print.
class PrintCheck {
 public:
  PrintCheck(const Print& print, const std::vector<DocumentField>& record)
      : print_(print), record_(record) {}

  FieldCheck operator()(const DocumentField& field) const {
    const FieldCheck unread{field.name, field.source, FieldAgreement::unread, 0, false, {}};
    FieldCheck check = unread;
    for (const DocumentField& printed : print_.fields) {
      if (printed.name != field.name || isOthers(printed)) continue;
      const FieldAgreement agreement = agreementOf(printed.value, field);
      // Of rare letters taken for signs its line has lost those at its ends.
      if (agreement == FieldAgreement::unread) check.isDoubtful = isName(field.name);
      if (agreement == FieldAgreement::unread || check.agreement == FieldAgreement::agrees)
        continue;
      if (agreement == FieldAgreement::conflicts && printed.confidence < kClearPrint) continue;
      check.agreement = agreement;
      check.isDoubtful = false;
      check.confidence = std::min(printed.confidence, field.confidence);
      check.place = printed.place;
    }
    if (check.agreement != FieldAgreement::agrees && isSearched(field.name)) search(field, check);
    if (check.agreement == FieldAgreement::conflicts && mayHold(field)) {
      check = unread;
      check.isDoubtful = true;
    }
    return check;
  }

 private:
  /// A label may have been given its neighbour's value.
  bool isOthers(const DocumentField& printed) const {
    return std::ranges::any_of(record_, [&](const DocumentField& other) {
      return other.name != printed.name && isName(other.name) == isName(printed.name) &&
             isDate(other.name) == isDate(printed.name) && isSearched(other.name) &&
             agreementOf(printed.value, other) == FieldAgreement::agrees;
    });
  }

  bool mayHold(const DocumentField& field) const {
    return isSearched(field.name) &&
           std::ranges::any_of(print_.doubtfulLines,
                               [&](const std::string& line) { return holds(line, field); });
  }

  bool isTaken(const std::string& line, FieldName name) const {
    return std::ranges::any_of(record_, [&](const DocumentField& other) {
      return other.name != name && isSearched(other.name) && holds(line, other);
    });
  }

  bool isOthersDate(const std::string& date, FieldName name) const {
    return std::ranges::any_of(record_, [&](const DocumentField& other) {
      return other.name != name && isDate(other.name) &&
             (other.value == date || other.value == withDayAndMonthExchanged(date));
    });
  }

  /// A document expires on the day of the year on which it was issued, so that a date near its
  /// expiry is another expiry only where it can't be the issue: after the expiry, or in another
  /// year than the issue, which is the first such date where no label names it. Births are unlike
  /// all other dates.
  bool mayBeIssue(const std::string& date, const DocumentField& expiry) const {
    if (date > expiry.value) return false;
    const std::string issue = issueBefore(expiry);
    return issue.empty() || yearOf(date) == yearOf(issue);
  }

  /// Empty where no print may be the issue of what expires then.
  std::string issueBefore(const DocumentField& expiry) const {
    const auto named = std::ranges::find(print_.fields, FieldName::issueDate, &DocumentField::name);
    if (named != print_.fields.end()) return named->value;
    std::string first;
    for (const std::string& line : print_.lines) {
      for (const std::string& date : datesNear(line, expiry.value)) {
        const bool mayBe = isNearDate(date, expiry) && !isOthersDate(date, expiry.name);
        if (mayBe && (first.empty() || date < first)) first = date;
      }
    }
    return first;
  }

  /// Whether a line holds a value that is nearly, but not quite, this one. It may stand in one line
  /// with another field's value.
  bool nearlyHolds(const std::string& line, const DocumentField& field) const {
    const bool isExpiry = field.name == FieldName::expiryDate;
    if (isExpiry || field.name == FieldName::birthDate) {
      return std::ranges::any_of(datesNear(line, field.value), [&](const std::string& date) {
        return isNearDate(date, field) && !isOthersDate(date, field.name) &&
               !(isExpiry && mayBeIssue(date, field));
      });
    }
    return anyRun(line, isName(field.name), [&](const std::string& run) {
      return isNear(run, field) && !isTaken(run, field.name);
    });
  }

  void search(const DocumentField& field, FieldCheck& check) const {
    const auto found = [&](FieldAgreement agreement) {
      if (check.agreement != agreement) check.place = std::nullopt;
      check.isDoubtful = false;
      check.agreement = agreement;
      check.confidence = std::min(kSureLine, field.confidence);
    };
    const auto isHeld = [&](const std::string& line) { return holds(line, field); };
    const auto isNearlyHeld = [&](const std::string& line) { return nearlyHolds(line, field); };
    if (std::ranges::any_of(print_.lines, isHeld))
      found(FieldAgreement::agrees);
    else if (check.agreement == FieldAgreement::unread && !check.isDoubtful &&
             std::ranges::any_of(print_.lines, isNearlyHeld))
      found(FieldAgreement::conflicts);
  }

  const Print& print_;
  const std::vector<DocumentField>& record_;
};

/// The first value of a field, zone and code before print.
std::optional<std::string> valueOf(const std::vector<DocumentField>& fields, FieldName name) {
  std::optional<std::string> printed;
  for (const DocumentField& field : fields) {
    if (field.name != name) continue;
    if (field.source != FieldSource::print) return field.value;
    if (!printed) printed = field.value;
  }
  return printed;
}

/// The last day that a date with an open day or month may mean.
std::optional<CalendarDate> lastDay(const std::string& iso) {
  if (iso.size() == 10) return calendarDate(iso);
  const auto first = calendarDate(iso.size() == 7 ? iso + "-01" : iso + "-12-01");
  if (!first) return std::nullopt;
  return CalendarDate(
      std::chrono::year_month_day_last(first->year(), std::chrono::month_day_last(first->month())));
}

bool isUnderAge(const CalendarDate& birth, const CalendarDate& today, int leastAge) {
  const auto years = std::chrono::years(leastAge);
  // Who was born on a 29th of February comes of age on the 1st of March.
  CalendarDate grown = birth + years;
  if (!grown.ok()) grown = CalendarDate(std::chrono::sys_days(grown));
  return today < grown;
}

}  // namespace

std::vector<FieldCheck> checkPrint(const Print& print, const std::vector<DocumentField>& record) {
  const PrintCheck check(print, record);
  std::vector<FieldCheck> checks;
  for (const DocumentField& field : record)
    checks.push_back(check(field));
  return checks;
}

std::vector<FieldCheck> checkSides(const std::vector<const DetectedData*>& sides) {
  Print print;
  std::vector<DocumentField> record;
  for (const DetectedData* side : sides) {
    for (const DocumentField& field : side->fields.value_or(std::vector<DocumentField>()))
      (field.source == FieldSource::print ? print.fields : record).push_back(field);
    for (const std::string& line : side->ocrStrings.value_or(std::vector<std::string>())) {
      if (!isZoneLine(line)) print.lines.push_back(line);
    }
    print.doubtfulLines.insert(print.doubtfulLines.end(), side->doubtfulStrings.begin(),
                               side->doubtfulStrings.end());
  }
  return checkPrint(print, record);
}

const char* nameOf(DateFinding finding) {
  switch (finding) {
    case DateFinding::expired:
      return "expired";
    case DateFinding::notYetValid:
      return "notYetValid";
    case DateFinding::underAge:
      break;
  }
  return "underAge";
}

std::vector<DateFinding> checkDates(const std::vector<DocumentField>& fields,
                                    const CalendarDate& today, int leastAge) {
  const auto dateOf = [&](FieldName name) {
    const auto value = valueOf(fields, name);
    return value ? lastDay(*value) : std::nullopt;
  };
  std::vector<DateFinding> findings;
  const auto expiry = dateOf(FieldName::expiryDate);
  const auto issue = dateOf(FieldName::issueDate);
  const auto birth = dateOf(FieldName::birthDate);
  if (expiry && *expiry < today) findings.push_back(DateFinding::expired);
  if (issue && today < *issue) findings.push_back(DateFinding::notYetValid);
  if (birth && isUnderAge(*birth, today, leastAge)) findings.push_back(DateFinding::underAge);
  return findings;
}

}  // namespace corvana::engine
