#include "app/seal/RunSeal.h"

#include <utility>

#include "app/seal/FilmSeal.h"

namespace corvana::app {
namespace {

constexpr int kFormatVersion = 1;
constexpr platform::Duration kPeriod = std::chrono::milliseconds(250);
/// A chip may take some tenths of a second for a signature, and the film waits for it.
constexpr platform::Duration kPeriodOfChip = std::chrono::seconds(1);

}  // namespace

RunSeal::RunSeal(platform::RunLoop& loop, const std::filesystem::path& folder,
                 const SigningKey& key, nlohmann::ordered_json session, SealLog::OnFault onFault)
    : log_(std::make_shared<SealLog>(loop, folder / SealLog::kFileName, key, std::move(onFault))),
      session_(std::move(session)) {}

devices::WitnessMaker RunSeal::witnesses() const {
  return [log = log_, events = events_, session = session_, chain = 0]() mutable {
    nlohmann::ordered_json head = {{"formatVersion", kFormatVersion},
                                   {"chain", ++chain},
                                   {"key", log->key().publicKey().id()}};
    head.update(session);
    const auto period = log->key().isInChip() ? kPeriodOfChip : kPeriod;
    return std::make_shared<FilmSeal>(log, events, std::move(head), period);
  };
}

}  // namespace corvana::app
