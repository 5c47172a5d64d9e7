// SPDX-License-Identifier: Apache-2.0
#include "privacy_event_remind_info.h"

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
auto PrivacyEventRemindInfo::Fields(Self& self)
{
    return std::tie(self.bundleName, self.uid, self.privacySensorType, self.privacyAccessState, self.remindFlag);
}

bool PrivacyEventRemindInfo::Marshalling(Parcel& parcel) const
{
    return WriteFields(parcel, Fields(*this));
}

PrivacyEventRemindInfo* PrivacyEventRemindInfo::Unmarshalling(Parcel& parcel)
{
    std::unique_ptr<PrivacyEventRemindInfo> record =
        NewRecord<PrivacyEventRemindInfo>(TAG, "new PrivacyEventRemindInfo failed.");
    return record != nullptr && ReadFields(parcel, Fields(*record)) ? record.release() : nullptr;
}

std::string PrivacyEventRemindInfo::ToString() const
{
    // The brace that nothing opens is meant.
    return FormatUtils::Concat("PrivacyEventRemindInfo='", bundleName, "', uid=", uid,
        ", privacySensorType=", privacySensorType, ", privacyAccessState=", privacyAccessState,
        ", remindFlag=", remindFlag, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy
