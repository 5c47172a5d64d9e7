// SPDX-License-Identifier: Apache-2.0
#include "indicator_size.h"

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
auto IndicatorSize::Fields(Self& self)
{
    return std::tie(self.width, self.height);
}

bool IndicatorSize::Marshalling(Parcel& parcel) const
{
    return WriteFields(parcel, Fields(*this));
}

IndicatorSize* IndicatorSize::Unmarshalling(Parcel& parcel)
{
    std::unique_ptr<IndicatorSize> record = NewRecord<IndicatorSize>(TAG, "new IndicatorSize failed.");
    return record != nullptr && ReadFields(parcel, Fields(*record)) ? record.release() : nullptr;
}

std::string IndicatorSize::ToString() const
{
    return FormatUtils::Concat("IndicatorSize{width=", width, ", height=", height, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
