// SPDX-License-Identifier: Apache-2.0
#include "permission_usage_duration.h"

#include <memory>
#include <new>
#include <tuple>

#include "format_utils.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record {

namespace {

using Util::FormatUtils;

} // namespace

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
    return FormatUtils::Concat("PermissionUsageDuration{bundleName_='", bundleName_, "', uid=", uid,
        ", usageDuration_=", usageDuration_, ", permissionGroup_='", permissionGroup_,
        "', lastBeginTimestamp_=", lastBeginTimestamp_, ", lastEndTimestamp_=", lastEndTimestamp_, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record
