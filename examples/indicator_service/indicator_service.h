// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SERVICE_H
#define INDICATOR_SERVICE_H

#include <array>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "listener_registry.h"
#include "privacy_indicator_service_intf_stub.h"
#include "use_history.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * The privacy indicator service, in memory. Any thread may call anything; no call waits for a listener.
 *
 * A sensor's indicator is on while an application uses the sensor, and from TurnOnIndicator on. It goes off when
 * neither holds any more, and with TurnOffIndicator, whoever uses the sensor: the sensor's next use shows it again. A
 * change is told to the switch listeners, and each begin and end of a use to the privacy event listeners of
 * SENSOR_STATE_CHANGE, in order. A listener that falls behind by more than PushQueue holds misses the oldest ones. An
 * event that a listener does not take, or answer within 8 s, is not sent again, which only the library's log tells.
 *
 * Times are milliseconds since the epoch. A request with an argument out of range gets INVALID_VALUE.
 */
class IndicatorService : public PrivacyIndicatorServiceIntfStub {
public:
    /** The data type of the privacy events that there are. */
    static constexpr const char* SENSOR_STATE_CHANGE = "sensorStateChange";

    IndicatorService();
    ~IndicatorService() override;

    /** An application begins to use a sensor. False if it does so already, or the history is full of running uses. */
    bool BeginUse(const SensorUse& use);

    /** An application stops using a sensor. False if it does not use it. */
    bool EndUse(const SensorUse& use);

    /** Lets all listeners go. Waits for the calls that they are in. */
    void Close();

    /**
     * A listener may have several data types. NO_ROOM beyond the limits of ListenerRegistry. Either registration prints
     * the listener's kind and process as a line on standard output.
     */
    int32_t RegisterPrivacyEventListener(
        const std::string& dataType, const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) override;
    int32_t UnregisterPrivacyEventListener(
        const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) override;

    /** The latest uses of sensors, as UseHistory says. */
    int32_t GetPrivacyEventDetails(
        int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) override;
    int32_t GetPrivacyEventDetailsByPrivacySensorType(int32_t userId, int32_t privacySensorType,
        std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) override;

    int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) override;

    /** An indicator that is on already moves. The screen's size and rotation are not used. */
    int32_t TurnOnIndicator(int32_t privacySensorType, const Indicator::IndicatorPosition& indicatorPosition,
        const Indicator::IndicatorSize& indicatorSize, int32_t animationType) override;
    int32_t TurnOffIndicator(int32_t privacySensorType, int32_t animationType) override;

    int32_t RegisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) override;
    int32_t UnregisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) override;

    /** How long the sensors were used, as UseHistory says. */
    int32_t GetPermissionUsageDurationSummary(const Record::PermissionUsageDurationQuery& permissionUsageDurationQuery,
        std::vector<Record::PermissionUsageDuration>& permissionUsageDurations) override;

    /** Prints the event, 0 or 1, as a line on standard output. */
    int32_t NotifyPowerEvent(int32_t event) override;

private:
    struct Sensor {
        Indicator::IndicatorData indicator;
        bool isTurnedOn = false; // By a caller.
    };

    /** The three below are called with the lock held, so that listeners hear of changes in their order. */
    Sensor& Of(PrivacySensorType sensor);
    void Switch(Indicator::IndicatorData& indicator, Indicator::IndicatorState state);
    void PushUse(const SensorUse& use, AccessState state);

    const sptr<ListenerRegistry<Indicator::IndicatorSwitchListenerIntf>> switchListeners_;
    const sptr<ListenerRegistry<Privacy::PrivacyEventListenerIntf>> eventListeners_;

    std::mutex mutex_; // For what follows. Taken before the registries' own.
    UseHistory history_;
    std::array<Sensor, 3> sensors_; // By the sensor's number.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // INDICATOR_SERVICE_H
