// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_INDICATOR_SERVICE_INTF_H
#define PRIVACY_INDICATOR_SERVICE_INTF_H

#include <cstdint>
#include <string>
#include <vector>

#include "hilog/log.h"
#include "indicator_data.h"
#include "indicator_position.h"
#include "indicator_size.h"
#include "indicator_switch_listener_intf.h"
#include "iremote_broker.h"
#include "permission_usage_duration.h"
#include "permission_usage_duration_query.h"
#include "privacy_event_detail.h"
#include "privacy_event_listener_intf.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** The id under which the system ability manager knows the service. */
inline constexpr int32_t PRIVACY_INDICATOR_SA_ID = 66090;

/**
 * The interface of the privacy indicator service. Callers use it through a PrivacyIndicatorServiceIntfProxy, a service
 * derives from PrivacyIndicatorServiceIntfStub. Any number of threads may call it at once.
 *
 * Every operation returns SUCCESS, one of the other codes below, a code of the transport's, or whatever the service
 * returned. A query appends to its vector and never clears it; no other thread may touch the vector during the call.
 * What the numbers of users and of types of animation stand for is up to the service.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorServiceIntf : public IRemoteBroker {
public:
    /** The requests, in the order of the operations below. */
    enum RequestCode : uint32_t {
        REGISTER_PRIVACY_EVENT_LISTENER = 1,
        UNREGISTER_PRIVACY_EVENT_LISTENER = 2,
        GET_PRIVACY_EVENT_DETAILS = 3,
        GET_PRIVACY_EVENT_DETAILS_BY_PRIVACY_SENSOR_TYPE = 4,
        GET_ACTIVE_INDICATORS = 5,
        TURN_ON_INDICATOR = 6,
        TURN_OFF_INDICATOR = 7,
        REGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER = 8,
        UNREGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER = 9,
        GET_PERMISSION_USAGE_DURATION_SUMMARY = 10,
        NOTIFY_POWER_EVENT = 11,
    };

    /** What the service's proxy and stub return by themselves. */
    enum ErrorCode : int32_t {
        SUCCESS = 0,
        TOKEN_MISMATCH = 1, ///< The request is for another interface.
        INVALID_DATA = 5,   ///< An argument or a record that cannot be written or read, too many, or no remote object.
        INVALID_VALUE = 22, ///< The interface token or the result cannot be written.
    };

    DECLARE_INTERFACE_DESCRIPTOR(u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf");

    /** The label under which the proxy and the stub log. */
    static constexpr HiviewDFX::HiLogLabel LABEL = {LOG_CORE, 0xD005610, "PrivacyIndicatorService"};

    /**
     * Has the service call `privacyEventListener` at every privacy event of `dataType`, and hold it until it is
     * unregistered.
     */
    virtual int32_t RegisterPrivacyEventListener(
        const std::string& dataType, const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) = 0;

    /** Has the service not call `privacyEventListener` any more, for no data type. */
    virtual int32_t UnregisterPrivacyEventListener(
        const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) = 0;

    /** Appends the privacy events of a user. */
    virtual int32_t GetPrivacyEventDetails(
        int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) = 0;

    /** Appends the privacy events of a user that concern one sensor. */
    virtual int32_t GetPrivacyEventDetailsByPrivacySensorType(
        int32_t userId, int32_t privacySensorType, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) = 0;

    /** Appends the indicators that are on. */
    virtual int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) = 0;

    /** Turns a sensor's indicator on. */
    virtual int32_t TurnOnIndicator(int32_t privacySensorType, const Indicator::IndicatorPosition& indicatorPosition,
        const Indicator::IndicatorSize& indicatorSize, int32_t animationType) = 0;

    /** Turns a sensor's indicator off. */
    virtual int32_t TurnOffIndicator(int32_t privacySensorType, int32_t animationType) = 0;

    /** Has the service call `listener` whenever an indicator changes, and hold it until it is unregistered. */
    virtual int32_t RegisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) = 0;

    /** Has the service not call `listener` any more. */
    virtual int32_t UnregisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) = 0;

    /** Appends an entry for each application and permission group that the query asks for. */
    virtual int32_t GetPermissionUsageDurationSummary(
        const Record::PermissionUsageDurationQuery& permissionUsageDurationQuery,
        std::vector<Record::PermissionUsageDuration>& permissionUsageDurations) = 0;

    /** Reports a power event. Every value is passed on, valid or not: see notify_power_event.h. */
    virtual int32_t NotifyPowerEvent(int32_t event) = 0;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_INDICATOR_SERVICE_INTF_H
