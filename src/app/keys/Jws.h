#pragma once

#include <string>
#include <string_view>

#include "app/keys/SigningKey.h"
#include "app/keys/TrustedKeys.h"

namespace corvana::app {

/// A JSON Web Signature (RFC 7515, EdDSA or ES256) in compact form, whose payload stands apart and
/// is signed as it is, without any encoding (RFC 7797): header, two points, signature.
platform::Expected<std::string> sealDetached(const SigningKey& key, std::string_view payload);

/// The key among the trusted ones that made `seal` of exactly this payload. The algorithm is the
/// trusted key's, never the header's choice; a header that asks for another one, for what this
/// program does not know, or that brings a key along is refused. The error ends a sentence that
/// names the seal.
platform::Expected<const TrustedKey*> verifyDetached(std::string_view seal,
                                                     std::string_view payload,
                                                     const TrustedKeys& trusted);

}  // namespace corvana::app
