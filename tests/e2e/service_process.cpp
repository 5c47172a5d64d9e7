// SPDX-License-Identifier: Apache-2.0
// A process that is a service, which tells of its requests and calls back at the last one, or that makes each once.
#include <atomic>

#include "../unit/samples.h"
#include "command_loop.h"
#include "indicator_switch_listener_stub_impl.h"
#include "ipc_skeleton.h"
#include "iservice_registry.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf_proxy.h"
#include "privacy_indicator_service_intf_stub.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;
using Indicator::IndicatorSwitchListenerIntf;
using Privacy::PrivacyEventListenerIntf;

namespace {

template <typename... Parts>
void TellAll(const Parts&... parts)
{
    std::ostringstream text;
    ((text << parts), ...);
    Tell(text.str());
}

template <typename Record>
void TellRecords(const std::string& what, const std::vector<Record>& records)
{
    for (const Record& record : records) {
        TellAll(what, record.ToString());
    }
}

class Service : public PrivacyIndicatorServiceIntfStub {
public:
    int32_t RegisterPrivacyEventListener(
        const std::string& dataType, const sptr<PrivacyEventListenerIntf>& listener) override
    {
        eventListener = listener;
        return Told("events of ", dataType);
    }

    int32_t UnregisterPrivacyEventListener(const sptr<PrivacyEventListenerIntf>& listener) override
    {
        return Told("no events for ", listener->AsObject() == eventListener->AsObject() ? "it" : "whom?");
    }

    int32_t GetPrivacyEventDetails(int32_t userId, std::vector<PrivacyEventDetail>& details) override
    {
        details.resize(2, *Read<PrivacyEventDetail>(DETAIL.bytes));
        return Told("details of ", userId);
    }

    int32_t GetPrivacyEventDetailsByPrivacySensorType(
        int32_t userId, int32_t privacySensorType, std::vector<PrivacyEventDetail>& details) override
    {
        details.resize(1);
        return Told("details of ", userId, " and ", privacySensorType);
    }

    int32_t GetActiveIndicators(std::vector<IndicatorData>& indicators) override
    {
        indicators.push_back(*Read<IndicatorData>(DATA.bytes));
        return Told("active");
    }

    int32_t TurnOnIndicator(int32_t privacySensorType, const IndicatorPosition& position, const IndicatorSize& size,
        int32_t animationType) override
    {
        return Told("on ", privacySensorType, position.ToString(), size.ToString(), animationType);
    }

    int32_t TurnOffIndicator(int32_t privacySensorType, int32_t animationType) override
    {
        return Told("off ", privacySensorType, animationType);
    }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<IndicatorSwitchListenerIntf>& listener) override
    {
        switchListener = listener;
        return Told("switches");
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(const sptr<IndicatorSwitchListenerIntf>& listener) override
    {
        return Told("no switches for ", listener->AsObject() == switchListener->AsObject() ? "it" : "whom?");
    }

    int32_t GetPermissionUsageDurationSummary(
        const PermissionUsageDurationQuery& query, std::vector<PermissionUsageDuration>& durations) override
    {
        durations.push_back(*Read<PermissionUsageDuration>(DURATION.bytes));
        return Told(query.ToString());
    }

    int32_t NotifyPowerEvent(int32_t event) override
    {
        switchListener->OnSwitchChanged(*Read<IndicatorData>(DATA.bytes));
        eventListener->OnPrivacyEventChanged(
            "camera", {*Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes), PrivacyEventRemindInfo()});
        return Told("power ", event);
    }

    std::atomic<int32_t> result{0};

private:
    template <typename... Parts>
    int32_t Told(const Parts&... parts)
    {
        TellAll(IPCSkeleton::GetCallingPid(), " ", parts...);
        return result;
    }

    // One caller's calls, made one after the other, come on one thread.
    sptr<PrivacyEventListenerIntf> eventListener;
    sptr<IndicatorSwitchListenerIntf> switchListener;
};

const sptr<Service>& OWN = *new sptr<Service>(new Service());

std::string Serve(const Words& /* words */)
{
    const auto manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    return std::to_string(manager->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, OWN));
}

// Tells the records that came, and answers with the results.
std::string CallAll(const Words& /* words */)
{
    static const sptr<PrivacyEventListenerIntf> eventListener(new Privacy::PrivacyEventListenerStubImpl(
        [](const std::string& dataType, const auto& infos) { TellRecords(dataType + " ", infos); }));
    static const sptr<IndicatorSwitchListenerIntf> switchListener(
        new Indicator::IndicatorSwitchListenerStubImpl([](const auto& data) { TellAll("switch ", data.ToString()); }));
    const auto manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    const auto service = iface_cast<PrivacyIndicatorServiceIntf>(manager->GetSystemAbility(PRIVACY_INDICATOR_SA_ID));
    std::vector<PrivacyEventDetail> details;
    std::vector<PrivacyEventDetail> detailsOfOne;
    std::vector<IndicatorData> indicators;
    std::vector<PermissionUsageDuration> durations;
    const int32_t results[] = {service->RegisterPrivacyEventListener("camera", eventListener),
        service->UnregisterPrivacyEventListener(eventListener), service->GetPrivacyEventDetails(100, details),
        service->GetPrivacyEventDetailsByPrivacySensorType(-5, 3, detailsOfOne),
        service->GetActiveIndicators(indicators),
        service->TurnOnIndicator(1, *Read<IndicatorPosition>(POSITION.bytes), *Read<IndicatorSize>(SIZE.bytes), 7),
        service->TurnOffIndicator(2, -8), service->RegisterPrivacyIndicatorSwitchListener(switchListener),
        service->UnregisterPrivacyIndicatorSwitchListener(switchListener),
        service->GetPermissionUsageDurationSummary(*Read<PermissionUsageDurationQuery>(QUERY.bytes), durations),
        service->NotifyPowerEvent(11)};
    TellRecords("", details);
    TellRecords("", detailsOfOne);
    TellRecords("", indicators);
    TellRecords("", durations);
    std::ostringstream text;
    for (const int32_t result : results) {
        text << result << ' ';
    }
    return text.str();
}

} // namespace

int main()
{
    ServeCommands({{"serve", Serve}, {"call", CallAll},
        {"result", [](auto& words) { return std::to_string((OWN->result = std::stoi(words[1])) * 0); }}});
    return 0;
}
