#include "app/keys/SigningKey.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <openssl/pem.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/keys/OpenSsl.h"
#include "app/keys/SecurityChip.h"
#include "app/record/Files.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using platform::Expected;
using platform::failure;
using FilePtr = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// Of a signature of either kind as OpenSSL writes it: DER has up to eight bytes beside its
/// numbers.
constexpr std::size_t kMostSignatureBytes = kSignatureBytes + 8;

/// Others than the owner could sign with such a file.
Expected<void> checkRights(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  const fs::perms others = fs::perms::group_all | fs::perms::others_all;
  const bool isHidden = (status.permissions() & others) == fs::perms::none;
  if (error || fs::is_directory(status) || isHidden) return {};
  return failure("The private key " + inQuotes(file) +
                 " can be read by others: take their rights away (chmod 600), or make a new key "
                 "where they have read it.");
}

Expected<void> writePrivateKey(const KeyPtr& key, const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor < 0) {
    const int error = errno;
    return failure("The key " + inQuotes(file) + " can't be made: " +
                   (error == EEXIST
                        ? "there is a file of that name, which stays as it is; name another one."
                        : std::string(std::strerror(error)) + "; name another place."));
  }
  FilePtr stream(::fdopen(descriptor, "w"), std::fclose);
  const bool written =
      PEM_write_PrivateKey(stream.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1 &&
      std::fflush(stream.get()) == 0 && ::fsync(descriptor) == 0;
  if (written) return {};
  ::unlink(file.c_str());
  return failure("The key " + inQuotes(file) + " could not be written; check the disk.");
}

Expected<std::string> readPrivateFile(const fs::path& file) {
  std::error_code error;
  if (!fs::exists(file, error) && !error) {
    return failure("There is no private key " + inQuotes(file) +
                   ": make one with `videoid key new`.");
  }
  return checkRights(file).and_then([&] { return readFileOrPipe(file, kMostKeyFileBytes); });
}

}  // namespace

struct SigningKey::Private {
  std::shared_ptr<const SecurityChip> chip;  ///< null for a key that lies in its file
  KeyPtr key = nullptr;
  std::mutex mutex = {};  ///< a chip does one thing at a time

  OSSL_LIB_CTX* library() const { return chip ? chip->library() : nullptr; }
  const char* preference() const { return chip ? SecurityChip::kPreference : nullptr; }
};

SigningKey::SigningKey(std::shared_ptr<Private> key, PublicKey publicKey)
    : private_(std::move(key)), public_(std::move(publicKey)) {}

Expected<SigningKey> SigningKey::of(std::shared_ptr<Private> key, const fs::path& file) {
  return PublicKey::of(*key->key, file.string()).map([&](PublicKey publicKey) {
    return SigningKey(std::move(key), std::move(publicKey));
  });
}

Expected<SigningKey> SigningKey::create(const fs::path& file) {
  auto made = std::make_shared<Private>();
  made->key = owned(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"));
  if (!made->key) return failure("The machine gave no random numbers for a key; try again.");
  return writePrivateKey(made->key, file).and_then([&] { return of(std::move(made), file); });
}

Expected<SigningKey> SigningKey::load(const fs::path& file) {
  const auto pem = readPrivateFile(file);
  if (!pem) return tl::unexpected(pem.error());
  auto read = std::make_shared<Private>();
  if (isKeyOfChip(*pem)) {
    auto chip = SecurityChip::open();
    if (!chip) return tl::unexpected(chip.error());
    read->chip = std::move(*chip);
  }
  read->key = owned(PEM_read_bio_PrivateKey_ex(readerOf(*pem).get(), nullptr, noPassword, nullptr,
                                               read->library(), read->preference()));
  if (read->key) return of(std::move(read), file);
  return failure(inQuotes(file) +
                 (read->chip ? " holds a key that this machine's security chip does not take: it "
                               "is of use only with the chip that it was made in."
                             : " holds no private key that is readable without a password: give a "
                               "file that `videoid key new` made."));
}

bool SigningKey::isInChip() const {
  return private_->chip != nullptr;
}

Expected<std::string> SigningKey::sign(std::string_view bytes) const {
  const std::lock_guard lock(private_->mutex);
  const DigestPtr context = newDigest();
  std::string signature(kMostSignatureBytes, '\0');
  std::size_t length = signature.size();
  const bool isSigned =
      EVP_DigestSignInit_ex(context.get(), nullptr, public_.kind().digest, private_->library(),
                            private_->preference(), private_->key.get(), nullptr) == 1 &&
      EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &length,
                     unsignedBytes(bytes), bytes.size()) == 1;
  signature.resize(isSigned ? length : 0);
  if (auto made = fromOpenSsl(public_.kind(), signature)) return std::move(*made);
  return failure("The key " + public_.id() + " can't sign: check the machine's security chip.");
}

}  // namespace corvana::app
