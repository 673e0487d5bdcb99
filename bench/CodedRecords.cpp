#include <cstdlib>
#include <iostream>
#include <string>

#include <nlohmann/json.hpp>

#include "AamvaRecord.h"
#include "Design.h"
#include "Mrz.h"
#include "People.h"
#include "Random.h"
#include "engine/document/fields/Aamva.h"
#include "engine/document/fields/DocumentFields.h"
#include "engine/document/mrz/MrzParser.h"

/// Prints machine-readable zones and barcodes of invented holders, a line of JSON for each, with
/// what was read from them; every other one has a character changed. `bench/coded-records` has
/// other programs read the same.
namespace corvana {
namespace {

using nlohmann::json;
using session::CardData;
using session::MrzFormat;
using session::Random;

/// Another digit or letter in place of one; fillers and what parts elements stay.
bool damage(std::string& text, std::size_t from, Random& random) {
  const auto at =
      from + static_cast<std::size_t>(random.uniform(0, static_cast<double>(text.size() - from)));
  const char before = text[at];
  if (before >= '0' && before <= '9') {
    text[at] =
        static_cast<char>('0' + (before - '0' + static_cast<int>(random.uniform(1, 10))) % 10);
  } else if (before >= 'A' && before <= 'Z') {
    text[at] =
        static_cast<char>('A' + (before - 'A' + static_cast<int>(random.uniform(1, 26))) % 26);
  }
  return text[at] != before;
}

json readZone(const std::string& text) {
  const auto zone = engine::parseMrz(text);
  if (!zone) return nullptr;
  return {{"documentCode", zone->documentCode},
          {"documentNumber", zone->documentNumber},
          {"birthDate", zone->birthDate},
          {"expirationDate", zone->expiryDate},
          {"issuingState", zone->issuingState},
          {"nationality", zone->nationality},
          {"lastName", zone->surname},
          {"firstName", zone->givenNames},
          {"sex", zone->sex}};
}

json readCode(const std::string& text) {
  const auto record = engine::parseAamva(text);
  if (!record) return nullptr;
  json fields = json::object();
  for (const auto& field : engine::aamvaFields(*record))
    fields[engine::nameOf(field.name)] = field.value;
  return fields;
}

json zoneOf(CardData card, int number, Random& random) {
  const auto format = static_cast<MrzFormat>(number % 3);
  const bool isForCards = std::string("AIC").find(card.documentCode.front()) != std::string::npos;
  card.documentCode = format == MrzFormat::td3 ? "P" : isForCards ? card.documentCode : "I";
  std::string text;
  for (const std::string& line : session::mrzLines(card, format))
    text += line + '\n';
  text.pop_back();
  const bool isDamaged = number % 2 == 1 && damage(text, 0, random);
  return {{"kind", "zone"}, {"text", text}, {"damaged", isDamaged}, {"read", readZone(text)}};
}

json codeOf(const CardData& card, int number) {
  constexpr std::size_t kVersionPlace = 15;
  std::string text = photos::aamvaRecord(card);
  // From version 4 on the elements are the same.
  const std::string version = std::to_string(104 + number % 7).substr(1);
  text.replace(kVersionPlace, version.size(), version);
  return {{"kind", "code"}, {"text", text}, {"damaged", false}, {"read", readCode(text)}};
}

int print(int count, std::uint64_t seed) {
  const auto designs = photos::readDesigns(CORVANA_PHOTO_DATA "/designs");
  const auto names = photos::readNames(CORVANA_PHOTO_DATA "/people.json");
  if (!designs || !names) {
    std::cerr << "coded-records: " << (designs ? names.error() : designs.error()) << '\n';
    return 3;
  }
  for (int number = 0; number < count; ++number) {
    Random random(seed * 10000 + static_cast<std::uint64_t>(number));
    photos::Design design = (*designs)[static_cast<std::size_t>(number) % designs->size()];
    design.nationality.clear();
    CardData card = photos::drawHolder(design, *names, random);
    card.state = card.nationalityCode;
    std::cout << zoneOf(card, number, random).dump() << '\n' << codeOf(card, number).dump() << '\n';
  }
  return 0;
}

}  // namespace
}  // namespace corvana

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "coded-records: give the number of records and a seed.\n";
    return 2;
  }
  return corvana::print(std::atoi(argv[1]), std::strtoull(argv[2], nullptr, 10));
}
