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
 * A question about usage durations: of which applications, of which permission groups, and in which time range. The
 * unit of the timestamps, and what an empty list stands for, is up to the service. A list may have any length here, but
 * no more than 999 entries in a parcel. Setters copy; the reference that a getter returns is valid as long as the
 * record.
 */
class PRIVACY_INDICATOR_EXPORT PermissionUsageDurationQuery : public Parcelable {
public:
    PermissionUsageDurationQuery() = default;
    PermissionUsageDurationQuery(const PermissionUsageDurationQuery&) = default;
    PermissionUsageDurationQuery& operator=(const PermissionUsageDurationQuery&) = default;

    /** The applications. */
    const std::vector<std::string>& GetBundleNames() const { return bundleNames; }

    /** Sets what GetBundleNames returns. */
    void SetBundleNames(const std::vector<std::string>& value) { bundleNames = value; }

    /** The permission groups. */
    const std::vector<std::string>& GetPermissionGroups() const { return permissionGroups; }

    /** Sets what GetPermissionGroups returns. */
    void SetPermissionGroups(const std::vector<std::string>& value) { permissionGroups = value; }

    /** Where the time range begins. */
    int64_t GetBeginTimestamp() const { return beginTimestamp; }

    /** Sets what GetBeginTimestamp returns. */
    void SetBeginTimestamp(int64_t value) { beginTimestamp = value; }

    /** Where the time range ends. */
    int64_t GetEndTimestamp() const { return endTimestamp; }

    /** Sets what GetEndTimestamp returns. */
    void SetEndTimestamp(int64_t value) { endTimestamp = value; }

    /**
     * @{ As for every record: see privacy_indicator_export.h. Contract: the count of a list that has too many entries
     * is written before Marshalling returns false.
     */
    bool Marshalling(Parcel& parcel) const override;
    static PermissionUsageDurationQuery* Unmarshalling(Parcel& parcel) noexcept;
    std::string ToString() const noexcept;
    /** @} */

    /**
     * Reads the fields into `query`, which must have been made with new, and returns it; deletes it and returns null if
     * a field is missing or malformed, or if a list has more than 999 entries. The entries are appended to the lists; a
     * count below 1 stands for none.
     */
    static PermissionUsageDurationQuery* UnmarshallingInner(
        Parcel& parcel, PermissionUsageDurationQuery* query) noexcept;

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
