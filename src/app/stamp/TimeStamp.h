#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "app/stamp/UtcTime.h"
#include "platform/foundation/Fault.h"

struct x509_store_st;

/// Time from a third party (RFC 3161): requests, answers, and whom to believe.
namespace corvana::app {

/// The authorities whose time stamps count.
class StampAuthorities {
 public:
  /// Reads a PEM file of certificates; the error is one sentence.
  static platform::Expected<StampAuthorities> load(const std::filesystem::path& file);

  x509_store_st* store() const { return store_.get(); }

 private:
  std::shared_ptr<x509_store_st> store_;
};

/// A request (DER) for a stamp of these bytes' SHA-256, with a nonce of its own, which asks for the
/// authority's certificates as well.
std::string makeStampRequest(std::string_view bytes);

/// When the authority saw these bytes, by its answer (DER) to that request. The answer must be
/// granted, for these bytes, with the request's nonce, and bring the certificate along. With
/// `trusted` (may be null) it must also be signed by one of these authorities with a certificate
/// that was made for time stamps and was valid at that time. The error ends a sentence that names
/// the answer.
platform::Expected<UtcTime> checkStamp(std::string_view answer, std::string_view request,
                                       std::string_view bytes, const StampAuthorities* trusted);

}  // namespace corvana::app
