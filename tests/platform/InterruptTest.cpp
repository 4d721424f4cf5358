#include "platform/Interrupt.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "platform/Platform.h"
#include "platform/StandardStreams.h"

namespace tavoren {
namespace {

void say(int signal) {
    std::fprintf(stderr, "handled %d\n", signal);
}

void interruptAgain(int) {
    kill(getpid(), SIGINT);
    pause();
}

void interrupt(void (*handler)(int)) {
    installInterruptHandler(handler);
    kill(getpid(), SIGINT);
    for (;;)
        pause();
}

TEST(InterruptDeathTest, EndsTheProcessAfterTheHandler) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(interrupt(say), testing::ExitedWithCode(2), "handled 2");
}

TEST(InterruptDeathTest, SecondInterruptEndsTheProcessAtOnce) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(interrupt(interruptAgain), testing::KilledBySignal(SIGINT), "");
}

TEST(StandardStreamsDeathTest, AreNeverTheNumbersOfOtherFiles) {
    const auto openFile = [] {
        for (const int stream : {0, 1, 2})
            close(stream);
        fillStandardStreams();
        _exit(open("/dev/null", O_RDONLY) > 2 && write(1, "x", 1) == 1 && read(0, nullptr, 0) == 0 ? 0 : 1);
    };
    EXPECT_EXIT(openFile(), testing::ExitedWithCode(0), "");
}

TEST(Platform, TokenTellsTheRights) {
    HANDLE token = nullptr;
    TOKEN_ELEVATION elevation{};
    DWORD length = 0;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    ASSERT_TRUE(GetTokenInformation(token, TokenElevation, &elevation, sizeof(elevation), &length));
    EXPECT_EQ(elevation.TokenIsElevated, 1U) << "no device in this folder can refuse anyone";
    EXPECT_FALSE(GetTokenInformation(token, TokenElevation, &elevation, 0, &length));
    EXPECT_TRUE(CloseHandle(token));
    EXPECT_FALSE(OpenProcessToken(nullptr, TOKEN_QUERY, &token));
}

}  // namespace
}  // namespace tavoren
