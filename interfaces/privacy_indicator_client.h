// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_INDICATOR_CLIENT_H
#define PRIVACY_INDICATOR_CLIENT_H

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "indicator_data.h"
#include "indicator_position.h"
#include "indicator_size.h"
#include "indicator_switch_listener.h"
#include "indicator_switch_listener_intf.h"
#include "iremote_object.h"
#include "permission_usage_duration.h"
#include "permission_usage_duration_query.h"
#include "privacy_event_detail.h"
#include "privacy_event_listener.h"
#include "privacy_event_listener_intf.h"
#include "privacy_event_remind_info.h"
#include "privacy_indicator_export.h"
#include "privacy_indicator_service_intf.h"
#include "privacy_sensor_type.h"
#include "refbase.h"
#include "system_ability_status_change_stub.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * The way to the privacy indicator service for a whole process. Any thread may call any operation.
 *
 * An operation that reaches the service returns 0 or the service's or the transport's code. It blocks its thread for
 * 8 s at most while the service answers, before that as long as the platform looks the service up, one thread at a
 * time, and, if it is about listeners, until those of its kind are not being called. It returns 0, too, when there is
 * no service: that is logged. In the emulator variant of the library no request reaches the service at all: every such
 * operation returns 0 and leaves its output as it was.
 *
 * Users, data types and types of animation are the service's own numbers and names, and travel as they are.
 *
 * Listeners hear from the service as long as they are registered, also across its restarts. They are told apart by
 * address, and held as long as they are registered. When the service goes away they hear that each sensor is off.
 *
 * In the child of a fork without exec every request fails. An operation may even never return there, if another thread
 * of the parent's was in the client at the fork.
 *
 * A process must end by its main thread and with no other thread in the client, or without its exit handlers: else
 * listeners are called, and the client is used, while they go. What listeners' destructors do with the client is safe.
 *
 * The library throws nothing of its own and hides nothing: what a listener throws on a platform thread, or a container
 * that finds no memory, ends the process.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorClient {
public:
    /** Drops the proxy when the service's process dies. */
    class PRIVACY_INDICATOR_EXPORT DeathRecipient : public IRemoteObject::DeathRecipient {
    public:
        void OnRemoteDied(const wptr<IRemoteObject>& remote) override;
    };

    /** Hears of the service's coming and going. */
    class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorServiceListener : public SystemAbilityStatusChangeStub {
    public:
        /** Reports the last power event again, and registers every stub that was ever made. */
        void OnAddSystemAbility(int32_t systemAbilityId, const std::string& deviceId) override;

        /** Tells all listeners that every sensor is off. */
        void OnRemoveSystemAbility(int32_t systemAbilityId, const std::string& deviceId) override;
    };

    /** Built on first use, destroyed at exit. */
    static PrivacyIndicatorClient& GetInstance();

    PrivacyIndicatorClient(const PrivacyIndicatorClient&) = delete;
    PrivacyIndicatorClient& operator=(const PrivacyIndicatorClient&) = delete;

    /**
     * The gate to the service, and the one thing in which the library's variants differ. In the emulator's, `func` is
     * not run. In the device's it is run once, on this thread and under no lock of the gate's, with the service's proxy
     * or null.
     */
    void WithSystemAbilityProxy(const std::function<void(const sptr<PrivacyIndicatorServiceIntf>&)>& func);

    /** Makes sure of a living proxy, if there is a service. To be called with the proxy's lock held: for the gate. */
    void InitializeProxy();

    /** Drops the proxy. */
    void ResetProxy();

    /** Has the client told of the service's coming and going. For the constructor. */
    void SubscribePrivacyIndicatorAbility();

    /** Appends the user's privacy events to `privacyEventDetails`. */
    int32_t GetPrivacyEventDetails(int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails);

    /** Appends the user's privacy events of one sensor to `privacyEventDetails`. */
    int32_t GetPrivacyEventDetailsByPrivacySensorType(int32_t userId, const PrivacySensorType& privacySensorType,
        std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails);

    /** Appends the indicators that are on to `indicators`. */
    int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators);

    /** Turns a sensor's indicator on. */
    int32_t TurnOnIndicator(const PrivacySensorType& privacySensorType, const Indicator::IndicatorPosition& position,
        const Indicator::IndicatorSize& size, int32_t animationType);

    /** Turns a sensor's indicator off. The service takes `userId` for the type of animation. */
    int32_t TurnOffIndicator(const PrivacySensorType& privacySensorType, int32_t userId);

    /** Appends how long the queried apps used the queried permissions to `durations`. */
    int32_t GetPermissionUsageDurationSummary(
        const Record::PermissionUsageDurationQuery& query, std::vector<Record::PermissionUsageDuration>& durations);

    /** Reports a power event, 0 or 1; -1 for any other. The event is not remembered: see notify_power_event.h. */
    int32_t NotifyPowerEvent(int32_t event);

    /**
     * Has `listener` told of indicator switches. -1 if it is null or memory is short. With any other code the service
     * did not take the registration, but the listener is registered here, and with the service when it comes back.
     */
    int32_t RegisterPrivacyIndicatorSwitchListener(const std::shared_ptr<Indicator::IndicatorSwitchListener>& listener);

    /** Undoes that; no call of `listener` is under way on return. -1 if it is null. */
    int32_t UnregisterPrivacyIndicatorSwitchListener(
        const std::shared_ptr<Indicator::IndicatorSwitchListener>& listener);

    /** Has `listener` told of privacy events of `dataType`. As RegisterPrivacyIndicatorSwitchListener. */
    int32_t RegisterPrivacyEventListener(
        const std::string& dataType, const std::shared_ptr<Privacy::PrivacyEventListener>& listener);

    /**
     * Undoes that for the first data type that has `listener`. -1 if it is null. One that is registered nowhere stands
     * for the empty data type: -1 if nobody ever registered for that.
     */
    int32_t UnregisterPrivacyEventListener(const std::shared_ptr<Privacy::PrivacyEventListener>& listener);

    /** Calls every switch listener. */
    void DispatchOnIndicatorSwitchChanged(const Indicator::IndicatorData& indicatorData);

    /** Calls every listener of `dataType`. */
    void DispatchOnPrivacyEventChanged(
        const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos);

    /** Register with the service, again, what was ever registered there. */
    void ReRegisterPrivacyIndicatorSwitchListener();
    void ReRegisterPrivacyEventListener();

private:
    PrivacyIndicatorClient();
    ~PrivacyIndicatorClient();

    template <typename Operation>
    int32_t CallService(const char* function, Operation operation);

    int32_t RegisterSwitchListenerStub();
    int32_t RegisterEventListenerStub(const std::string& dataType);

    std::mutex switchListenerMutex; // Guards the next two.
    std::set<std::shared_ptr<Indicator::IndicatorSwitchListener>> switchListeners;
    sptr<Indicator::IndicatorSwitchListenerIntf> switchListenerStub; // Kept once made.
    std::function<void(const Indicator::IndicatorData&)> indicatorSwitchCallback;
    std::function<void(const std::string&, const std::vector<Privacy::PrivacyEventRemindInfo>&)> privacyEventCallback;
    std::map<std::string, sptr<Privacy::PrivacyEventListenerIntf>> privacyEventStubs; // Kept once made.
    std::map<std::string, std::set<std::shared_ptr<Privacy::PrivacyEventListener>>> privacyEventListeners;
    std::mutex privacyEventMutex; // Guards the two maps.
    sptr<PrivacyIndicatorServiceIntf> proxy;
    std::mutex proxyMutex; // Guards the proxy and the next one.
    sptr<DeathRecipient> deathRecipient;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_INDICATOR_CLIENT_H
