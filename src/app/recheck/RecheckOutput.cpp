#include "app/recheck/RecheckOutput.h"

#include <array>
#include <cstdio>
#include <iomanip>

namespace corvana::app {
namespace {

using nlohmann::ordered_json;

constexpr const char* kNone = "-";

std::string rounded(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.4g", value);
  return text.data();
}

std::string described(const std::optional<Judgement>& judgement) {
  if (!judgement) return kNone;
  if (!judgement->word.empty()) return judgement->word;
  std::string text = judgement->value ? rounded(*judgement->value) : "";
  if (!judgement->passed) return text;
  if (!text.empty()) text += " ";
  return text + (*judgement->passed ? "passed" : "failed");
}

std::string limitOf(const ComparedJudgement& compared) {
  const auto& limit = compared.rechecked ? compared.rechecked->limit : compared.recorded->limit;
  return limit ? rounded(*limit) : kNone;
}

ordered_json judgementToJson(const std::optional<Judgement>& judgement) {
  if (!judgement) return nullptr;
  ordered_json object = ordered_json::object();
  if (judgement->value) object["value"] = *judgement->value;
  if (judgement->limit) object["limit"] = *judgement->limit;
  if (judgement->passed) object["passed"] = *judgement->passed;
  if (!judgement->word.empty()) object["found"] = judgement->word;
  return object;
}

ordered_json judgementsToJson(const RecheckReport& report) {
  auto list = ordered_json::array();
  for (const ComparedJudgement& compared : report.judgements) {
    list.push_back({{"phase", compared.either().phase},
                    {"name", compared.either().name},
                    {"recorded", judgementToJson(compared.recorded)},
                    {"rechecked", judgementToJson(compared.rechecked)},
                    {"stand", nameOf(compared.stand)}});
  }
  return list;
}

void printRow(std::ostream& out, const std::array<std::string, 6>& cells) {
  static constexpr std::array<int, 5> kWidths{15, 14, 18, 18, 8};
  for (std::size_t i = 0; i < kWidths.size(); ++i)
    out << std::left << std::setw(kWidths[i]) << cells[i] << ' ';
  out << cells.back() << '\n';
}

void printList(std::ostream& out, const char* title, const std::vector<std::string>& lines) {
  if (lines.empty()) return;
  out << title << '\n';
  for (const std::string& line : lines)
    out << "  " << line << '\n';
}

std::string describedEnding(const std::string& ending) {
  return ending.empty() ? "something that no film shows" : ending;
}

}  // namespace

ordered_json reportToJson(const RecheckReport& report) {
  return {{"run", report.folder.string()},
          {"agrees", report.agrees()},
          {"trusted", report.isTrusted},
          {"filmSeconds", report.filmSeconds},
          {"ending", {{"recorded", report.recordedEnding}, {"rechecked", report.recheckedEnding}}},
          {"judgements", judgementsToJson(report)},
          {"contradictions", report.contradictions},
          {"notes", report.notes},
          {"notRechecked", report.notRechecked}};
}

void printReport(std::ostream& out, const RecheckReport& report) {
  out << report.folder.string() << (report.agrees() ? ": agrees\n" : ": differs\n");
  out << "ended with " << describedEnding(report.recordedEnding) << " when it was recorded, with "
      << report.recheckedEnding << " now\n\n";
  printRow(out, {"phase", "judgement", "recorded", "rechecked", "limit", ""});
  for (const ComparedJudgement& compared : report.judgements) {
    printRow(out, {compared.either().phase, compared.either().name, described(compared.recorded),
                   described(compared.rechecked), limitOf(compared), nameOf(compared.stand)});
  }
  out << '\n';
  printList(out, "Contradictions:", report.contradictions);
  printList(out, "Notes:", report.notes);
  printList(out, "Not rechecked:", report.notRechecked);
}

void printSummary(std::ostream& out, const RecheckReport& report) {
  out << report.folder.string() << (report.agrees() ? ": agrees" : ": differs");
  const bool endsAlike =
      report.recordedEnding.empty() || report.recordedEnding == report.recheckedEnding;
  if (!endsAlike) {
    out << "; ended with " << report.recordedEnding << ", now with " << report.recheckedEnding;
  }
  for (const ComparedJudgement& compared : report.judgements) {
    if (compared.stand != Stand::turned) continue;
    out << "; " << compared.either().name << " " << described(compared.recorded) << ", now "
        << described(compared.rechecked);
  }
  for (const std::string& contradiction : report.contradictions)
    out << "; " << contradiction;
  out << '\n';
}

}  // namespace corvana::app
