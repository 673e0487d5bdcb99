#include "app/keys/Keys.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/keys/Base64Url.h"
#include "app/keys/Sha256.h"
#include "app/record/Files.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using platform::Expected;
using KeyPtr = std::shared_ptr<EVP_PKEY>;
using FilePtr = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
using BioPtr = std::unique_ptr<BIO, decltype(&BIO_free)>;

constexpr std::size_t kKeyBytes = 32;
constexpr std::size_t kSignatureBytes = 64;
constexpr std::uint64_t kMostKeyFileBytes = 1 << 16;

/// The library would ask the terminal otherwise.
int noPassword(char*, int, int, void*) {
  return -1;
}

KeyPtr owned(EVP_PKEY* key) {
  return {key, EVP_PKEY_free};
}

bool isEd25519(const KeyPtr& key) {
  return EVP_PKEY_is_a(key.get(), "ED25519") == 1;
}

tl::unexpected<platform::Fault> anotherKind(const std::string& name, const KeyPtr& key) {
  const char* kind = EVP_PKEY_get0_type_name(key.get());
  return platform::failure(inQuotes(name) + " holds a key of another kind (" +
                           (kind ? kind : "unknown") +
                           "): make an Ed25519 key with `videoid key new`.");
}

Expected<KeyPtr> publicFromPem(const std::string& text, const std::string& name) {
  const BioPtr bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())), BIO_free);
  KeyPtr key = owned(PEM_read_bio_PUBKEY(bio.get(), nullptr, noPassword, nullptr));
  if (key) return key;
  if (text.find("PRIVATE KEY") != std::string::npos) {
    return platform::failure(inQuotes(name) +
                             " holds a private key, which stays where it was made: give the "
                             "public one, as `videoid key show --pem` prints it.");
  }
  return platform::failure(inQuotes(name) +
                           " holds no public key: give one as `videoid key show` prints it.");
}

const unsigned char* unsignedBytes(std::string_view bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

/// Others than the owner could sign with such a file.
Expected<void> checkRights(const fs::path& file) {
  std::error_code error;
  const fs::perms rights = fs::status(file, error).permissions();
  const fs::perms others = fs::perms::group_all | fs::perms::others_all;
  if (error || (rights & others) == fs::perms::none) return {};
  return platform::failure("The private key " + inQuotes(file) +
                           " can be read by others: take their rights away (chmod 600), or make "
                           "a new key where they have read it.");
}

Expected<void> writePrivateKey(const KeyPtr& key, const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor < 0) {
    const int error = errno;
    return platform::failure(
        "The key " + inQuotes(file) + " can't be made: " +
        (error == EEXIST ? "there is a file of that name, which stays as it is; name another one."
                         : std::string(std::strerror(error)) + "; name another place."));
  }
  FilePtr stream(::fdopen(descriptor, "w"), std::fclose);
  const bool written =
      PEM_write_PrivateKey(stream.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1 &&
      std::fflush(stream.get()) == 0 && ::fsync(descriptor) == 0;
  if (written) return {};
  ::unlink(file.c_str());
  return platform::failure("The key " + inQuotes(file) + " could not be written; check the disk.");
}

}  // namespace

PublicKey::PublicKey(KeyPtr key) : key_(std::move(key)) {
  const std::string members = R"({"crv":"Ed25519","kty":"OKP","x":")" + x() + "\"}";
  id_ = toBase64Url(sha256BytesOf(members));
}

std::string PublicKey::x() const {
  std::string bytes(kKeyBytes, '\0');
  std::size_t length = bytes.size();
  EVP_PKEY_get_raw_public_key(key_.get(), reinterpret_cast<unsigned char*>(bytes.data()), &length);
  return toBase64Url(bytes);
}

Expected<PublicKey> PublicKey::load(const fs::path& file) {
  const auto text = readFile(file, kMostKeyFileBytes);
  if (!text) return tl::unexpected(text.error());
  if (text->starts_with("{")) {
    const auto jwk = parseJson(*text, file.string());
    if (!jwk) return tl::unexpected(jwk.error());
    return fromJwk(*jwk, file.string());
  }
  auto key = publicFromPem(*text, file.string());
  if (!key) return tl::unexpected(key.error());
  if (!isEd25519(*key)) return anotherKind(file.string(), *key);
  return PublicKey(*key);
}

Expected<PublicKey> PublicKey::fromJwk(const nlohmann::json& jwk, const std::string& name) {
  const auto has = [&](const char* member, const char* value) {
    return jwk.is_object() && jwk.contains(member) && jwk[member] == value;
  };
  if (!has("kty", "OKP") || !has("crv", "Ed25519") || !jwk.contains("x") || !jwk["x"].is_string()) {
    return platform::failure(
        inQuotes(name) +
        " holds a key that is no public Ed25519 key (kty OKP, crv Ed25519, x): give "
        "keys as `videoid key show` prints them.");
  }
  if (jwk.contains("d")) {
    return platform::failure(inQuotes(name) +
                             " holds a private key (d), which stays where it was made: give only "
                             "public ones.");
  }
  const auto bytes = fromBase64Url(jwk["x"].get<std::string>());
  if (!bytes || bytes->size() != kKeyBytes) {
    return platform::failure(inQuotes(name) + " holds a key whose x is not 32 bytes in base64url.");
  }
  const KeyPtr key = owned(
      EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, unsignedBytes(*bytes), bytes->size()));
  if (!key) return platform::failure(inQuotes(name) + " holds a key that can't be used.");
  return PublicKey(key);
}

bool PublicKey::verifies(std::string_view bytes, std::string_view signature) const {
  if (signature.size() != kSignatureBytes) return false;
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                        EVP_MD_CTX_free);
  return EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key_.get()) == 1 &&
         EVP_DigestVerify(context.get(), unsignedBytes(signature), signature.size(),
                          unsignedBytes(bytes), bytes.size()) == 1;
}

nlohmann::ordered_json PublicKey::jwk() const {
  return {{"kty", "OKP"}, {"crv", "Ed25519"}, {"x", x()},
          {"kid", id_},   {"alg", "EdDSA"},   {"use", "sig"}};
}

std::string PublicKey::pem() const {
  const BioPtr bio(BIO_new(BIO_s_mem()), BIO_free);
  PEM_write_bio_PUBKEY(bio.get(), key_.get());
  char* text = nullptr;
  const long length = BIO_get_mem_data(bio.get(), &text);
  return {text, static_cast<std::size_t>(length)};
}

Expected<SigningKey> SigningKey::create(const fs::path& file) {
  const KeyPtr key = owned(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"));
  if (!key) return platform::failure("The machine gave no random numbers for a key; try again.");
  if (const auto written = writePrivateKey(key, file); !written) {
    return tl::unexpected(written.error());
  }
  return SigningKey(key);
}

Expected<SigningKey> SigningKey::load(const fs::path& file) {
  std::error_code error;
  if (!fs::is_regular_file(file, error)) {
    return platform::failure("There is no private key " + inQuotes(file) +
                             ": make one with `videoid key new`.");
  }
  if (const auto checked = checkRights(file); !checked) return tl::unexpected(checked.error());
  const FilePtr stream(std::fopen(file.c_str(), "r"), std::fclose);
  if (!stream) {
    return platform::failure("The private key " + inQuotes(file) +
                             " can't be read: check its rights.");
  }
  const KeyPtr key = owned(PEM_read_PrivateKey(stream.get(), nullptr, noPassword, nullptr));
  if (!key) {
    return platform::failure(inQuotes(file) +
                             " holds no private key that is readable without a password: give a "
                             "file that `videoid key new` made.");
  }
  if (!isEd25519(key)) return anotherKind(file.string(), key);
  return SigningKey(key);
}

std::string SigningKey::sign(std::string_view bytes) const {
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                        EVP_MD_CTX_free);
  std::string signature(kSignatureBytes, '\0');
  std::size_t length = signature.size();
  EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, public_.key_.get());
  EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &length,
                 unsignedBytes(bytes), bytes.size());
  return signature;
}

}  // namespace corvana::app
