// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SIZE_H
#define INDICATOR_SIZE_H

#include <string>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/** How large a caller wants an indicator to be shown. */
class PRIVACY_INDICATOR_EXPORT IndicatorSize : public Parcelable {
public:
    IndicatorSize() = default;
    // Declared, so that there is no implicit move: on a device it would take the reference count along.
    IndicatorSize(const IndicatorSize&) = default;
    IndicatorSize& operator=(const IndicatorSize&) = default;

    float width = 0;  ///< In the service's own unit.
    float height = 0; ///< In the service's own unit.

    /** Appends the fields in declaration order. False if one does not fit: the fields before it stay in the parcel. */
    bool Marshalling(Parcel& parcel) const override;

    /**
     * Reads the fields as Marshalling wrote them. Returns a new record, which the caller owns and deletes; or null if a
     * field is missing or malformed, or if there is no memory for the record.
     */
    static IndicatorSize* Unmarshalling(Parcel& parcel) noexcept;

    /** The record as one line of text, for logs. */
    std::string ToString() const noexcept;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SIZE_H
