// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <string>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hilog/log.h"

namespace {

using namespace std::string_literals;
using OHOS::HiviewDFX::HiLog;

// The message made from `fmt` and `args`; at debug level, since the callback gets what is not printed, too.
template <typename... Args>
std::string Format(const char* fmt, Args... args)
{
    static std::string logged;
    LOG_SetCallback([](LogType type, LogLevel level, unsigned int domain, const char* tag, const char* message) {
        EXPECT_EQ(std::make_tuple(type, level, domain, std::string(tag)), std::make_tuple(LOG_APP, LOG_DEBUG, 1U, "T"));
        logged = message;
    });
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_DEBUG, 1, "T", fmt, args...), 0);
    LOG_SetCallback(nullptr);
    return logged;
}

TEST(HilogTest, PlaceholdersPrintPublicArgumentsOnly)
{
    const char* none = nullptr;
    EXPECT_EQ(Format("[%{public}s] %{private}s %s %{secret}s %{}s %{public}d", "a", "b", "c", "d", "e", -1),
        "[a] <private> <private> <private> <private> -1");
    EXPECT_EQ(Format("%d%{private}lld%f%c%5.*p|%{public}u", 1, 2LL, 3.0, '4', 5, none, 6U),
        "<private><private><private><private><private>|6");
    EXPECT_EQ(
        Format("%{public}-5d|%{public}05.1f|%{public}*d|%{public}.*s|%{public}#x", 42, 2.25, -4, 7, 2, "abc", 255U),
        "42   |002.2|7   |ab|0xff");
    EXPECT_EQ(Format("%{public}hhd %{public}hu %{public}ld %{public}zu %{public}llx", 257, 65537, -9000000000L,
                  ~size_t{0}, ~0ULL),
        "1 1 -9000000000 18446744073709551615 ffffffffffffffff");
    EXPECT_EQ(Format("%{public}c%% %{public}% %{public}.3s %{public}.1Lf", 'x', none, 0.5L), "x% % (nu 0.5");

    // Odd ones are printed as they stand, and nothing is ever written.
    int target = 7;
    EXPECT_EQ(Format("%{public}d %n %{public}n %s", 1, &target), "1 %n %{public}n %s");
    EXPECT_EQ(target, 7);
    for (const char* fmt : {"", "50%", "%{publi", "%{public}", "%1$s %s", "%y", "%Ld", "%hs", "%-+ #0-+ #0d", "%5"}) {
        EXPECT_EQ(Format(fmt), fmt);
    }
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_DEBUG, 1, "T", nullptr), -1);
    EXPECT_GE(Format("%{public}99999999999d%{public}.99999999999d", 1, 1).size(), 4096U);
}

TEST(HilogDeathTest, LinesFromTheLevelOfTheEnvironmentUpwardsArePrinted)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto logAtEveryLevel = [] {
        const OHOS::HiviewDFX::HiLogLabel label = {LOG_INIT, 0xD012AB5, "LABEL"};
        HiLog::Debug(label, "%{public}c", 'D');
        HiLog::Info(label, "%{public}c", 'I');
        HiLog::Warn(label, "%{public}c", 'W');
        HiLog::Error(label, "%{public}c", 'E');
        HiLog::Fatal(label, "%{public}c", 'F');
        _exit(0);
    };
    for (const auto& [name, printed] : {std::make_pair("D", "DIWEF"), {"I", "IWEF"}, {"W", "WEF"}, {"E", "EF"},
             {"F", "F"}, {"OFF", ""}, {"", "IWEF"}, {"d", "IWEF"}, {"DEBUG", "IWEF"}}) {
        setenv("HILOG_LEVEL", name, 1);
        std::string lines = "^";
        for (const char letter : std::string(printed)) {
            lines += "[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-9]{2}\\.[0-9]{3}  [0-9]+  [0-9]+ ";
            lines += letter + " I12ab5/LABEL: "s + letter + "\n";
        }
        EXPECT_EXIT(logAtEveryLevel(), testing::ExitedWithCode(0), lines + "$");
    }
    const auto logMuch = [](size_t size) {
        HiLogPrint(LOG_CORE, LOG_FATAL, 0, "T", "%{public}s", std::string(size, 'x').c_str());
        _exit(0);
    };
    EXPECT_EXIT(logMuch(4096), testing::ExitedWithCode(0), " F C00000/T: x{4096}\n$");
    EXPECT_EXIT(logMuch(100000), testing::ExitedWithCode(0), testing::SizeIs(8192));
}

} // namespace
