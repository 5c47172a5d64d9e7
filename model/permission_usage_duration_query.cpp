// SPDX-License-Identifier: Apache-2.0
#include "permission_usage_duration_query.h"

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
auto PermissionUsageDurationQuery::Fields(Self& self)
{
    return std::tie(self.bundleNames, self.permissionGroups, self.beginTimestamp, self.endTimestamp);
}

bool PermissionUsageDurationQuery::Marshalling(Parcel& parcel) const
{
    return WriteFields(parcel, Fields(*this));
}

PermissionUsageDurationQuery* PermissionUsageDurationQuery::Unmarshalling(Parcel& parcel)
{
    return UnmarshallingInner(parcel, new (std::nothrow) PermissionUsageDurationQuery());
}

PermissionUsageDurationQuery* PermissionUsageDurationQuery::UnmarshallingInner(
    Parcel& parcel, PermissionUsageDurationQuery* query)
{
    std::unique_ptr<PermissionUsageDurationQuery> record(query);
    return record != nullptr && ReadFields(parcel, Fields(*record)) ? record.release() : nullptr;
}

std::string PermissionUsageDurationQuery::ToString() const
{
    return FormatUtils::Concat("PermissionUsageDurationQuery{bundleNames=", FormatUtils::ToString(bundleNames),
        ", permissionGroups=", FormatUtils::ToString(permissionGroups), ", beginTimestamp=", beginTimestamp,
        ", endTimestamp=", endTimestamp, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record
