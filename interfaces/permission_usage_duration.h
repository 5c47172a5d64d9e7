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
 * up to the service. Setters copy; the reference that a getter returns is valid as long as the record.
 */
class PRIVACY_INDICATOR_EXPORT PermissionUsageDuration : public Parcelable {
public:
    PermissionUsageDuration() = default;
    PermissionUsageDuration(const PermissionUsageDuration&) = default;
    PermissionUsageDuration& operator=(const PermissionUsageDuration&) = default;

    /** The application. */
    const std::string& GetBundleName() const { return bundleName_; }

    /** Sets what GetBundleName returns. */
    void SetBundleName(const std::string& value) { bundleName_ = value; }

    /** The user that the application runs as. */
    int32_t GetUid() const { return uid; }

    /** Sets what GetUid returns. */
    void SetUid(int32_t value) { uid = value; }

    /** The permission group. */
    const std::string& GetPermissionGroup() const { return permissionGroup_; }

    /** Sets what GetPermissionGroup returns. */
    void SetPermissionGroup(const std::string& value) { permissionGroup_ = value; }

    /** How long the group was used, in 32 bits. */
    int32_t GetUsageDuration() const { return usageDuration_; }

    /** Sets what GetUsageDuration returns. */
    void SetUsageDuration(int32_t value) { usageDuration_ = value; }

    /** When the last use began. */
    int64_t GetLastBeginTimestamp() const { return lastBeginTimestamp_; }

    /** Sets what GetLastBeginTimestamp returns. */
    void SetLastBeginTimestamp(int64_t value) { lastBeginTimestamp_ = value; }

    /** When the last use ended. */
    int64_t GetLastEndTimestamp() const { return lastEndTimestamp_; }

    /** Sets what GetLastEndTimestamp returns. */
    void SetLastEndTimestamp(int64_t value) { lastEndTimestamp_ = value; }

    /** @{ As for every record: see privacy_indicator_export.h. */
    bool Marshalling(Parcel& parcel) const override;
    static PermissionUsageDuration* Unmarshalling(Parcel& parcel) noexcept;
    std::string ToString() const noexcept;
    /** @} */

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
