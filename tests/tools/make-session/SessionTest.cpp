#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "Script.h"
#include "SessionCache.h"
#include "SessionMaker.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using tests::bytesOf;
using tests::writeBytes;

/// A third of a second in which the card is on its way in.
fs::path make(const fs::path& folder, std::uint64_t seed) {
  auto script = session::parseScript(
      R"({"text": "hello", "person": {"portrait": "portraits/person_a.jpg"},
          "time": {"front": 0, "length": 0.34}, "faults": {"silence": true}})",
      SAMPLES);
  script->seed = seed;
  fs::create_directories(folder);
  const auto made = session::makeSession(*script, FACE_MODELS, folder, [](auto, auto) {});
  EXPECT_TRUE(made) << made.error();
  return folder;
}

TEST(Session, IsTheSameForTheSameSeedOnly) {
  const tests::ScratchFolder scratch;
  const fs::path first = make(scratch / "first", 1);
  const fs::path again = make(scratch / "again", 1);
  const fs::path other = make(scratch / "other", 2);
  for (const std::string& name : session::kSessionFiles) {
    EXPECT_EQ(bytesOf(first / name), bytesOf(again / name)) << name;
    const bool seeded = name != "text.txt";
    EXPECT_EQ(bytesOf(first / name) != bytesOf(other / name), seeded) << name;
  }
}

TEST(Session, IsKeptUnderWhatItWasMadeFrom) {
  const tests::ScratchFolder scratch;
  const fs::path file = scratch / "portrait";
  writeBytes(file, "one");
  const auto key = session::sessionKey("script", 1, {file});
  ASSERT_TRUE(key);
  EXPECT_NE(*key, *session::sessionKey("script", 2, {file}));
  EXPECT_NE(*key, *session::sessionKey("scripts", 1, {file}));
  writeBytes(file, "two");
  EXPECT_NE(*key, *session::sessionKey("script", 1, {file}));

  const session::SessionCache cache(scratch / "cache");
  const auto work = cache.workFolder(*key);
  ASSERT_TRUE(work);
  for (const std::string& name : session::kSessionFiles) {
    EXPECT_FALSE(cache.has(*key));
    writeBytes(*work / name, name);
  }
  ASSERT_TRUE(cache.keep(*work, *key));
  EXPECT_TRUE(cache.has(*key));
  ASSERT_TRUE(cache.deliver(*key, scratch / "out"));
  EXPECT_EQ(bytesOf(scratch / "out" / "front.png"), "front.png");
}

}  // namespace
}  // namespace corvana::tests
