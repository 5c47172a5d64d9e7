// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <cstdlib>
#include <thread>
#include <type_traits>
#include <unistd.h>

#include <gmock/gmock.h>

#include "support.h"
#include "wire.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using namespace std::string_literals;
using HiviewDFX::HiLog;

// Each kind of item once, as literals: what the other tests put together of items is no better than these.
TEST(ParcelTest, ItemsHaveTheirBytes)
{
    Parcel parcel;
    EXPECT_TRUE(parcel.WriteBool(true) && parcel.WriteInt32(-2) && parcel.WriteInt64(0x0123456789ABCDEF));
    EXPECT_TRUE(parcel.WriteFloat(-1.5F) && parcel.WriteDouble(0.1) && parcel.WriteString("a\0cd"s));
    EXPECT_TRUE(parcel.WriteString16(u"a\u20AC") && parcel.WriteBuffer("abcde", 5));
    EXPECT_TRUE(parcel.WriteStrongParcelable(nullptr));
    EXPECT_EQ(BytesOf(parcel), "\1\0\0\0\xFE\xFF\xFF\xFF\xEF\xCD\xAB\x89\x67\x45\x23\x01"
                               "\0\0\xC0\xBF\x9A\x99\x99\x99\x99\x99\xB9\x3F\4\0\0\0a\0cd\0\0\0\0"
                               "\2\0\0\0a\0\xAC\x20\0\0\0\0abcde\0\0\0\0\0\0\0"s);
}

TEST(ParcelTest, WhatCannotGrowKeepsWhatItHas)
{
    RawParcel parcel("kept");
    EXPECT_TRUE(parcel.SetMaxCapacity(SIZE_MAX));
    for (size_t less = 0; less < 7; less++) {
        EXPECT_EQ(parcel.Extend(SIZE_MAX - less), nullptr);
    }
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // Whose allocators end the program instead.
    EXPECT_EQ(parcel.Extend(SIZE_MAX / 2), nullptr);
#endif
    EXPECT_FALSE(parcel.WriteBuffer(nullptr, 4));
    EXPECT_TRUE(parcel.WriteBuffer("more", 4));
    EXPECT_EQ(BytesOf(parcel), "keptmore");
}

// Writes its life down in `story`: F and L for the first and last strong reference, D for the end.
class Object : public virtual RefBase {
public:
    explicit Object(std::string& told) : story(told) {}

    ~Object() override
    {
        story += 'D';
    }

    void OnFirstStrongRef(const void* /* objectId */) override
    {
        story += 'F';
    }

    void OnLastStrongRef(const void* /* objectId */) override
    {
        story += 'L';
    }

    std::string& story;
};

class Base : public virtual RefBase {};

class Both : public Base, public Object {
public:
    using Object::Object;
};

static_assert(std::is_convertible_v<sptr<Both>, sptr<Object>> && std::is_convertible_v<sptr<Both>, wptr<RefBase>>);
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
    EXPECT_EQ(weakBase.promote(), nullptr);
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
    LogCapture log;
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_DEBUG, 0xD005610, "T", fmt, args...), 0);
    const std::string line = log.Take().at(0);
    EXPECT_EQ(line.substr(0, 17), "D 0 0xd005610 T: ");
    return line.substr(17);
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
        const HiviewDFX::HiLogLabel label = {LOG_INIT, 0xD012AB5, "LABEL"};
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
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
