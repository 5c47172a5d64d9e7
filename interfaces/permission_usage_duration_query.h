// SPDX-License-Identifier: Apache-2.0
#ifndef PERMISSION_USAGE_DURATION_QUERY_H
#define PERMISSION_USAGE_DURATION_QUERY_H

#include <cstdint>
#include <string>
#include <vector>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record {

/**
 * Whose usage durations are asked for: applications, permission groups and a time range. A value: copied member by
 * member, without locks. A list may have any length here, but at most 999 entries in a parcel. Throws nothing of its
 * own. Setters copy; a getter's reference stays valid as long as the record.
 */
class PRIVACY_INDICATOR_EXPORT PermissionUsageDurationQuery : public Parcelable {
public:
    const std::vector<std::string>& GetBundleNames() const
    {
        return bundleNames;
    }

    void SetBundleNames(const std::vector<std::string>& value)
    {
        bundleNames = value;
    }

    const std::vector<std::string>& GetPermissionGroups() const
    {
        return permissionGroups;
    }

    void SetPermissionGroups(const std::vector<std::string>& value)
    {
        permissionGroups = value;
    }

    int64_t GetBeginTimestamp() const
    {
        return beginTimestamp;
    }

    void SetBeginTimestamp(int64_t value)
    {
        beginTimestamp = value;
    }

    int64_t GetEndTimestamp() const
    {
        return endTimestamp;
    }

    void SetEndTimestamp(int64_t value)
    {
        endTimestamp = value;
    }

    /**
     * Appends the fields in their order. False at the first write that fails, and after the count of a list that is
     * too long; what was written before stays.
     */
    bool Marshalling(Parcel& parcel) const override;

    /** Reads the fields: a new record, the caller's; null if one is cut or malformed, or there is no memory for it. */
    static PermissionUsageDurationQuery* Unmarshalling(Parcel& parcel);

    /**
     * Reads the fields into `query`, which must have been made with new: returns it, or deletes it and returns null.
     * Entries are appended to the lists; a count below 1 stands for none, one above 999 is refused.
     */
    static PermissionUsageDurationQuery* UnmarshallingInner(Parcel& parcel, PermissionUsageDurationQuery* query);

    /** One line for logs. */
    std::string ToString() const;

private:
    /** The fields that a parcel carries, in their order there. */
    template <typename Self>
    static auto Fields(Self& self);

    std::vector<std::string> bundleNames;
    std::vector<std::string> permissionGroups;
    int64_t beginTimestamp = 0;
    int64_t endTimestamp = 0;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record

#endif // PERMISSION_USAGE_DURATION_QUERY_H
