#include "app/seal/SmallRecord.h"

#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>

#include "app/keys/Sha256.h"
#include "app/record/EventLog.h"
#include "app/record/RunRecord.h"
#include "app/seal/RunSeal.h"
#include "devices/MediaTestSupport.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
namespace media = devices::test;

class Run {
 public:
  Run(const fs::path& folder, const app::SigningKey& key, const SmallRecordPlan& plan)
      : folder_(folder), key_(key), plan_(plan) {
    identity_.session = plan.session;
    films_.showTo(seal_.witnesses());
  }

  void record() {
    if (plan_.retried) {
      auto first = film(20);
      EXPECT_TRUE(first->finish());
      first.reset();
      fs::remove(partial());
    }
    auto last = film(plan_.frames);
    if (!plan_.ends) return leaveAsKilled();
    EXPECT_TRUE(last->finish());
    fs::rename(partial(), folder_ / "film.mp4");
    events_.add("end", {{"outcome", "error"}});
    EXPECT_FALSE(app::writeRunRecord(result(), {}, folder_).fault);
  }

 private:
  fs::path partial() const { return folder_ / "film.partial.mp4"; }

  std::shared_ptr<platform::AssetWriter> film(int frames) {
    auto film = *films_.make(partial(), std::nullopt, devices::audioSettings());
    const auto origin = loop_.now();
    platform::Duration heard{};
    for (int index = 0; index < frames; ++index) {
      loop_.advance(origin + media::frameTime(index) - loop_.now());
      if (index % 7 == 0) events_.add("prompt", {{"text", "frame " + std::to_string(index)}});
      auto picture = std::make_shared<platform::CMSampleBuffer>(
          *media::frame(index, plan_.shade + index % 50));
      picture->presentationTime = loop_.now();
      EXPECT_TRUE(film->appendVideo(picture));
      for (; heard + media::kBuffer <= media::frameTime(index); heard += media::kBuffer) {
        auto sound = std::make_shared<platform::CMSampleBuffer>(*media::sound(heard, 4000));
        sound->presentationTime = origin + heard;
        EXPECT_TRUE(film->appendAudio(sound));
      }
    }
    return film;
  }

  /// Seconds of the film that the chain tells of so far.
  double sealed() const {
    const std::string chain = bytesOf(folder_ / "seal.jsonl");
    const std::string mark = "\"t\":";
    const auto last = chain.rfind(mark);
    return last == std::string::npos ? 0 : std::strtod(&chain[last + mark.size()], nullptr);
  }

  /// What lies on the disk now is what a kill would leave, since all files only grow. The film's
  /// threads come to what they were given in their own time.
  void leaveAsKilled() const {
    while (sealed() < platform::inSeconds(media::frameTime(plan_.frames)) - 1)
      std::this_thread::yield();
    const fs::path kept = folder_.string() + ".killed";
    fs::copy(folder_, kept);
    fs::remove_all(folder_);
    fs::rename(kept, folder_);
  }

  app::RunRecord result() const {
    return {.outcome = tl::unexpected(corvana::IDError(corvana::IDError::Strings::canceled)),
            .devices = {{"Camera", false}, {}},
            .films = {"film.mp4"},
            .identity = identity_,
            .reference = reference_,
            .documents = app::sha256Of("kinds"),
            .text = app::sha256Of("text"),
            .key = key_};
  }

  const fs::path folder_;
  const app::SigningKey key_;
  const SmallRecordPlan plan_;
  app::RunIdentity identity_;
  const nlohmann::ordered_json reference_ = {{"reference.json", app::sha256Of("card")}};
  platform::VirtualRunLoop loop_;
  app::RunSeal seal_{
      loop_, folder_, key_,
      app::sessionToJson({.session = plan_.session, .subject = {}, .host = {}, .clock = nullptr},
                         {}, reference_, app::sha256Of("kinds"), app::sha256Of("text"),
                         nlohmann::ordered_json::object()),
      [](const platform::Fault& fault) { ADD_FAILURE() << fault.sentence; }};
  app::EventLog events_{loop_, folder_ / app::EventLog::kFileName,
                        [](const platform::Fault& fault) { ADD_FAILURE() << fault.sentence; },
                        seal_.events()};
  devices::FilmWriterFactory films_{loop_};
};

}  // namespace

void makeSmallRecord(const fs::path& folder, const app::SigningKey& key,
                     const SmallRecordPlan& plan) {
  fs::create_directories(folder);
  Run(folder, key, plan).record();
}

}  // namespace corvana::tests
