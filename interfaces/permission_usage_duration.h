// SPDX-License-Identifier: Apache-2.0
#ifndef PERMISSION_USAGE_DURATION_H
#define PERMISSION_USAGE_DURATION_H

#include <cstdint>
#include <string>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Record {

/**
 * How long one application used one permission group, and when last. A value: copied member by member, without locks;
 * nothing in it is range-checked. Throws nothing of its own. Setters copy; a getter's reference stays valid as long as
 * the record.
 */
class PRIVACY_INDICATOR_EXPORT PermissionUsageDuration : public Parcelable {
public:
    const std::string& GetBundleName() const
    {
        return bundleName_;
    }

    void SetBundleName(const std::string& value)
    {
        bundleName_ = value;
    }

    int32_t GetUid() const
    {
        return uid;
    }

    void SetUid(int32_t value)
    {
        uid = value;
    }

    const std::string& GetPermissionGroup() const
    {
        return permissionGroup_;
    }

    void SetPermissionGroup(const std::string& value)
    {
        permissionGroup_ = value;
    }

    int32_t GetUsageDuration() const
    {
        return usageDuration_;
    }

    void SetUsageDuration(int32_t value)
    {
        usageDuration_ = value;
    }

    int64_t GetLastBeginTimestamp() const
    {
        return lastBeginTimestamp_;
    }

    void SetLastBeginTimestamp(int64_t value)
    {
        lastBeginTimestamp_ = value;
    }

    int64_t GetLastEndTimestamp() const
    {
        return lastEndTimestamp_;
    }

    void SetLastEndTimestamp(int64_t value)
    {
        lastEndTimestamp_ = value;
    }

    /** Appends the fields in their order. False at the first write that fails; what was written before it stays. */
    bool Marshalling(Parcel& parcel) const override;

    /** Reads the fields: a new record, the caller's; null if one is cut or malformed, or there is no memory for it. */
    static PermissionUsageDuration* Unmarshalling(Parcel& parcel);

    /** One line for logs. */
    std::string ToString() const;

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
