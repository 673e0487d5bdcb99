#include "app/stamp/TimeStamp.h"

#include <array>
#include <ctime>

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/ts.h>
#include <openssl/x509.h>

#include "app/keys/Sha256.h"
#include "app/record/Files.h"

namespace corvana::app {
namespace {

using platform::Expected;
using platform::failure;

constexpr std::uint64_t kMostCertificateBytes = 1 << 20;

struct Release {
  void operator()(BIO* bio) const { BIO_free(bio); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(ASN1_INTEGER* number) const { ASN1_INTEGER_free(number); }
  void operator()(X509_ALGOR* algorithm) const { X509_ALGOR_free(algorithm); }
  void operator()(TS_MSG_IMPRINT* imprint) const { TS_MSG_IMPRINT_free(imprint); }
  void operator()(TS_REQ* request) const { TS_REQ_free(request); }
  void operator()(TS_RESP* answer) const { TS_RESP_free(answer); }
  void operator()(TS_VERIFY_CTX* context) const { TS_VERIFY_CTX_free(context); }
};

template <class T>
using Ptr = std::unique_ptr<T, Release>;

template <class T, class Encode>
std::string encoded(const T* object, Encode encode) {
  unsigned char* bytes = nullptr;
  const int length = encode(object, &bytes);
  if (length <= 0) return {};
  std::string text(reinterpret_cast<char*>(bytes), static_cast<std::size_t>(length));
  OPENSSL_free(bytes);
  return text;
}

/// Null unless the bytes are the object's only encoding: none of them can be changed unnoticed.
template <class T, class Decode, class Encode>
Ptr<T> decoded(std::string_view bytes, Decode decode, Encode encode) {
  const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
  Ptr<T> object(decode(nullptr, &at, static_cast<long>(bytes.size())));
  if (object && encoded(object.get(), encode) != bytes) object.reset();
  return object;
}

bool isFor(TS_MSG_IMPRINT* imprint, std::string_view bytes) {
  const ASN1_OCTET_STRING* message = TS_MSG_IMPRINT_get_msg(imprint);
  const ASN1_OBJECT* algorithm = TS_MSG_IMPRINT_get_algo(imprint)->algorithm;
  return OBJ_obj2nid(algorithm) == NID_sha256 &&
         std::string_view(reinterpret_cast<const char*>(ASN1_STRING_get0_data(message)),
                          static_cast<std::size_t>(ASN1_STRING_length(message))) ==
             sha256BytesOf(bytes);
}

Expected<void> checkStatus(TS_RESP* answer) {
  TS_STATUS_INFO* status = TS_RESP_get_status_info(answer);
  const long number = ASN1_INTEGER_get(TS_STATUS_INFO_get0_status(status));
  if (number != TS_STATUS_GRANTED || !TS_RESP_get_tst_info(answer)) {
    return failure("grants nothing: the authority answered with status " + std::to_string(number));
  }
  // Nobody signs these words.
  if (TS_STATUS_INFO_get0_text(status) || TS_STATUS_INFO_get0_failure_info(status)) {
    return failure("brings words along that nobody signed");
  }
  return {};
}

Expected<UtcTime> timeIn(TS_TST_INFO* info) {
  std::tm time{};
  if (ASN1_TIME_to_tm(TS_TST_INFO_get_time(info), &time) != 1) {
    return failure("names no time");
  }
  return UtcTime(std::chrono::seconds(timegm(&time)));
}

bool bringsCertificates(TS_RESP* answer) {
  PKCS7* token = TS_RESP_get_token(answer);
  return PKCS7_type_is_signed(token) == 1 && sk_X509_num(token->d.sign->cert) > 0;
}

std::string reasonOfLibrary() {
  const char* reason = ERR_reason_error_string(ERR_peek_last_error());
  ERR_clear_error();
  return reason ? reason : "unknown";
}

Expected<void> checkSignature(TS_RESP* answer, TS_REQ* request, UtcTime time,
                              const StampAuthorities& trusted) {
  const Ptr<TS_VERIFY_CTX> context(TS_REQ_to_TS_VERIFY_CTX(request, nullptr));
  if (!context) return failure("can't be checked");
  X509_STORE_up_ref(trusted.store());
  TS_VERIFY_CTX_set_store(context.get(), trusted.store());
  TS_VERIFY_CTX_add_flags(context.get(), TS_VFY_SIGNATURE);
  // The certificate may have run out since then.
  X509_VERIFY_PARAM_set_time(X509_STORE_get0_param(trusted.store()),
                             static_cast<std::time_t>(time.time_since_epoch().count()));
  ERR_clear_error();
  if (TS_RESP_verify_response(context.get(), answer) == 1) return {};
  return failure("is not signed by a trusted authority (" + reasonOfLibrary() + ")");
}

}  // namespace

Expected<StampAuthorities> StampAuthorities::load(const std::filesystem::path& file) {
  const auto text = readFileOrPipe(file, kMostCertificateBytes);
  if (!text) return tl::unexpected(text.error());
  StampAuthorities authorities;
  authorities.store_ = {X509_STORE_new(), X509_STORE_free};
  const Ptr<BIO> bio(BIO_new_mem_buf(text->data(), static_cast<int>(text->size())));
  int count = 0;
  while (const Ptr<X509> certificate{PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr)}) {
    X509_STORE_add_cert(authorities.store(), certificate.get());
    ++count;
  }
  ERR_clear_error();
  if (count > 0) return authorities;
  return failure(inQuotes(file) + " holds no certificate in PEM.");
}

std::string makeStampRequest(std::string_view bytes) {
  constexpr int kNonceBytes = 8;
  const Ptr<TS_REQ> request(TS_REQ_new());
  TS_REQ_set_version(request.get(), 1);
  const Ptr<X509_ALGOR> algorithm(X509_ALGOR_new());
  X509_ALGOR_set0(algorithm.get(), OBJ_nid2obj(NID_sha256), V_ASN1_NULL, nullptr);
  const Ptr<TS_MSG_IMPRINT> imprint(TS_MSG_IMPRINT_new());
  TS_MSG_IMPRINT_set_algo(imprint.get(), algorithm.get());
  std::string digest = sha256BytesOf(bytes);
  TS_MSG_IMPRINT_set_msg(imprint.get(), reinterpret_cast<unsigned char*>(digest.data()),
                         static_cast<int>(digest.size()));
  TS_REQ_set_msg_imprint(request.get(), imprint.get());
  std::uint64_t random = 0;
  RAND_bytes(reinterpret_cast<unsigned char*>(&random), kNonceBytes);
  const Ptr<ASN1_INTEGER> nonce(ASN1_INTEGER_new());
  ASN1_INTEGER_set_uint64(nonce.get(), random);
  TS_REQ_set_nonce(request.get(), nonce.get());
  TS_REQ_set_cert_req(request.get(), 1);
  return encoded(request.get(), i2d_TS_REQ);
}

Expected<UtcTime> checkStamp(std::string_view answerBytes, std::string_view requestBytes,
                             std::string_view bytes, const StampAuthorities* trusted) {
  const auto request = decoded<TS_REQ>(requestBytes, d2i_TS_REQ, i2d_TS_REQ);
  if (!request || !TS_REQ_get_nonce(request.get())) return failure("has no request that fits it");
  const auto answer = decoded<TS_RESP>(answerBytes, d2i_TS_RESP, i2d_TS_RESP);
  if (!answer) return failure("is no answer of a time stamp authority, or it was damaged");
  if (const auto granted = checkStatus(answer.get()); !granted) {
    return tl::unexpected(granted.error());
  }
  TS_TST_INFO* info = TS_RESP_get_tst_info(answer.get());
  if (!isFor(TS_TST_INFO_get_msg_imprint(info), bytes) ||
      !isFor(TS_REQ_get_msg_imprint(request.get()), bytes)) {
    return failure("is for other bytes than the seal of this record");
  }
  const ASN1_INTEGER* nonce = TS_TST_INFO_get_nonce(info);
  if (!nonce || ASN1_INTEGER_cmp(nonce, TS_REQ_get_nonce(request.get())) != 0) {
    return failure("answers another request: its nonce is another");
  }
  if (!bringsCertificates(answer.get())) return failure("brings no certificate along");
  const auto time = timeIn(info);
  if (!time || !trusted) return time;
  const auto checked = checkSignature(answer.get(), request.get(), *time, *trusted);
  if (!checked) return tl::unexpected(checked.error());
  return time;
}

}  // namespace corvana::app
