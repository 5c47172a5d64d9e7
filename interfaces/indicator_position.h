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
    IndicatorPosition(const IndicatorPosition&) = default;
    IndicatorPosition& operator=(const IndicatorPosition&) = default;

    float positionX = 0;        ///< Horizontal, in the service's own unit.
    float positionY = 0;        ///< Vertical, in the service's own unit.
    int32_t screenWidth = 0;    ///< Of the screen that the position refers to.
    int32_t screenHeight = 0;   ///< Of that screen.
    int32_t screenRotation = 0; ///< Of that screen: the service's own number.

    /** @{ As for every record: see privacy_indicator_export.h. */
    bool Marshalling(Parcel& parcel) const override;
    static IndicatorPosition* Unmarshalling(Parcel& parcel) noexcept;
    std::string ToString() const noexcept;
    /** @} */
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_POSITION_H
