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

/**
 * The whole state of one indicator, as the service reports it. A value: copied member by member, without locks;
 * nothing in it is range-checked. Throws nothing of its own.
 */
class PRIVACY_INDICATOR_EXPORT IndicatorData : public Parcelable {
public:
    PrivacySensorType privacySensorType = PrivacySensorType::LOCATION;
    IndicatorState state = IndicatorState::OFF;
    float positionX = 0;
    float positionY = 0;
    float width = 0;
    float height = 0;
    std::string color; // As text, like "#000000".
    int32_t animationType = 0;

    /** Appends the fields in their order. False at the first write that fails; what was written before it stays. */
    bool Marshalling(Parcel& parcel) const override;

    /** Reads the fields: a new record, the caller's; null if one is cut or malformed, or there is no memory for it. */
    static IndicatorData* Unmarshalling(Parcel& parcel);

    /** One line for logs. */
    std::string ToString() const;

private:
    /** The fields that a parcel carries, in their order there. */
    template <typename Self>
    static auto Fields(Self& self);
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_DATA_H
