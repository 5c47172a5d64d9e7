// SPDX-License-Identifier: Apache-2.0
#include "permission_usage_duration.h"

#include <memory>
#include <new>
#include <tuple>

#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record {

template <typename Self>
auto PermissionUsageDuration::Fields(Self& self)
{
    return std::tie(self.bundleName_, self.uid, self.permissionGroup_, self.usageDuration_, self.lastBeginTimestamp_,
        self.lastEndTimestamp_);
}

bool PermissionUsageDuration::Marshalling(Parcel& parcel) const
{
    return WriteFields(parcel, Fields(*this));
}

PermissionUsageDuration* PermissionUsageDuration::Unmarshalling(Parcel& parcel)
{
    std::unique_ptr<PermissionUsageDuration> record(new (std::nothrow) PermissionUsageDuration());
    return record != nullptr && ReadFields(parcel, Fields(*record)) ? record.release() : nullptr;
}

std::string PermissionUsageDuration::ToString() const
{
    // The duration comes before the group here, unlike in a parcel, and "uid" has no underscore: meant.
    return "PermissionUsageDuration{bundleName_='" + bundleName_ + "', uid=" + std::to_string(uid) +
           ", usageDuration_=" + std::to_string(usageDuration_) + ", permissionGroup_='" + permissionGroup_ +
           "', lastBeginTimestamp_=" + std::to_string(lastBeginTimestamp_) +
           ", lastEndTimestamp_=" + std::to_string(lastEndTimestamp_) + "}";
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record
