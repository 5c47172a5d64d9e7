// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_POSITION_H
#define INDICATOR_POSITION_H

#include <cstdint>
#include <string>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/**
 * Where a caller wants an indicator, and on what screen. A value: copied member by member, without locks; nothing in it
 * is range-checked. Throws nothing of its own.
 */
class PRIVACY_INDICATOR_EXPORT IndicatorPosition : public Parcelable {
public:
    float positionX = 0;
    float positionY = 0;
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    int32_t screenRotation = 0;

    /** Appends the fields in their order. False at the first write that fails; what was written before it stays. */
    bool Marshalling(Parcel& parcel) const override;

    /** Reads the fields: a new record, the caller's; null if one is cut or malformed, or there is no memory for it. */
    static IndicatorPosition* Unmarshalling(Parcel& parcel);

    /** One line for logs. */
    std::string ToString() const;

private:
    /** The fields that a parcel carries, in their order there. */
    template <typename Self>
    static auto Fields(Self& self);
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_POSITION_H
