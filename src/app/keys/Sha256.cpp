#include "app/keys/Sha256.h"

#include <openssl/evp.h>

#include "app/keys/Hexadecimal.h"

namespace corvana::app {
namespace {

constexpr std::size_t kDigestBytes = 32;

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
  const auto soFar = makeContext();
  EVP_MD_CTX_copy_ex(soFar.get(), context_.get());
  std::string digest(kDigestBytes, '\0');
  EVP_DigestFinal_ex(soFar.get(), reinterpret_cast<unsigned char*>(digest.data()), nullptr);
  return app::hexadecimal(digest);
}

std::string sha256BytesOf(std::string_view bytes) {
  std::string digest(kDigestBytes, '\0');
  EVP_Digest(bytes.data(), bytes.size(), reinterpret_cast<unsigned char*>(digest.data()), nullptr,
             EVP_sha256(), nullptr);
  return digest;
}

std::string sha256Of(std::string_view bytes) {
  return hexadecimal(sha256BytesOf(bytes));
}

}  // namespace corvana::app
