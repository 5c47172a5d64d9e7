// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_DETAIL_H
#define PRIVACY_EVENT_DETAIL_H

#include <cstdint>
#include <string>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/**
 * One entry of the history of privacy events: an application's use of a sensor. The unit of the timestamps, and what
 * the access states (but see privacy_event_values.h) and the flags stand for, is up to the service.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventDetail : public Parcelable {
public:
    PrivacyEventDetail() = default;
    PrivacyEventDetail(const PrivacyEventDetail&) = default;
    PrivacyEventDetail& operator=(const PrivacyEventDetail&) = default;

    std::string bundleName;        ///< The application.
    int32_t uid = -1;              ///< The user that the application runs as.
    int32_t privacySensorType = 0; ///< The number of a PrivacySensorType.
    int64_t startTimestamp = 0;    ///< When the use began.
    int64_t realEndTimestamp = 0;  ///< When it ended.
    int64_t showEndTimestamp = 0;  ///< When it ended, as shown to the user.
    int32_t realAccessState = 0;   ///< The access state as it really is.
    int32_t showAccessState = 0;   ///< The access state as shown to the user.
    uint32_t eventFlags = 0;       ///< The service's own.
    std::string extraInfo;         ///< Stays in the process: it is neither written to a parcel nor printed.

    /** @{ As for every record: see privacy_indicator_export.h. */
    bool Marshalling(Parcel& parcel) const override;
    static PrivacyEventDetail* Unmarshalling(Parcel& parcel) noexcept;
    std::string ToString() const noexcept;
    /** @} */
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_DETAIL_H
