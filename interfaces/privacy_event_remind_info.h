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
 * (but see privacy_event_values.h) and the flag stand for is up to the service.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventRemindInfo : public Parcelable {
public:
    PrivacyEventRemindInfo() = default;
    PrivacyEventRemindInfo(const PrivacyEventRemindInfo&) = default;
    PrivacyEventRemindInfo& operator=(const PrivacyEventRemindInfo&) = default;

    std::string bundleName;         ///< The application; empty in what the client reports at the service's end.
    int32_t uid = -1;               ///< The user that the application runs as; likewise -1.
    int32_t privacySensorType = 0;  ///< The number of a PrivacySensorType.
    int32_t privacyAccessState = 0; ///< The access state, such as ACCESS_STATE_OFF.
    uint32_t remindFlag = 0;        ///< The service's own.

    /** @{ As for every record: see privacy_indicator_export.h. */
    bool Marshalling(Parcel& parcel) const override;
    static PrivacyEventRemindInfo* Unmarshalling(Parcel& parcel) noexcept;
    std::string ToString() const noexcept;
    /** @} */
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_REMIND_INFO_H
