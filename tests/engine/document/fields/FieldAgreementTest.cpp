#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/document/fields/DocumentFields.h"
#include "engine/document/fields/FieldAgreement.h"
#include "engine/document/fields/Transliteration.h"
#include "engine/document/mrz/MrzParser.h"

namespace corvana::tests {
namespace {

using corvana::DocumentField;
using corvana::FieldAgreement;
using corvana::FieldName;
using corvana::FieldSource;
using engine::CalendarDate;

CalendarDate day(const char* iso) {
  return *engine::calendarDate(iso);
}

DocumentField field(FieldName name, const std::string& value, FieldSource source,
                    float confidence = 0.95F) {
  return {name, value, source, confidence, false, std::nullopt};
}

TEST(Transliteration, FollowsTheTableOfZones) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"Müller", "MUELLER", "MULLER"},
      {"Ærøskøbing Þór", "AEROESKOEBING THOR", "AEROSKOBING THOR"},
      {"Groß-Weiß", "GROSS WEISS", "GROSS WEISS"},
      {"Ångström", "AANGSTROEM", "ANGSTROM"},
      {"O'Brien", "OBRIEN", "OBRIEN"},
      {"Łukasz Żółć", "LUKASZ ZOLC", "LUKASZ ZOLC"},
      {"Muñoz", "MUNOZ", "MUNOZ"},
      {"Đorđe İnce ışık", "DORDE INCE ISIK", "DORDE INCE ISIK"}};
  for (const auto& [text, zone, plain] : cases) {
    EXPECT_EQ(engine::zoneLetters(text), zone);
    EXPECT_EQ(engine::plainLetters(text), plain);
  }
  EXPECT_EQ(engine::zoneLetters("Mu\xCC\x88ller"), "MUELLER") << "in two code points";
  EXPECT_EQ(engine::letterSkeleton("MÜLLER"), engine::letterSkeleton("MULLER"));
  EXPECT_EQ(engine::letterSkeleton("MÜLLER"), engine::letterSkeleton("MUELLER"));
}

TEST(ZoneFields, SettleTwoDigitYearsByTheDay) {
  auto zone = *engine::parseMrz(std::vector<std::string>{"I<UTOD231458907<<<<<<<<<<<<<<<",
                                                         "7408122F1204159UTO<<<<<<<<<<<6",
                                                         "ERIKSSON<<ANNA<MARIA<<<<<<<<<<"});
  const std::tuple<const char*, const char*, const char*, const char*, const char*> cases[] = {
      {"740812", "120415", "2026-11-22", "1974-08-12", "2012-04-15"},
      {"261121", "351130", "2026-11-22", "2026-11-21", "2035-11-30"},
      {"261123", "351130", "2026-11-22", "1926-11-23", "2035-11-30"},
      {"8404<<", "991231", "1998-01-01", "1984-04", "1999-12-31"},
      {"84<<<<", "010101", "1998-01-01", "1984", "2001-01-01"},
      {"<<<<<<", "010101", "1998-01-01", "", "2001-01-01"},
  };
  for (const auto& [birth, expiry, today, born, until] : cases) {
    zone.birthDate = birth;
    zone.expiryDate = expiry;
    std::map<FieldName, std::string> values;
    for (const auto& f : engine::zoneFields(zone, day(today)))
      values[f.name] = f.value;
    EXPECT_EQ(values[FieldName::birthDate], born) << birth;
    EXPECT_EQ(values[FieldName::expiryDate], until) << expiry;
    EXPECT_EQ(values[FieldName::documentNumber], "D23145890");
    EXPECT_EQ(values[FieldName::sex], "F");
  }
}

struct AgreementCase {
  const char* what;
  FieldName name;
  std::string recorded;
  std::optional<std::string> labelled;
  std::vector<std::string> lines;
  FieldAgreement agreement;
};

constexpr auto kAgrees = FieldAgreement::agrees;
constexpr auto kConflicts = FieldAgreement::conflicts;
constexpr auto kUnread = FieldAgreement::unread;

const AgreementCase kAgreementCases[] = {
    {"umlauts written out", FieldName::surname, "MUELLER", "MÜLLER", {}, kAgrees},
    {"umlauts that the reader lost", FieldName::surname, "MUELLER", "MULLER", {}, kAgrees},
    {"rare letters taken for others", FieldName::surname, "GUEMUESOGLU", "GÜMÜşOČLU", {}, kAgrees},
    {"the same without a label", FieldName::surname, "CAGLAYAN", {}, {"1 ÇAČLAYAN"}, kAgrees},
    {"a thorn taken for a P", FieldName::givenNames, "THORDIS", "PÓRDÍS", {"PÓRDÍS"}, kUnread},
    {"another number beside a date that agrees",
     FieldName::documentNumber,
     "GX2685785",
     {},
     {"GX8685785 09/11/2028"},
     kConflicts},
    {"another birth in one line with an expiry that agrees",
     FieldName::birthDate,
     "1984-08-12",
     {},
     {"12.08.1994 09.11.2028"},
     kConflicts},
    {"an expiry that is near the birth",
     FieldName::birthDate,
     "2008-11-09",
     {},
     {"09.11.2028"},
     kUnread},
    {"another surname in one line with given names that agree",
     FieldName::surname,
     "ERIKSSON",
     {},
     {"ANNA MARIA ERIKSSUN"},
     kConflicts},
    {"given names that are near the surname",
     FieldName::surname,
     "MARIO ANA",
     {},
     {"ANNA MARIA"},
     kUnread},
    {"letters with a dot below", FieldName::surname, "EZEANIMGBAFO", "EZEAN!MGBAFQ", {}, kUnread},
    {"one at the end, which the line has lost",
     FieldName::surname,
     "EZEANI",
     "EZEAN!",
     {"EZEAN"},
     kUnread},
    {"a ligature taken for an E", FieldName::surname, "DUBOEUF", {}, {"DUBEUF"}, kUnread},
    {"a letter that is no thorn", FieldName::givenNames, "TORDIS", "PÓRDÍS", {}, kConflicts},
    {"hyphens", FieldName::surname, "SMITH JONES", "Smith-Jones", {}, kAgrees},
    {"another name", FieldName::surname, "ERIKSSON", "ERIKSEN", {}, kConflicts},
    {"fewer given names", FieldName::givenNames, "ANNA MARIA", "Anna", {}, kAgrees},
    {"another given name", FieldName::givenNames, "ANNA MARIA", "Anna Marta", {}, kConflicts},
    {"a number with blanks and a letter for a digit",
     FieldName::documentNumber,
     "D23145890",
     "D2314589O",
     {},
     kAgrees},
    {"a number with its check digit",
     FieldName::documentNumber,
     "D23145890",
     "D231458907",
     {},
     kAgrees},
    {"another number", FieldName::documentNumber, "D23145890", "D23145891", {}, kConflicts},
    {"a 6 for a G", FieldName::documentNumber, "2847126G", "284712GG", {}, kConflicts},
    {"an L for a 1 without a label",
     FieldName::documentNumber,
     "D23145891",
     {},
     {"D2314589L"},
     kConflicts},
    {"a 1 that was read as a small letter",
     FieldName::documentNumber,
     "D23145891",
     "D2314589l",
     {},
     kAgrees},
    {"a date of which the zone leaves the day open",
     FieldName::birthDate,
     "1984-04",
     "1984-04-12",
     {},
     kAgrees},
    {"another date", FieldName::birthDate, "1984-08-12", "1984-03-12", {}, kConflicts},
    {"another sex", FieldName::sex, "F", "M", {}, kConflicts},
    {"a nationality in words", FieldName::nationality, "UTO", "UTOPIAN", {}, kAgrees},
    {"a nationality in other words", FieldName::nationality, "GBR", "BRITISH CITIZEN", {}, kUnread},
    {"another state's code", FieldName::nationality, "UTO", "FRA", {}, kConflicts},
    {"authorities are written in many ways",
     FieldName::authority,
     "UTO",
     "City of Zenith",
     {},
     kUnread},
    {"nothing printed", FieldName::surname, "ERIKSSON", {}, {"UTOPIA IDENTITY CARD"}, kUnread},
    {"a name without a label", FieldName::surname, "ERIKSSON", {}, {"1 ERIKSSON"}, kAgrees},
    {"nearly the name without a label",
     FieldName::surname,
     "ERIKSSON",
     {},
     {"ERIKSSUN"},
     kConflicts},
    {"nearly the number without a label",
     FieldName::documentNumber,
     "D23145890",
     {},
     {"D23145880 15.04.2032"},
     kConflicts},
    {"a birth without a label",
     FieldName::birthDate,
     "1984-08-12",
     {},
     {"UTOPIAN 12.08.1984"},
     kAgrees},
    {"a birth turned about", FieldName::birthDate, "1984-08-12", {}, {"08/12/1984"}, kAgrees},
    {"another birth without a label",
     FieldName::birthDate,
     "1984-08-12",
     {},
     {"12.08.1994"},
     kConflicts},
    {"an issue ten years before", FieldName::expiryDate, "2032-04-15", {}, {"15.04.2022"}, kUnread},
    {"a label that took its neighbour",
     FieldName::surname,
     "ERIKSSON",
     "ANNA MARIA",
     {"ERIKSSON"},
     kAgrees},
};

TEST(FieldAgreement, SetsPrintAgainstARecord) {
  for (const AgreementCase& c : kAgreementCases) {
    engine::Print print;
    print.lines = c.lines;
    if (c.labelled) print.fields.push_back(field(c.name, *c.labelled, FieldSource::print));
    std::vector<DocumentField> record{field(c.name, c.recorded, FieldSource::zone)};
    if (c.name == FieldName::surname)
      record.push_back(field(FieldName::givenNames, "ANNA MARIA", FieldSource::zone));
    if (c.name == FieldName::documentNumber || c.name == FieldName::birthDate)
      record.push_back(field(FieldName::expiryDate, "2028-11-09", FieldSource::zone));
    EXPECT_EQ(engine::checkPrint(print, record).front().agreement, c.agreement) << c.what;
  }
}

TEST(FieldAgreement, HonoursTruncationAndDoubt) {
  DocumentField cut = field(FieldName::givenNames, "MARIA MAGDALENA ELI", FieldSource::zone);
  cut.isTruncated = true;
  engine::Print print;
  print.fields = {field(FieldName::givenNames, "Maria Magdalena Elisabeth", FieldSource::print)};
  EXPECT_EQ(engine::checkPrint(print, {cut}).front().agreement, kAgrees);
  cut.isTruncated = false;
  EXPECT_EQ(engine::checkPrint(print, {cut}).front().agreement, kConflicts);
  print.fields.front().confidence = 0.5F;
  EXPECT_EQ(engine::checkPrint(print, {cut}).front().agreement, kUnread) << "too faint to accuse";
}

TEST(FieldAgreement, AccusesNobodyOfALetterThatTheReaderDoubts) {
  struct Case {
    const char* what;
    FieldName name;
    const char* recorded;
    const char* printed;
    std::vector<std::string> doubtful;
    FieldAgreement agreement;
  };
  const Case cases[] = {
      {"the recorded letter is possible",
       FieldName::givenNames,
       "IEUAN",
       "leuan",
       {"Ieuan"},
       kUnread},
      {"beside a label",
       FieldName::documentNumber,
       "U3950734K",
       "U3950784K",
       {"Nr U3950734K", "Nr U3950134K"},
       kUnread},
      {"a date", FieldName::birthDate, "1984-08-12", "1984-08-17", {"12.08.1984"}, kUnread},
      {"the reader is sure", FieldName::givenNames, "IEUAN", "Euan", {}, kConflicts},
      {"another letter is possible than the recorded one",
       FieldName::documentNumber,
       "U3950734K",
       "U3950784K",
       {"U3950784X", "U3950184K"},
       kConflicts},
      {"an agreement stays one", FieldName::givenNames, "IEUAN", "IEUAN", {"leuan"}, kAgrees}};
  for (const Case& c : cases) {
    for (const bool hasLabel : {true, false}) {
      engine::Print print;
      print.lines = {c.name == FieldName::birthDate ? "17.08.1984" : c.printed};
      if (hasLabel) print.fields = {field(c.name, c.printed, FieldSource::print)};
      print.doubtfulLines = c.doubtful;
      const auto check =
          engine::checkPrint(print, {field(c.name, c.recorded, FieldSource::zone)}).front();
      EXPECT_EQ(check.agreement, c.agreement) << c.what << hasLabel;
      EXPECT_EQ(check.isDoubtful, c.agreement == kUnread) << c.what << hasLabel;
      EXPECT_FALSE(check.isDoubtful && check.place) << c.what;
    }
  }
}

TEST(FieldAgreement, TakesNoScrapOfALineForANumber) {
  engine::Print print;
  print.lines = {"Zenbakia / Número", "10 M K", "IRQ"};
  const auto record = {field(FieldName::documentNumber, "U3950734K", FieldSource::zone)};
  EXPECT_EQ(engine::checkPrint(print, record).front().agreement, kUnread);
}

TEST(FieldAgreement, TellsAnotherExpiryFromTheIssueOnItsDay) {
  struct Case {
    const char* what;
    std::optional<std::string> labelledIssue;
    std::vector<std::string> lines;
    FieldAgreement agreement;
  };
  const Case cases[] = {
      {"the issue alone", "2014-07-01", {"01.07.2014"}, kUnread},
      {"another year than the issue's", "2014-07-01", {"01.07.2014", "01.07.2022"}, kConflicts},
      {"a year before the issue's", "2014-07-01", {"01.07.2014", "01.07.2004"}, kConflicts},
      {"no label, the issue alone", {}, {"01.07.2014"}, kUnread},
      {"no label, two years of which the later is none of an issue",
       {},
       {"01.07.2014", "01.07.2022"},
       kConflicts},
      {"no label, both in one line", {}, {"01.07.2014 - 01.07.2022"}, kConflicts},
      {"no label, after the expiry", {}, {"01.07.2029"}, kConflicts},
      {"the expiry is there too", {}, {"01.07.2014", "01.07.2029", "01.07.2024"}, kAgrees},
      {"an issue on whose day and month it can't be told", "2014-01-07", {"07.01.2014"}, kUnread},
      {"far from the expiry", {}, {"01.07.2014", "23.11.2029"}, kUnread}};
  const std::vector<DocumentField> record{
      field(FieldName::expiryDate, "2024-07-01", FieldSource::zone)};
  for (const Case& c : cases) {
    engine::Print print;
    print.lines = c.lines;
    if (c.labelledIssue)
      print.fields = {field(FieldName::issueDate, *c.labelledIssue, FieldSource::print)};
    EXPECT_EQ(engine::checkPrint(print, record).front().agreement, c.agreement) << c.what;
  }
}

TEST(FieldAgreement, ComparesAFrontWithTheRecordOfItsBack) {
  corvana::DetectedData front;
  front.ocrStrings = {"ERIKSSON", "ANNA MARIA", "UTOPIAN 12.08.1984"};
  corvana::DetectedData back;
  back.ocrStrings = {"I<UTOX<<", "MEIER<<JANE"};
  back.fields = {field(FieldName::surname, "ERIKSSON", FieldSource::zone),
                 field(FieldName::birthDate, "1984-08-13", FieldSource::zone)};
  const auto checks = engine::checkSides({&front, &back});
  ASSERT_EQ(checks.size(), 2U);
  EXPECT_EQ(checks[0].agreement, kAgrees);
  EXPECT_EQ(checks[1].agreement, kConflicts);
}

TEST(CheckDates, TellsExpiredNotYetValidAndUnderAge) {
  struct Case {
    const char* today;
    const char* birth;
    const char* issue;
    const char* expiry;
    int leastAge;
    std::string findings;
  };
  const Case cases[] = {
      {"2026-11-22", "1984-08-12", "2022-04-15", "2032-04-15", 18, ""},
      {"2032-04-15", "1984-08-12", "2022-04-15", "2032-04-15", 0, ""},
      {"2032-04-16", "1984-08-12", "2022-04-15", "2032-04-15", 0, "expired "},
      {"2022-04-14", "1984-08-12", "2022-04-15", "2032-04-15", 0, "notYetValid "},
      {"2026-11-22", "2008-11-23", "2022-04-15", "2032-04-15", 18, "underAge "},
      {"2026-11-22", "2008-11-22", "2022-04-15", "2032-04-15", 18, ""},
      {"2026-11-22", "2008-11", "2022-04-15", "2032-04-15", 18, "underAge "},
      {"2026-02-28", "2008-02-29", "2022-04-15", "2032-04-15", 18, "underAge "},
      {"2026-03-01", "2008-02-29", "2022-04-15", "2032-04-15", 18, ""},
      {"2026-03-01", "2020-02-29", "2022-04-15", "2032-04-15", 0, ""},
  };
  for (const Case& c : cases) {
    const std::vector<DocumentField> fields{
        field(FieldName::expiryDate, "1999-01-01", FieldSource::print),
        field(FieldName::birthDate, c.birth, FieldSource::zone),
        field(FieldName::issueDate, c.issue, FieldSource::print),
        field(FieldName::expiryDate, c.expiry, FieldSource::zone)};
    std::string findings;
    for (const auto finding : engine::checkDates(fields, day(c.today), c.leastAge))
      findings += std::string(engine::nameOf(finding)) + " ";
    EXPECT_EQ(findings, c.findings) << c.today << " " << c.birth;
  }
}

}  // namespace
}  // namespace corvana::tests
