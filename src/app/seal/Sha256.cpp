#include "app/seal/Sha256.h"

#include <array>

#include <openssl/evp.h>

namespace corvana::app {
namespace {

std::shared_ptr<EVP_MD_CTX> makeContext() {
  return {EVP_MD_CTX_new(), EVP_MD_CTX_free};
}

}  // namespace

Sha256::Sha256() : context_(makeContext()) {
  EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr);
}

void Sha256::add(const void* bytes, std::size_t count) {
  EVP_DigestUpdate(context_.get(), bytes, count);
}

std::string Sha256::hexadecimal() const {
  constexpr const char* kDigits = "0123456789abcdef";
  const auto soFar = makeContext();
  EVP_MD_CTX_copy_ex(soFar.get(), context_.get());
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int length = 0;
  EVP_DigestFinal_ex(soFar.get(), digest.data(), &length);
  std::string text;
  for (unsigned int i = 0; i < length; ++i) {
    text += kDigits[digest[i] >> 4];
    text += kDigits[digest[i] & 15];
  }
  return text;
}

std::string sha256Of(std::string_view bytes) {
  Sha256 sum;
  sum.add(bytes);
  return sum.hexadecimal();
}

}  // namespace corvana::app
