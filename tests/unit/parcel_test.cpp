// SPDX-License-Identifier: Apache-2.0
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "parcel.h"

namespace {

using namespace std::string_literals;
using OHOS::Parcel;
using OHOS::Parcelable;
using OHOS::sptr;

class OpenParcel : public Parcel {
public:
    // A parcel that came from outside, without padding behind `bytes`.
    explicit OpenParcel(const std::string& bytes = "")
    {
        EXPECT_TRUE(WriteBuffer(bytes.data(), bytes.size()));
        Truncate(bytes.size());
    }

    std::string Bytes() const
    {
        return {reinterpret_cast<const char*>(GetData()), GetDataSize()}; // NOLINT(performance-no-int-to-ptr)
    }

    using Parcel::Extend;
    using Parcel::Skip;
};

class Number : public Parcelable {
public:
    explicit Number(int32_t number) : value(number) {}

    bool Marshalling(Parcel& parcel) const override
    {
        return parcel.WriteInt32(value);
    }

    static Number* Unmarshalling(Parcel& parcel)
    {
        int32_t number = 0;
        return parcel.ReadInt32(number) ? new Number(number) : nullptr;
    }

    int32_t value;
};

// An item must make exactly `bytes`, and be read from no less of them than all but the padding.
template <typename Argument, typename T>
void ExpectItem(bool (Parcel::*write)(Argument), bool (Parcel::*read)(T&), const T& value, const std::string& bytes,
    size_t padding = 0)
{
    OpenParcel written;
    EXPECT_TRUE((written.*write)(value));
    EXPECT_EQ(written.Bytes(), bytes);
    for (size_t size = 0; size <= bytes.size(); size++) {
        OpenParcel cut(bytes.substr(0, size));
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
}

TEST(ParcelTest, WhatCannotBeReadLeavesTheCursorAndEmptiesStrings)
{
    for (const std::string& bytes : {"\xFF\xFF\xFF\xFFtext\0\0\0\0"s, "\0\0\0\x80\0\0\0\0"s,
             "\xFF\xFF\xFF\x7F\0\0\0\0"s, "\3\0\0\0texttext"s, "\4\0\0\0text"s, "\1\0\0\0ab\0\1"s}) {
        OpenParcel parcel(bytes);
        std::string text8 = "old";
        std::u16string text16 = u"old";
        EXPECT_FALSE(parcel.ReadString(text8) || parcel.ReadString16(text16)) << testing::PrintToString(bytes);
        EXPECT_TRUE(text8.empty() && text16.empty() && parcel.GetReadPosition() == 0);
        EXPECT_EQ(parcel.ReadString() + parcel.ReadString(), "");
    }
    OpenParcel cut("\1\1\1"s);
    int32_t kept = 7;
    EXPECT_FALSE(cut.ReadInt32(kept) || cut.ReadBool() || cut.ReadUint64() != 0 || cut.ReadDouble() != 0);
    EXPECT_EQ(kept, 7);
    EXPECT_TRUE(OpenParcel("\0\0\0\x80"s).ReadBool());
}

TEST(ParcelTest, BuffersArePaddedAndParcelablesFollowTheirFlag)
{
    OpenParcel parcel;
    EXPECT_FALSE(parcel.WriteBuffer(nullptr, 4));
    EXPECT_TRUE(parcel.WriteBuffer("abcde", 5) && parcel.WriteBuffer("", 0));
    const Number number(5);
    EXPECT_TRUE(parcel.WriteParcelable(&number) && parcel.WriteParcelable(nullptr));
    EXPECT_TRUE(parcel.WriteStrongParcelable(new Number(6)) && parcel.WriteStrongParcelable(nullptr));
    EXPECT_EQ(parcel.Bytes(), "abcde\0\0\0\1\0\0\0\5\0\0\0\0\0\0\0\1\0\0\0\6\0\0\0\0\0\0\0"s);

    EXPECT_FALSE(parcel.Skip(33) || parcel.Skip(SIZE_MAX) || parcel.RewindRead(33));
    EXPECT_EQ(*parcel.ReadBuffer(5), 'a');
    EXPECT_EQ(parcel.GetReadPosition(), 8U);
    EXPECT_EQ(sptr<Number>(parcel.ReadParcelable<Number>())->value, 5);
    EXPECT_EQ(parcel.ReadParcelable<Number>(), nullptr);
    EXPECT_EQ(parcel.ReadStrongParcelable<Number>()->value, 6);
    EXPECT_EQ(parcel.ReadStrongParcelable<Number>(), nullptr);
    EXPECT_EQ(parcel.GetReadableBytes(), 0U);
    EXPECT_EQ(OpenParcel("\0\0\0\x80\7\0\0\0"s).ReadStrongParcelable<Number>()->value, 7);
    EXPECT_EQ(OpenParcel("\1\0\0\0\7\0\0"s).ReadStrongParcelable<Number>(), nullptr);
    EXPECT_EQ(OpenParcel("\1\0\0"s).ReadStrongParcelable<Number>(), nullptr);
}

TEST(ParcelTest, WritesStopAtTheMaximumCapacity)
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
}

TEST(ParcelTest, UnobtainableSizesChangeNothing)
{
    OpenParcel parcel("kept");
    EXPECT_TRUE(parcel.SetMaxCapacity(SIZE_MAX));
    for (size_t less = 0; less < 7; less++) {
        EXPECT_EQ(parcel.Extend(SIZE_MAX - less), nullptr);
    }
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // Whose allocators end the program instead.
    EXPECT_EQ(parcel.Extend(SIZE_MAX / 2), nullptr);
#endif
    EXPECT_TRUE(parcel.WriteBuffer("more", 4));
    EXPECT_EQ(parcel.Bytes(), "keptmore");
}

} // namespace
