// SPDX-License-Identifier: Apache-2.0
#ifndef BOARD_H
#define BOARD_H

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "terminal.h"
#include "view.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * How the sensors are, as a screen: a row for each sensor with the applications that use it and since when, and the
 * last events. While the service is not there, or does not answer, their state is unknown.
 */
class Board : public View {
public:
    /** `obstacle` is why the state will never be known; empty if there is no such reason. */
    explicit Board(const std::string& obstacle);

    void OnSwitch(int64_t time, const Indicator::IndicatorData& data) override;
    void OnUse(
        int64_t time, const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) override;
    void OnService(int64_t time, bool isThere) override;
    void OnAsking() override;
    void OnState(int64_t time, const ServiceState& state) override;

    /** The screen as it is at `now`, no more than `rows` lines. */
    std::vector<ScreenLine> Lines(int64_t now, size_t rows) const;

private:
    using Application = std::pair<std::string, int32_t>; // The name and the uid.

    struct Sensor {
        std::string state = "off";           // Of its indicator.
        std::map<Application, int64_t> uses; // The applications that use it, and since when.
    };

    /** Changes the sensors by `change`: now and, while the state is being asked for, once more after the answer. */
    void Apply(const std::function<void()>& change);

    /** Adds to the last events. */
    void Note(int64_t time, const std::string& what, const std::string& event);

    void AddSensors(std::vector<ScreenLine>& lines, int64_t now) const;

    static std::map<int32_t, Sensor> KnownSensors();

    const std::string obstacle_;
    std::map<int32_t, Sensor> sensors_ = KnownSensors(); // By their number.
    std::string unknownBecause_;                         // Empty while the state is known.
    bool isThere_ = false;
    bool isAsking_ = false;
    std::vector<std::function<void()>> changesSinceAsked_;
    std::deque<std::string> events_; // The latest comes first.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // BOARD_H
