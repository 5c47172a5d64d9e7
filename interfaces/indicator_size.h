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
    IndicatorSize(const IndicatorSize&) = default;
    IndicatorSize& operator=(const IndicatorSize&) = default;

    float width = 0;  ///< In the service's own unit.
    float height = 0; ///< In the service's own unit.

    /** @{ As for every record: see privacy_indicator_export.h. */
    bool Marshalling(Parcel& parcel) const override;
    static IndicatorSize* Unmarshalling(Parcel& parcel) noexcept;
    std::string ToString() const noexcept;
    /** @} */
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SIZE_H
