// SPDX-License-Identifier: Apache-2.0
#include "indicator_position.h"

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
    return std::tie(record.positionX, record.positionY, record.screenWidth, record.screenHeight, record.screenRotation);
}

} // namespace

bool IndicatorPosition::Marshalling(Parcel& parcel) const { return WriteFields(parcel, Fields(*this)); }

IndicatorPosition* IndicatorPosition::Unmarshalling(Parcel& parcel) noexcept
{
    return ReadRecord(
        parcel, NewRecord<IndicatorPosition>(TAG, "new IndicatorPosition failed."), Fields<IndicatorPosition>);
}

std::string IndicatorPosition::ToString() const noexcept
{
    return Util::Concat("IndicatorPosition{positionX=", positionX, ", positionY=", positionY,
        ", screenWidth=", screenWidth, ", screenHeight=", screenHeight, ", screenRotation=", screenRotation, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
