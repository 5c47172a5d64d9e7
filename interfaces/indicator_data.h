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
    IndicatorData(const IndicatorData&) = default;
    IndicatorData& operator=(const IndicatorData&) = default;

    PrivacySensorType privacySensorType = PrivacySensorType::LOCATION; ///< The sensor that the indicator stands for.
    IndicatorState state = IndicatorState::OFF;                        ///< Whether it is shown.
    float positionX = 0;                                               ///< Horizontal, in the service's own unit.
    float positionY = 0;                                               ///< Vertical, in the service's own unit.
    float width = 0;                                                   ///< In the service's own unit.
    float height = 0;                                                  ///< In the service's own unit.
    std::string color;         ///< Any text; "#000000" in what the client reports at the service's end.
    int32_t animationType = 0; ///< The service's own number.

    /** @{ As for every record: see privacy_indicator_export.h. */
    bool Marshalling(Parcel& parcel) const override;
    static IndicatorData* Unmarshalling(Parcel& parcel) noexcept;
    std::string ToString() const noexcept;
    /** @} */
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_DATA_H
