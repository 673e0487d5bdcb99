#include "app/keys/KeyKind.h"

#include <memory>

#include <openssl/bn.h>
#include <openssl/ecdsa.h>
#include <openssl/evp.h>

#include "app/keys/OpenSsl.h"

namespace corvana::app {
namespace {

using SignaturePtr = std::unique_ptr<ECDSA_SIG, decltype(&ECDSA_SIG_free)>;

bool isOnP256(const EVP_PKEY& key) {
  std::array<char, 32> group{};
  return EVP_PKEY_get_group_name(&key, group.data(), group.size(), nullptr) == 1 &&
         std::string_view(group.data()) == "prime256v1";
}

bool putNumber(const BIGNUM* number, std::string& bytes, std::size_t place) {
  return BN_bn2binpad(number, reinterpret_cast<unsigned char*>(&bytes[place]), kKeyNumberBytes) ==
         kKeyNumberBytes;
}

std::optional<std::string> joinedFromDer(std::string_view der) {
  const unsigned char* begin = unsignedBytes(der);
  const SignaturePtr signature(d2i_ECDSA_SIG(nullptr, &begin, static_cast<long>(der.size())),
                               ECDSA_SIG_free);
  std::string joined(kSignatureBytes, '\0');
  const bool isWhole = signature && putNumber(ECDSA_SIG_get0_r(signature.get()), joined, 0) &&
                       putNumber(ECDSA_SIG_get0_s(signature.get()), joined, kKeyNumberBytes);
  return isWhole ? std::optional(std::move(joined)) : std::nullopt;
}

std::string derFromJoined(std::string_view joined) {
  const auto number = [&](std::size_t place) {
    return BN_bin2bn(unsignedBytes(joined.substr(place)), kKeyNumberBytes, nullptr);
  };
  const SignaturePtr signature(ECDSA_SIG_new(), ECDSA_SIG_free);
  ECDSA_SIG_set0(signature.get(), number(0), number(kKeyNumberBytes));
  std::string bytes(static_cast<std::size_t>(i2d_ECDSA_SIG(signature.get(), nullptr)), '\0');
  auto* place = reinterpret_cast<unsigned char*>(bytes.data());
  i2d_ECDSA_SIG(signature.get(), &place);
  return bytes;
}

}  // namespace

const KeyKind* kindOf(const EVP_PKEY& key) {
  if (EVP_PKEY_is_a(&key, "ED25519") == 1) return &kEd25519;
  if (EVP_PKEY_is_a(&key, "EC") == 1 && isOnP256(key)) return &kP256;
  return nullptr;
}

std::optional<std::string> fromOpenSsl(const KeyKind& kind, std::string_view signature) {
  if (&kind == &kP256) return joinedFromDer(signature);
  if (signature.size() != kSignatureBytes) return std::nullopt;
  return std::string(signature);
}

std::string toOpenSsl(const KeyKind& kind, std::string_view signature) {
  return &kind == &kP256 ? derFromJoined(signature) : std::string(signature);
}

}  // namespace corvana::app
