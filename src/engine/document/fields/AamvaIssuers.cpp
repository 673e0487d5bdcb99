#include "engine/document/fields/AamvaIssuers.h"

#include <algorithm>
#include <iterator>

namespace corvana::engine {
namespace {

constexpr AamvaIssuer kIssuers[] = {
    {"636033", "AL"},       {"636059", "AK"},       {"604427", "AS"},       {"636026", "AZ"},
    {"636021", "AR"},       {"636014", "CA"},       {"636020", "CO"},       {"636006", "CT"},
    {"636011", "DE"},       {"636043", "DC"},       {"636010", "FL"},       {"636055", "GA"},
    {"636019", "GU"},       {"636047", "HI"},       {"636050", "ID"},       {"636035", "IL"},
    {"636037", "IN"},       {"636018", "IA"},       {"636022", "KS"},       {"636046", "KY"},
    {"636007", "LA"},       {"636041", "ME"},       {"636003", "MD"},       {"636002", "MA"},
    {"636032", "MI"},       {"636038", "MN"},       {"636051", "MS"},       {"636030", "MO"},
    {"636008", "MT"},       {"636054", "NE"},       {"636049", "NV"},       {"636039", "NH"},
    {"636036", "NJ"},       {"636009", "NM"},       {"636001", "NY"},       {"636004", "NC"},
    {"636034", "ND"},       {"604430", "MP"},       {"636023", "OH"},       {"636058", "OK"},
    {"636029", "OR"},       {"636025", "PA"},       {"604431", "PR"},       {"636052", "RI"},
    {"636005", "SC"},       {"636042", "SD"},       {"636053", "TN"},       {"636015", "TX"},
    {"636040", "UT"},       {"636024", "VT"},       {"636000", "VA"},       {"636062", "VI"},
    {"636045", "WA"},       {"636061", "WV"},       {"636031", "WI"},       {"636060", "WY"},
    {"604432", "AB", true}, {"636028", "BC", true}, {"636048", "MB", true}, {"636017", "NB", true},
    {"636016", "NL", true}, {"604434", "NT", true}, {"636013", "NS", true}, {"604433", "NU", true},
    {"636012", "ON", true}, {"604426", "PE", true}, {"604428", "QC", true}, {"636044", "SK", true},
    {"604429", "YT", true},
};

}  // namespace

std::optional<AamvaIssuer> aamvaIssuer(std::string_view number) {
  const auto issuer = std::ranges::find(kIssuers, number, &AamvaIssuer::number);
  if (issuer == std::end(kIssuers)) return std::nullopt;
  return *issuer;
}

}  // namespace corvana::engine
