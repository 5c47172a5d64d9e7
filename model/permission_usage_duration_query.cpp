// SPDX-License-Identifier: Apache-2.0
#include "permission_usage_duration_query.h"

#include <memory>
#include <new>
#include <tuple>

#include "format_utils.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record {

template <typename Self>
auto PermissionUsageDurationQuery::Fields(Self& record)
{
    return std::tie(record.bundleNames, record.permissionGroups, record.beginTimestamp, record.endTimestamp);
}

bool PermissionUsageDurationQuery::Marshalling(Parcel& parcel) const { return WriteFields(parcel, Fields(*this)); }

PermissionUsageDurationQuery* PermissionUsageDurationQuery::Unmarshalling(Parcel& parcel) noexcept
{
    // Contract: nothing is logged if there is no memory for it.
    return UnmarshallingInner(parcel, new (std::nothrow) PermissionUsageDurationQuery());
}

PermissionUsageDurationQuery* PermissionUsageDurationQuery::UnmarshallingInner(
    Parcel& parcel, PermissionUsageDurationQuery* query) noexcept
{
    return ReadRecord(
        parcel, std::unique_ptr<PermissionUsageDurationQuery>(query), Fields<PermissionUsageDurationQuery>);
}

std::string PermissionUsageDurationQuery::ToString() const noexcept
{
    return Util::Concat("PermissionUsageDurationQuery{bundleNames=", Util::FormatUtils::ToString(bundleNames),
        ", permissionGroups=", Util::FormatUtils::ToString(permissionGroups), ", beginTimestamp=", beginTimestamp,
        ", endTimestamp=", endTimestamp, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record
