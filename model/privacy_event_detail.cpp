// SPDX-License-Identifier: Apache-2.0
#include "privacy_event_detail.h"

#include <tuple>

#include "format_utils.h"
#include "new_record.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

namespace {

// Contract: a small "p", in this file and in privacy_event_remind_info.
const auto TAG = Util::FileTag("privacyIndicator");

template <typename Self>
auto Fields(Self& record)
{
    return std::tie(record.bundleName, record.uid, record.privacySensorType, record.startTimestamp,
        record.realEndTimestamp, record.showEndTimestamp, record.realAccessState, record.showAccessState,
        record.eventFlags);
}

} // namespace

bool PrivacyEventDetail::Marshalling(Parcel& parcel) const { return WriteFields(parcel, Fields(*this)); }

PrivacyEventDetail* PrivacyEventDetail::Unmarshalling(Parcel& parcel) noexcept
{
    return ReadRecord(
        parcel, NewRecord<PrivacyEventDetail>(TAG, "new PrivacyEventDetail failed."), Fields<PrivacyEventDetail>);
}

std::string PrivacyEventDetail::ToString() const noexcept
{
    // Contract: no opening brace, and the flags follow the state without a label.
    return Util::Concat("PrivacyEventDetail='", bundleName, "', uid=", uid, ", privacySensorType=", privacySensorType,
        ", startTimestamp=", startTimestamp, ", realEndTimestamp=", realEndTimestamp,
        ", showEndTimestamp=", showEndTimestamp, ", realAccessState=", realAccessState,
        ", showAccessState=", showAccessState, eventFlags, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy
