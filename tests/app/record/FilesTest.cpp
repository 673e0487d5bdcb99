#include <future>

#include <gtest/gtest.h>

#include "app/record/Files.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;

TEST(Files, SayWhatTheSystemHasAgainstThem) {
  const ScratchFolder scratch;
  const fs::path missing = scratch / "missing";
  const fs::path loop = scratch / "loop";
  fs::create_symlink("loop", loop);
  // It opens, and its first page is never there.
  const fs::path broken = "/proc/self/mem";
  const struct {
    platform::Expected<std::string> outcome;
    const char* sentence;
  } cases[] = {{app::readFile(missing, 10), "There is no file"},
               {app::readFile(scratch.path(), 10), "is not a file"},
               {app::readFile(broken, 10), "can't be read (Input/output error)"},
               {app::sha256(broken), "can't be read (Input/output error)"},
               {app::sha256(missing), "There is no file"},
               {app::readFile(loop, 10), "can't be read (Too many levels of symbolic links)"},
               {app::sha256(loop), "can't be read (Too many levels of symbolic links)"},
               {app::writeFile(missing / "new", "x").map([] { return std::string(); }),
                "could not be written (No such file or directory)"},
               {app::writeFile("/dev/full/new", "x").map([] { return std::string(); }),
                "could not be written (Not a directory)"}};
  for (const auto& [outcome, sentence] : cases) {
    ASSERT_FALSE(outcome) << sentence;
    EXPECT_NE(outcome.error().sentence.find(sentence), std::string::npos)
        << outcome.error().sentence;
  }
}

TEST(Files, OfSeveralThatTakeAFolderAtTheSameTimeOneGetsIt) {
  const ScratchFolder scratch;
  fs::create_directories(scratch / "empty");
  for (const char* name : {"empty", "new/one"}) {
    std::vector<std::future<platform::Expected<void>>> tries;
    tries.reserve(8);
    for (int i = 0; i < 8; ++i) {
      tries.push_back(std::async(std::launch::async, [&] {
        return app::takeFolder(scratch.path() / name, "first.json");
      }));
    }
    int taken = 0;
    for (auto& each : tries) {
      const auto outcome = each.get();
      if (outcome) {
        ++taken;
      } else {
        EXPECT_NE(outcome.error().sentence.find("name a"), std::string::npos)
            << outcome.error().sentence;
      }
    }
    EXPECT_EQ(taken, 1) << name;
    EXPECT_TRUE(fs::exists(scratch.path() / name / "first.json"));
  }
}

TEST(Files, LeaveNoDraftWhereTheyCannotBePut) {
  const ScratchFolder scratch;
  fs::create_directories(scratch / "place/within");
  EXPECT_FALSE(app::writeFile(scratch / "place", "x"));
  EXPECT_FALSE(fs::exists(scratch / "place.new"));
}

}  // namespace
}  // namespace corvana::tests
