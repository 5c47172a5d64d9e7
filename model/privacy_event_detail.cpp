// SPDX-License-Identifier: Apache-2.0
#include "privacy_event_detail.h"

#include <memory>
#include <tuple>

#include "format_utils.h"
#include "new_record.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

namespace {

using Util::FormatUtils;
using Tag = Util::OstLog::Tag;

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
    return FormatUtils::Concat("PrivacyEventDetail='", bundleName, "', uid=", uid,
        ", privacySensorType=", privacySensorType, ", startTimestamp=", startTimestamp,
        ", realEndTimestamp=", realEndTimestamp, ", showEndTimestamp=", showEndTimestamp,
        ", realAccessState=", realAccessState, ", showAccessState=", showAccessState, eventFlags, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy
