#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

struct evp_pkey_st;

namespace corvana::app {

/// What a key signs with, by its names in JSON Web Keys and Signatures (RFC 7518, RFC 8037).
struct KeyKind {
  const char* algorithm;  ///< `alg`
  const char* type;       ///< `kty`
  const char* curve;      ///< `crv`
  const char* digest;  ///< of what is signed, by its name in OpenSSL; null where the kind has one
                       ///< of its own
};

/// Made by `videoid key new`: the same bytes always get the same signature.
inline constexpr KeyKind kEd25519{"EdDSA", "OKP", "Ed25519", nullptr};
/// ECDSA over P-256, which security chips (TPM 2.0) know.
inline constexpr KeyKind kP256{"ES256", "EC", "P-256", "SHA256"};
inline constexpr std::array kKeyKinds{&kEd25519, &kP256};

/// Of every number in a key or a signature of either kind.
inline constexpr std::size_t kKeyNumberBytes = 32;
inline constexpr std::size_t kSignatureBytes = 2 * kKeyNumberBytes;

/// Null for a key of another kind.
const KeyKind* kindOf(const evp_pkey_st& key);

/// A signature as JSON Web Signatures have it, 64 bytes, of one as OpenSSL writes it: that of ECDSA
/// is two numbers in DER there, and both one behind the other here. Absent when it is none.
std::optional<std::string> fromOpenSsl(const KeyKind& kind, std::string_view signature);
/// The way back, for 64 bytes.
std::string toOpenSsl(const KeyKind& kind, std::string_view signature);

}  // namespace corvana::app
