#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/document/fields/PrintedFields.h"

namespace corvana::tests {
namespace {

using corvana::FieldName;
using engine::TextLine;
using Values = std::map<FieldName, std::string>;

const engine::CalendarDate kToday{std::chrono::year(2026), std::chrono::month(3),
                                  std::chrono::day(1)};

/// Print at a place of the card; letters are half as wide as high.
TextLine at(double x, double y, const std::string& text, double height = 24) {
  TextLine line{text, {x, y, 0.5 * height * double(text.size()), height}, 0.95};
  const auto middle = [&](std::size_t letter) { return x + 0.5 * height * (double(letter) + 0.5); };
  for (std::size_t first = 0; first < text.size();) {
    const std::size_t end = std::min(text.find(' ', first), text.size());
    line.words.push_back({middle(first), middle(end - 1)});
    first = end + 1;
  }
  return line;
}

struct PrintedCard {
  const char* what;
  std::vector<TextLine> lines;
  Values values;
};

const PrintedCard kPrintedCards[] = {
    {"labels above values, in two languages, in columns",
     {at(300, 40, "BUNDESREPUBLIK DEUTSCHLAND"), at(300, 100, "Name/Surname/Nom", 14),
      at(300, 118, "MÜLLER"), at(300, 160, "Vornamen/Given names/Prénoms", 14),
      at(300, 178, "JÖRG PETER"), at(300, 220, "Geburtstag/Date of birth", 14),
      at(620, 220, "Staatsangehörigkeit/Nationality", 14), at(300, 238, "12.08.1984"),
      at(620, 238, "DEUTSCH"), at(300, 280, "Gültig bis/Date of expiry", 14),
      at(300, 298, "30.06.2031"), at(620, 60, "L01X00T47")},
     {{FieldName::surname, "MÜLLER"},
      {FieldName::givenNames, "JÖRG PETER"},
      {FieldName::birthDate, "1984-08-12"},
      {FieldName::nationality, "DEUTSCH"},
      {FieldName::expiryDate, "2031-06-30"}}},
    {"labels before values, on a line with them and beside them",
     {at(300, 100, "Surname: ERIKSSON"), at(300, 150, "Given name(s)", 18),
      at(480, 148, "ANNA MARIA"), at(300, 200, "Sex F"), at(480, 200, "Nationality UTOPIAN"),
      at(300, 250, "Document no. D23145890"), at(300, 300, "Date of issue 15 APR/AVR 22"),
      at(300, 350, "Expires"), at(480, 350, "15 APR 32"), at(300, 400, "Born"),
      at(480, 400, "1 MAY 31")},
     {{FieldName::surname, "ERIKSSON"},
      {FieldName::givenNames, "ANNA MARIA"},
      {FieldName::sex, "F"},
      {FieldName::nationality, "UTOPIAN"},
      {FieldName::documentNumber, "D23145890"},
      {FieldName::issueDate, "2022-04-15"},
      {FieldName::expiryDate, "2032-04-15"},
      {FieldName::birthDate, "1931-05-01"}}},
    {"labels of which one language is not known, misread or of no field; a month with a nought",
     {at(300, 40, "Goarggu / Etternawn / Nme", 14), at(300, 60, "ØDEGÅRD"),
      at(300, 100, "Etunimet x / Vomamen", 14), at(300, 120, "SÆTHER"),
      at(300, 160, "Datum / Date of issue", 14), at(300, 180, "17 0CT 2021"),
      at(600, 160, "Validity x / UTLØPSDAT0", 14), at(600, 180, "17/07/2031"),
      at(300, 220, "Passport no. / N\" du passeport", 14), at(300, 240, "VH5626077")},
     {{FieldName::surname, "ØDEGÅRD"},
      {FieldName::givenNames, "SÆTHER"},
      {FieldName::issueDate, "2021-10-17"},
      {FieldName::expiryDate, "2031-07-17"},
      {FieldName::documentNumber, "VH5626077"}}},
    {"dates whose blanks were not read, beside a number that could be one",
     {at(300, 40, "Date of birth", 14), at(300, 58, "07121986"), at(600, 40, "Date of issue", 14),
      at(600, 58, "14 082018"), at(300, 100, "Date of expiry", 14), at(300, 118, "1408 2028"),
      at(600, 100, "Document no.", 14), at(600, 118, "07121987")},
     {{FieldName::birthDate, "1986-12-07"},
      {FieldName::issueDate, "2018-08-14"},
      {FieldName::expiryDate, "2028-08-14"},
      {FieldName::documentNumber, "07121987"}}},
    {"two labels of surnames and none of given names",
     {at(300, 100, "Igama / Name", 14), at(300, 118, "ĊETTA"), at(300, 40, "Ifani / Surname", 14),
      at(300, 58, "BUĦAĠIAR")},
     {{FieldName::surname, "BUĦAĠIAR"}, {FieldName::givenNames, "ĊETTA"}}},
    {"a label of either name, whose fellow was not read",
     {at(300, 40, "MEIER"), at(300, 100, "Igama / Name", 14), at(300, 118, "ĊETTA"),
      at(300, 160, "Sex: F", 14)},
     {{FieldName::sex, "F"}}},
    {"a label of either name beside a word that is nearly a label",
     {at(300, 40, "Nomm / Name", 14), at(300, 58, "ČAUŠEVIĆ"), at(300, 118, "AMILA")},
     {}},
    {"two labels of either name",
     {at(300, 40, "Nom", 14), at(300, 58, "ÒDENA"), at(300, 100, "Noms", 14),
      at(300, 118, "MERCÈ")},
     {{FieldName::surname, "ÒDENA"}, {FieldName::givenNames, "MERCÈ"}}},
    {"a label of either name in one language and of the given names in the next",
     {at(300, 40, "MONTCORTÈS"), at(300, 100, "Noms I Prénoms / Given names", 14),
      at(300, 118, "ÒSCAR")},
     {{FieldName::givenNames, "ÒSCAR"}}},
    {"two surnames, each with its label, and given names whose label was not read",
     {at(300, 40, "Primer apellido", 14), at(300, 58, "NÚÑEZ"),
      at(300, 100, "Segundo apellido", 14), at(300, 118, "CARREÑO"), at(300, 178, "MARÍA")},
     {{FieldName::surname, "NÚÑEZ"}}},
    {"strokes that were read as letters or not at all",
     {at(300, 40, "Nimero I Numéro 1 Number", 14), at(300, 58, "L4012679"),
      at(300, 100, "Data d'expecició l Date of issue", 14), at(300, 118, "26.11.2025"),
      at(300, 160, "Valid fios al Date of expiry", 14), at(300, 178, "26.11.2030"),
      at(300, 220, "Born 1 MAY 1931")},
     {{FieldName::documentNumber, "L4012679"},
      {FieldName::issueDate, "2025-11-26"},
      {FieldName::expiryDate, "2030-11-26"},
      {FieldName::birthDate, "1931-05-01"}}},
    {"two labels in one line, above values of their own",
     {at(300, 100, "Uimhir an cheada / Permit number As feidhm / Valid until", 14),
      at(300, 122, "LY3755276"), at(531, 122, "22-12-2029")},
     {{FieldName::documentNumber, "LY3755276"}, {FieldName::expiryDate, "2029-12-22"}}},
    {"surname and given names side by side, labels and values each in one line",
     {at(300, 100, "Nom / Surname Given names", 14), at(300, 120, "LAURENT Y GIL ÉLODIE ZOÉ", 14)},
     {{FieldName::surname, "LAURENT Y GIL"}, {FieldName::givenNames, "ÉLODIE ZOÉ"}}},
    {"print below two labels of which it can't be told whose value it is",
     {at(300, 100, "Nom / Surname", 14), at(440, 100, "Given names", 14),
      at(300, 122, "LAURENTELODIE ZOEGIL"), at(300, 180, "Sex Date of birth", 14),
      at(300, 202, "F"), at(330, 202, "1 MAY 1931")},
     {{FieldName::sex, "F"}, {FieldName::birthDate, "1931-05-01"}}},
    {"labels of several words with a stroke and no blanks between them",
     {at(300, 100, "Příjmení/Surname", 14), at(300, 118, "ČÁPEK"),
      at(300, 160, "Jméno/Given names", 14), at(300, 178, "JIŘÍ ONDŘEJ"),
      at(300, 220, "Datum narození/Date of birth", 14), at(300, 238, "12 08 1984")},
     {{FieldName::surname, "ČÁPEK"},
      {FieldName::givenNames, "JIŘÍ ONDŘEJ"},
      {FieldName::birthDate, "1984-08-12"}}},
    {"labels in one language above those in another, in two columns",
     {at(300, 100, "Familienname", 14), at(302, 116, "Surname", 12), at(300, 132, "VON DER HÖHE"),
      at(300, 170, "Vornamen", 14), at(301, 186, "Given names", 12), at(300, 202, "ANNA SOPHIE"),
      at(300, 240, "Geburtsdatum", 14), at(700, 240, "Gültig bis", 14),
      at(303, 256, "Date of birth", 12), at(702, 256, "Date of expiry", 12),
      at(300, 272, "12 08 1984"), at(700, 272, "30 06 2031")},
     {{FieldName::surname, "VON DER HÖHE"},
      {FieldName::givenNames, "ANNA SOPHIE"},
      {FieldName::birthDate, "1984-08-12"},
      {FieldName::expiryDate, "2031-06-30"}}},
    {"short words of names behind a label that has a longer twin",
     {at(300, 100, "Efternavn Le Goñvel"), at(300, 150, "Fornavne Á Lei")},
     {{FieldName::surname, "Le Goñvel"}, {FieldName::givenNames, "Á Lei"}}},
    {"labels and values in one line",
     {at(300, 100, "Surname ERIKSSON Given names ANNA MARIA"),
      at(300, 150, "Sex: F Nationality: UTOPIAN Date of birth: 12.08.1984")},
     {{FieldName::surname, "ERIKSSON"},
      {FieldName::givenNames, "ANNA MARIA"},
      {FieldName::sex, "F"},
      {FieldName::nationality, "UTOPIAN"},
      {FieldName::birthDate, "1984-08-12"}}},
    {"names that are labels too, and labels of one field in two languages without a stroke",
     {at(300, 100, "Given names MAX BORN"), at(300, 150, "Date of birth Geburtsdatum", 14),
      at(300, 170, "11.12.1932"), at(300, 220, "Document number Date of issue", 14),
      at(300, 240, "D23145890"), at(420, 240, "15.04.2022")},
     {{FieldName::givenNames, "MAX BORN"},
      {FieldName::birthDate, "1932-12-11"},
      {FieldName::documentNumber, "D23145890"},
      {FieldName::issueDate, "2022-04-15"}}},
    {"one that is for the surname alone",
     {at(300, 40, "Name", 14), at(300, 58, "MEIER"), at(300, 100, "Vornamen", 14),
      at(300, 118, "UTE")},
     {{FieldName::surname, "MEIER"}, {FieldName::givenNames, "UTE"}}},
    {"a licence whose numbers tell the names apart",
     {at(300, 60, "PERMIS"), at(300, 100, "2 Nom: MERCÈ"), at(300, 140, "3. 12.08.64"),
      at(300, 180, "4b. 25.07.26")},
     {{FieldName::givenNames, "MERCÈ"},
      {FieldName::birthDate, "1964-08-12"},
      {FieldName::expiryDate, "2026-07-25"}}},
    {"a licence whose number stands under 4d and not under 5",
     {at(300, 40, "PERMIS DE CONDUIRE"), at(300, 100, "1 ÒDENA"), at(300, 140, "2 MERCÈ"),
      at(300, 180, "4d L9712-71662"), at(300, 220, "3 1982/10/10"), at(300, 260, "4b 2030/03/26"),
      at(300, 300, "15 F")},
     {{FieldName::surname, "ÒDENA"},
      {FieldName::givenNames, "MERCÈ"},
      {FieldName::documentNumber, "L971271662"},
      {FieldName::birthDate, "1982-10-10"},
      {FieldName::expiryDate, "2030-03-26"},
      {FieldName::sex, "F"}}},
    {"labels in one language of a small state",
     {at(300, 40, "Mbiemri", 14), at(300, 58, "HOXHALLARI"), at(300, 100, "Emri", 14),
      at(300, 118, "DRITA"), at(300, 160, "Datëlindja", 14), at(300, 178, "12.08.1984"),
      at(600, 40, "Data e lëshimit", 14), at(600, 58, "15.04.2022"),
      at(600, 100, "Data e skadimit", 14), at(600, 118, "14.04.2032"),
      at(600, 160, "Vendlindja", 14), at(600, 178, "SHKODËR")},
     {{FieldName::surname, "HOXHALLARI"},
      {FieldName::givenNames, "DRITA"},
      {FieldName::birthDate, "1984-08-12"},
      {FieldName::issueDate, "2022-04-15"},
      {FieldName::expiryDate, "2032-04-14"}}},
    {"labels in Irish, of which one may be either name",
     {at(300, 40, "Sloinne", 14), at(300, 58, "DE BÚRCA"), at(300, 100, "Ainm", 14),
      at(300, 118, "NIAMH"), at(600, 40, "Gnéas", 14), at(600, 58, "F"),
      at(600, 100, "Dáta éaga", 14), at(600, 118, "14.04.2032")},
     {{FieldName::surname, "DE BÚRCA"},
      {FieldName::givenNames, "NIAMH"},
      {FieldName::sex, "F"},
      {FieldName::expiryDate, "2032-04-14"}}},
    {"a label that is read badly before its number",
     {at(300, 40, "Nummar /Ngmuter V032XB724")},
     {{FieldName::documentNumber, "V032XB724"}}},
    {"a number that begins with letters",
     {at(300, 40, "Licence no. MORGA 657054 SM9IJ")},
     {{FieldName::documentNumber, "MORGA657054SM9IJ"}}},
    {"values that hold a stroke or look like a label",
     {at(300, 40, "Name: MEIER/SCHMIDT"), at(300, 100, "Vornamen", 14), at(300, 120, "NOMA"),
      at(300, 160, "Born / Née le 01/02/1980", 14)},
     {{FieldName::surname, "MEIER/SCHMIDT"},
      {FieldName::givenNames, "NOMA"},
      {FieldName::birthDate, "1980-02-01"}}},
    {"a European licence with its numbers",
     {at(300, 60, "FÜHRERSCHEIN"), at(300, 100, "1. Mustermann"), at(300, 140, "2. Erika"),
      at(300, 180, "3. 12.08.64 Berlin"), at(300, 220, "4a. 26.07.11"),
      at(620, 220, "4c. LRA Musterstadt"), at(300, 260, "4b. 25.07.26"),
      at(300, 300, "5. B072RRE2I55"), at(300, 340, "9. AM/B/L")},
     {{FieldName::surname, "Mustermann"},
      {FieldName::givenNames, "Erika"},
      {FieldName::birthDate, "1964-08-12"},
      {FieldName::issueDate, "2011-07-26"},
      {FieldName::expiryDate, "2026-07-25"},
      {FieldName::authority, "LRA Musterstadt"},
      {FieldName::documentNumber, "B072RRE2I55"}}},
    {"a licence of a state of the US, month before day",
     {at(300, 40, "DRIVER LICENSE"), at(300, 80, "4d DLN I1234562"),
      at(300, 120, "3 DOB 01/02/1990"), at(620, 120, "4b EXP 01/02/2030"),
      at(300, 160, "1 CARDHOLDER"), at(300, 200, "2 IMA"), at(300, 240, "8 2570 24TH STREET"),
      at(300, 270, "ANYTOWN, CA 95818"), at(300, 320, "15 SEX F"),
      at(300, 360, "5 DD 00/00/0000NNNAN/ANFD/YY"), at(620, 360, "4a ISS 03/04/2022")},
     {{FieldName::documentNumber, "I1234562"},
      {FieldName::birthDate, "1990-01-02"},
      {FieldName::expiryDate, "2030-01-02"},
      {FieldName::surname, "CARDHOLDER"},
      {FieldName::givenNames, "IMA"},
      {FieldName::address, "2570 24TH STREET, ANYTOWN, CA 95818"},
      {FieldName::sex, "F"},
      {FieldName::issueDate, "2022-03-04"}}},
    {"labels misread, without blanks, in a language of no list",
     {at(300, 100, "Sumname", 14), at(300, 118, "OKONKWO"), at(300, 160, "Dateofbirth", 14),
      at(300, 178, "12.08.1984"), at(300, 220, "Lejaro / Valid until", 14),
      at(300, 238, "01.07.2030")},
     {{FieldName::surname, "OKONKWO"},
      {FieldName::birthDate, "1984-08-12"},
      {FieldName::expiryDate, "2030-07-01"}}},
    {"what cannot be a value is none; numbers of houses are no fields' numbers",
     {at(300, 100, "Surname", 14), at(300, 118, "12.08.1984"), at(300, 160, "Date of birth", 14),
      at(300, 178, "ZENITH"), at(300, 240, "1 HARBOUR ROAD"), at(300, 280, "Sex", 14),
      at(300, 298, "M/F"), at(300, 340, "I<UTOD231458907<<<<<<<<<<<<<<<")},
     {}},
    {"nothing at all", {}, {}},
};

TEST(PrintedFields, AreFoundByTheirLabels) {
  const auto labels = engine::FieldLabels::load({ENGINE_RESOURCES "/documents/labels"});
  ASSERT_TRUE(labels) << labels.error().sentence;
  for (const PrintedCard& c : kPrintedCards) {
    Values values;
    for (const auto& field : engine::printedFields(c.lines, *labels, kToday)) {
      values[field.name] = field.value;
      EXPECT_EQ(field.source, corvana::FieldSource::print);
      EXPECT_TRUE(field.place);
    }
    EXPECT_EQ(values, c.values) << c.what;
  }
}

TEST(PrintedFields, ThatZoneOrCodeHaveForAnotherFieldAreThatOnes) {
  const auto labels = engine::FieldLabels::load({ENGINE_RESOURCES "/documents/labels"});
  ASSERT_TRUE(labels) << labels.error().sentence;
  const auto recorded = [](FieldName name, const char* value) {
    return corvana::DocumentField{name, value, corvana::FieldSource::zone, 1, false, std::nullopt};
  };
  const std::vector<corvana::DocumentField> record{
      recorded(FieldName::surname, "ODENA"), recorded(FieldName::givenNames, "MERCE"),
      recorded(FieldName::birthDate, "1982-10-10"), recorded(FieldName::expiryDate, "2030-03-26")};
  const PrintedCard cases[] = {
      {"a name under a label of either",
       {at(300, 100, "Nom", 14), at(300, 118, "MERCÈ")},
       {{FieldName::givenNames, "MERCÈ"}}},
      {"a name of nobody in the record, under a label of either",
       {at(300, 100, "Nom", 14), at(300, 118, "UTOPIA")},
       {}},
      {"values that stand nearer to their neighbour's label than to their own",
       {at(300, 100, "Surname", 14), at(300, 118, "MERCÈ"), at(300, 200, "Date of issue", 14),
        at(300, 218, "26.03.2030")},
       {{FieldName::givenNames, "MERCÈ"}, {FieldName::expiryDate, "2030-03-26"}}},
      {"what is printed otherwise than recorded stays where its label has it",
       {at(300, 100, "Surname", 14), at(300, 118, "MEIER"), at(300, 200, "Date of birth", 14),
        at(300, 218, "11.10.1982"), at(600, 200, "Date of issue", 14), at(600, 218, "26.03.2025")},
       {{FieldName::surname, "MEIER"},
        {FieldName::birthDate, "1982-10-11"},
        {FieldName::issueDate, "2025-03-26"}}}};
  for (const PrintedCard& c : cases) {
    Values values;
    for (const auto& field : engine::printedFields(c.lines, *labels, kToday, {}, record))
      values[field.name] = field.value;
    EXPECT_EQ(values, c.values) << c.what;
  }
}

TEST(PrintedFields, WithoutALabelThatIsReadAreKnownByZoneOrCode) {
  const auto labels = engine::FieldLabels::load({ENGINE_RESOURCES "/documents/labels"});
  ASSERT_TRUE(labels) << labels.error().sentence;
  const auto recorded = [](FieldName name, const char* value, bool isCut = false) {
    return corvana::DocumentField{name, value, corvana::FieldSource::zone, 1, isCut, std::nullopt};
  };
  const std::vector<corvana::DocumentField> record{recorded(FieldName::surname, "MUELLER OE"),
                                                   recorded(FieldName::givenNames, "ASE LI", true),
                                                   recorded(FieldName::documentNumber, "D23145890"),
                                                   recorded(FieldName::birthDate, "1982-10-10"),
                                                   recorded(FieldName::expiryDate, "2030-03-26"),
                                                   recorded(FieldName::authority, "UTO")};
  const PrintedCard cases[] = {
      {"alone in a line, with their marks, longer than there was room for",
       {at(300, 40, "Zvxwq", 14), at(300, 58, "MÜLLER ØE"), at(300, 118, "ÅSE LINNÉA"),
        at(300, 160, "D2314589O"), at(300, 200, "26.03.2030"), at(300, 240, "UTO")},
       {{FieldName::surname, "MÜLLER ØE"},
        {FieldName::givenNames, "ÅSE LINNÉA"},
        {FieldName::documentNumber, "D2314589O"},
        {FieldName::expiryDate, "2030-03-26"}}},
      {"behind a label of no list",
       {at(300, 40, "Zvxwq müller øe"), at(300, 100, "Zvxwq 10 OCT 1982")},
       {{FieldName::surname, "müller øe"}, {FieldName::birthDate, "1982-10-10"}}},
      {"a part of a name, another's name, and a zone's line are none",
       {at(300, 40, "MÜLLER"), at(300, 80, "MÜLLER ØE ZENITH"), at(300, 120, "D23145891"),
        at(300, 160, "MUELLER<OE<<ASE<LI")},
       {}},
      {"what a label names stays",
       {at(300, 40, "Surname", 14), at(300, 58, "SCHULZ"), at(300, 140, "MÜLLER ØE")},
       {{FieldName::surname, "SCHULZ"}}},
      {"but for a misread label, which is smaller",
       {at(300, 40, "Surname", 14), at(300, 58, "Civen pames", 14), at(300, 140, "MÜLLER ØE")},
       {{FieldName::surname, "MÜLLER ØE"}}},
      {"and for what stands below both names, under a label that was misread",
       {at(300, 40, "MÜLLER ØE"), at(300, 98, "ÅSE LINNÉA"), at(300, 138, "Surname", 14),
        at(300, 156, "UTOPIAN")},
       {{FieldName::surname, "MÜLLER ØE"}, {FieldName::givenNames, "ÅSE LINNÉA"}}},
      {"an issue in one line with the expiry, ten years before it",
       {at(300, 40, "26.03.2020 26.03.2030")},
       {{FieldName::issueDate, "2020-03-26"}, {FieldName::expiryDate, "2030-03-26"}}},
      {"an issue on the day after, behind other print, with its month first",
       {at(300, 40, "ZENITH 03/27/2025")},
       {{FieldName::issueDate, "2025-03-27"}}},
      {"of two that may be the issue neither is",
       {at(300, 40, "26.03.2020"), at(300, 80, "26.03.2027")},
       {}},
      {"nor is what lies too long before the expiry, after it, or on another day",
       {at(300, 40, "26.03.2014"), at(300, 80, "26.03.2031"), at(300, 120, "25.03.2020")},
       {}}};
  for (const PrintedCard& c : cases) {
    Values values;
    for (const auto& field : engine::printedFields(c.lines, *labels, kToday, {}, record)) {
      values[field.name] = field.value;
      EXPECT_EQ(field.knownBy.has_value(), field.value != "SCHULZ") << field.value;
    }
    EXPECT_EQ(values, c.values) << c.what;
  }
}

TEST(PrintedFields, OfTheSurnameStandAboveTheGivenNamesWhereNoLabelNamesThem) {
  const auto labels = engine::FieldLabels::load({ENGINE_RESOURCES "/documents/labels"});
  ASSERT_TRUE(labels) << labels.error().sentence;
  const auto recorded = [](FieldName name, const char* value) {
    return corvana::DocumentField{name, value, corvana::FieldSource::zone, 1, false, std::nullopt};
  };
  const std::vector<corvana::DocumentField> record{recorded(FieldName::surname, "OKONKWO EZE"),
                                                   recorded(FieldName::givenNames, "ADAEZE")};
  const TextLine given = at(300, 178, "ADAEZE");
  const TextLine label = at(300, 160, "Zvxwq hjk", 14);
  const Values another{{FieldName::surname, "MEIER"}, {FieldName::givenNames, "ADAEZE"}};
  const Values none{{FieldName::givenNames, "ADAEZE"}};
  const PrintedCard cases[] = {
      {"another surname", {at(300, 58, "UTOPIA"), at(305, 130, "MEIER"), label, given}, another},
      {"below a number", {at(300, 80, "D23145890"), at(300, 130, "MEIER"), given}, another},
      {"of other print", {at(300, 140, "MEIER", 14), given}, none},
      {"in small letters", {at(300, 130, "Meier"), given}, none},
      {"beside the column", {at(330, 130, "MEIER"), given}, none},
      {"too far above", {at(300, 90, "MEIER"), given}, none},
      {"a surname in two lines", {at(300, 94, "OKONKWO"), at(300, 130, "EZE"), given}, none},
      {"a label", {at(300, 130, "SURNAME"), given}, none},
      {"given names behind something else",
       {at(300, 130, "MEIER"), at(300, 178, "Zvxwq ADAEZE")},
       none}};
  for (const PrintedCard& c : cases) {
    Values values;
    for (const auto& field : engine::printedFields(c.lines, *labels, kToday, {}, record))
      values[field.name] = field.value;
    EXPECT_EQ(values, c.values) << c.what;
  }
}

TEST(PrintedFields, HaveTheLettersOfZoneOrCodeWhereAnotherWithAMarkWasRead) {
  const auto labels = engine::FieldLabels::load({ENGINE_RESOURCES "/documents/labels"});
  ASSERT_TRUE(labels) << labels.error().sentence;
  struct Case {
    const char* read;
    const char* recorded;
    const char* value;
    bool isCorrected;
  };
  const Case cases[] = {{"ÖTEČENOVA", "OETEGENOVA", "ÖTEGENOVA", true},
                        {"Įărnoleanu", "TARNOLEANU", "Tărnoleanu", true},
                        {"DAÎITI O'ŃEILL", "DAWITI ONEILL", "DAWITI O'ŃEILL", true},
                        {"ÆRØSKØBING", "AEROESKOEBING", "ÆRØSKØBING", false},
                        {"MÜLLER", "MUELLER", "MÜLLER", false},
                        {"OTECENOVA", "OTEGENOVA", "OTECENOVA", false},
                        {"ŠČULZ", "SCHULZ", "ŠČULZ", false}};
  for (const Case& c : cases) {
    const auto fields = engine::printedFields(
        {at(300, 100, "Surname", 14), at(300, 118, c.read)}, *labels, kToday, {},
        {{FieldName::surname, c.recorded, corvana::FieldSource::zone, 1, false, std::nullopt}});
    ASSERT_EQ(fields.size(), 1U) << c.read;
    EXPECT_EQ(fields[0].value, c.value);
    EXPECT_EQ(fields[0].knownBy.has_value(), c.isCorrected) << c.read;
  }
}

TEST(PrintedFields, AreTakenFromTheirPlacesWhereNoLabelNamesThem) {
  const auto labels = engine::FieldLabels::load({ENGINE_RESOURCES "/documents/labels"});
  ASSERT_TRUE(labels) << labels.error().sentence;
  const std::vector<engine::TextLine> lines{at(300, 100, "MARIA"),
                                            at(300, 60, "ANNA"),
                                            at(300, 200, "Surname", 14),
                                            at(300, 218, "OKONKWO"),
                                            at(600, 100, "Zv/No:AB 1234567"),
                                            at(300, 300, "no date at all"),
                                            at(300, 400, "Sex: F", 14)};
  Values values;
  for (const auto& field : engine::printedFields(lines, *labels, kToday,
                                                 {{FieldName::givenNames, {290, 40, 200, 120}},
                                                  {FieldName::surname, {590, 90, 300, 60}},
                                                  {FieldName::documentNumber, {590, 90, 300, 60}},
                                                  {FieldName::birthDate, {290, 290, 300, 60}},
                                                  {FieldName::authority, {0, 0, 50, 50}}})) {
    values[field.name] = field.value;
  }
  EXPECT_EQ(values, (Values{{FieldName::givenNames, "ANNA MARIA"},
                            {FieldName::surname, "OKONKWO"},
                            {FieldName::documentNumber, "AB1234567"},
                            {FieldName::sex, "F"}}))
      << "a label goes before a place";
}

}  // namespace
}  // namespace corvana::tests
