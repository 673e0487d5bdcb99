#include "app/seal/SealLog.h"

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "app/keys/Jws.h"
#include "app/keys/Sha256.h"
#include "app/record/Files.h"
#include "devices/film/FilmFault.h"
#include "devices/system/DiskSync.h"
#include "engine/json/JsonText.h"

namespace corvana::app {

using nlohmann::ordered_json;

SealLog::SealLog(platform::RunLoop& loop, const std::filesystem::path& path, SigningKey key,
                 OnFault onFault)
    : loop_(loop),
      path_(path),
      key_(std::move(key)),
      onFault_(std::move(onFault)),
      file_(path, std::ios::app | std::ios::binary) {
  std::error_code ignored;  // A file system without permissions is no reason to stop.
  std::filesystem::permissions(
      path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ignored);
  if (!loop.isVirtual()) {
    diskQueue_ = loop.makeSerialQueue("SealDisk", platform::QualityOfService::utility);
  }
}

void SealLog::add(const ordered_json& content) {
  const std::lock_guard lock(mutex_);
  if (broken_) return;
  ordered_json line = {
      {"previous", last_.empty() ? ordered_json() : ordered_json(sha256Of(last_))}};
  line.update(content);
  const std::string text = engine::compactJson(line);
  const auto seal = sealDetached(key_, text);
  if (!seal) return fail(seal.error());
  last_ = ordered_json{{"signature", *seal}}.dump();
  // Both at once: a line without its signature is worth nothing.
  const std::string both = text + "\n" + last_ + "\n";
  errno = 0;
  file_ << both << std::flush;
  if (!file_) return fail(fileFault(errno == 0 ? EIO : errno));
  bytes_ += both.size();
  syncSoon();
}

platform::Fault SealLog::fileFault(int error) const {
  const platform::FaultCause cause = devices::fileFaultCause(error);
  return {
      "The seal can't be written to " + inQuotes(path_) + " any more (" + std::strerror(error) +
          "): " +
          (cause == platform::FaultCause::diskFull ? "free some space." : "check folder and disk."),
      cause};
}

void SealLog::fail(platform::Fault fault) {
  broken_ = true;
  file_.close();
  std::error_code ignored;  // The file may be gone altogether.
  std::filesystem::resize_file(path_, bytes_, ignored);
  loop_.mainQueue().async(
      [self = shared_from_this(), fault = std::move(fault)] { self->onFault_(fault); });
}

void SealLog::syncSoon() {
  if (!diskQueue_) return;
  // A disk that refuses refuses the film as well, which tells of it.
  diskQueue_->async([path = path_] { (void)devices::syncToDisk(path); });
}

}  // namespace corvana::app
