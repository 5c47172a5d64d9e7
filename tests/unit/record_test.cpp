// SPDX-License-Identifier: Apache-2.0
#include <climits>

#include <gtest/gtest.h>

#include "samples.h"
#include "support.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

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
        RawParcel full;
        full.FillUp(size / 4 * 4);
        const size_t filled = full.GetDataSize();
        EXPECT_FALSE(record->Marshalling(full)) << size;
        EXPECT_EQ(sample.bytes.find(BytesOf(full).substr(filled)), 0U) << "what was written before must stay";
    }
    EXPECT_EQ(logs.Take(), Lines());

    const Failing failing(1);
    EXPECT_EQ(Read<T>(sample.bytes), nullptr);
    EXPECT_EQ(logs.Take(), noMemory);
}

TEST(RecordTest, KeepsItsLayoutAndItsText)
{
    Check<IndicatorData>(DATA,
        "Indicator{privacySensorType=2, state=1, positionX=0.000000, positionY=0.000000, width=0.000000, "
        "height=0.000000, color='', animationType=0}",
        {Line('E', "Unmarshalling: new Indicator failed.")});
    Check<IndicatorPosition>(POSITION,
        "IndicatorPosition{positionX=0.000000, positionY=0.000000, screenWidth=0, screenHeight=0, screenRotation=0}",
        {Line('E', "Unmarshalling: new IndicatorPosition failed.")});
    Check<IndicatorSize>(SIZE, "IndicatorSize{width=0.000000, height=0.000000}",
        {Line('E', "Unmarshalling: new IndicatorSize failed.")});
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

TEST(RecordTest, SettersFillWhatGettersTell)
{
    const auto readDuration = Read<PermissionUsageDuration>(DURATION.bytes);
    PermissionUsageDuration duration;
    duration.SetBundleName(readDuration->GetBundleName());
    duration.SetUid(readDuration->GetUid());
    duration.SetPermissionGroup(readDuration->GetPermissionGroup());
    duration.SetUsageDuration(readDuration->GetUsageDuration());
    duration.SetLastBeginTimestamp(readDuration->GetLastBeginTimestamp());
    duration.SetLastEndTimestamp(readDuration->GetLastEndTimestamp());
    EXPECT_EQ(duration.ToString(), DURATION.text);

    const auto readQuery = Read<PermissionUsageDurationQuery>(QUERY.bytes);
    PermissionUsageDurationQuery query;
    query.SetBundleNames(readQuery->GetBundleNames());
    query.SetBundleNames(query.GetBundleNames());
    query.SetPermissionGroups(readQuery->GetPermissionGroups());
    query.SetBeginTimestamp(readQuery->GetBeginTimestamp());
    query.SetEndTimestamp(readQuery->GetEndTimestamp());
    EXPECT_EQ(query.ToString(), QUERY.text);
}

TEST(RecordTest, QueryListsAppendEndAt999AndMayBeNegative)
{
    using Query = PermissionUsageDurationQuery;
    RawParcel again(QUERY.bytes);
    const std::unique_ptr<Query> twice(Query::UnmarshallingInner(again, Read<Query>(QUERY.bytes).release()));
    EXPECT_EQ(twice->ToString(), "PermissionUsageDurationQuery{bundleNames=['x', '', 'x', ''], "
                                 "permissionGroups=['LOCATION', 'LOCATION'], beginTimestamp=100, endTimestamp=-200}");

    const Bytes full = I32(999) + Times(999, Str("ab"));
    EXPECT_NE(Read<Query>(full + full + I64(0) + I64(0)), nullptr);
    const std::tuple<size_t, size_t, Bytes> counts[] = {{999, 999, full + full + I64(0) + I64(0)},
        {999, 1000, full + I32(1000)}, {1000, 1, I32(1000)}}; // A count too many is written, and nothing behind it.
    for (const auto& [names, groups, bytes] : counts) {
        Query query;
        query.SetBundleNames(std::vector<std::string>(names, "ab"));
        query.SetPermissionGroups(std::vector<std::string>(groups, "ab"));
        RawParcel parcel;
        EXPECT_EQ(query.Marshalling(parcel), names + groups == 1998);
        EXPECT_EQ(BytesOf(parcel), bytes);
    }
    for (const int32_t count : {1000, 102400, 102401, INT_MAX}) {
        // Bytes enough for the smaller counts: it is the count that is refused.
        const Bytes list = I32(count) + Bytes(size_t{102401} * 8 + 20, '\0');
        EXPECT_EQ(Read<Query>(list), nullptr) << count;
        EXPECT_EQ(Read<Query>(I32(0) + list), nullptr) << count;
    }
    const auto negative = Read<Query>(I32(-5) + I32(INT_MIN) + I64(1) + I64(2));
    EXPECT_EQ(negative->ToString(),
        "PermissionUsageDurationQuery{bundleNames=[], permissionGroups=[], beginTimestamp=1, endTimestamp=2}");
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
