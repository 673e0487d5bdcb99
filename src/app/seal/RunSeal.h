#pragma once

#include <filesystem>
#include <memory>

#include "app/seal/EventSums.h"
#include "app/seal/SealLog.h"
#include "devices/film/FilmWitness.h"

namespace corvana::app {

/// The seal that grows beside the films of one run. Main queue.
class RunSeal {
 public:
  /// `session` is what each chain's first line says of the run.
  RunSeal(platform::RunLoop& loop, const std::filesystem::path& folder, const SigningKey& key,
          nlohmann::ordered_json session, SealLog::OnFault onFault);

  /// What the log of events tells of its lines.
  const std::shared_ptr<EventSums>& events() const { return events_; }
  /// Begins a chain for each film; may be called after this seal is gone, on any thread, one film
  /// at a time.
  devices::WitnessMaker witnesses() const;

 private:
  const std::shared_ptr<SealLog> log_;
  const std::shared_ptr<EventSums> events_ = std::make_shared<EventSums>();
  const nlohmann::ordered_json session_;
};

}  // namespace corvana::app
