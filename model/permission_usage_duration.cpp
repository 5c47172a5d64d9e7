// SPDX-License-Identifier: Apache-2.0
#include "permission_usage_duration.h"

#include <memory>
#include <new>
#include <tuple>

#include "format_utils.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record {

template <typename Self>
auto PermissionUsageDuration::Fields(Self& record)
{
    return std::tie(record.bundleName_, record.uid, record.permissionGroup_, record.usageDuration_,
        record.lastBeginTimestamp_, record.lastEndTimestamp_);
}

bool PermissionUsageDuration::Marshalling(Parcel& parcel) const { return WriteFields(parcel, Fields(*this)); }

PermissionUsageDuration* PermissionUsageDuration::Unmarshalling(Parcel& parcel) noexcept
{
    // Contract: nothing is logged if there is no memory for it.
    return ReadRecord(parcel, std::unique_ptr<PermissionUsageDuration>(new (std::nothrow) PermissionUsageDuration()),
        Fields<PermissionUsageDuration>);
}

std::string PermissionUsageDuration::ToString() const noexcept
{
    // Contract: the duration comes before the group, unlike in a parcel, and "uid" has no underscore.
    return Util::Concat("PermissionUsageDuration{bundleName_='", bundleName_, "', uid=", uid,
        ", usageDuration_=", usageDuration_, ", permissionGroup_='", permissionGroup_,
        "', lastBeginTimestamp_=", lastBeginTimestamp_, ", lastEndTimestamp_=", lastEndTimestamp_, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record
