// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "samples.h"
#include "support.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using Query = PermissionUsageDurationQuery;

// `noMemory` is what a failed allocation logs.
template <typename T>
void Check(const Sample& sample, const std::string& defaultText, const Lines& noMemory)
{
    SCOPED_TRACE(sample.text);
    LogCapture logs;
    EXPECT_EQ(T().ToString(), defaultText);
    const auto record = Read<T>(sample.bytes);
    EXPECT_EQ(record->ToString(), sample.text);
    RawParcel written;
    EXPECT_TRUE(record->Marshalling(written));
    EXPECT_EQ(BytesOf(written), sample.bytes);
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
        {Line('E', "Unmarshalling: new PrivacyEventDetail failed.", "privacyIndicator")});
    Check<PrivacyEventRemindInfo>(REMIND_INFO,
        "PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, privacyAccessState=0, remindFlag=0}",
        {Line('E', "Unmarshalling: new PrivacyEventRemindInfo failed.", "privacyIndicator")});
    Check<PermissionUsageDuration>(DURATION,
        "PermissionUsageDuration{bundleName_='', uid=-1, usageDuration_=0, permissionGroup_='', lastBeginTimestamp_=0, "
        "lastEndTimestamp_=0}",
        {});
    Check<Query>(QUERY,
        "PermissionUsageDurationQuery{bundleNames=[], permissionGroups=[], beginTimestamp=0, endTimestamp=0}", {});
    EXPECT_EQ(
        Read<IndicatorSize>(I32(0x7F800000) + I32(0xFFC00000))->ToString(), "IndicatorSize{width=inf, height=-nan}");
}

TEST(RecordTest, SettersFillWhatGettersTell)
{
    const auto read = Read<PermissionUsageDuration>(DURATION.bytes);
    PermissionUsageDuration duration;
    duration.SetBundleName(read->GetBundleName());
    duration.SetUid(read->GetUid());
    duration.SetPermissionGroup(read->GetPermissionGroup());
    duration.SetUsageDuration(read->GetUsageDuration());
    duration.SetLastBeginTimestamp(read->GetLastBeginTimestamp());
    duration.SetLastEndTimestamp(read->GetLastEndTimestamp());
    EXPECT_EQ(duration.ToString(), DURATION.text);

    const auto readQuery = Read<Query>(QUERY.bytes);
    Query query;
    query.SetBundleNames(readQuery->GetBundleNames());
    query.SetPermissionGroups(readQuery->GetPermissionGroups());
    query.SetBeginTimestamp(readQuery->GetBeginTimestamp());
    query.SetEndTimestamp(readQuery->GetEndTimestamp());
    EXPECT_EQ(query.ToString(), QUERY.text);
}

TEST(RecordTest, QueryListsAppendAndEndAt999)
{
    RawParcel again(QUERY.bytes);
    const std::unique_ptr<Query> twice(Query::UnmarshallingInner(again, Read<Query>(QUERY.bytes).release()));
    EXPECT_EQ(twice->ToString(), "PermissionUsageDurationQuery{bundleNames=['x', '', 'x', ''], "
                                 "permissionGroups=['LOCATION', 'LOCATION'], beginTimestamp=100, endTimestamp=-200}");
    RawParcel parcel;
    twice->SetPermissionGroups(Lines(999, "ab"));
    EXPECT_TRUE(twice->Marshalling(parcel));
    twice->SetBundleNames(Lines(1000, "ab"));
    const size_t before = parcel.GetDataSize();
    EXPECT_FALSE(twice->Marshalling(parcel));
    EXPECT_EQ(BytesOf(parcel).substr(before), I32(1000)); // A count too many is written, and nothing behind it.
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
