// SPDX-License-Identifier: Apache-2.0
#include "clock_time.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

std::string ClockTime()
{
    constexpr long NANOSECONDS_PER_MILLISECOND = 1000000;
    timespec now{};
    tm local{};
    clock_gettime(CLOCK_REALTIME, &now);
    localtime_r(&now.tv_sec, &local);
    std::array<char, 16> text{};
    const size_t size = std::strftime(text.data(), text.size(), "%T", &local);
    std::snprintf(text.data() + size, text.size() - size, ".%03ld", now.tv_nsec / NANOSECONDS_PER_MILLISECOND);
    return text.data();
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
