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

/** The service's number at the system ability manager. */
inline constexpr int32_t PRIVACY_INDICATOR_SA_ID = 66090;

/**
 * The privacy indicator service, as its callers see it (through PrivacyIndicatorServiceIntfProxy) and as it is
 * implemented (from PrivacyIndicatorServiceIntfStub). Any number of threads may call it at once.
 *
 * Every operation returns SUCCESS or an error: one of the values below, the transport's own, or whatever the
 * implementation returned. An operation with a vector appends to it; a vector belongs to the caller and must be left
 * alone by other threads during the call.
 *
 * The library throws nothing of its own and hides nothing: what a caller's callback throws on a platform thread, or a
 * container that finds no memory, ends the process.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorServiceIntf : public IRemoteBroker {
public:
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

    enum ErrorCode : int32_t {
        SUCCESS = 0,
        TOKEN_MISMATCH = 1, // The request was meant for another interface.
        INVALID_DATA = 5,   // An argument or an element could not be written or read, or the service is missing.
        INVALID_VALUE = 22, // The interface token or the result code could not be written.
    };

    DECLARE_INTERFACE_DESCRIPTOR(u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf");

    /** What the messages of the proxy and the stub are logged under. */
    static constexpr HiviewDFX::HiLogLabel LABEL = {LOG_CORE, 0xD005610, "PrivacyIndicatorService"};

    /** Asks for a call of `privacyEventListener` at every privacy event of `dataType`. The service keeps it. */
    virtual int32_t RegisterPrivacyEventListener(
        const std::string& dataType, const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) = 0;

    /** Ends the calls of `privacyEventListener`, of every data type. */
    virtual int32_t UnregisterPrivacyEventListener(
        const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) = 0;

    /** Appends the user's privacy events. */
    virtual int32_t GetPrivacyEventDetails(
        int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) = 0;

    /** Appends the user's privacy events of one sensor. */
    virtual int32_t GetPrivacyEventDetailsByPrivacySensorType(
        int32_t userId, int32_t privacySensorType, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) = 0;

    /** Appends the indicators that are on. */
    virtual int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) = 0;

    /** Shows a sensor's indicator. */
    virtual int32_t TurnOnIndicator(int32_t privacySensorType, const Indicator::IndicatorPosition& indicatorPosition,
        const Indicator::IndicatorSize& indicatorSize, int32_t animationType) = 0;

    /** Takes a sensor's indicator off the screen. */
    virtual int32_t TurnOffIndicator(int32_t privacySensorType, int32_t animationType) = 0;

    /** Asks for a call of `listener` whenever an indicator changes. The service keeps it. */
    virtual int32_t RegisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) = 0;

    /** Ends the calls of `listener`. */
    virtual int32_t UnregisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) = 0;

    /** Appends an entry per application and permission group that the query names. */
    virtual int32_t GetPermissionUsageDurationSummary(
        const Record::PermissionUsageDurationQuery& permissionUsageDurationQuery,
        std::vector<Record::PermissionUsageDuration>& permissionUsageDurations) = 0;

    /** Tells the service of a power event. Every value is passed on. */
    virtual int32_t NotifyPowerEvent(int32_t event) = 0;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_INDICATOR_SERVICE_INTF_H
