#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include <openssl/bio.h>
#include <openssl/evp.h>

namespace corvana::app {

/// A larger file holds no key.
inline constexpr std::uint64_t kMostKeyFileBytes = 1 << 16;

using KeyPtr = std::shared_ptr<EVP_PKEY>;
using BioPtr = std::unique_ptr<BIO, decltype(&BIO_free)>;
using DigestPtr = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

inline KeyPtr owned(EVP_PKEY* key) {
  return {key, EVP_PKEY_free};
}

inline BioPtr readerOf(std::string_view text) {
  return {BIO_new_mem_buf(text.data(), static_cast<int>(text.size())), BIO_free};
}

inline DigestPtr newDigest() {
  return {EVP_MD_CTX_new(), EVP_MD_CTX_free};
}

inline const unsigned char* unsignedBytes(std::string_view bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

/// For keys behind a password: the library would ask the terminal otherwise.
inline int noPassword(char*, int, int, void*) {
  return -1;
}

}  // namespace corvana::app
