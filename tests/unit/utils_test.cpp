// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <thread>
#include <type_traits>

#include <gtest/gtest.h>

#include "samples.h"
#include "support.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using namespace std::string_literals;

// An item must make exactly `bytes`, and be read from them.
template <typename Argument, typename T>
void ExpectItem(bool (Parcel::*write)(Argument), bool (Parcel::*read)(T&), const T& value, const std::string& bytes)
{
    Parcel parcel;
    EXPECT_TRUE((parcel.*write)(value));
    EXPECT_EQ(BytesOf(parcel), bytes);
    T got{};
    EXPECT_TRUE((parcel.*read)(got));
    EXPECT_EQ(got, value);
    EXPECT_EQ(parcel.GetReadableBytes(), 0U);
}

TEST(ParcelTest, ItemsHaveTheirBytes)
{
    ExpectItem(&Parcel::WriteBool, &Parcel::ReadBool, true, "\1\0\0\0"s);
    ExpectItem(&Parcel::WriteInt32, &Parcel::ReadInt32, int32_t{-2}, "\xFE\xFF\xFF\xFF"s);
    ExpectItem(&Parcel::WriteUint32, &Parcel::ReadUint32, uint32_t{0x89ABCDEF}, "\xEF\xCD\xAB\x89"s);
    ExpectItem(&Parcel::WriteInt64, &Parcel::ReadInt64, int64_t{-2}, "\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s);
    ExpectItem(
        &Parcel::WriteUint64, &Parcel::ReadUint64, uint64_t{0x0123456789ABCDEF}, "\xEF\xCD\xAB\x89\x67\x45\x23\x01"s);
    ExpectItem(&Parcel::WriteFloat, &Parcel::ReadFloat, -1.5F, "\0\0\xC0\xBF"s);
    ExpectItem(&Parcel::WriteDouble, &Parcel::ReadDouble, 0.1, "\x9A\x99\x99\x99\x99\x99\xB9\x3F"s);
    ExpectItem(&Parcel::WriteString, &Parcel::ReadString, "a\0cd"s, "\4\0\0\0a\0cd\0\0\0\0"s);
    ExpectItem(&Parcel::WriteString16, &Parcel::ReadString16, u"a\u20AC"s, "\2\0\0\0a\0\xAC\x20\0\0\0\0"s);

    Parcel buffer;
    EXPECT_TRUE(buffer.WriteBuffer("abcde", 5) && buffer.WriteStrongParcelable(nullptr));
    EXPECT_EQ(BytesOf(buffer), "abcde\0\0\0\0\0\0\0"s);
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
    const Failing failing(1);
    EXPECT_EQ(sptr<Object>::MakeSptr(story), nullptr);
}

TEST(RefBaseTest, ReferencesOfSeveralThreadsRace)
{
    for (int round = 0; round < 1000; round++) {
        std::string story;
        auto* object = new Object(story);
        sptr<Object> strong;
        wptr<Object> weak;
        std::atomic<int> ready = 0;
        const auto meet = [&ready](int threads) {
            for (++ready; ready < threads;) {
                std::this_thread::yield();
            }
        };
        std::thread other([&] {
            meet(2);
            weak = object;
            meet(4);
            for (int i = 0; i < 20; i++) {
                const sptr<Object> promoted = weak.promote();
                ASSERT_TRUE(promoted == nullptr || story == "F"); // Alive while it is held.
            }
        });
        meet(2);
        strong = object;
        meet(4);
        strong = nullptr;
        other.join();
        ASSERT_EQ(story, "FLD");
    }
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
