// SPDX-License-Identifier: Apache-2.0
#ifndef IN_MEMORY_SERVICE_H
#define IN_MEMORY_SERVICE_H

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "listener_registry.h"
#include "privacy_indicator_service_intf_stub.h"
#include "use_history.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing {

/**
 * The privacy indicator service, in memory. Any thread may call anything; no request waits for a listener.
 *
 * A sensor's indicator is on while an application uses the sensor, and from TurnOnIndicator on. It goes off when
 * neither holds any more, and with TurnOffIndicator, whichever application uses the sensor: the sensor's next use shows
 * it again. A change is reported to the switch listeners, and each begin and end of a use to the privacy event
 * listeners of SENSOR_STATE_CHANGE, in order. A listener that is slower by more than PushQueue holds misses the oldest
 * ones. An event that a listener refuses is not sent again: only the library's log shows it.
 *
 * Times are milliseconds since the epoch. A request with an argument out of range gets INVALID_VALUE.
 */
class InMemoryService : public PrivacyIndicatorServiceIntfStub {
public:
    /** What the service reports, as lines of text. Either function may be empty; both may be called on any thread. */
    struct Reports {
        std::function<void(const std::string&)> event;   // A registration or a power event.
        std::function<void(const std::string&)> problem; // A listener that is too slow.
    };

    InMemoryService() : InMemoryService(Reports{}) {}
    explicit InMemoryService(Reports reports);
    ~InMemoryService() override;

    /** An application begins to use a sensor. False if it does so already, or the history is full of running uses. */
    bool BeginUse(const SensorUse& use);

    /** An application stops using a sensor. False if it does not use it. */
    bool EndUse(const SensorUse& use);

    /** Returns when every listener has been called with all that happened until now. Not for a listener to call. */
    void AwaitDelivery();

    /** Every request from now on is answered with this code, and not carried out; SUCCESS ends that. */
    void SetRefusal(int32_t code);

    /**
     * A listener that is registered, for one data type. A process's client registers one object for all its switch
     * listeners, and one for all its privacy event listeners of a data type, and registers them again with each service
     * that starts.
     */
    struct Registration {
        sptr<IRemoteObject> listener;
        std::string dataType; // Empty for a switch listener.
        int count = 0;        // How often it was registered.
    };
    std::vector<Registration> GetRegistrations();

    /** Removes all listeners, and takes no more. Waits for the calls that they are in: not for a listener to call. */
    void Close();

    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;

    /**
     * A listener may have several data types. NO_ROOM beyond the limits of ListenerRegistry. Either registration
     * reports the listener's kind and process.
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

    /** Reports the event, 0 or 1. */
    int32_t NotifyPowerEvent(int32_t event) override;

private:
    struct Sensor {
        Indicator::IndicatorData indicator;
        bool isTurnedOn = false; // By a caller.
    };

    /** The three below are called with the lock held, so that changes are reported in their order. */
    Sensor& SensorOf(PrivacySensorType sensor);
    void Switch(Indicator::IndicatorData& indicator, Indicator::IndicatorState state);
    void PushUse(const SensorUse& use, AccessState state);

    int32_t ReportRegistered(const std::string& kind, int32_t result) const;

    const Reports reports_;
    std::atomic<int32_t> refusal_{SUCCESS};
    const sptr<ListenerRegistry<Indicator::IndicatorSwitchListenerIntf>> switchListeners_;
    const sptr<ListenerRegistry<Privacy::PrivacyEventListenerIntf>> eventListeners_;

    std::mutex mutex_; // For what follows. Taken before the registries' own.
    UseHistory history_;
    std::array<Sensor, 3> sensors_; // By the sensor's number.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing

#endif // IN_MEMORY_SERVICE_H
