// SPDX-License-Identifier: Apache-2.0
#include "output.h"

#include <nlohmann/json.hpp>

#include <sstream>

#include "local_time.h"
#include "print.h"
#include "record_json.h"
#include "table.h"
#include "words.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

std::string Pair(float first, const char* between, float second)
{
    std::ostringstream text;
    text << first << between << second;
    return text.str();
}

// A time of 0 has not come yet.
std::string EndText(int64_t time) { return time == 0 ? "not yet" : DateAndTime(time); }

Table::Cells ToRow(const Indicator::IndicatorData& data)
{
    return {SensorText(data.privacySensorType), StateText(data.state), Pair(data.positionX, ", ", data.positionY),
        Pair(data.width, " x ", data.height), data.color, std::to_string(data.animationType)};
}

Table::Cells ToRow(const Privacy::PrivacyEventDetail& event)
{
    return {SensorText(event.privacySensorType), event.bundleName, std::to_string(event.uid),
        AccessText(event.realAccessState), DateAndTime(event.startTimestamp), EndText(event.realEndTimestamp)};
}

Table::Cells ToRow(const Record::PermissionUsageDuration& duration)
{
    return {duration.GetBundleName(), std::to_string(duration.GetUid()), duration.GetPermissionGroup(),
        DurationText(duration.GetUsageDuration()), DateAndTime(duration.GetLastBeginTimestamp()),
        EndText(duration.GetLastEndTimestamp())};
}

template <typename Record>
void PrintAll(const std::vector<Record>& records, Format format, const Table::Cells& header, const char* none)
{
    if (format == Format::TABLE) {
        Table table(header);
        for (const auto& record : records) {
            table.Add(ToRow(record));
        }
        Print(records.empty() ? std::string(none) + "\n" : table.Text());
        return;
    }
    for (const auto& record : records) {
        PrintLine(format == Format::RAW ? record.ToString() : ToLine(ToJson(record)));
    }
}

} // namespace

void PrintRecords(const std::vector<Indicator::IndicatorData>& indicators, Format format)
{
    PrintAll(indicators, format, {"SENSOR", "STATE", "POSITION", "SIZE", "COLOUR", "ANIMATION"}, "No indicator is on.");
}

void PrintRecords(const std::vector<Privacy::PrivacyEventDetail>& events, Format format)
{
    PrintAll(events, format, {"SENSOR", "APPLICATION", "UID", "STATE", "BEGAN", "ENDED"}, "There are no events.");
}

void PrintRecords(const std::vector<Record::PermissionUsageDuration>& durations, Format format)
{
    PrintAll(durations, format, {"APPLICATION", "UID", "GROUP", "USED FOR", "LAST BEGAN", "LAST ENDED"},
        "There was no use.");
}

void PrintSwitch(const Indicator::IndicatorData& data, Format format)
{
    PrintLine(format == Format::RAW ? "switch: " + data.ToString() : ExactTimeOfDay(Now()) + "  " + SwitchText(data));
}

void PrintEvent(const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos, Format format)
{
    for (const auto& info : infos) {
        PrintLine(
            format == Format::RAW ? dataType + ": " + info.ToString() : ExactTimeOfDay(Now()) + "  " + UseText({info}));
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
