#include "app/keys/Jws.h"

#include <algorithm>
#include <cctype>
#include <optional>

#include <nlohmann/json.hpp>

#include "app/keys/Base64Url.h"
#include "app/record/Files.h"

namespace corvana::app {
namespace {

using nlohmann::json;
using platform::Expected;
using platform::failure;

struct Parts {
  std::string_view header;  ///< as it was signed
  std::string signature;
};

/// The form has one spelling only.
std::optional<Parts> split(std::string_view seal) {
  const std::size_t points = seal.find("..");
  if (points == std::string_view::npos) return std::nullopt;
  auto signature = fromBase64Url(seal.substr(points + 2));
  if (!signature) return std::nullopt;
  return Parts{seal.substr(0, points), std::move(*signature)};
}

std::string signedBytes(std::string_view header, std::string_view payload) {
  return std::string(header) + "." + std::string(payload);
}

std::string wordOf(const json& header, const char* member) {
  return header.contains(member) && header[member].is_string() ? header[member].get<std::string>()
                                                               : "";
}

/// What a stranger wrote is printed only if no terminal can take it for a command.
std::string shown(const std::string& word) {
  constexpr std::size_t kLongest = 64;
  const bool isPlain = std::ranges::all_of(word, [](char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '-' || letter == '_';
  });
  return isPlain && !word.empty() && word.size() <= kLongest ? inQuotes(word) : "without a name";
}

Expected<void> checkHeader(const json& header) {
  for (const char* member : {"jwk", "jku", "x5c", "x5u", "x5t", "x5t#S256"}) {
    if (header.contains(member)) {
      return failure(std::string("brings a key of its own along (") + member +
                     "), which proves nothing");
    }
  }
  if (header.value("crit", json()) != json::array({"b64"}) ||
      header.value("b64", json()) != json(false)) {
    return failure("asks for what this program does not know (crit), or signs in another form");
  }
  return {};
}

}  // namespace

Expected<std::string> sealDetached(const SigningKey& key, std::string_view payload) {
  const nlohmann::ordered_json header = {{"alg", key.publicKey().kind().algorithm},
                                         {"kid", key.publicKey().id()},
                                         {"b64", false},
                                         {"crit", json::array({"b64"})}};
  const std::string encoded = toBase64Url(header.dump());
  return key.sign(signedBytes(encoded, payload)).map([&](const std::string& signature) {
    return encoded + ".." + toBase64Url(signature);
  });
}

Expected<const TrustedKey*> verifyDetached(std::string_view seal, std::string_view payload,
                                           const TrustedKeys& trusted) {
  const auto parts = split(seal);
  const auto text = parts ? fromBase64Url(parts->header) : std::nullopt;
  const auto header = text ? parseJson(*text, "header") : Expected<json>(json());
  if (!header || !header->is_object()) return failure("is not a seal: it was damaged or changed");
  if (const auto checked = checkHeader(*header); !checked) return tl::unexpected(checked.error());
  const std::string id = wordOf(*header, "kid");
  const TrustedKey* key = trusted.find(id);
  if (!key) return failure("was made with the key " + shown(id) + ", which is not trusted");
  const std::string algorithm = wordOf(*header, "alg");
  if (algorithm != key->key.kind().algorithm) {
    return failure("is made with the algorithm " + shown(algorithm) +
                   ", where the trusted key's is " + key->key.kind().algorithm);
  }
  if (key->key.verifies(signedBytes(parts->header, payload), parts->signature)) return key;
  return failure("does not fit what it seals: one of the two was changed");
}

}  // namespace corvana::app
