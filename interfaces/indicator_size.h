// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SIZE_H
#define INDICATOR_SIZE_H

#include <string>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/**
 * How large a caller wants an indicator. A value: copied member by member, without locks; nothing in it is
 * range-checked. Throws nothing of its own.
 */
class PRIVACY_INDICATOR_EXPORT IndicatorSize : public Parcelable {
public:
    float width = 0;
    float height = 0;

    /** Appends the fields in their order. False at the first write that fails; what was written before it stays. */
    bool Marshalling(Parcel& parcel) const override;

    /** Reads the fields: a new record, the caller's; null if one is cut or malformed, or there is no memory for it. */
    static IndicatorSize* Unmarshalling(Parcel& parcel);

    /** One line for logs. */
    std::string ToString() const;

private:
    /** The fields that a parcel carries, in their order there. */
    template <typename Self>
    static auto Fields(Self& self);
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SIZE_H
