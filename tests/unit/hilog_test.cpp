// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <cstdlib>
#include <map>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "hilog/log.h"

namespace {

using namespace std::string_literals;
using OHOS::HiviewDFX::HiLog;

std::string g_logged; // What the callback was told.

void Collect(LogType type, LogLevel level, unsigned int domain, const char* tag, const char* msg)
{
    g_logged += std::to_string(type) + " " + std::to_string(level) + " " + std::to_string(domain) + " " + tag + " " +
                msg + "\n";
}

// The message made from `fmt` and `args`; at debug level, since the callback gets what is not printed, too.
template <typename... Args>
std::string Format(const char* fmt, Args... args)
{
    g_logged.clear();
    LOG_SetCallback(Collect);
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_DEBUG, 1, "T", fmt, args...), 0);
    LOG_SetCallback(nullptr);
    return g_logged.substr(8, g_logged.size() - 9); // Behind "0 3 1 T ", without the line's end.
}

TEST(HilogTest, PlaceholdersPrintPublicArgumentsOnly)
{
    const char* none = nullptr;
    EXPECT_EQ(Format("[%{public}s] %{private}s %s %{secret}s %{}s %{public}d", "a", "b", "c", "d", "e", -1),
        "[a] <private> <private> <private> <private> -1");
    EXPECT_EQ(Format("%d%{private}lld%f%c%5.*p|%{public}u", 1, 2LL, 3.0, '4', 5, none, 6U),
        "<private><private><private><private><private>|6");
    EXPECT_EQ(Format("%{public}5d|%{public}-5d|%{public}05.1f|%{public}*d|%{public}.*s|%{public}#x", 42, 42, 2.25, -4,
                  7, 2, "abc", 255U),
        "   42|42   |002.2|7   |ab|0xff");
    EXPECT_EQ(Format("%{public}hhd %{public}hu %{public}ld %{public}zu %{public}llx", 257, 65537, -9000000000L,
                  ~size_t{0}, ~0ULL),
        "1 1 -9000000000 18446744073709551615 ffffffffffffffff");
    EXPECT_EQ(Format("%{public}c%% %{public}% %{public}.3s %{public}.1Lf", 'x', none, 0.5L), "x% % (nu 0.5");
}

TEST(HilogTest, HostileFormatsArePrintedAsTheyStand)
{
    int target = 7;
    EXPECT_EQ(Format("%{public}d %n %{public}n %s", 1, &target), "1 %n %{public}n %s");
    EXPECT_EQ(target, 7);
    for (const char* fmt : {"", "50%", "%{publi", "%{public}", "%1$s %s", "%y", "%Ld", "%hs", "%-+ #0-+ #0d", "%5"}) {
        EXPECT_EQ(Format(fmt), fmt);
    }
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_DEBUG, 1, "T", nullptr), -1);
    EXPECT_GE(Format("%{public}99999999999d%{public}.99999999999d", 1, 1).size(), 4096U);
}

TEST(HilogTest, LabelsCarryTheirFields)
{
    g_logged.clear();
    LOG_SetCallback(Collect);
    const OHOS::HiviewDFX::HiLogLabel label = {LOG_INIT, 0xD012AB5, "LABEL"};
    HiLog::Debug(label, "%{public}d", 1);
    HiLog::Info(label, "2");
    HiLog::Warn(label, "3");
    HiLog::Error(label, "%{public}s", "4");
    HiLog::Fatal({LOG_APP, 0, nullptr}, "5");
    LOG_SetCallback(nullptr);
    EXPECT_EQ(g_logged, "1 3 218180277 LABEL 1\n1 4 218180277 LABEL 2\n1 5 218180277 LABEL 3\n1 6 218180277 LABEL 4\n"
                        "0 7 0  5\n");
}

TEST(HilogTest, EveryLineIsOneWrite)
{
    int ends[2]; // A socket that keeps writes apart takes the place of standard error.
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
    const int saved = dup(STDERR_FILENO);
    dup2(ends[0], STDERR_FILENO);
    std::string expected;
    std::thread([&expected] {
        errno = ENOENT;
        for (const size_t size : {size_t{4096}, size_t{100000}}) {
            HiLogPrint(LOG_CORE, LOG_FATAL, 0, "T", "%{public}s", std::string(size, 'x').c_str());
        }
        EXPECT_EQ(errno, ENOENT);
        expected = "  " + std::to_string(getpid()) + "  " + std::to_string(gettid());
    }).join();
    dup2(saved, STDERR_FILENO);
    char line[65536] = "";
    const std::string time = "MM-DD HH:MM:SS.mmm";
    EXPECT_GT(recv(ends[1], line, sizeof(line) - 1, MSG_DONTWAIT), static_cast<ssize_t>(time.size()));
    EXPECT_EQ(line + time.size(), expected + " F C00000/T: " + std::string(4096, 'x') + "\n");
    EXPECT_EQ(recv(ends[1], line, sizeof(line), MSG_DONTWAIT), 8192);
    for (const int fd : {saved, ends[0], ends[1]}) {
        close(fd);
    }
}

void LogAtEveryLevel()
{
    for (int level = LOG_DEBUG; level <= LOG_FATAL; level++) {
        HiLogPrint(LOG_INIT, static_cast<LogLevel>(level), 0xD012AB5, "T", "m");
    }
}

TEST(HilogDeathTest, LinesFromTheLevelOfTheEnvironmentUpwardsArePrinted)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const auto& [name, printed] : std::map<std::string, std::string>{{"D", "DIWEF"}, {"I", "IWEF"}, {"W", "WEF"},
             {"E", "EF"}, {"F", "F"}, {"OFF", ""}, {"", "IWEF"}, {"d", "IWEF"}, {"DEBUG", "IWEF"}}) {
        setenv("HILOG_LEVEL", name.c_str(), 1);
        std::string lines = "^";
        for (const char letter : printed) {
            lines += "[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-9]{2}\\.[0-9]{3}  [0-9]+  [0-9]+ ";
            lines += letter + " I12ab5/T: m\n"s;
        }
        EXPECT_EXIT((LogAtEveryLevel(), _exit(0)), testing::ExitedWithCode(0), lines + "$");
    }
}

} // namespace
