#include "engine/document/fields/FieldLabels.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "engine/document/fields/EditDistance.h"
#include "engine/document/fields/Transliteration.h"

namespace corvana::engine {
namespace {

using corvana::FieldName;

struct Label {
  std::string_view words;  ///< capitals without marks, parted by blanks
  std::optional<FieldName> name;
};

constexpr std::optional<FieldName> kOther = std::nullopt;

/// In the languages of cards with Latin letters. What names no field of ours is there so that it is
/// not taken for a value.
constexpr Label kLabels[] = {
    {"SURNAME", FieldName::surname},
    {"SURNAMES", FieldName::surname},
    {"LAST NAME", FieldName::surname},
    {"FAMILY NAME", FieldName::surname},
    {"NAME", FieldName::surname},
    {"NOM", FieldName::surname},
    {"NOM DE FAMILLE", FieldName::surname},
    {"FAMILIENNAME", FieldName::surname},
    {"NACHNAME", FieldName::surname},
    {"COGNOME", FieldName::surname},
    {"APELLIDOS", FieldName::surname},
    {"APELLIDO", FieldName::surname},
    {"PRIMER APELLIDO", FieldName::surname},
    {"APELIDO", FieldName::surname},
    {"APELIDOS", FieldName::surname},
    {"NAAM", FieldName::surname},
    {"ACHTERNAAM", FieldName::surname},
    {"NAZWISKO", FieldName::surname},
    {"PRIJMENI", FieldName::surname},
    {"PRIEZVISKO", FieldName::surname},
    {"PREZIME", FieldName::surname},
    {"PRIIMEK", FieldName::surname},
    {"EFTERNAMN", FieldName::surname},
    {"EFTERNAVN", FieldName::surname},
    {"ETTERNAVN", FieldName::surname},
    {"SUKUNIMI", FieldName::surname},
    {"PEREKONNANIMI", FieldName::surname},
    {"UZVARDS", FieldName::surname},
    {"PAVARDE", FieldName::surname},
    {"CSALADI NEV", FieldName::surname},
    {"CSALADI ES UTONEV", FieldName::surname},
    {"NUME", FieldName::surname},
    {"SOYADI", FieldName::surname},
    {"GIVEN NAMES", FieldName::givenNames},
    {"GIVEN NAME", FieldName::givenNames},
    {"GIVEN NAME S", FieldName::givenNames},
    {"FIRST NAME", FieldName::givenNames},
    {"FIRST NAMES", FieldName::givenNames},
    {"FORENAMES", FieldName::givenNames},
    {"FORENAME", FieldName::givenNames},
    {"OTHER NAMES", FieldName::givenNames},
    {"PRENOM", FieldName::givenNames},
    {"PRENOMS", FieldName::givenNames},
    {"PRENOM S", FieldName::givenNames},
    {"VORNAME", FieldName::givenNames},
    {"VORNAMEN", FieldName::givenNames},
    {"NOME", FieldName::givenNames},
    {"NOMI", FieldName::givenNames},
    {"NOMBRE", FieldName::givenNames},
    {"NOMBRES", FieldName::givenNames},
    {"NOMES", FieldName::givenNames},
    {"NOMES PROPRIOS", FieldName::givenNames},
    {"NOME S", FieldName::givenNames},
    {"VOORNAMEN", FieldName::givenNames},
    {"VOORNAAM", FieldName::givenNames},
    {"IMIE", FieldName::givenNames},
    {"IMIONA", FieldName::givenNames},
    {"IMIE IMIONA", FieldName::givenNames},
    {"JMENO", FieldName::givenNames},
    {"MENO", FieldName::givenNames},
    {"IME", FieldName::givenNames},
    {"FORNAMN", FieldName::givenNames},
    {"FORNAVN", FieldName::givenNames},
    {"ETUNIMET", FieldName::givenNames},
    {"EESNIMI", FieldName::givenNames},
    {"EESNIMED", FieldName::givenNames},
    {"VARDS", FieldName::givenNames},
    {"VARDI", FieldName::givenNames},
    {"VARDAS", FieldName::givenNames},
    {"VARDAI", FieldName::givenNames},
    {"UTONEV", FieldName::givenNames},
    {"PRENUME", FieldName::givenNames},
    {"ADI", FieldName::givenNames},
    {"DOCUMENT NUMBER", FieldName::documentNumber},
    {"DOCUMENT NO", FieldName::documentNumber},
    {"DOC NO", FieldName::documentNumber},
    {"NUMMER", FieldName::documentNumber},
    {"NUMER", FieldName::documentNumber},
    {"CARTE NO", FieldName::documentNumber},
    {"CARD NO", FieldName::documentNumber},
    {"CARD NUMBER", FieldName::documentNumber},
    {"IDENTITY CARD NO", FieldName::documentNumber},
    {"IDENTITY CARD NUMBER", FieldName::documentNumber},
    {"PASSPORT NO", FieldName::documentNumber},
    {"PASSPORT NUMBER", FieldName::documentNumber},
    {"LICENCE NO", FieldName::documentNumber},
    {"LICENCE NUMBER", FieldName::documentNumber},
    {"LICENSE NO", FieldName::documentNumber},
    {"LICENSE NUMBER", FieldName::documentNumber},
    {"PERMIT NO", FieldName::documentNumber},
    {"NUMBER", FieldName::documentNumber},
    {"NO", FieldName::documentNumber},
    {"NR", FieldName::documentNumber},
    {"DL", FieldName::documentNumber},
    {"DLN", FieldName::documentNumber},
    {"DL NO", FieldName::documentNumber},
    {"LIC NO", FieldName::documentNumber},
    {"ID NO", FieldName::documentNumber},
    {"DOKUMENTENNUMMER", FieldName::documentNumber},
    {"DOKUMENTNUMMER", FieldName::documentNumber},
    {"AUSWEISNUMMER", FieldName::documentNumber},
    {"AUSWEIS NR", FieldName::documentNumber},
    {"N DU DOCUMENT", FieldName::documentNumber},
    {"N DOCUMENT", FieldName::documentNumber},
    {"NO DU DOCUMENT", FieldName::documentNumber},
    {"NUMERO DU DOCUMENT", FieldName::documentNumber},
    {"NUM SOPORT", FieldName::documentNumber},
    {"NUMERO", FieldName::documentNumber},
    {"NUMERO DOCUMENTO", FieldName::documentNumber},
    {"N DOCUMENTO", FieldName::documentNumber},
    {"NUMERO DE DOCUMENTO", FieldName::documentNumber},
    {"DOCUMENTNUMMER", FieldName::documentNumber},
    {"NUMER DOKUMENTU", FieldName::documentNumber},
    {"CISLO DOKLADU", FieldName::documentNumber},
    {"KORTNUMMER", FieldName::documentNumber},
    {"KORTNR", FieldName::documentNumber},
    {"DATE OF BIRTH", FieldName::birthDate},
    {"BIRTH DATE", FieldName::birthDate},
    {"DATE AND PLACE OF BIRTH", FieldName::birthDate},
    {"DOB", FieldName::birthDate},
    {"BORN", FieldName::birthDate},
    {"GEBURTSDATUM", FieldName::birthDate},
    {"GEBURTSTAG", FieldName::birthDate},
    {"GEBURTSDATUM UND ORT", FieldName::birthDate},
    {"DATE DE NAISSANCE", FieldName::birthDate},
    {"NE E LE", FieldName::birthDate},
    {"DDN", FieldName::birthDate},
    {"DATA DI NASCITA", FieldName::birthDate},
    {"LUOGO E DATA DI NASCITA", FieldName::birthDate},
    {"FECHA DE NACIMIENTO", FieldName::birthDate},
    {"DATA DE NASCIMENTO", FieldName::birthDate},
    {"GEBOORTEDATUM", FieldName::birthDate},
    {"DATA URODZENIA", FieldName::birthDate},
    {"DATUM NAROZENI", FieldName::birthDate},
    {"DATUM NARODENIA", FieldName::birthDate},
    {"DATUM RODENJA", FieldName::birthDate},
    {"DATUM ROJSTVA", FieldName::birthDate},
    {"FODELSEDATUM", FieldName::birthDate},
    {"FOEDELSEDATUM", FieldName::birthDate},
    {"FODSELSDATO", FieldName::birthDate},
    {"FODSELSDAG", FieldName::birthDate},
    {"SYNTYMAAIKA", FieldName::birthDate},
    {"SUNNIAEG", FieldName::birthDate},
    {"DZIMSANAS DATUMS", FieldName::birthDate},
    {"GIMIMO DATA", FieldName::birthDate},
    {"SZULETESI IDO", FieldName::birthDate},
    {"DATA NASTERII", FieldName::birthDate},
    {"DOGUM TARIHI", FieldName::birthDate},
    {"DATE OF ISSUE", FieldName::issueDate},
    {"ISSUE DATE", FieldName::issueDate},
    {"DATE ISSUED", FieldName::issueDate},
    {"ISSUED", FieldName::issueDate},
    {"ISSUED ON", FieldName::issueDate},
    {"ISS", FieldName::issueDate},
    {"AUSSTELLUNGSDATUM", FieldName::issueDate},
    {"AUSGESTELLT AM", FieldName::issueDate},
    {"DATE DE DELIVRANCE", FieldName::issueDate},
    {"DELIVRE LE", FieldName::issueDate},
    {"DATA DI RILASCIO", FieldName::issueDate},
    {"EMISSIONE", FieldName::issueDate},
    {"DATA DI EMISSIONE", FieldName::issueDate},
    {"FECHA DE EXPEDICION", FieldName::issueDate},
    {"FECHA DE EMISION", FieldName::issueDate},
    {"EMISION", FieldName::issueDate},
    {"DATA DE EMISSAO", FieldName::issueDate},
    {"DATUM VAN AFGIFTE", FieldName::issueDate},
    {"AFGIFTEDATUM", FieldName::issueDate},
    {"DATA WYDANIA", FieldName::issueDate},
    {"DATUM VYDANI", FieldName::issueDate},
    {"DATUM VYDANIA", FieldName::issueDate},
    {"DATUM IZDAVANJA", FieldName::issueDate},
    {"DATE OF EXPIRY", FieldName::expiryDate},
    {"DATE OF EXPIRATION", FieldName::expiryDate},
    {"EXPIRY DATE", FieldName::expiryDate},
    {"EXPIRATION DATE", FieldName::expiryDate},
    {"EXPIRY", FieldName::expiryDate},
    {"EXPIRES", FieldName::expiryDate},
    {"EXPIRES ON", FieldName::expiryDate},
    {"EXP", FieldName::expiryDate},
    {"VALID UNTIL", FieldName::expiryDate},
    {"VALID TO", FieldName::expiryDate},
    {"GUELTIG BIS", FieldName::expiryDate},
    {"GULTIG BIS", FieldName::expiryDate},
    {"ABLAUFDATUM", FieldName::expiryDate},
    {"DATE D EXPIRATION", FieldName::expiryDate},
    {"DATE DEXPIRATION", FieldName::expiryDate},
    {"VALABLE JUSQU AU", FieldName::expiryDate},
    {"VALABLE JUSQUAU", FieldName::expiryDate},
    {"EXPIRE LE", FieldName::expiryDate},
    {"DATA DI SCADENZA", FieldName::expiryDate},
    {"SCADENZA", FieldName::expiryDate},
    {"FECHA DE CADUCIDAD", FieldName::expiryDate},
    {"FECHA DE VENCIMIENTO", FieldName::expiryDate},
    {"VALIDEZ", FieldName::expiryDate},
    {"VALIDO HASTA", FieldName::expiryDate},
    {"DATA DE VALIDADE", FieldName::expiryDate},
    {"VALIDADE", FieldName::expiryDate},
    {"GELDIG TOT", FieldName::expiryDate},
    {"TERMIN WAZNOSCI", FieldName::expiryDate},
    {"DATA WAZNOSCI", FieldName::expiryDate},
    {"PLATNOST DO", FieldName::expiryDate},
    {"WAZNY DO", FieldName::expiryDate},
    {"VRIJEDI DO", FieldName::expiryDate},
    {"GILTIGT TILL", FieldName::expiryDate},
    {"GYLDIG TIL", FieldName::expiryDate},
    {"SON GECERLILIK TARIHI", FieldName::expiryDate},
    {"SEX", FieldName::sex},
    {"GENDER", FieldName::sex},
    {"SEXE", FieldName::sex},
    {"GESCHLECHT", FieldName::sex},
    {"SESSO", FieldName::sex},
    {"SEXO", FieldName::sex},
    {"GESLACHT", FieldName::sex},
    {"PLEC", FieldName::sex},
    {"POHLAVI", FieldName::sex},
    {"POHLAVIE", FieldName::sex},
    {"SPOL", FieldName::sex},
    {"KON", FieldName::sex},
    {"KJONN", FieldName::sex},
    {"SUKUPUOLI", FieldName::sex},
    {"CINSIYETI", FieldName::sex},
    {"NATIONALITY", FieldName::nationality},
    {"CITIZENSHIP", FieldName::nationality},
    {"STAATSANGEHORIGKEIT", FieldName::nationality},
    {"STAATSANGEHOERIGKEIT", FieldName::nationality},
    {"NATIONALITE", FieldName::nationality},
    {"CITTADINANZA", FieldName::nationality},
    {"NAZIONALITA", FieldName::nationality},
    {"NACIONALIDAD", FieldName::nationality},
    {"NACIONALIDADE", FieldName::nationality},
    {"NATIONALITEIT", FieldName::nationality},
    {"OBYWATELSTWO", FieldName::nationality},
    {"STATNI OBCANSTVI", FieldName::nationality},
    {"STATNA PRISLUSNOST", FieldName::nationality},
    {"DRZAVLJANSTVO", FieldName::nationality},
    {"NATIONALITET", FieldName::nationality},
    {"KANSALAISUUS", FieldName::nationality},
    {"UYRUGU", FieldName::nationality},
    {"AUTHORITY", FieldName::authority},
    {"ISSUING AUTHORITY", FieldName::authority},
    {"ISSUED BY", FieldName::authority},
    {"BEHORDE", FieldName::authority},
    {"BEHOERDE", FieldName::authority},
    {"AUSSTELLENDE BEHORDE", FieldName::authority},
    {"AUTORITE", FieldName::authority},
    {"DELIVRE PAR", FieldName::authority},
    {"AUTORITA", FieldName::authority},
    {"AUTORIDAD", FieldName::authority},
    {"AUTORIDADE", FieldName::authority},
    {"AUTORITEIT", FieldName::authority},
    {"ORGAN WYDAJACY", FieldName::authority},
    {"MYNDIGHET", FieldName::authority},
    {"ADDRESS", FieldName::address},
    {"ADRESSE", FieldName::address},
    {"ANSCHRIFT", FieldName::address},
    {"INDIRIZZO", FieldName::address},
    {"RESIDENZA", FieldName::address},
    {"DOMICILIO", FieldName::address},
    {"MORADA", FieldName::address},
    {"ADRES", FieldName::address},
    {"ADRESA", FieldName::address},
    {"ADRESS", FieldName::address},
    {"DATUM", kOther},
    {"HEIGHT", kOther},
    {"HGT", kOther},
    {"TAILLE", kOther},
    {"GROSSE", kOther},
    {"GROESSE", kOther},
    {"STATURA", kOther},
    {"ALTURA", kOther},
    {"WEIGHT", kOther},
    {"WGT", kOther},
    {"EYES", kOther},
    {"EYE COLOUR", kOther},
    {"COLOUR OF EYES", kOther},
    {"AUGENFARBE", kOther},
    {"HAIR", kOther},
    {"CLASS", kOther},
    {"DONOR", kOther},
    {"PLACE OF BIRTH", kOther},
    {"GEBURTSORT", kOther},
    {"LIEU DE NAISSANCE", kOther},
    {"LUOGO DI NASCITA", kOther},
    {"LUGAR DE NACIMIENTO", kOther},
    {"LOCAL DE NASCIMENTO", kOther},
    {"NAME AT BIRTH", kOther},
    {"BIRTH NAME", kOther},
    {"GEBURTSNAME", kOther},
    {"NOM DE NAISSANCE", kOther},
    {"NOM D USAGE", kOther},
    {"SIGNATURE", kOther},
    {"SIGNATURE OF HOLDER", kOther},
    {"HOLDERS SIGNATURE", kOther},
    {"UNTERSCHRIFT", kOther},
    {"FIRMA", kOther},
    {"PERSONAL NO", kOther},
    {"PERSONAL NUMBER", kOther},
    {"PERSONAL CODE", kOther},
    {"PESEL", kOther},
    {"DD", kOther},
    {"TYPE", kOther},
    {"TYPE OF PERMIT", kOther},
    {"REMARKS", kOther},
    {"CODE", kOther},
};

struct Numbered {
  std::string_view number;
  std::optional<FieldName> usual;
  std::optional<FieldName> northAmerican;
};

/// ISO 18013 and the AAMVA's standard, which part at the number of the licence.
constexpr std::array<Numbered, 10> kNumbers{{
    {"1", FieldName::surname, FieldName::surname},
    {"2", FieldName::givenNames, FieldName::givenNames},
    {"3", FieldName::birthDate, FieldName::birthDate},
    {"4A", FieldName::issueDate, FieldName::issueDate},
    {"4B", FieldName::expiryDate, FieldName::expiryDate},
    {"4C", FieldName::authority, std::nullopt},
    {"4D", std::nullopt, FieldName::documentNumber},
    {"5", FieldName::documentNumber, std::nullopt},
    {"8", FieldName::address, FieldName::address},
    {"15", std::nullopt, FieldName::sex},
}};

/// A word of a line, folded, with where it ends in the line.
struct Word {
  std::string letters;
  std::size_t end;
  bool endsLabel;  ///< a colon follows
};

bool isWordByte(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         (static_cast<unsigned char>(c) & 0x80U) != 0;
}

std::vector<Word> wordsOf(const std::string& line) {
  std::vector<Word> words;
  for (std::size_t at = 0; at < line.size();) {
    if (!isWordByte(line[at])) {
      if (line[at] == ':' && !words.empty()) words.back().endsLabel = true;
      ++at;
      continue;
    }
    std::size_t end = at;
    while (end < line.size() && isWordByte(line[end]))
      ++end;
    std::string letters = plainLetters(line.substr(at, end - at));
    std::erase(letters, ' ');
    if (!letters.empty()) words.push_back({std::move(letters), end, false});
    at = end;
  }
  return words;
}

/// Small print is misread now and then, and blanks get lost in it.
bool isLabel(std::string_view words, const std::string& text) {
  constexpr std::size_t kLettersPerError = 7;
  std::string label(words);
  std::erase(label, ' ');
  if (label == text) return true;
  const std::size_t allowed = label.size() / kLettersPerError;
  const std::size_t apart =
      std::max(label.size(), text.size()) - std::min(label.size(), text.size());
  return apart <= allowed && allowed > 0 && editDistance(label, text) <= allowed;
}

struct Match {
  const Label* label = nullptr;
  std::size_t words = 0;
};

/// The longest label that the words from `first` on begin with.
Match longestLabel(const std::vector<Word>& words, std::size_t first) {
  constexpr std::size_t kMostWords = 5;
  Match match;
  std::string text;
  for (std::size_t count = 1; count <= kMostWords && first + count <= words.size(); ++count) {
    text += words[first + count - 1].letters;
    const auto label =
        std::ranges::find_if(kLabels, [&](const Label& l) { return isLabel(l.words, text); });
    if (label != std::end(kLabels)) match = {&*label, count};
  }
  return match;
}

std::string restFrom(const std::string& line, std::size_t at) {
  const auto first = line.find_first_not_of(" \t:./|-)", at);
  if (first == std::string::npos) return {};
  const auto last = line.find_last_not_of(" \t");
  return line.substr(first, last + 1 - first);
}

/// A licence's number may touch its value: "4a.01.02.2020".
std::string leadingNumber(const std::string& line, std::size_t& end) {
  std::size_t at = 0;
  while (at < line.size() && at < 2 && line[at] >= '0' && line[at] <= '9')
    ++at;
  if (at == 0) return {};
  const char letter = at < line.size() ? static_cast<char>(line[at] & 0xDF) : '\0';
  const bool hasLetter = at == 1 && line[0] == '4' && letter >= 'A' && letter <= 'D';
  if (hasLetter) ++at;
  const bool endsThere = at == line.size() || line[at] == '.' || line[at] == ' ' || line[at] == ':';
  if (!endsThere) return {};
  std::string number = plainLetters(line.substr(0, at));
  const bool isKnown = std::ranges::find(kNumbers, number, &Numbered::number) != kNumbers.end();
  // "12.08.1984" is no line numbered 12.
  const bool isDate = !hasLetter && at + 1 < line.size() && line[at] == '.' &&
                      line[at + 1] != ' ' && line.find('.', at + 1) != std::string::npos;
  if (!isKnown || isDate) return {};
  end = at;
  return number;
}

/// A label whose first language is not known, but one of the others is.
Match labelBehindStroke(const std::string& text) {
  for (std::size_t stroke = text.find('/'); stroke != std::string::npos;
       stroke = text.find('/', stroke + 1)) {
    const std::vector<Word> words = wordsOf(text.substr(stroke + 1));
    const Match match = longestLabel(words, 0);
    if (match.label != nullptr && match.words == words.size()) return match;
  }
  return {};
}

}  // namespace

std::optional<FieldName> numberedField(const std::string& number, bool isNorthAmerican) {
  const auto entry = std::ranges::find(kNumbers, number, &Numbered::number);
  if (entry == kNumbers.end()) return std::nullopt;
  return isNorthAmerican ? entry->northAmerican : entry->usual;
}

std::optional<LabelledText> labelledText(const std::string& line) {
  LabelledText result;
  std::size_t end = 0;
  result.number = leadingNumber(line, end);
  const std::string text = line.substr(end);
  const std::vector<Word> words = wordsOf(text);
  std::size_t at = 0;
  std::size_t labelEnd = 0;
  while (at < words.size()) {
    const Match match = longestLabel(words, at);
    if (match.label == nullptr) break;
    if (!result.name) result.name = match.label->name;
    result.hasWords = true;
    at += match.words;
    labelEnd = words[at - 1].end;
    if (words[at - 1].endsLabel) break;
  }
  if (!result.hasWords) {
    if (const Match match = labelBehindStroke(text); match.label != nullptr) {
      return LabelledText{match.label->name, result.number, true, {}};
    }
  }
  if (!result.hasWords && result.number.empty()) return std::nullopt;
  result.rest = restFrom(text, labelEnd);
  return result;
}

}  // namespace corvana::engine
