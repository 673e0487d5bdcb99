#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/document/fields/Aamva.h"

namespace corvana::tests {
namespace {

using corvana::FieldName;
using Values = std::map<FieldName, std::string>;

Values valuesOf(const engine::AamvaRecord& record) {
  Values values;
  for (const corvana::DocumentField& field : engine::aamvaFields(record))
    values[field.name] = field.value;
  return values;
}

struct Barcode {
  const char* what;
  std::string text;
  int version;
  Values values;
};

// Invented persons in the manner of each issuer and version.
const Barcode kBarcodes[] = {
    {"version 1 with the full name in one element and dates from the year down",
     "@\n\x1e\rAAMVA6360250101DL00290150DLDAQ12 345 678\nDAAMARTIN,GEORGE,ALAN,JR\n"
     "DAG12 CANAL ST\nDAIERIE\nDAJPA\nDAK165010000  \nDBA20030317\nDBB19520317\nDBCM\n"
     "DBD19990401\r",
     1,
     {{FieldName::surname, "MARTIN"},
      {FieldName::givenNames, "GEORGE ALAN"},
      {FieldName::documentNumber, "12 345 678"},
      {FieldName::birthDate, "1952-03-17"},
      {FieldName::issueDate, "1999-04-01"},
      {FieldName::expiryDate, "2003-03-17"},
      {FieldName::sex, "M"},
      {FieldName::authority, "PA"},
      {FieldName::address, "12 CANAL ST, ERIE, PA 165010000"}}},
    {"version 1 with names apart and a residence",
     "@\n\x1e\rANSI 6360150102DL00390187ZT02260032DLDAQ07713317\nDABOBRIEN\nDACMARY\nDADANN\n"
     "DAL7 ELM AVE\nDANWACO\nDAOTX\nDAP76701\nDBB19610202\nDBC2\rZTZTANY\r",
     1,
     {{FieldName::surname, "OBRIEN"},
      {FieldName::givenNames, "MARY ANN"},
      {FieldName::documentNumber, "07713317"},
      {FieldName::birthDate, "1961-02-02"},
      {FieldName::sex, "F"},
      {FieldName::authority, "TX"},
      {FieldName::address, "7 ELM AVE, WACO, TX 76701"}}},
    {"version 3 with all given names in one element, offsets of nowhere",
     "@\n\x1e\rANSI 636014030002DL99990000ZC00000000DLDCAC\nDCSGARCIA LOPEZ\nDCTMARIA,INES\n"
     "DBA10212027\nDBB10211977\nDBC2\nDBD09302022\nDAQI1234562\nDAG2570 24TH ST\nDAISACRAMENTO\n"
     "DAJCA\nDAK958180000\nDCGUSA\rZCZCABRN\r",
     3,
     {{FieldName::surname, "GARCIA LOPEZ"},
      {FieldName::givenNames, "MARIA INES"},
      {FieldName::documentNumber, "I1234562"},
      {FieldName::birthDate, "1977-10-21"},
      {FieldName::issueDate, "2022-09-30"},
      {FieldName::expiryDate, "2027-10-21"},
      {FieldName::sex, "F"},
      {FieldName::authority, "CA"},
      {FieldName::address, "2570 24TH ST, SACRAMENTO, CA 958180000"}}},
    {"Canadian dates, an unknown middle name, lines ended as on paper",
     "@\r\n\x1e\rANSI 636012080001DL00410278DLDAQD6101-40706-60905\r\nDCSSMITH\r\nDACJANE\r\n"
     "DADNONE\r\nDBB19660905\r\nDBA20290905\r\nDBD20240801\r\nDBC9\r\nDCGCAN\r\nDAIOTTAWA\r\n"
     "DAJON\r\n",
     8,
     {{FieldName::surname, "SMITH"},
      {FieldName::givenNames, "JANE"},
      {FieldName::documentNumber, "D6101-40706-60905"},
      {FieldName::birthDate, "1966-09-05"},
      {FieldName::issueDate, "2024-08-01"},
      {FieldName::expiryDate, "2029-09-05"},
      {FieldName::sex, "X"},
      {FieldName::authority, "ON"},
      {FieldName::address, "OTTAWA, ON"}}},
    {"version 10, an identity card, no first line, group separators",
     "ANSI 636026100001ID00310200IDDAQA98765432\x1d"
     "DCSNEZ\x1d"
     "DACSOFIA\x1d"
     "DADunavl\x1d"
     "DBB02292004\x1d"
     "DBC1\x1d"
     "DBA02282030\x1d",
     10,
     {{FieldName::surname, "NEZ"},
      {FieldName::givenNames, "SOFIA"},
      {FieldName::documentNumber, "A98765432"},
      {FieldName::birthDate, "2004-02-29"},
      {FieldName::expiryDate, "2030-02-28"},
      {FieldName::sex, "M"},
      {FieldName::authority, "AZ"}}},
    {"a heading without blank, nothing between the elements, a name like an identifier",
     "@ANSI636000090002DL00410278ZV03190008DLDAQT64235789DCSDACOSTADDENDACMICHAELDADJOHN"
     "DBB06061986DBA12122031DBC1",
     9,
     {{FieldName::surname, "DACOSTA"},
      {FieldName::givenNames, "MICHAEL JOHN"},
      {FieldName::documentNumber, "T64235789"},
      {FieldName::birthDate, "1986-06-06"},
      {FieldName::expiryDate, "2031-12-12"},
      {FieldName::sex, "M"},
      {FieldName::authority, "VA"}}},
    {"days of no calendar and sexes of no list are left out",
     "@\n\x1e\rANSI 999999090001DL00410278DLDAQ1\nDCSDOE\nDBB02301986\nDBA00000000\nDBC7\n",
     9,
     {{FieldName::surname, "DOE"}, {FieldName::documentNumber, "1"}}},
};

TEST(Aamva, ReadsRecordsOfAllVersionsAndManners) {
  for (const Barcode& c : kBarcodes) {
    const auto record = engine::parseAamva(c.text);
    ASSERT_TRUE(record) << c.what << ": " << record.error().sentence;
    EXPECT_EQ(record->version, c.version) << c.what;
    EXPECT_EQ(valuesOf(*record), c.values) << c.what;
  }
}

TEST(Aamva, KeepsWhatIssuersAddAndTellsWhatIsTruncatedOrGuessed) {
  const auto record = engine::parseAamva(
      "@\n\x1e\rANSI 636000090002DL00410278ZV03190008DLDAQT64\nDCSVERYLONGNAMETHATENDS\nDDET\n"
      "DACANN\nDDFN\nDADMA\nDDGT\rZVZVA01\nZVB\r");
  ASSERT_TRUE(record);
  EXPECT_EQ(record->subfiles, (std::vector<std::string>{"DL", "ZV"}));
  EXPECT_EQ(record->elements.at("ZVA"), "01");
  EXPECT_EQ(record->elements.at("ZVB"), "");
  for (const auto& field : engine::aamvaFields(*record)) {
    const bool isName = field.name == FieldName::surname || field.name == FieldName::givenNames;
    EXPECT_EQ(field.isTruncated, isName);
    EXPECT_EQ(field.confidence, 1.0F);
  }
  const auto unparted = engine::parseAamva("ANSI 636000090001DL00410278DLDAQT64DCSDOE");
  ASSERT_TRUE(unparted);
  EXPECT_LT(engine::aamvaFields(*unparted).front().confidence, 1.0F);
}

TEST(Aamva, RefusesOtherTextWithOneSentence) {
  const std::pair<std::string, const char*> cases[] = {
      {"", "lacks the heading"},
      {"https://example.org/ANSI", "lacks the heading"},
      {"ANSI 6360", "lacks the heading"},
      {"ANSI 636000", "nothing else"},
      {"ANSI 636000990001DL00410278DLDAQ1\n", "later than 10"},
      {"ANSI 636000090001DL0041", "nothing else"},
      {"ANSI 636000" + std::string(5000, 'D'), "more than any"},
  };
  for (const auto& [text, part] : cases) {
    const auto record = engine::parseAamva(text);
    ASSERT_FALSE(record) << text;
    EXPECT_NE(record.error().sentence.find(part), std::string::npos)
        << text << ": " << record.error().sentence;
  }
}

}  // namespace
}  // namespace corvana::tests
