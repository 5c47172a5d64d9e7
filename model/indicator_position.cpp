// SPDX-License-Identifier: Apache-2.0
#include "indicator_position.h"

#include <memory>
#include <tuple>

#include "format_utils.h"
#include "new_record.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

namespace {

using Util::FormatUtils;
using Tag = Util::OstLog::Tag;

const Tag TAG = Tag::Create("PrivacyIndicator", Tag::DEFAULT_COMPONENT_TAG, Tag::DEFAULT_SUB_SYSTEM_TAG);

} // namespace

template <typename Self>
auto IndicatorPosition::Fields(Self& self)
{
    return std::tie(self.positionX, self.positionY, self.screenWidth, self.screenHeight, self.screenRotation);
}

bool IndicatorPosition::Marshalling(Parcel& parcel) const
{
    return WriteFields(parcel, Fields(*this));
}

IndicatorPosition* IndicatorPosition::Unmarshalling(Parcel& parcel)
{
    std::unique_ptr<IndicatorPosition> record = NewRecord<IndicatorPosition>(TAG, "new IndicatorPosition failed.");
    return record != nullptr && ReadFields(parcel, Fields(*record)) ? record.release() : nullptr;
}

std::string IndicatorPosition::ToString() const
{
    return FormatUtils::Concat("IndicatorPosition{positionX=", positionX, ", positionY=", positionY,
        ", screenWidth=", screenWidth, ", screenHeight=", screenHeight, ", screenRotation=", screenRotation, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
