// SPDX-License-Identifier: Apache-2.0
#include "privacy_event_remind_info.h"

#include <tuple>

#include "format_utils.h"
#include "new_record.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

namespace {

// Contract: a small "p", in this file and in privacy_event_detail.
const auto TAG = Util::FileTag("privacyIndicator");

template <typename Self>
auto Fields(Self& record)
{
    return std::tie(
        record.bundleName, record.uid, record.privacySensorType, record.privacyAccessState, record.remindFlag);
}

} // namespace

bool PrivacyEventRemindInfo::Marshalling(Parcel& parcel) const { return WriteFields(parcel, Fields(*this)); }

PrivacyEventRemindInfo* PrivacyEventRemindInfo::Unmarshalling(Parcel& parcel) noexcept
{
    return ReadRecord(parcel, NewRecord<PrivacyEventRemindInfo>(TAG, "new PrivacyEventRemindInfo failed."),
        Fields<PrivacyEventRemindInfo>);
}

std::string PrivacyEventRemindInfo::ToString() const noexcept
{
    // Contract: no opening brace.
    return Util::Concat("PrivacyEventRemindInfo='", bundleName, "', uid=", uid,
        ", privacySensorType=", privacySensorType, ", privacyAccessState=", privacyAccessState,
        ", remindFlag=", remindFlag, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy
