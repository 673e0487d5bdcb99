#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include "client/Child.h"

namespace corvana::client {
namespace {

/// Run as the program: tells its caller what the words say, as the real one tells events.
void tellAsProgram(const std::string& header, const std::string& bytes, bool attach) {
  iovec text = {const_cast<char*>(header.data()), header.size()};
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
  msghdr message = {};
  message.msg_iov = &text;
  message.msg_iovlen = 1;
  if (attach) {
    const int file = memfd_create("test", 0);
    ASSERT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* rights = CMSG_FIRSTHDR(&message);
    *rights = {CMSG_LEN(sizeof file), SOL_SOCKET, SCM_RIGHTS};
    std::memcpy(CMSG_DATA(rights), &file, sizeof file);
  }
  sendmsg(3, &message, 0);
}

constexpr const char* kRole = "CORVANA_TEST_ROLE";

/// Not a test of its own: what the process does that the next test starts.
TEST(Follow, AsTheProgram) {
  if (!getenv(kRole)) GTEST_SKIP() << "started by the next test alone";
  tellAsProgram("{\"event\":\"end\"}\n", "", false);
  tellAsProgram(R"({"event":"picture","t":1.5,"width":2,"height":1})", "abcdefgh", true);
  // A file that is too short, and sizes that nobody has, would be read beyond their end.
  tellAsProgram(R"({"event":"picture","width":2,"height":2})", "abcdefgh", true);
  tellAsProgram(R"({"event":"picture","width":-2,"height":-1})", "abcdefgh", true);
  tellAsProgram(R"({"event":"picture","width":1e300,"height":1e300})", "abcdefgh", true);
  tellAsProgram(R"({"event":"picture","width":"2"})", "abcdefgh", true);
  tellAsProgram("no JSON", "abcdefgh", true);
  tellAsProgram("last", "", false);
}

TEST(Follow, BringsEventsAndPicturesAndNoneThatIsFalse) {
  std::vector<std::string> events;
  std::vector<std::string> pictures;
  setenv(kRole, "program", 1);
  Child child;
  const ChildEnd end =
      child.run("/proc/self/exe", {"--gtest_filter=Follow.AsTheProgram"},
                {[&events](const std::string& json) { events.push_back(json); },
                 [&pictures](const corvana_videoid_picture& picture) {
                   EXPECT_EQ(picture.time, 1.5);
                   EXPECT_EQ(picture.size, sizeof picture);
                   const auto* bytes = reinterpret_cast<const char*>(picture.pixels);
                   pictures.emplace_back(bytes, 4U * picture.width * picture.height);
                 }});
  unsetenv(kRole);
  EXPECT_EQ(end.exitCode, 0) << end.output << end.errors;
  EXPECT_EQ(events, (std::vector<std::string>{"{\"event\":\"end\"}", "last"}));
  EXPECT_EQ(pictures, (std::vector<std::string>{"abcdefgh"}));
}

}  // namespace
}  // namespace corvana::client
