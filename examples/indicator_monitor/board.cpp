// SPDX-License-Identifier: Apache-2.0
#include "board.h"

#include <algorithm>

#include "local_time.h"
#include "privacy_event_values.h"
#include "table.h"
#include "words.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

constexpr size_t MAX_EVENTS = 100;   // More than a screen shows.
constexpr size_t MAX_USES_SHOWN = 8; // Of one sensor.
constexpr const char* BOLD = "1";
constexpr const char* DIM = "2";
constexpr const char* GREEN = "32";
constexpr const char* YELLOW = "33";

} // namespace

Board::Board(const std::string& obstacle)
    : obstacle_(obstacle), unknownBecause_(obstacle.empty() ? "the service is not there" : obstacle)
{}

std::map<int32_t, Board::Sensor> Board::KnownSensors()
{
    std::map<int32_t, Sensor> sensors;
    for (const auto sensor : {PrivacySensorType::CAMERA, PrivacySensorType::MICROPHONE, PrivacySensorType::LOCATION}) {
        sensors[static_cast<int32_t>(sensor)];
    }
    return sensors;
}

void Board::OnSwitch(int64_t time, const Indicator::IndicatorData& data)
{
    const auto number = static_cast<int32_t>(data.privacySensorType);
    const std::string state = StateText(data.state);
    // The client reports every sensor as off when the service goes.
    if (sensors_[number].state != state) {
        Note(time, SensorText(number), "indicator " + state);
    }
    Apply([=] { sensors_[number].state = state; });
}

void Board::OnUse(
    int64_t time, const std::string& /* dataType */, const std::vector<Privacy::PrivacyEventRemindInfo>& infos)
{
    for (const auto& info : infos) {
        const bool isOver = info.privacyAccessState == Privacy::ACCESS_STATE_OFF;
        const bool isOfAll = info.bundleName.empty() && isOver;
        if (!isOfAll) {
            Note(time, SensorText(info.privacySensorType),
                ApplicationText(info.bundleName, info.uid) + " " + AccessText(info.privacyAccessState));
        }
        Apply([=] {
            auto& uses = sensors_[info.privacySensorType].uses;
            if (isOfAll) {
                uses.clear();
            } else if (isOver) {
                uses.erase({info.bundleName, info.uid});
            } else {
                uses.emplace(Application(info.bundleName, info.uid), time);
            }
        });
    }
}

void Board::OnService(int64_t time, bool isThere)
{
    Note(time, "service", isThere ? "there" : "gone");
    isThere_ = isThere;
    if (obstacle_.empty()) {
        unknownBecause_ = isThere ? "the service is being asked" : "the service is not there";
    }
}

void Board::OnAsking()
{
    isAsking_ = true;
    changesSinceAsked_.clear();
}

void Board::OnState(int64_t /* time */, const ServiceState& state)
{
    isAsking_ = false;
    if (!isThere_) {
        return; // It has gone meanwhile.
    }
    if (state.result != 0) {
        unknownBecause_ = "the service did not answer (" + ResultText(state.result) + ")";
        return;
    }
    unknownBecause_.clear();
    sensors_ = KnownSensors();
    for (const auto& indicator : state.indicators) {
        sensors_[static_cast<int32_t>(indicator.privacySensorType)].state = StateText(indicator.state);
    }
    for (const auto& use : state.uses) {
        sensors_[use.privacySensorType].uses[{use.bundleName, use.uid}] = use.startTimestamp;
    }
    // They may be part of the answer, or not; in either case a sensor's last change is its state now.
    for (const auto& change : changesSinceAsked_) {
        change();
    }
}

std::vector<ScreenLine> Board::Lines(int64_t now, size_t rows) const
{
    const std::string title = "Privacy indicators at " + TimeOfDay(now);
    const std::string unknown = unknownBecause_.empty() ? "" : "The state is unknown: " + unknownBecause_ + ".";
    std::vector<ScreenLine> lines{{title, BOLD}, {unknown, YELLOW}};
    AddSensors(lines, now);
    lines.push_back({"", ""});
    lines.push_back({"LAST EVENTS", BOLD});
    for (const auto& event : events_) {
        lines.push_back({event, ""});
    }
    // The oldest events are left out where there is no room.
    constexpr size_t END_LINES = 2;
    lines.resize(std::min(lines.size(), rows > END_LINES ? rows - END_LINES : 0));
    lines.push_back({"", ""});
    lines.push_back({"q or Ctrl-C ends.", DIM});
    return lines;
}

void Board::Apply(const std::function<void()>& change)
{
    change();
    if (isAsking_) {
        changesSinceAsked_.push_back(change);
    }
}

void Board::Note(int64_t time, const std::string& what, const std::string& event)
{
    constexpr size_t WIDTH = 12;
    const std::string padding(what.size() < WIDTH ? WIDTH - what.size() : 1, ' ');
    events_.push_front(TimeOfDay(time) + "  " + what + padding + event);
    events_.resize(std::min(events_.size(), MAX_EVENTS));
}

void Board::AddSensors(std::vector<ScreenLine>& lines, int64_t now) const
{
    Table table({"SENSOR", "STATE", "USED BY", "SINCE"});
    std::vector<const char*> colors{BOLD};
    for (const auto& [number, sensor] : sensors_) {
        const bool isKnown = unknownBecause_.empty();
        const char* const color = !isKnown ? YELLOW : sensor.state == "on" ? GREEN : "";
        Table::Cells row{SensorText(number), isKnown ? sensor.state : "unknown", "", ""};
        size_t shown = 0;
        for (const auto& [application, since] : sensor.uses) {
            if (!isKnown || shown == MAX_USES_SHOWN) {
                break;
            }
            row[2] = ApplicationText(application.first, application.second);
            row[3] = TimeOfDay(since) + (now - since < 1000 ? "" : ", for " + DurationText(now - since));
            table.Add(row);
            colors.push_back(color);
            row = {"", "", "", ""};
            ++shown;
        }
        if (isKnown && sensor.uses.size() > shown) {
            row[2] = "and " + std::to_string(sensor.uses.size() - shown) + " more";
        }
        if (shown == 0 || !row[2].empty()) {
            table.Add(row);
            colors.push_back(color);
        }
    }
    const auto text = table.Lines();
    for (size_t i = 0; i < text.size(); ++i) {
        lines.push_back({text[i], colors[i]});
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
