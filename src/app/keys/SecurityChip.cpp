#include "app/keys/SecurityChip.h"

#include <cstdlib>
#include <utility>

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/provider.h>

namespace corvana::app {

SecurityChip::SecurityChip(Library library, Provider usual, Provider chip)
    : library_(std::move(library)), usual_(std::move(usual)), chip_(std::move(chip)) {}

platform::Expected<std::shared_ptr<const SecurityChip>> SecurityChip::open() {
  // The chip's library would write a dozen lines to the console where one sentence is wanted.
  ::setenv("TSS2_LOG", "all+none", 0);
  Library library(OSSL_LIB_CTX_new(), OSSL_LIB_CTX_free);
  Provider usual(OSSL_PROVIDER_load(library.get(), "default"), OSSL_PROVIDER_unload);
  ERR_clear_error();
  Provider chip(OSSL_PROVIDER_load(library.get(), "tpm2"), OSSL_PROVIDER_unload);
  if (chip) {
    return std::shared_ptr<const SecurityChip>(
        new SecurityChip(std::move(library), std::move(usual), std::move(chip)));
  }
  const bool isMissing = ERR_GET_LIB(ERR_peek_error()) == ERR_LIB_DSO;
  return platform::failure(isMissing ? "OpenSSL's provider for security chips is missing: install "
                                       "tpm2-openssl."
                                     : "The machine's security chip (TPM 2.0) does not answer: "
                                       "check that it is switched on and that you may use it "
                                       "(/dev/tpmrm0, group tss).");
}

bool isKeyOfChip(const std::string& pem) {
  return pem.find("-----BEGIN TSS2 PRIVATE KEY-----") != std::string::npos;
}

}  // namespace corvana::app
