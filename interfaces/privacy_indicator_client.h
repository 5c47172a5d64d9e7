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
 * A process's connection to the privacy indicator service: one object that sends every request of the process and keeps
 * all of its listeners. Any thread may call any operation but InitializeProxy.
 *
 * Results. An operation that reaches the service returns 0 or a failure's code: the service's, the platform's, or one
 * of PrivacyIndicatorServiceIntf::ErrorCode. It also returns 0 when there is no service, which is only logged. In the
 * emulator variant of the library no request reaches the service: every such operation returns 0 and leaves its output
 * as it was. What the numbers of users and of types of animation and the names of data types stand for is up to the
 * service: they are carried unchanged.
 *
 * Blocking. An operation that reaches the service blocks its thread while the platform looks the service up, one thread
 * at a time, and then until the service has replied, however long that takes. An operation on listeners also waits
 * until no listener of that kind is being called.
 *
 * Listeners. A listener is called as long as it is registered, also across restarts of the service. Listeners are
 * identified by their address and held while they are registered. When the service goes away, every switch listener is
 * called once for each sensor, with state OFF, the colour "#000000" and 0 for the rest: only a notice of the service's
 * end distinguishes that from a real switch. Then the privacy event listeners of SENSOR_STATE_CHANGE, no others, are
 * called once with a record for each sensor: no name, uid -1, ACCESS_STATE_OFF. An event that the service itself
 * reports should have a name; a listener that filters by user must let records without a name pass.
 *
 * The state. No listener is called when the service comes back: an app has to query the state again. For that it
 * subscribes to the service with the system ability manager, after its first call of GetInstance(). Where subscribers
 * are called in the order of their subscription, as on Linux, its own notices then come after the listeners were
 * registered again, or called at the service's end. Where that is not so, it may call both ReRegister operations before
 * it queries.
 *
 * Processes. The child of a fork must not use the client before exec. A process must exit by its main thread and while
 * no other thread is in the client, or without its exit handlers, since the client is destroyed by them. A listener's
 * destructor may call the client.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorClient {
public:
    /** Drops the proxy when the service's process has died. */
    class PRIVACY_INDICATOR_EXPORT DeathRecipient : public IRemoteObject::DeathRecipient {
    public:
        /** Whichever object `remote` is, the proxy is dropped. */
        void OnRemoteDied(const wptr<IRemoteObject>& remote) noexcept override;
    };

    /** Is called when the service comes and goes. Any other system ability is ignored. */
    class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorServiceListener : public SystemAbilityStatusChangeStub {
    public:
        /** Sends the remembered power event again, then registers all stubs again. */
        void OnAddSystemAbility(int32_t systemAbilityId, const std::string& deviceId) noexcept override;

        /** Calls the listeners, as every sensor counts as off now. */
        void OnRemoveSystemAbility(int32_t systemAbilityId, const std::string& deviceId) noexcept override;
    };

    /** The one client of this process: built at the first use, destroyed at exit. */
    static PrivacyIndicatorClient& GetInstance() noexcept;

    PrivacyIndicatorClient(const PrivacyIndicatorClient&) = delete;
    PrivacyIndicatorClient& operator=(const PrivacyIndicatorClient&) = delete;

    /**
     * The gate to the service, in which alone the library's two variants differ. The emulator's never calls `func`. The
     * device's calls it once, on this thread and without holding the proxy's lock, with the service's proxy, or with
     * null if there is no service, so that an app can learn that there is none. `func` must not be empty.
     */
    void WithSystemAbilityProxy(const std::function<void(const sptr<PrivacyIndicatorServiceIntf>&)>& func) noexcept;

    /** Gets a proxy of the service, unless there is a living one. Only the gate calls it, with proxyMutex held. */
    void InitializeProxy() noexcept;

    /** Drops the proxy. */
    void ResetProxy() noexcept;

    /** Subscribes to the service's coming and going. The constructor alone calls it: each call adds a subscription. */
    void SubscribePrivacyIndicatorAbility() noexcept;

    /** Appends the privacy events of a user to `privacyEventDetails`. */
    int32_t GetPrivacyEventDetails(
        int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) noexcept;

    /** Appends the privacy events of a user that concern one sensor to `privacyEventDetails`. */
    int32_t GetPrivacyEventDetailsByPrivacySensorType(int32_t userId, const PrivacySensorType& privacySensorType,
        std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) noexcept;

    /** Appends the indicators that are on to `indicators`. */
    int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) noexcept;

    /** Turns a sensor's indicator on. */
    int32_t TurnOnIndicator(const PrivacySensorType& privacySensorType, const Indicator::IndicatorPosition& position,
        const Indicator::IndicatorSize& size, int32_t animationType) noexcept;

    /** Turns a sensor's indicator off. Contract: `userId` is no user: the service gets it as the type of animation. */
    int32_t TurnOffIndicator(const PrivacySensorType& privacySensorType, int32_t userId) noexcept;

    /** Appends how long the applications of the query used the permission groups of the query to `durations`. */
    int32_t GetPermissionUsageDurationSummary(const Record::PermissionUsageDurationQuery& query,
        std::vector<Record::PermissionUsageDuration>& durations) noexcept;

    /**
     * Reports a power event to the service. Returns -1 if it is not valid. The event is not remembered: that is done
     * by the function of notify_power_event.h, which calls this one.
     */
    int32_t NotifyPowerEvent(int32_t event) noexcept;

    /**
     * Has `listener` called at indicator switches. Returns -1 if it is null or if there is no memory for the stub: it
     * is not registered then. After any other failure it is registered with the client all the same, and with the
     * service when that comes back. Contract: while the client has a switch listener, a further registration, even of
     * the same one, returns 0 and sends nothing. To try again after a failure, unregister all of them first; or call
     * ReRegisterPrivacyIndicatorSwitchListener, which does not say whether it succeeded.
     */
    int32_t RegisterPrivacyIndicatorSwitchListener(
        const std::shared_ptr<Indicator::IndicatorSwitchListener>& listener) noexcept;

    /**
     * `listener` is not called any more: no call is under way on return. Returns -1 if it is null. Contract: if no
     * listener is left, the client's stub is unregistered from the service, even if `listener` was not registered. If
     * there never was one, the proxy refuses that with PrivacyIndicatorServiceIntf::INVALID_DATA.
     */
    int32_t UnregisterPrivacyIndicatorSwitchListener(
        const std::shared_ptr<Indicator::IndicatorSwitchListener>& listener) noexcept;

    /**
     * Has `listener` called at privacy events of `dataType`, such as SENSOR_STATE_CHANGE. The results and what follows
     * from them are those of RegisterPrivacyIndicatorSwitchListener, for each data type by itself; the function to try
     * again with is ReRegisterPrivacyEventListener.
     */
    int32_t RegisterPrivacyEventListener(
        const std::string& dataType, const std::shared_ptr<Privacy::PrivacyEventListener>& listener) noexcept;

    /**
     * `listener` is not called any more for the first data type that it is registered for, in the order of their bytes:
     * no call is under way on return. Returns -1 if it is null. Contract: a listener that is registered for none counts
     * as the last one of the empty data type. That returns -1 if no listener was ever registered for that type;
     * otherwise the service stops calling every listener of it.
     */
    int32_t UnregisterPrivacyEventListener(const std::shared_ptr<Privacy::PrivacyEventListener>& listener) noexcept;

    /** Calls all switch listeners, on this thread. */
    void DispatchOnIndicatorSwitchChanged(const Indicator::IndicatorData& indicatorData) noexcept;

    /** Calls all listeners of `dataType`, on this thread. */
    void DispatchOnPrivacyEventChanged(
        const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) noexcept;

    /** Registers all switch listeners with the service again, by their one stub, even if none is left. */
    void ReRegisterPrivacyIndicatorSwitchListener() noexcept;

    /** Registers all privacy event listeners with the service again, by their stubs, even where none is left. */
    void ReRegisterPrivacyEventListener() noexcept;

private:
    PrivacyIndicatorClient();
    ~PrivacyIndicatorClient();

    // To be called with the lock of the stub's kind held.
    int32_t RegisterSwitchListenerStub() noexcept;
    int32_t RegisterEventListenerStub(const std::string& dataType) noexcept;

    std::mutex switchListenerMutex; // Guards the next two members.
    std::set<std::shared_ptr<Indicator::IndicatorSwitchListener>> switchListeners;
    sptr<Indicator::IndicatorSwitchListenerIntf> switchListenerStub; // Kept once created.
    std::function<void(const Indicator::IndicatorData&)> indicatorSwitchCallback;
    std::function<void(const std::string&, const std::vector<Privacy::PrivacyEventRemindInfo>&)> privacyEventCallback;
    std::map<std::string, sptr<Privacy::PrivacyEventListenerIntf>> privacyEventStubs; // Kept once created.
    std::map<std::string, std::set<std::shared_ptr<Privacy::PrivacyEventListener>>> privacyEventListeners;
    std::mutex privacyEventMutex; // Guards the two maps above.
    sptr<PrivacyIndicatorServiceIntf> proxy;
    std::mutex proxyMutex; // Guards the proxy and the death recipient.
    sptr<DeathRecipient> deathRecipient;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_INDICATOR_CLIENT_H
