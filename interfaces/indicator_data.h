// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_DATA_H
#define INDICATOR_DATA_H

#include <cstdint>
#include <string>

#include "indicator_state.h"
#include "parcel.h"
#include "privacy_indicator_export.h"
#include "privacy_sensor_type.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/** The whole state of one indicator, as the service reports it. */
class PRIVACY_INDICATOR_EXPORT IndicatorData : public Parcelable {
public:
    IndicatorData() = default;
    // Declared, so that there is no implicit move: on a device it would take the reference count along.
    IndicatorData(const IndicatorData&) = default;
    IndicatorData& operator=(const IndicatorData&) = default;

    PrivacySensorType privacySensorType = PrivacySensorType::LOCATION; ///< The sensor that the indicator stands for.
    IndicatorState state = IndicatorState::OFF;                        ///< Whether it is shown.
    float positionX = 0;                                               ///< Horizontal, in the service's own unit.
    float positionY = 0;                                               ///< Vertical, in the service's own unit.
    float width = 0;                                                   ///< In the service's own unit.
    float height = 0;                                                  ///< In the service's own unit.
    std::string color;         ///< Any text; the client itself writes "#000000".
    int32_t animationType = 0; ///< The service's own number.

    /** Appends the fields in declaration order. False if one does not fit: the fields before it stay in the parcel. */
    bool Marshalling(Parcel& parcel) const override;

    /**
     * Reads the fields as Marshalling wrote them. Returns a new record, which the caller owns and deletes; or null if a
     * field is missing or malformed, or if there is no memory for the record.
     */
    static IndicatorData* Unmarshalling(Parcel& parcel) noexcept;

    /** The record as one line of text, for logs. */
    std::string ToString() const noexcept;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_DATA_H
