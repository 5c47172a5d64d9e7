// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <thread>
#include <type_traits>

#include <gtest/gtest.h>

#include "samples.h"
#include "string_ex.h"
#include "support.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using namespace std::string_literals;

// An item must make exactly `bytes`, and be read from no less of them than all but the padding.
template <typename Argument, typename T>
void ExpectItem(bool (Parcel::*write)(Argument), bool (Parcel::*read)(T&), const T& value, const std::string& bytes,
    size_t padding = 0)
{
    Parcel written;
    EXPECT_TRUE((written.*write)(value));
    EXPECT_EQ(BytesOf(written), bytes);
    for (size_t size = 0; size <= bytes.size(); size++) {
        RawParcel cut(bytes.substr(0, size));
        const bool isWhole = size + padding >= bytes.size();
        T got{};
        EXPECT_EQ((cut.*read)(got), isWhole);
        EXPECT_EQ(got, isWhole ? value : T{});
        EXPECT_EQ(cut.GetReadPosition(), isWhole ? size : 0);
    }
}

TEST(ParcelTest, ItemsHaveTheirBytesAndCutOnesAreRefused)
{
    ExpectItem(&Parcel::WriteBool, &Parcel::ReadBool, false, "\0\0\0\0"s);
    ExpectItem(&Parcel::WriteBool, &Parcel::ReadBool, true, "\1\0\0\0"s);
    ExpectItem(&Parcel::WriteInt32, &Parcel::ReadInt32, int32_t{-2}, "\xFE\xFF\xFF\xFF"s);
    ExpectItem(&Parcel::WriteUint32, &Parcel::ReadUint32, uint32_t{0x89ABCDEF}, "\xEF\xCD\xAB\x89"s);
    ExpectItem(&Parcel::WriteInt64, &Parcel::ReadInt64, int64_t{-2}, "\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s);
    ExpectItem(
        &Parcel::WriteUint64, &Parcel::ReadUint64, uint64_t{0x0123456789ABCDEF}, "\xEF\xCD\xAB\x89\x67\x45\x23\x01"s);
    ExpectItem(&Parcel::WriteFloat, &Parcel::ReadFloat, -1.5F, "\0\0\xC0\xBF"s);
    ExpectItem(&Parcel::WriteDouble, &Parcel::ReadDouble, 0.1, "\x9A\x99\x99\x99\x99\x99\xB9\x3F"s);
    ExpectItem(&Parcel::WriteString, &Parcel::ReadString, ""s, "\0\0\0\0\0\0\0\0"s, 3);
    ExpectItem(&Parcel::WriteString, &Parcel::ReadString, "abc"s, "\3\0\0\0abc\0"s);
    ExpectItem(&Parcel::WriteString, &Parcel::ReadString, "a\0cd"s, "\4\0\0\0a\0cd\0\0\0\0"s, 3);
    ExpectItem(&Parcel::WriteString16, &Parcel::ReadString16, u""s, "\0\0\0\0\0\0\0\0"s, 2);
    ExpectItem(&Parcel::WriteString16, &Parcel::ReadString16, u"a\u20AC"s, "\2\0\0\0a\0\xAC\x20\0\0\0\0"s, 2);
    ExpectItem(&Parcel::WriteString16, &Parcel::ReadString16, u"abc"s, "\3\0\0\0a\0b\0c\0\0\0"s);

    Parcel parcel;
    const sptr<IndicatorSize> size = Read<IndicatorSize>(SIZE.bytes).release();
    EXPECT_FALSE(parcel.WriteBuffer(nullptr, 4));
    EXPECT_TRUE(parcel.WriteBuffer("abcde", 5) && parcel.WriteBuffer("", 0));
    EXPECT_TRUE(parcel.WriteStrongParcelable(size) && parcel.WriteStrongParcelable(nullptr));
    EXPECT_EQ(BytesOf(parcel), "abcde\0\0\0\1\0\0\0\0\0\x40\x40\0\0\0\x3F\0\0\0\0"s);
    EXPECT_EQ(*parcel.ReadBuffer(5), 'a');
    EXPECT_EQ(parcel.ReadStrongParcelable<IndicatorSize>()->ToString(), SIZE.text);
    EXPECT_EQ(parcel.ReadStrongParcelable<IndicatorSize>(), nullptr);
    EXPECT_EQ(parcel.GetReadableBytes(), 0U);
}

TEST(ParcelTest, WhatCannotBeReadLeavesTheCursorAndEmptiesStrings)
{
    for (const std::string& bytes : {"\xFF\xFF\xFF\xFFtext\0\0\0\0"s, "\0\0\0\x80\0\0\0\0"s,
             "\xFF\xFF\xFF\x7F\0\0\0\0"s, "\3\0\0\0texttext"s, "\4\0\0\0text"s, "\1\0\0\0ab\0\1"s}) {
        RawParcel parcel(bytes);
        std::string text8 = "old";
        std::u16string text16 = u"old";
        EXPECT_FALSE(parcel.ReadString(text8) || parcel.ReadString16(text16)) << testing::PrintToString(bytes);
        EXPECT_TRUE(text8.empty() && text16.empty() && parcel.GetReadPosition() == 0);
    }
    RawParcel cut("\1\1\1"s);
    int32_t kept = 7;
    EXPECT_FALSE(cut.ReadInt32(kept) || cut.ReadBool() || cut.ReadUint64() != 0 || cut.ReadDouble() != 0);
    EXPECT_FALSE(cut.Skip(4) || cut.Skip(SIZE_MAX) || cut.RewindRead(4));
    EXPECT_EQ(kept, 7);
    EXPECT_TRUE(RawParcel("\0\0\0\x80"s).ReadBool());
}

TEST(ParcelTest, WritesStopAtTheMaximumCapacityAndWithoutMemory)
{
    Parcel parcel;
    int32_t count = 0;
    while (parcel.WriteInt32(count)) {
        count++;
    }
    EXPECT_EQ(count, 51200);
    EXPECT_FALSE(parcel.SetMaxCapacity(204799) || parcel.SetMaxCapacity(204800));
    EXPECT_TRUE(parcel.SetMaxCapacity(204807));
    EXPECT_FALSE(parcel.WriteInt64(0) || parcel.WriteString("") || parcel.WriteBuffer("abcde", 5));
    EXPECT_EQ(parcel.GetDataSize(), 204800U);
    EXPECT_TRUE(parcel.WriteInt32(count));
    for (int32_t i = 0; i <= count; i++) {
        ASSERT_EQ(parcel.ReadInt32(), i);
    }
    RawParcel unlimited("kept");
    EXPECT_TRUE(unlimited.SetMaxCapacity(SIZE_MAX));
    for (size_t less = 0; less < 7; less++) {
        EXPECT_EQ(unlimited.Extend(SIZE_MAX - less), nullptr);
    }
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // Whose allocators end the program instead.
    EXPECT_EQ(unlimited.Extend(SIZE_MAX / 2), nullptr);
#endif
    EXPECT_TRUE(unlimited.WriteBuffer("more", 4));
    EXPECT_EQ(BytesOf(unlimited), "keptmore");
}

TEST(StringExTest, WellFormedTextConvertsBothWays)
{
    const std::pair<std::string, std::u16string> cases[] = {
        {"", {}},
        {"a\x7F", {0x61, 0x7F}},
        {"\xC2\x80\xDF\xBF", {0x80, 0x7FF}},
        {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", {0x800, 0xD7FF, 0xE000, 0xFFFF}},
        {"\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", {0xD800, 0xDC00, 0xD83D, 0xDE00, 0xDBFF, 0xDFFF}},
    };
    for (const auto& [utf8, utf16] : cases) {
        EXPECT_EQ(Str8ToStr16(utf8), utf16);
        EXPECT_EQ(Str16ToStr8(utf16), utf8);
    }
    EXPECT_EQ(Str8ToStr16("ab\0\xFF"s), u"ab");
    EXPECT_EQ(Str16ToStr8({0x61, 0, 0xD800}), "a");
}

TEST(StringExTest, MalformedTextIsEmpty)
{
    for (const std::string& text : {"\x80"s, "\xC1\xBF"s, "\xE0\x9F\xBF"s, "\xF0\x8F\xBF\xBF"s, "\xED\xA0\x80"s,
             "\xED\xBF\xBF"s, "\xF4\x90\x80\x80"s, "\xF8\x88\x80\x80\x80"s, "\xFF"s, "\xC2"s, "\xE2\x82"s,
             "\xF0\x9F\x98"s, "\xC2\0\x80"s, "\xC2\x41"s, "\xE2\xC2\x80"s}) {
        EXPECT_EQ(Str8ToStr16("a" + text), u"") << testing::PrintToString(text);
    }
    for (const std::u16string& text : {std::u16string{0xD800}, {0xDBFF, 0x61}, {0xDC00}, {0xDC00, 0xDFFF},
             {0xD800, 0xD800, 0xDC00}, {0xD800, 0xE000}, {0xD800, 0, 0xDC00}}) {
        EXPECT_EQ(Str16ToStr8(u"a" + text), "") << testing::PrintToString(text);
    }
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

// Calls both at once.
template <typename First, typename Second>
void Race(const First& first, const Second& second)
{
    std::atomic<bool> started{false};
    std::thread thread([&] {
        started = true;
        first();
    });
    while (!started) {
        std::this_thread::yield();
    }
    second();
    thread.join();
}

TEST(RefBaseTest, ObjectDiesWithItsLastStrongReference)
{
    std::string story;
    sptr<Object> first = sptr<Object>::MakeSptr(story);
    sptr<Object> second = first;
    sptr<Object> third(std::move(second));
    sptr<Object>& self = third;
    third = self;
    third = std::move(self);
    second = third.GetRefPtr();
    EXPECT_EQ((*second).GetSptrRefCount(), 3);
    second = nullptr;
    third = second;
    EXPECT_EQ(first->GetSptrRefCount(), 1);
    EXPECT_EQ(story, "F");
    first = new Object(story);
    EXPECT_EQ(story, "FFLD"); // The old one is released last.

    Base counted; // A copy and an assignment leave the counts alone.
    const sptr<Base> copy = new Base(counted);
    counted = *copy;
    *copy = Base(*copy);
    EXPECT_EQ(std::make_pair(copy->GetSptrRefCount(), counted.GetSptrRefCount()), std::make_pair(1, 0));
    EXPECT_EQ(wptr<Base>(&counted).promote(), nullptr);
    const Failing failing(1);
    EXPECT_EQ(sptr<Object>::MakeSptr(story), nullptr);
}

TEST(RefBaseTest, ConversionsKeepCountThroughVirtualBases)
{
    std::string story;
    sptr<Both> both = new Both(story);
    sptr<Object> object = both;
    sptr<RefBase> base(std::move(object));
    const wptr<RefBase> weak = both;
    const wptr<Both> weakBoth = both;
    EXPECT_TRUE(weak == base && weak == wptr<RefBase>(weakBoth) && weak != nullptr && base == both);
    EXPECT_EQ(both->GetSptrRefCount(), 2);
    EXPECT_EQ(weakBoth.promote(), both);
    both = nullptr;
    EXPECT_EQ(weak.promote(), base);
    base = nullptr;
    EXPECT_EQ(story, "FLD");
    EXPECT_EQ(weak.promote(), nullptr);
    // The virtual base of a dead object must not be looked for.
    EXPECT_EQ(wptr<Base>(weakBoth).GetRefPtr(), nullptr);
}

TEST(RefBaseTest, ReferencesOfSeveralThreadsRace)
{
    for (int round = 0; round < 1000; round++) {
        std::string story;
        auto* object = new Object(story);
        sptr<Object> strong;
        wptr<Object> weak;
        Race([&] { weak = object; }, [&] { strong = object; });
        ASSERT_EQ(weak.promote(), object);
        const auto promote = [&] {
            for (int i = 0; i < 20; i++) {
                const sptr<Object> promoted = weak.promote();
                ASSERT_TRUE(promoted == nullptr || story == "F"); // Alive while it is held.
            }
        };
        Race(promote, [&] { strong = nullptr; });
        ASSERT_EQ(story, "FLD");
    }
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
