// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_REMIND_INFO_H
#define PRIVACY_EVENT_REMIND_INFO_H

#include <cstdint>
#include <string>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/**
 * One entry of what a privacy event listener is called with: an application's use of a sensor. What the access state
 * (but see privacy_event_values.h) and the flag stand for is the service's own.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventRemindInfo : public Parcelable {
public:
    PrivacyEventRemindInfo() = default;
    // Declared, so that there is no implicit move: on a device it would take the reference count along.
    PrivacyEventRemindInfo(const PrivacyEventRemindInfo&) = default;
    PrivacyEventRemindInfo& operator=(const PrivacyEventRemindInfo&) = default;

    std::string bundleName;         ///< The application; empty for all.
    int32_t uid = -1;               ///< The user that the application runs as; -1 for all.
    int32_t privacySensorType = 0;  ///< The number of a PrivacySensorType.
    int32_t privacyAccessState = 0; ///< How the use stands, such as ACCESS_STATE_OFF.
    uint32_t remindFlag = 0;        ///< The service's own.

    /** Appends the fields in declaration order. False if one does not fit: the fields before it stay in the parcel. */
    bool Marshalling(Parcel& parcel) const override;

    /**
     * Reads the fields as Marshalling wrote them. Returns a new record, which the caller owns and deletes; or null if a
     * field is missing or malformed, or if there is no memory for the record.
     */
    static PrivacyEventRemindInfo* Unmarshalling(Parcel& parcel) noexcept;

    /** The record as one line of text, for logs. */
    std::string ToString() const noexcept;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_REMIND_INFO_H
