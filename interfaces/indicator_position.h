// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_POSITION_H
#define INDICATOR_POSITION_H

#include <cstdint>
#include <string>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/** Where a caller wants an indicator to be shown, and the screen that the position refers to. */
class PRIVACY_INDICATOR_EXPORT IndicatorPosition : public Parcelable {
public:
    IndicatorPosition() = default;
    // Declared, so that there is no implicit move: on a device it would take the reference count along.
    IndicatorPosition(const IndicatorPosition&) = default;
    IndicatorPosition& operator=(const IndicatorPosition&) = default;

    float positionX = 0;        ///< Horizontal, in the service's own unit.
    float positionY = 0;        ///< Vertical, in the service's own unit.
    int32_t screenWidth = 0;    ///< Of the screen that the position refers to.
    int32_t screenHeight = 0;   ///< Of that screen.
    int32_t screenRotation = 0; ///< Of that screen: the service's own number.

    /** Appends the fields in declaration order. False if one does not fit: the fields before it stay in the parcel. */
    bool Marshalling(Parcel& parcel) const override;

    /**
     * Reads the fields as Marshalling wrote them. Returns a new record, which the caller owns and deletes; or null if a
     * field is missing or malformed, or if there is no memory for the record.
     */
    static IndicatorPosition* Unmarshalling(Parcel& parcel) noexcept;

    /** The record as one line of text, for logs. */
    std::string ToString() const noexcept;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_POSITION_H
