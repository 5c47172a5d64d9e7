// SPDX-License-Identifier: Apache-2.0
#include "line_views.h"

#include <nlohmann/json.hpp>

#include "local_time.h"
#include "print.h"
#include "record_json.h"
#include "words.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

Json EventObject(int64_t time, const char* event) { return {{"time", TimeWithOffset(time)}, {"event", event}}; }

template <typename Record>
Json ToArray(const std::vector<Record>& records)
{
    Json array = Json::array();
    for (const auto& record : records) {
        array.push_back(ToJson(record));
    }
    return array;
}

} // namespace

void LineView::OnListening() { PrintLine("listening"); }

void LineView::OnSwitch(int64_t time, const Indicator::IndicatorData& data)
{
    PrintLine(ExactTimeOfDay(time) + "  " + SwitchText(data));
}

void LineView::OnUse(
    int64_t time, const std::string& /* dataType */, const std::vector<Privacy::PrivacyEventRemindInfo>& infos)
{
    PrintLine(ExactTimeOfDay(time) + "  " + UseText(infos));
}

void LineView::OnService(int64_t time, bool isThere)
{
    // That it is there from the start is no event.
    if (!isThere || wasGone_) {
        PrintLine(ExactTimeOfDay(time) + "  service    " + (isThere ? "back" : "gone"));
    }
    wasGone_ = !isThere;
}

void JsonView::OnSwitch(int64_t time, const Indicator::IndicatorData& data)
{
    Json object = EventObject(time, "indicator");
    object.update(ToJson(data));
    PrintLine(ToLine(object));
}

void JsonView::OnUse(
    int64_t time, const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos)
{
    Json object = EventObject(time, "use");
    object["dataType"] = dataType;
    object["uses"] = ToArray(infos);
    PrintLine(ToLine(object));
}

void JsonView::OnService(int64_t time, bool isThere)
{
    Json object = EventObject(time, "service");
    object["isThere"] = isThere;
    PrintLine(ToLine(object));
}

void JsonView::OnState(int64_t time, const ServiceState& state)
{
    Json object = EventObject(time, "state");
    object["result"] = state.result;
    object["indicators"] = ToArray(state.indicators);
    object["uses"] = ToArray(state.uses);
    PrintLine(ToLine(object));
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
