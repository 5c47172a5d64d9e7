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
 * the access states (but see privacy_event_values.h) and the flags stand for, is the service's own.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventDetail : public Parcelable {
public:
    PrivacyEventDetail() = default;
    // Declared, so that there is no implicit move: on a device it would take the reference count along.
    PrivacyEventDetail(const PrivacyEventDetail&) = default;
    PrivacyEventDetail& operator=(const PrivacyEventDetail&) = default;

    std::string bundleName; // Of the application.
    int32_t uid = -1;       // Of the application.
    int32_t privacySensorType = 0;
    int64_t startTimestamp = 0;
    int64_t realEndTimestamp = 0;
    int64_t showEndTimestamp = 0; // The end that the user is shown.
    int32_t realAccessState = 0;
    int32_t showAccessState = 0; // The state that the user is shown.
    uint32_t eventFlags = 0;
    std::string extraInfo; // Stays in the process: neither carried by a parcel nor printed.

    /** Appends the fields in declaration order. False if one does not fit: the fields before it stay in the parcel. */
    bool Marshalling(Parcel& parcel) const override;

    /**
     * Reads the fields as Marshalling wrote them. Returns a new record, which the caller owns and deletes; or null if a
     * field is missing or malformed, or if there is no memory for the record.
     */
    static PrivacyEventDetail* Unmarshalling(Parcel& parcel) noexcept;

    /** The record as one line of text, for logs. */
    std::string ToString() const noexcept;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_DETAIL_H
