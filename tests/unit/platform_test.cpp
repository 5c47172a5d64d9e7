// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>

#include "ipc_object_stub.h"
#include "support.h"
#include "wire.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using namespace std::string_literals;

// What is written, what is read of any bytes, and what does not fit, the fuzz target of the parcel says.
TEST(ParcelTest, WhatIsNoSizeIsNotTaken)
{
    RawParcel parcel;
    for (size_t less = 0; less < 7; less++) {
        EXPECT_EQ(parcel.Extend(SIZE_MAX - less), nullptr);
    }
    EXPECT_FALSE(parcel.WriteBuffer(nullptr, 4) || parcel.WriteBuffer("", 0));
    EXPECT_TRUE(parcel.SetMaxCapacity(SIZE_MAX));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // Whose allocators end the program instead.
    EXPECT_EQ(parcel.Extend(SIZE_MAX / 2), nullptr);
#endif
    EXPECT_EQ(parcel.GetDataSize(), 0U);
}

// Writes its life down in `story`: F and L for the first and last strong reference, D for the end.
class Object : public virtual RefBase {
public:
    explicit Object(std::string& written) : story(written) {}

    ~Object() override { story += 'D'; }

    void OnFirstStrongRef(const void* /* objectId */) override { story += 'F'; }

    void OnLastStrongRef(const void* /* objectId */) override { story += 'L'; }

    std::string& story;
};

class Base : public virtual RefBase {};

class Both : public Base, public Object {
public:
    using Object::Object;
};

static_assert(!std::is_constructible_v<sptr<Both>, sptr<Object>> && !std::is_constructible_v<wptr<Both>, wptr<Object>>);

TEST(RefBaseTest, ObjectDiesWithItsLastStrongReference)
{
    std::string story;
    sptr<Both> both = sptr<Both>::MakeSptr(story);
    sptr<Both>& self = both;
    both = self;
    both = std::move(self);
    EXPECT_EQ(both->GetSptrRefCount(), 1);
    sptr<RefBase> base(sptr<Object>{both}); // Through the virtual bases.
    const wptr<Both> weak = both;
    const wptr<RefBase> weakBase = weak;
    EXPECT_EQ(both->GetSptrRefCount(), 2);
    both = nullptr;
    EXPECT_TRUE(weak.promote() == base && weakBase == base);
    base = new Base();
    EXPECT_EQ(story, "FLD");
    EXPECT_TRUE(weakBase.promote() == nullptr && weakBase == nullptr && weak == wptr<Both>());
    // The virtual base of a dead object must not be looked for.
    EXPECT_EQ(wptr<Base>(weak).GetRefPtr(), nullptr);

    Base counted; // A copy and an assignment leave the counts alone.
    const sptr<Base> copy = new Base(counted);
    counted = *copy;
    EXPECT_EQ(std::make_pair(copy->GetSptrRefCount(), counted.GetSptrRefCount()), std::make_pair(1, 0));
    Failing::nthNew = 1;
    EXPECT_EQ(sptr<Object>::MakeSptr(story), nullptr);
}

TEST(RefBaseTest, ReferencesOfSeveralThreadsRace)
{
    for (int round = 0; round < 1000; round++) {
        std::string story;
        auto* object = new Object(story);
        std::atomic<int> ready = 0;
        const auto meet = [&ready](int threads) {
            for (++ready; ready < threads;) {
                std::this_thread::yield();
            }
        };
        std::thread other([&] {
            meet(2);
            const wptr<Object> weak = object;
            meet(4);
            while (const sptr<Object> promoted = weak.promote()) {
                ASSERT_EQ(story, "F"); // Alive while it is held.
            }
        });
        meet(2);
        sptr<Object> strong = object;
        meet(4);
        strong = nullptr;
        other.join();
        ASSERT_EQ(story, "FLD");
    }
}

// The message made from `fmt` and `args`; at debug level, since the callback gets what is not printed, too.
template <typename... Args>
std::string Format(const char* fmt, Args... args)
{
    const Journal journal;
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_DEBUG, 0xD005610, "T", fmt, args...), 0);
    const std::string line = Journal::Take().at(0);
    EXPECT_EQ(line.substr(0, 17), "D 0 0xd005610 T: ");
    return line.substr(17);
}

TEST(HilogTest, PlaceholdersPrintPublicArgumentsOnly)
{
    const char* none = nullptr;
    EXPECT_EQ(Format("[%{public}s] %{private}s %s %{public}d %d|%{public}s", "a", "b", "c", -1, 2, none),
        "[a] <private> <private> -1 <private>|(null)");
    // From the first odd one on everything is printed as it stands, and nothing is ever written.
    int target = 7;
    EXPECT_EQ(Format("%{public}d %n %{public}d", 1, &target), "1 %n %{public}d");
    EXPECT_EQ(target, 7);
    for (const char* fmt : {"", "50%", "%{publi", "%{public}", "%{secret}s", "%{}d", "%1$s %s", "%%", "%ld", "%5d"}) {
        EXPECT_EQ(Format(fmt), fmt);
    }
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_DEBUG, 1, "T", nullptr), -1);
}

TEST(HilogDeathTest, LinesFromTheLevelOfTheEnvironmentUpwardsArePrinted)
{
    const auto logAtEveryLevel = [] {
        for (int level = LOG_DEBUG; level <= LOG_FATAL; ++level) {
            const char letter[] = {"DIWEF"[level - LOG_DEBUG], '\0'};
            HiLogPrint(LOG_INIT, static_cast<LogLevel>(level), 0xD012AB5, "LABEL", "%{public}s", letter);
        }
    };
    for (const auto& [name, printed] : {std::make_pair("D", "DIWEF"s), {"W", "WEF"}, {"F", "F"}, {"OFF", ""},
             {"", "IWEF"}, {"d", "IWEF"}, {"DEBUG", "IWEF"}}) {
        setenv("HILOG_LEVEL", name, 1);
        std::string lines = "^";
        for (const char letter : printed) {
            lines += "[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-9]{2}\\.[0-9]{3}  [0-9]+  [0-9]+ ";
            lines += letter + " I12ab5/LABEL: "s + letter + "\n";
        }
        InNewProcess(logAtEveryLevel, lines + "$");
    }
    const auto logMuch = [text = std::string(5000, 'x')] {
        HiLogPrint(LOG_CORE, LOG_FATAL, 0, text.c_str(), "\n\x1B%{public}s", text.c_str());
    };
    InNewProcess(logMuch, "^[^\n]* F C00000/x{31}: \\?\\?x{4093}\n$");
}

TEST(HilogDeathTest, LinesThatNobodyReadsAreLostAndCounted)
{
    setenv("HILOG_LEVEL", "F", 1);
    for (const std::string kind : {"pipe", "pipe that cannot be opened again", "socket", "terminal"}) {
        InNewProcess([&kind] {
            int ends[2];
            ASSERT_EQ(kind == "terminal" ? openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr)
                      : kind == "socket" ? socketpair(AF_UNIX, SOCK_STREAM, 0, ends)
                                         : pipe(ends),
                0);
            dup2(ends[1], STDERR_FILENO);
            const rlimit three{3, 3};
            ASSERT_EQ(kind == "pipe that cannot be opened again" ? setrlimit(RLIMIT_NOFILE, &three) : 0, 0);
            long lines = 0;
            const auto log = [&lines](const char* text) { lines += 1 + HiLogPrint(LOG_APP, LOG_FATAL, 0, "T", text); };
            while (lines < 5000) { // More than there is room for.
                log("a line of about a hundred bytes, with its head");
            }
            EXPECT_EQ(fcntl(ends[1], F_GETFL) & O_NONBLOCK, 0); // The flags are not this process's alone.
            std::string text;
            for (char part[4096]; text.find("last") == std::string::npos;) {
                pollfd ready{ends[0], POLLIN, 0};
                if (poll(&ready, 1, 0) == 1) {
                    text.append(part, static_cast<size_t>(read(ends[0], part, sizeof(part))));
                } else {
                    log("last");
                }
            }
            for (size_t at = 0; (at = text.find(" lines lost]", at)) != std::string::npos; at++) {
                lines += 1 - std::stol(text.substr(text.rfind('[', at) + 1)); // This has a line of its own.
            }
            EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), lines);
            close(ends[0]);
            log("to nobody"); // Which ends no process.
        });
    }
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
