#include "app/report/PageHash.h"

#include <openssl/evp.h>

#include "app/keys/Sha256.h"

namespace corvana::app {

std::string toBase64(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                     reinterpret_cast<const unsigned char*>(bytes.data()),
                                     static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

std::string policyHash(std::string_view content) {
  return "'sha256-" + toBase64(sha256BytesOf(content)) + "'";
}

}  // namespace corvana::app
