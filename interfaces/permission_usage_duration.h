// SPDX-License-Identifier: Apache-2.0
#ifndef PERMISSION_USAGE_DURATION_H
#define PERMISSION_USAGE_DURATION_H

#include <cstdint>
#include <string>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record {

/**
 * How long one application used one permission group, and when last. The unit of the duration and of the timestamps is
 * the service's own. Setters copy; the reference that a getter returns is valid as long as the record.
 */
class PRIVACY_INDICATOR_EXPORT PermissionUsageDuration : public Parcelable {
public:
    PermissionUsageDuration() = default;
    // Declared, so that there is no implicit move: on a device it would take the reference count along.
    PermissionUsageDuration(const PermissionUsageDuration&) = default;
    PermissionUsageDuration& operator=(const PermissionUsageDuration&) = default;

    /** The application. */
    const std::string& GetBundleName() const
    {
        return bundleName_;
    }

    /** Sets what GetBundleName returns. */
    void SetBundleName(const std::string& value)
    {
        bundleName_ = value;
    }

    /** The user that the application runs as. */
    int32_t GetUid() const
    {
        return uid;
    }

    /** Sets what GetUid returns. */
    void SetUid(int32_t value)
    {
        uid = value;
    }

    /** The permission group. */
    const std::string& GetPermissionGroup() const
    {
        return permissionGroup_;
    }

    /** Sets what GetPermissionGroup returns. */
    void SetPermissionGroup(const std::string& value)
    {
        permissionGroup_ = value;
    }

    /** How long the group was used, in 32 bits. */
    int32_t GetUsageDuration() const
    {
        return usageDuration_;
    }

    /** Sets what GetUsageDuration returns. */
    void SetUsageDuration(int32_t value)
    {
        usageDuration_ = value;
    }

    /** When the last use began. */
    int64_t GetLastBeginTimestamp() const
    {
        return lastBeginTimestamp_;
    }

    /** Sets what GetLastBeginTimestamp returns. */
    void SetLastBeginTimestamp(int64_t value)
    {
        lastBeginTimestamp_ = value;
    }

    /** When the last use ended. */
    int64_t GetLastEndTimestamp() const
    {
        return lastEndTimestamp_;
    }

    /** Sets what GetLastEndTimestamp returns. */
    void SetLastEndTimestamp(int64_t value)
    {
        lastEndTimestamp_ = value;
    }

    /** Appends the fields in declaration order. False if one does not fit: the fields before it stay in the parcel. */
    bool Marshalling(Parcel& parcel) const override;

    /**
     * Reads the fields as Marshalling wrote them. Returns a new record, which the caller owns and deletes; or null if a
     * field is missing or malformed, or if there is no memory for the record.
     */
    static PermissionUsageDuration* Unmarshalling(Parcel& parcel) noexcept;

    /** The record as one line of text, for logs. */
    std::string ToString() const noexcept;

private:
    /** The fields that a parcel carries, in their order there. */
    template <typename Self>
    static auto Fields(Self& self);

    std::string bundleName_;
    int32_t uid = -1;
    std::string permissionGroup_;
    int32_t usageDuration_ = 0;
    int64_t lastBeginTimestamp_ = 0;
    int64_t lastEndTimestamp_ = 0;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record

#endif // PERMISSION_USAGE_DURATION_H
