// SPDX-License-Identifier: Apache-2.0
#include "indicator_data.h"

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
auto IndicatorData::Fields(Self& self)
{
    return std::tie(self.privacySensorType, self.state, self.positionX, self.positionY, self.width, self.height,
        self.color, self.animationType);
}

bool IndicatorData::Marshalling(Parcel& parcel) const
{
    return WriteFields(parcel, Fields(*this));
}

IndicatorData* IndicatorData::Unmarshalling(Parcel& parcel)
{
    // The name in this message is meant.
    std::unique_ptr<IndicatorData> record = NewRecord<IndicatorData>(TAG, "new Indicator failed.");
    return record != nullptr && ReadFields(parcel, Fields(*record)) ? record.release() : nullptr;
}

std::string IndicatorData::ToString() const
{
    // It begins with "Indicator", not with the class's name: meant.
    return FormatUtils::Concat("Indicator{privacySensorType=", privacySensorType, ", state=", state,
        ", positionX=", positionX, ", positionY=", positionY, ", width=", width, ", height=", height, ", color='",
        color, "', animationType=", animationType, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
