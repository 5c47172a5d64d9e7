// SPDX-License-Identifier: Apache-2.0
#ifndef EVENT_RESTORER_H
#define EVENT_RESTORER_H

#include <atomic>
#include <cstdint>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer {

/**
 * Remembers the last valid power event and its sender, for the life of the process. Any thread may call anything. The
 * two are stored one after the other: a replay in between, or two reports at once, may pair an event with the sender of
 * another one.
 */
class EventRestorer {
public:
    static EventRestorer& GetInstance();

    /** Stores a valid event and the calling uid; an invalid one changes nothing. */
    void UpdateEvent(int32_t event) noexcept;

    /** Sends the event to the service again if its sender is POWER_EVENT_REPLAY_UID. */
    void NotifyPowerEventByCache() noexcept;

private:
    constexpr EventRestorer() = default;

    std::atomic<int32_t> event{0};
    std::atomic<int32_t> uid{0};
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer

#endif // EVENT_RESTORER_H
