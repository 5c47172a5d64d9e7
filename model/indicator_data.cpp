// SPDX-License-Identifier: Apache-2.0
#include "indicator_data.h"

#include <tuple>

#include "format_utils.h"
#include "new_record.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

namespace {

const auto TAG = Util::FileTag("PrivacyIndicator");

template <typename Self>
auto Fields(Self& record)
{
    return std::tie(record.privacySensorType, record.state, record.positionX, record.positionY, record.width,
        record.height, record.color, record.animationType);
}

} // namespace

bool IndicatorData::Marshalling(Parcel& parcel) const { return WriteFields(parcel, Fields(*this)); }

IndicatorData* IndicatorData::Unmarshalling(Parcel& parcel) noexcept
{
    // Contract: "Indicator", not the class's name.
    return ReadRecord(parcel, NewRecord<IndicatorData>(TAG, "new Indicator failed."), Fields<IndicatorData>);
}

std::string IndicatorData::ToString() const noexcept
{
    // Contract: "Indicator", not the class's name.
    return Util::Concat("Indicator{privacySensorType=", privacySensorType, ", state=", state, ", positionX=", positionX,
        ", positionY=", positionY, ", width=", width, ", height=", height, ", color='", color,
        "', animationType=", animationType, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
