#include "app/record/RunIdentity.h"

#include <array>

#include <openssl/rand.h>
#include <sys/timex.h>
#include <unistd.h>

#include "app/keys/Hexadecimal.h"

namespace corvana::app {
namespace {

using nlohmann::ordered_json;

ClockReading readSystemClock() {
  timex state{};
  const bool isSynchronised = adjtimex(&state) >= 0 && (state.status & STA_UNSYNC) == 0;
  return {std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()),
          isSynchronised};
}

std::string hostName() {
  std::array<char, 256> name{};
  gethostname(name.data(), name.size() - 1);
  return name.data();
}

/// A random UUID (RFC 4122, version 4).
std::string newSessionId() {
  std::array<unsigned char, 16> bytes{};
  RAND_bytes(bytes.data(), static_cast<int>(bytes.size()));
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0f) | 0x40);
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3f) | 0x80);
  const std::string digits =
      hexadecimal({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  std::string id;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i == 8 || i == 12 || i == 16 || i == 20) id += '-';
    id += digits[i];
  }
  return id;
}

}  // namespace

RunIdentity identify(const std::optional<std::string>& session,
                     const std::optional<std::string>& subject, bool timeIsVirtual) {
  RunIdentity identity{session, subject, {}, nullptr};
  if (timeIsVirtual) return identity;
  if (!session) identity.session = newSessionId();
  identity.host = hostName();
  identity.clock = readSystemClock;
  return identity;
}

ordered_json identityToJson(const RunIdentity& identity, const std::optional<ClockReading>& start,
                            const std::optional<ClockReading>& end) {
  ordered_json object = ordered_json::object();
  if (identity.session) object["session"]["id"] = *identity.session;
  if (identity.subject) object["session"]["subject"] = *identity.subject;
  if (identity.host) object["host"] = *identity.host;
  if (!start || !end) return object;
  object["clock"] = {{"source", "system"},
                     {"synchronised", start->isSynchronised && end->isSynchronised},
                     {"start", formatUtc(start->time)},
                     {"end", formatUtc(end->time)}};
  return object;
}

}  // namespace corvana::app
