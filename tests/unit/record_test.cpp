// SPDX-License-Identifier: Apache-2.0
#include <climits>

#include <gtest/gtest.h>

#include "failing.h"
#include "log_capture.h"
#include "samples.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using Strings = std::vector<std::string>;

// `noMemory` is what a failed allocation logs.
template <typename T>
void Check(const Sample& sample, const std::string& defaultText, const Lines& noMemory)
{
    SCOPED_TRACE(sample.text);
    LogCapture logs;
    EXPECT_EQ(T().ToString(), defaultText);
    RawParcel parcel(sample.bytes + I32(99));
    const std::unique_ptr<T> record(T::Unmarshalling(parcel));
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(parcel.ReadInt32(), 99);
    EXPECT_EQ(record->ToString(), sample.text);
    RawParcel written;
    EXPECT_TRUE(record->Marshalling(written));
    EXPECT_EQ(BytesOf(written), sample.bytes);

    for (size_t size = 0; size < sample.bytes.size(); ++size) {
        EXPECT_EQ(Read<T>(sample.bytes.substr(0, size)), nullptr) << size;
    }
    for (size_t room = 0; room < sample.bytes.size(); room += 4) {
        RawParcel full;
        full.FillUp(room);
        const size_t size = full.GetDataSize();
        EXPECT_FALSE(record->Marshalling(full)) << room;
        EXPECT_EQ(sample.bytes.find(BytesOf(full).substr(size)), 0U) << "what was written before must stay";
    }
    EXPECT_EQ(logs.Take(), Lines());

    const Failing failing;
    Failing::nthNew = 1;
    EXPECT_EQ(Read<T>(sample.bytes), nullptr);
    EXPECT_EQ(logs.Take(), noMemory);
}

TEST(RecordTest, KeepsItsLayoutAndItsText)
{
    Check<IndicatorData>(DATA,
        "Indicator{privacySensorType=2, state=1, positionX=0.000000, positionY=0.000000, width=0.000000, "
        "height=0.000000, color='', animationType=0}",
        {Tagged('E', "PrivacyIndicator]Unmarshalling: new Indicator failed.")});
    Check<IndicatorPosition>(POSITION,
        "IndicatorPosition{positionX=0.000000, positionY=0.000000, screenWidth=0, screenHeight=0, screenRotation=0}",
        {Tagged('E', "PrivacyIndicator]Unmarshalling: new IndicatorPosition failed.")});
    Check<IndicatorSize>(SIZE, "IndicatorSize{width=0.000000, height=0.000000}",
        {Tagged('E', "PrivacyIndicator]Unmarshalling: new IndicatorSize failed.")});
    Check<PrivacyEventDetail>(DETAIL,
        "PrivacyEventDetail='', uid=-1, privacySensorType=0, startTimestamp=0, realEndTimestamp=0, showEndTimestamp=0, "
        "realAccessState=0, showAccessState=00}",
        {Tagged('E', "privacyIndicator]Unmarshalling: new PrivacyEventDetail failed.")});
    Check<PrivacyEventRemindInfo>(REMIND_INFO,
        "PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, privacyAccessState=0, remindFlag=0}",
        {Tagged('E', "privacyIndicator]Unmarshalling: new PrivacyEventRemindInfo failed.")});
    Check<PermissionUsageDuration>(DURATION,
        "PermissionUsageDuration{bundleName_='', uid=-1, usageDuration_=0, permissionGroup_='', lastBeginTimestamp_=0, "
        "lastEndTimestamp_=0}",
        {});
    Check<PermissionUsageDurationQuery>(QUERY,
        "PermissionUsageDurationQuery{bundleNames=[], permissionGroups=[], beginTimestamp=0, endTimestamp=0}", {});
}

TEST(RecordTest, UsageRecordsAreFilledByTheirSetters)
{
    PermissionUsageDuration duration;
    duration.SetBundleName("com.example.chat");
    duration.SetUid(21);
    duration.SetPermissionGroup("CAMERA");
    duration.SetUsageDuration(-22);
    duration.SetLastBeginTimestamp(4294967296);
    duration.SetLastEndTimestamp(-1);
    RawParcel parcel;
    EXPECT_TRUE(duration.Marshalling(parcel));
    EXPECT_EQ(BytesOf(parcel), DURATION.bytes);
    EXPECT_EQ(duration.GetBundleName() + duration.GetPermissionGroup(), "com.example.chatCAMERA");
    EXPECT_TRUE(duration.GetUid() == 21 && duration.GetUsageDuration() == -22);
    EXPECT_TRUE(duration.GetLastBeginTimestamp() == 4294967296 && duration.GetLastEndTimestamp() == -1);

    PermissionUsageDurationQuery query;
    query.SetBundleNames({"x", ""});
    query.SetBundleNames(query.GetBundleNames());
    query.SetPermissionGroups({"LOCATION"});
    query.SetBeginTimestamp(100);
    query.SetEndTimestamp(-200);
    RawParcel other;
    EXPECT_TRUE(query.Marshalling(other));
    EXPECT_EQ(BytesOf(other), QUERY.bytes);
    EXPECT_EQ(query.GetPermissionGroups(), Strings{"LOCATION"});
    EXPECT_TRUE(query.GetBeginTimestamp() == 100 && query.GetEndTimestamp() == -200);
}

TEST(RecordTest, DetailKeepsItsExtraInfoToItself)
{
    PrivacyEventDetail detail;
    detail.extraInfo = "x";
    EXPECT_EQ(PrivacyEventDetail(detail).extraInfo, "x");
    RawParcel with;
    RawParcel without;
    EXPECT_TRUE(detail.Marshalling(with) && PrivacyEventDetail().Marshalling(without));
    EXPECT_EQ(BytesOf(with), BytesOf(without));
}

TEST(RecordTest, QueryIsAppendedToWhatItHolds)
{
    RawParcel parcel(QUERY.bytes);
    const auto query = Read<PermissionUsageDurationQuery>(QUERY.bytes).release();
    const std::unique_ptr<PermissionUsageDurationQuery> read(
        PermissionUsageDurationQuery::UnmarshallingInner(parcel, query));
    ASSERT_EQ(read.get(), query);
    EXPECT_EQ(read->GetBundleNames(), (Strings{"x", "", "x", ""}));
    EXPECT_EQ(read->GetPermissionGroups(), (Strings{"LOCATION", "LOCATION"}));
}

TEST(RecordTest, QueryListsEndAt999)
{
    const Bytes full = I32(999) + Times(999, Str("ab"));
    const std::pair<size_t, Bytes> groupCounts[] = {{999, full + I64(0) + I64(0)}, {1000, I32(1000)}};
    PermissionUsageDurationQuery query;
    query.SetBundleNames(Strings(999, "ab"));
    for (const auto& [count, bytes] : groupCounts) {
        query.SetPermissionGroups(Strings(count, "ab"));
        RawParcel parcel;
        EXPECT_EQ(query.Marshalling(parcel), count == 999);
        EXPECT_EQ(BytesOf(parcel), full + bytes);
    }
    EXPECT_NE(Read<PermissionUsageDurationQuery>(full + groupCounts[0].second), nullptr);

    query.SetBundleNames(Strings(1000, "ab"));
    RawParcel parcel;
    EXPECT_FALSE(query.Marshalling(parcel));
    EXPECT_EQ(BytesOf(parcel), I32(1000)) << "the count is written, and nothing behind it";

    for (const int32_t count : {1000, 102400, 102401, INT_MAX}) {
        // Bytes enough for the smaller counts: it is the count that is refused.
        const Bytes list = I32(count) + Bytes(size_t{102401} * 8 + 20, '\0');
        EXPECT_EQ(Read<PermissionUsageDurationQuery>(list), nullptr) << count;
        EXPECT_EQ(Read<PermissionUsageDurationQuery>(I32(0) + list), nullptr) << count;
    }
}

TEST(RecordTest, QueryListsOfNegativeLengthAreEmpty)
{
    const auto read = Read<PermissionUsageDurationQuery>(I32(-5) + I32(INT_MIN) + I64(1) + I64(2));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->ToString(),
        "PermissionUsageDurationQuery{bundleNames=[], permissionGroups=[], beginTimestamp=1, endTimestamp=2}");
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
