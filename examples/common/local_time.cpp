// SPDX-License-Identifier: Apache-2.0
#include "local_time.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

constexpr int64_t SECOND = 1000;
constexpr int64_t MINUTE = 60 * SECOND;
constexpr int64_t HOUR = 60 * MINUTE;

// Rounds down, before the epoch too.
int64_t MillisecondsOf(int64_t time) { return (time % SECOND + SECOND) % SECOND; }

std::string Format(int64_t time, const char* format)
{
    const time_t seconds = (time - MillisecondsOf(time)) / SECOND;
    tm local{};
    std::array<char, 64> text{};
    localtime_r(&seconds, &local);
    std::strftime(text.data(), text.size(), format, &local);
    return text.data();
}

std::string TwoDigits(int64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); }

std::string Milliseconds(int64_t time)
{
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), ".%03d", static_cast<int>(MillisecondsOf(time)));
    return text.data();
}

} // namespace

int64_t Now()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

std::string TimeOfDay(int64_t time) { return Format(time, "%T"); }

std::string ExactTimeOfDay(int64_t time) { return TimeOfDay(time) + Milliseconds(time); }

std::string DateAndTime(int64_t time) { return Format(time, "%F %T"); }

std::string TimeWithOffset(int64_t time) { return Format(time, "%FT%T") + Milliseconds(time) + Format(time, "%z"); }

std::string DurationText(int64_t duration)
{
    if (duration < SECOND) {
        return "0" + Milliseconds(duration) + " s";
    }
    if (duration < MINUTE) {
        return std::to_string(duration / SECOND) + " s";
    }
    if (duration < HOUR) {
        return std::to_string(duration / MINUTE) + " min " + TwoDigits(duration % MINUTE / SECOND) + " s";
    }
    return std::to_string(duration / HOUR) + " h " + TwoDigits(duration % HOUR / MINUTE) + " min";
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
