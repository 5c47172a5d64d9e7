// SPDX-License-Identifier: Apache-2.0
// Under callgrind: each request and callback in one process, from the proxy through the stub and back, beside the same
// parcel operations written by hand. Each leaves a dump that bears its name.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "by_hand.h"
#include "indicator_switch_listener_proxy.h"
#include "privacy_event_listener_proxy.h"
#include "privacy_event_values.h"
#include "privacy_indicator_service_intf_proxy.h"
#include "privacy_indicator_service_intf_stub.h"
#include "requests.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench;

namespace {

constexpr int32_t RECORDS = 10;
constexpr int REPEATED = 10; // The dump holds as many.

void Count(const std::string& name, const std::function<bool()>& run)
{
    for (int i = 0; i < 3; ++i) { // Warm: symbols are looked up, and the allocator has its memory.
        if (!run()) {
            std::fprintf(stderr, "%s fails\n", name.c_str());
            std::exit(1);
        }
    }
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    for (int i = 0; i < REPEATED; ++i) {
        run();
    }
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

void CountRequests(const std::string& side, PrivacyIndicatorServiceIntf& service)
{
    for (const Request& request : Requests(RECORDS)) {
        Count(side + request.name, [&] { return request.send(service); });
    }
}

void CountCallbacks(const std::string& side, SwitchListener& switchListener, EventListener& eventListener)
{
    const auto data = Indicators(1).front();
    const auto infos = RemindInfos(1);
    Count(side + "OnSwitchChanged", [&] { return switchListener.OnSwitchChanged(data), true; });
    Count(side + "OnPrivacyEventChanged",
        [&] { return eventListener.OnPrivacyEventChanged(Privacy::SENSOR_STATE_CHANGE, infos), true; });
}

template <typename Proxy>
sptr<Proxy> ProxyOf(const sptr<IRemoteObject>& object)
{
    return new Proxy(object);
}

} // namespace

int main()
{
    CountRequests("hand ", *ProxyOf<ProxyByHand>(new Service<StubByHand>()));
    CountRequests(
        "library ", *ProxyOf<PrivacyIndicatorServiceIntfProxy>(new Service<PrivacyIndicatorServiceIntfStub>()));
    CountCallbacks("hand ", *ProxyOf<SwitchProxyByHand>(new SwitchStubByHand()),
        *ProxyOf<EventProxyByHand>(new EventStubByHand()));
    CountCallbacks("library ",
        *ProxyOf<Indicator::IndicatorSwitchListenerProxy>(new Indicator::IndicatorSwitchListenerStubImpl(nullptr)),
        *ProxyOf<Privacy::PrivacyEventListenerProxy>(new Privacy::PrivacyEventListenerStubImpl(nullptr)));
}
