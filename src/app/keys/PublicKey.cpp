#include "app/keys/PublicKey.h"

#include <optional>
#include <utility>

#include <openssl/core_names.h>
#include <openssl/param_build.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include "app/keys/Base64Url.h"
#include "app/keys/OpenSsl.h"
#include "app/keys/Sha256.h"
#include "app/record/Files.h"

namespace corvana::app {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;
using platform::Expected;
using platform::failure;

/// Before both coordinates of a point that is written out (SEC 1, 2.3.3).
constexpr char kWholePoint = '\x04';

std::string edwardsPoint(EVP_PKEY& key) {
  std::string bytes(kKeyNumberBytes, '\0');
  std::size_t length = bytes.size();
  EVP_PKEY_get_raw_public_key(&key, reinterpret_cast<unsigned char*>(bytes.data()), &length);
  return bytes;
}

std::string coordinate(EVP_PKEY& key, const char* name) {
  BIGNUM* number = nullptr;
  EVP_PKEY_get_bn_param(&key, name, &number);
  std::string bytes(kKeyNumberBytes, '\0');
  BN_bn2binpad(number, reinterpret_cast<unsigned char*>(bytes.data()), kKeyNumberBytes);
  BN_free(number);
  return bytes;
}

/// What the thumbprint is made of: the names in the order of the alphabet.
ordered_json thumbprintMembers(EVP_PKEY& key, const KeyKind& kind) {
  ordered_json members{{"crv", kind.curve}, {"kty", kind.type}};
  if (&kind == &kEd25519) {
    members["x"] = toBase64Url(edwardsPoint(key));
  } else {
    members["x"] = toBase64Url(coordinate(key, OSSL_PKEY_PARAM_EC_PUB_X));
    members["y"] = toBase64Url(coordinate(key, OSSL_PKEY_PARAM_EC_PUB_Y));
  }
  return members;
}

Expected<KeyPtr> publicFromPem(const std::string& text, const std::string& name) {
  KeyPtr key = owned(PEM_read_bio_PUBKEY(readerOf(text).get(), nullptr, noPassword, nullptr));
  if (key) return key;
  if (text.find("PRIVATE KEY") != std::string::npos) {
    return failure(inQuotes(name) +
                   " holds a private key, which stays where it was made: give the public one, as "
                   "`videoid key show --pem` prints it.");
  }
  return failure(inQuotes(name) +
                 " holds no public key: give one as `videoid key show` prints it.");
}

/// The kind that a JSON Web Key says it is of; null for none.
const KeyKind* kindOfJwk(const json& jwk) {
  for (const KeyKind* kind : kKeyKinds) {
    const bool isIt = jwk.is_object() && jwk.value("kty", json()) == kind->type &&
                      jwk.value("crv", json()) == kind->curve;
    if (isIt) return kind;
  }
  return nullptr;
}

Expected<std::string> numberOf(const json& jwk, const char* member, const std::string& name) {
  const json value = jwk.value(member, json());
  auto bytes = value.is_string() ? fromBase64Url(value.get<std::string>()) : std::nullopt;
  if (bytes && bytes->size() == kKeyNumberBytes) return std::move(*bytes);
  return failure(inQuotes(name) + " holds a key whose " + member +
                 " is not 32 bytes in base64url: give keys as `videoid key show` prints them.");
}

KeyPtr edwardsKey(const std::string& x) {
  return owned(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, unsignedBytes(x), x.size()));
}

/// Null for numbers that are no point of the curve.
KeyPtr p256Key(const std::string& x, const std::string& y) {
  const std::string point = kWholePoint + x + y;
  const std::unique_ptr<OSSL_PARAM_BLD, decltype(&OSSL_PARAM_BLD_free)> builder(
      OSSL_PARAM_BLD_new(), OSSL_PARAM_BLD_free);
  OSSL_PARAM_BLD_push_utf8_string(builder.get(), OSSL_PKEY_PARAM_GROUP_NAME, "prime256v1", 0);
  OSSL_PARAM_BLD_push_octet_string(builder.get(), OSSL_PKEY_PARAM_PUB_KEY, point.data(),
                                   point.size());
  const std::unique_ptr<OSSL_PARAM, decltype(&OSSL_PARAM_free)> parameters(
      OSSL_PARAM_BLD_to_param(builder.get()), OSSL_PARAM_free);
  const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(
      EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr), EVP_PKEY_CTX_free);
  EVP_PKEY* key = nullptr;
  const bool isMade =
      EVP_PKEY_fromdata_init(context.get()) == 1 &&
      EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, parameters.get()) == 1;
  return owned(isMade ? key : nullptr);
}

}  // namespace

PublicKey::PublicKey(KeyPtr key, const KeyKind& kind)
    : key_(std::move(key)),
      kind_(&kind),
      id_(toBase64Url(sha256BytesOf(thumbprintMembers(*key_, kind).dump()))) {}

Expected<PublicKey> PublicKey::check(KeyPtr key, const std::string& name) {
  if (const KeyKind* kind = kindOf(*key)) return PublicKey(std::move(key), *kind);
  const char* other = EVP_PKEY_get0_type_name(key.get());
  return failure(inQuotes(name) + " holds a key of another kind (" + (other ? other : "unknown") +
                 "): make an Ed25519 key with `videoid key new`, or one of P-256 in a security "
                 "chip.");
}

Expected<PublicKey> PublicKey::load(const std::filesystem::path& file) {
  const auto text = readFileOrPipe(file, kMostKeyFileBytes);
  if (!text) return tl::unexpected(text.error());
  if (!text->starts_with("{")) {
    return publicFromPem(*text, file.string()).and_then([&](const KeyPtr& key) {
      return check(key, file.string());
    });
  }
  const auto jwk = parseJson(*text, file.string());
  if (!jwk) return tl::unexpected(jwk.error());
  return fromJwk(*jwk, file.string());
}

Expected<PublicKey> PublicKey::fromJwk(const json& jwk, const std::string& name) {
  const KeyKind* kind = kindOfJwk(jwk);
  if (!kind) {
    return failure(inQuotes(name) +
                   " holds a key that is neither an Ed25519 key (kty OKP, crv Ed25519) nor one of "
                   "P-256 (kty EC, crv P-256): give keys as `videoid key show` prints them.");
  }
  if (jwk.contains("d")) {
    return failure(inQuotes(name) +
                   " holds a private key (d), which stays where it was made: give only public "
                   "ones.");
  }
  const auto x = numberOf(jwk, "x", name);
  if (!x) return tl::unexpected(x.error());
  const auto y = kind == &kP256 ? numberOf(jwk, "y", name) : Expected<std::string>();
  if (!y) return tl::unexpected(y.error());
  KeyPtr key = kind == &kP256 ? p256Key(*x, *y) : edwardsKey(*x);
  if (!key) return failure(inQuotes(name) + " holds a key that can't be used.");
  return PublicKey(std::move(key), *kind);
}

Expected<PublicKey> PublicKey::of(EVP_PKEY& privateKey, const std::string& name) {
  const BioPtr bio(BIO_new(BIO_s_mem()), BIO_free);
  KeyPtr key;
  if (i2d_PUBKEY_bio(bio.get(), &privateKey) == 1) key = owned(d2i_PUBKEY_bio(bio.get(), nullptr));
  if (!key) return failure(inQuotes(name) + " holds a key whose public half can't be read.");
  return check(std::move(key), name);
}

bool PublicKey::verifies(std::string_view bytes, std::string_view signature) const {
  if (signature.size() != kSignatureBytes) return false;
  const std::string written = toOpenSsl(*kind_, signature);
  const DigestPtr context = newDigest();
  return EVP_DigestVerifyInit_ex(context.get(), nullptr, kind_->digest, nullptr, nullptr,
                                 key_.get(), nullptr) == 1 &&
         EVP_DigestVerify(context.get(), unsignedBytes(written), written.size(),
                          unsignedBytes(bytes), bytes.size()) == 1;
}

ordered_json PublicKey::jwk() const {
  const ordered_json members = thumbprintMembers(*key_, *kind_);
  ordered_json jwk{{"kty", members["kty"]}, {"crv", members["crv"]}, {"x", members["x"]}};
  if (members.contains("y")) jwk["y"] = members["y"];
  jwk.update({{"kid", id_}, {"alg", kind_->algorithm}, {"use", "sig"}});
  return jwk;
}

std::string PublicKey::pem() const {
  const BioPtr bio(BIO_new(BIO_s_mem()), BIO_free);
  PEM_write_bio_PUBKEY(bio.get(), key_.get());
  char* text = nullptr;
  const long length = BIO_get_mem_data(bio.get(), &text);
  return {text, static_cast<std::size_t>(length)};
}

}  // namespace corvana::app
