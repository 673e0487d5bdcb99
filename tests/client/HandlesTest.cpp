#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <clocale>
#include <cstddef>
#include <thread>

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "client/Caller.h"

namespace corvana::tests {
namespace {

TEST(Calls, SayHowTheProgramEnded) {
  struct Case {
    const char* as;
    corvana_videoid_status status;
    const char* error;
  };
  for (const Case& expected : {
           Case{"refusal", CORVANA_VIDEOID_WRONG_USE, "There is no such card."},
           Case{"flow-error", CORVANA_VIDEOID_FLOW_ERROR, "It was cancelled."},
           Case{"lacking", CORVANA_VIDEOID_MACHINE_LACKS, "A model is missing."},
           Case{"loader", CORVANA_VIDEOID_MACHINE_LACKS,
                "videoid: libgstapp-1.0.so.0: cannot open shared object file: install the package "
                "corvana-videoid with all that it depends on."},
           Case{"other-exit", CORVANA_VIDEOID_WRONG_USE, "what a shell says\n"},
           Case{"abort", CORVANA_VIDEOID_CRASHED,
                "The program was ended by a signal (Aborted); it last said: a library gave up"},
           Case{"no-json", CORVANA_VIDEOID_CRASHED, "The program's answer is no JSON object."},
       }) {
    SCOPED_TRACE(expected.as);
    Caller caller;
    EXPECT_EQ(caller.capture(expected.as), expected.status);
    EXPECT_EQ(caller.answer["error"], expected.error);
  }
}

TEST(Calls, BringTheResultOfAFlowThatEndedWithAnError) {
  Caller caller;
  caller.capture("flow-error");
  EXPECT_EQ(caller.answer["result"]["error"]["cause"], "canceled");
}

TEST(Calls, NameAProgramThatIsNotThere) {
  Caller caller("/nowhere/videoid");
  EXPECT_EQ(caller.capture("result"), CORVANA_VIDEOID_MACHINE_LACKS);
  EXPECT_NE(caller.answer["error"].get<std::string>().find("/nowhere/videoid"), std::string::npos);
}

TEST(Calls, TellWhatIsTooMuchFromAProgramThatIsMissing) {
  Caller caller;
  EXPECT_EQ(caller.capture(std::string(200'000, 'x')), CORVANA_VIDEOID_WRONG_USE);
  EXPECT_NE(caller.answer["error"].get<std::string>().find("text-file"), std::string::npos);
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const rlimit none{3, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  EXPECT_EQ(caller.capture("result"), CORVANA_VIDEOID_MACHINE_LACKS);
  setrlimit(RLIMIT_NOFILE, &before);
  const auto error = caller.answer["error"].get<std::string>();
  EXPECT_EQ(error.find("install"), std::string::npos) << error;
}

/// From now on this thread and what it starts are refused a system call, as by the filter of a
/// container.
bool refuseForThisThread(unsigned int call, unsigned int fault) {
  std::array<sock_filter, 4> steps = {
      {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
       BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
       BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | fault),
       BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)}};
  const sock_fprog filter = {steps.size(), steps.data()};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

TEST(Calls, DoNotWaitForAProcessThatNobodyCanWatch) {
  for (const unsigned int fault : {ENOSYS, EPERM}) {
    Caller caller;
    corvana_videoid_status status = CORVANA_VIDEOID_RESULT;
    bool isRefused = false;
    std::thread([&] {
      isRefused = refuseForThisThread(SYS_pidfd_open, fault);
      if (isRefused) status = caller.capture("wait");
    }).join();
    if (!isRefused) GTEST_SKIP() << "no filters of system calls here";
    EXPECT_EQ(status, CORVANA_VIDEOID_MACHINE_LACKS);
    const auto error = caller.answer["error"].get<std::string>();
    EXPECT_NE(error.find("lets pidfd_open"), std::string::npos) << error;
    EXPECT_EQ(error.find("install"), std::string::npos) << error;
  }
}

TEST(Calls, WriteNumbersAsTheProgramReadsThemWhateverTheLocale) {
  if (!std::setlocale(LC_NUMERIC, "tr_TR.UTF-8")) GTEST_SKIP() << "no decimals with a comma here";
  Caller caller;
  corvana_videoid_follower follower = {};
  follower.size = sizeof follower;
  follower.on_picture = [](void*, const corvana_videoid_picture*) {};
  follower.pictures_per_second = 12.5;
  caller.capture("result", &follower);
  std::setlocale(LC_NUMERIC, "C");
  EXPECT_EQ(caller.answer["arguments"][2], "--caller-pictures=12.5") << caller.answer;
}

TEST(Calls, TakeMuchOutputAndDoNotWaitForWhatTheProgramStarted) {
  Caller caller;
  EXPECT_EQ(caller.capture("much"), CORVANA_VIDEOID_RESULT);
  ASSERT_EQ(caller.capture("orphan"), CORVANA_VIDEOID_RESULT);
  kill(caller.answer["orphan"].get<int>(), SIGKILL);
}

TEST(Calls, EndAlsoWhereTheCallerIgnoresItsChildren) {
  Caller caller;
  const auto before = signal(SIGCHLD, SIG_IGN);
  // The program may have gone before anybody could watch it, or after.
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(caller.capture("result"), CORVANA_VIDEOID_CRASHED);
    const auto error = caller.answer["error"].get<std::string>();
    EXPECT_NE(error.find("let nothing else wait"), std::string::npos) << error;
  }
  signal(SIGCHLD, before);
}

TEST(Calls, HandOnNoDescriptorOfTheCaller) {
  Caller caller;
  ASSERT_EQ(caller.capture("descriptors"), CORVANA_VIDEOID_RESULT);
  const auto alone = caller.answer["open"].get<std::string>();
  corvana_videoid_follower follower = {};
  follower.size = sizeof follower;
  follower.on_event = [](void*, const char*) {};
  ASSERT_EQ(caller.capture("descriptors", &follower), CORVANA_VIDEOID_RESULT);
  EXPECT_EQ(alone, "0 1 2 3");  // The last is the folder that lists them.
  EXPECT_EQ(caller.answer["open"], "0 1 2 3 4");
  EXPECT_EQ(caller.answer["caller"], "3");
}

TEST(Calls, AreNotReachedByWhatATerminalTellsTheCaller) {
  Caller caller;
  ASSERT_EQ(caller.capture("group"), CORVANA_VIDEOID_RESULT);
  EXPECT_NE(caller.answer["group"], getpgrp());
  EXPECT_EQ(caller.answer["group"], caller.answer["process"]);
}

TEST(Handles, RefuseWhatIsMissingOrOfAnotherSize) {
  Caller caller;
  const corvana_videoid_setup wrongSetup = {sizeof wrongSetup + 1, nullptr};
  corvana_videoid_follower wrongFollower = {};
  corvana_videoid* made = caller.handle;
  char* answer = nullptr;
  EXPECT_EQ(corvana_videoid_create(nullptr, nullptr), CORVANA_VIDEOID_BAD_ARGUMENT);
  EXPECT_EQ(corvana_videoid_create(&wrongSetup, &made), CORVANA_VIDEOID_BAD_ARGUMENT);
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(corvana_videoid_capture(caller.handle, "{}", &wrongFollower, &answer),
            CORVANA_VIDEOID_BAD_ARGUMENT);
  EXPECT_EQ(corvana_videoid_verify(caller.handle, nullptr, &answer), CORVANA_VIDEOID_BAD_ARGUMENT);
  EXPECT_EQ(corvana_videoid_enroll(nullptr, "{}", nullptr), CORVANA_VIDEOID_BAD_HANDLE);
  EXPECT_EQ(corvana_videoid_enroll(caller.handle, "{}", nullptr), CORVANA_VIDEOID_RESULT);
  EXPECT_EQ(answer, nullptr);
  corvana_videoid_free(nullptr);
}

TEST(Handles, AreKnownAfterTheirEnd) {
  corvana_videoid* first = nullptr;
  corvana_videoid* second = nullptr;
  ASSERT_EQ(corvana_videoid_create(nullptr, &first), CORVANA_VIDEOID_RESULT);
  EXPECT_EQ(corvana_videoid_destroy(first), CORVANA_VIDEOID_RESULT);
  ASSERT_EQ(corvana_videoid_create(nullptr, &second), CORVANA_VIDEOID_RESULT);
  EXPECT_NE(first, second);
  EXPECT_EQ(corvana_videoid_destroy(first), CORVANA_VIDEOID_BAD_HANDLE);
  EXPECT_EQ(corvana_videoid_cancel(first), CORVANA_VIDEOID_BAD_HANDLE);
  EXPECT_EQ(corvana_videoid_verify(first, "{}", nullptr), CORVANA_VIDEOID_BAD_HANDLE);
  EXPECT_EQ(corvana_videoid_destroy(second), CORVANA_VIDEOID_RESULT);
}

TEST(Handles, DoOneThingAtATimeAndCanBeCancelled) {
  Caller caller;
  std::atomic<bool> ended = false;
  corvana_videoid_status status = CORVANA_VIDEOID_RESULT;
  std::thread calling([&] {
    do
      status = caller.capture("wait");
    while (status == CORVANA_VIDEOID_BUSY);
    ended = true;
  });
  // Either call may find the other in its way; the first one stays until it is in this one's.
  while (corvana_videoid_verify(caller.handle, R"({"folder": "x"})", nullptr) !=
         CORVANA_VIDEOID_BUSY)
    std::this_thread::yield();
  EXPECT_EQ(corvana_videoid_destroy(caller.handle), CORVANA_VIDEOID_BUSY);
  // The stand-in needs a while to listen to signals; one that has not come so far just ends.
  while (!ended) {
    corvana_videoid_cancel(caller.handle);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  calling.join();
  EXPECT_EQ(status, CORVANA_VIDEOID_FLOW_ERROR) << caller.answer;
  EXPECT_EQ(corvana_videoid_cancel(caller.handle), CORVANA_VIDEOID_IDLE);
  EXPECT_EQ(caller.capture("result"), CORVANA_VIDEOID_RESULT);
}

TEST(Handles, HaveWordsForEachStatus) {
  for (int status = CORVANA_VIDEOID_RESULT; status <= CORVANA_VIDEOID_IDLE + 1; ++status)
    EXPECT_STRNE(corvana_videoid_status_text(static_cast<corvana_videoid_status>(status)), "");
}

}  // namespace
}  // namespace corvana::tests
