// SPDX-License-Identifier: Apache-2.0
#include "privacy_event_detail.h"

#include <memory>
#include <tuple>

#include "new_record.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

namespace {

using Util::OstLog::Tag;

const Tag TAG = Tag::Create("privacyIndicator", Tag::DEFAULT_COMPONENT_TAG, Tag::DEFAULT_SUB_SYSTEM_TAG);

} // namespace

template <typename Self>
auto PrivacyEventDetail::Fields(Self& self)
{
    return std::tie(self.bundleName, self.uid, self.privacySensorType, self.startTimestamp, self.realEndTimestamp,
        self.showEndTimestamp, self.realAccessState, self.showAccessState, self.eventFlags);
}

bool PrivacyEventDetail::Marshalling(Parcel& parcel) const
{
    return WriteFields(parcel, Fields(*this));
}

PrivacyEventDetail* PrivacyEventDetail::Unmarshalling(Parcel& parcel)
{
    std::unique_ptr<PrivacyEventDetail> record = NewRecord<PrivacyEventDetail>(TAG, "new PrivacyEventDetail failed.");
    return record != nullptr && ReadFields(parcel, Fields(*record)) ? record.release() : nullptr;
}

std::string PrivacyEventDetail::ToString() const
{
    // The brace that nothing opens, and the flags without a label, are meant.
    return "PrivacyEventDetail='" + bundleName + "', uid=" + std::to_string(uid) +
           ", privacySensorType=" + std::to_string(privacySensorType) +
           ", startTimestamp=" + std::to_string(startTimestamp) +
           ", realEndTimestamp=" + std::to_string(realEndTimestamp) +
           ", showEndTimestamp=" + std::to_string(showEndTimestamp) +
           ", realAccessState=" + std::to_string(realAccessState) +
           ", showAccessState=" + std::to_string(showAccessState) + std::to_string(eventFlags) + "}";
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy
