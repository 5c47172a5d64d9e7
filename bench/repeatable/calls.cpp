// SPDX-License-Identifier: Apache-2.0
// usage: calls allocations | calls memory | calls trace REQUEST COUNT
// Requests between two processes on a bus. The first form counts the allocations of each request, on either side, and
// the second the bytes that a listener takes. The third sends one of them again and again for a tracer of system calls:
// just before each, the client calls getppid, and within each, the service calls getsid, so that a trace can be cut
// into single calls.
#include <malloc.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "allocation_count.h"
#include "figure.h"
#include "iservice_registry.h"
#include "privacy_indicator_client.h"
#include "privacy_indicator_service_intf_stub.h"
#include "requests.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench;

namespace {

constexpr size_t LISTENERS = 1000;
constexpr size_t MANY_LISTENERS = 10000;

enum Side { CLIENT, SERVICE };

/** In memory that both processes share. */
using Counts = std::array<std::atomic<uint64_t>, 2>;

[[noreturn]] void Fail(const std::string& text)
{
    std::fprintf(stderr, "bench_calls: %s\n", text.c_str());
    std::exit(1);
}

/** Keeps the listeners that are registered, as a real one does. */
class CountedService : public Service<PrivacyIndicatorServiceIntfStub> {
public:
    explicit CountedService(Counts& counts) : counts_(counts) { listeners_.reserve(LISTENERS); }

    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        getsid(0);
        allocationCount = &counts_[SERVICE]; // Only of threads that serve: others do their work at times of their own.
        return Service::OnRemoteRequest(code, data, reply, option);
    }

    int32_t RegisterPrivacyEventListener(
        const std::string& /* dataType */, const sptr<EventListener>& listener) override
    {
        return Keep(listener);
    }

    int32_t UnregisterPrivacyEventListener(const sptr<EventListener>& listener) override { return Drop(listener); }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Keep(listener);
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Drop(listener);
    }

private:
    int32_t Keep(const sptr<IRemoteBroker>& listener)
    {
        listeners_.push_back(listener);
        return 0;
    }

    int32_t Drop(const sptr<IRemoteBroker>& listener)
    {
        const auto isSame = [&](const auto& kept) { return kept->AsObject() == listener->AsObject(); };
        listeners_.erase(std::find_if(listeners_.begin(), listeners_.end(), isSame));
        return 0;
    }

    Counts& counts_;
    std::vector<sptr<IRemoteBroker>> listeners_;
};

/** Answers a power event with the bytes that its process has allocated. */
class MeasuredService : public CountedService {
public:
    using CountedService::CountedService;

    int32_t NotifyPowerEvent(int32_t /* event */) override { return static_cast<int32_t>(mallinfo2().uordblks); }
};

sptr<ISystemAbilityManager> Manager() { return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager(); }

/** Forks the service; on return it can be found. */
template <typename Kind>
void StartService(Counts& counts)
{
    int ready[2];
    char byte = 0;
    if (pipe(ready) != 0) {
        Fail("no pipe");
    }
    if (fork() == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (Manager()->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, new Kind(counts)) != 0) {
            Fail("no bus");
        }
        if (write(ready[1], &byte, 1) == 1) {
            pause();
        }
        std::_Exit(1);
    }
    close(ready[1]);
    if (read(ready[0], &byte, 1) != 1) {
        Fail("no service");
    }
}

sptr<PrivacyIndicatorServiceIntf> FindService()
{
    auto service = iface_cast<PrivacyIndicatorServiceIntf>(Manager()->GetSystemAbility(PRIVACY_INDICATOR_SA_ID));
    if (service == nullptr) {
        Fail("the service is not found");
    }
    return service;
}

void Send(const Request& request, PrivacyIndicatorServiceIntf& service)
{
    if (!request.send(service)) {
        Fail(request.name + " fails");
    }
}

/**
 * The allocations of one request on each side. A second one, which is counted, too, is served once all is done that the
 * service does for the first one beyond its reply.
 */
std::array<uint64_t, 2> CountOnce(
    const Request& request, const Request& second, PrivacyIndicatorServiceIntf& service, const Counts& counts)
{
    const uint64_t ofService = counts[SERVICE];
    const uint64_t ofClient = counts[CLIENT];
    Send(request, service);
    const uint64_t afterClient = counts[CLIENT];
    Send(second, service);
    return {afterClient - ofClient, counts[SERVICE] - ofService};
}

/**
 * The allocations of each request on each side, once everything is warm. Each round registers listeners that the
 * service does not know, and unregisters them. Of the rounds it is the median: the C library takes memory now and then
 * for the functions that it calls at exit.
 */
std::vector<std::array<double, 2>> CountAllocations(
    int32_t recordCount, PrivacyIndicatorServiceIntf& service, const Counts& counts)
{
    constexpr size_t ROUNDS = 51;
    std::vector<std::array<std::vector<uint64_t>, 2>> all;
    for (size_t round = 0; round < ROUNDS; ++round) {
        const auto requests = Requests(recordCount);
        const Request& second = requests.back(); // All that it does comes before its reply.
        const uint64_t ofSecond = CountOnce(second, second, service, counts)[SERVICE] / 2;
        all.resize(requests.size());
        for (size_t i = 0; i < requests.size(); ++i) {
            const auto once = CountOnce(requests[i], second, service, counts);
            all[i][CLIENT].push_back(once[CLIENT]);
            all[i][SERVICE].push_back(once[SERVICE] - ofSecond);
        }
    }
    std::vector<std::array<double, 2>> medians(all.size());
    for (size_t i = 0; i < all.size(); ++i) {
        for (const Side side : {CLIENT, SERVICE}) {
            std::sort(all[i][side].begin(), all[i][side].end());
            medians[i][side] = static_cast<double>(all[i][side][ROUNDS / 2]);
        }
    }
    return medians;
}

void CountAllocations(const Counts& counts)
{
    constexpr int32_t FEW = 100;
    constexpr int32_t MANY = 200;
    const auto service = FindService();
    const auto requests = Requests(FEW);
    const auto few = CountAllocations(FEW, *service, counts);
    const auto many = CountAllocations(MANY, *service, counts);
    for (size_t i = 0; i < requests.size(); ++i) {
        const std::string& name = requests[i].name;
        if (name.find("By") != std::string::npos) {
            continue; // The same as the query without the sensor.
        }
        const bool isQuery = name == "GetPrivacyEventDetails" || name == "GetPermissionUsageDurationSummary";
        for (const auto& [side, column] : {std::pair(CLIENT, "client"), std::pair(SERVICE, "service")}) {
            PrintFigure("allocations", name + (isQuery ? ", 100 records" : ""), column, few[i][side]);
            if (isQuery) {
                PrintFigure(
                    "allocations", name + ", a further record", column, (many[i][side] - few[i][side]) / (MANY - FEW));
            }
        }
    }
}

struct SilentListener : Indicator::IndicatorSwitchListener {
    void OnSwitchChanged(const Indicator::IndicatorData& /* data */) override {}
};

/** The bytes that this process has allocated. */
double Allocated() { return static_cast<double>(mallinfo2().uordblks); }

void CountMemory()
{
    const auto service = FindService();
    std::vector<sptr<SwitchListener>> stubs;
    stubs.reserve(LISTENERS);
    const double ofService = service->NotifyPowerEvent(1);
    const double ofStubs = Allocated();
    for (size_t i = 0; i < LISTENERS; ++i) {
        stubs.emplace_back(new Indicator::IndicatorSwitchListenerStubImpl(nullptr));
        service->RegisterPrivacyIndicatorSwitchListener(stubs.back());
    }
    PrintFigure("memory, bytes", "a listener's stub in its process", "", (Allocated() - ofStubs) / LISTENERS);
    PrintFigure("memory, bytes", "a listener's proxy in the service", "",
        (service->NotifyPowerEvent(1) - ofService) / LISTENERS);

    auto& client = PrivacyIndicatorClient::GetInstance();
    std::vector<std::shared_ptr<SilentListener>> listeners(MANY_LISTENERS); // Since other threads allocate, too.
    for (auto& listener : listeners) {
        listener = std::make_shared<SilentListener>();
    }
    client.RegisterPrivacyIndicatorSwitchListener(listeners.front()); // The stub is made.
    const double ofListeners = Allocated();
    for (const auto& listener : listeners) {
        client.RegisterPrivacyIndicatorSwitchListener(listener);
    }
    PrintFigure("memory, bytes", "an app's listener", "", (Allocated() - ofListeners) / MANY_LISTENERS);
}

void SendForTrace(const std::string& name, int count)
{
    constexpr int32_t RECORDS = 1000;
    const auto service = FindService();
    for (const Request& request : Requests(RECORDS)) {
        for (int i = 0; request.name == name && i < count; ++i) {
            static_cast<void>(getppid());
            Send(request, *service);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    void* shared = mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) {
        Fail("no memory");
    }
    Counts& counts = *new (shared) Counts();
    const std::string mode = argc > 1 ? argv[1] : "";
    mode == "memory" ? StartService<MeasuredService>(counts) : StartService<CountedService>(counts);
    allocationCount = &counts[CLIENT];
    if (mode == "allocations") {
        CountAllocations(counts);
    } else if (mode == "memory") {
        CountMemory();
    } else if (mode == "trace" && argc == 4) {
        SendForTrace(argv[2], std::atoi(argv[3]));
    } else {
        Fail("see the comment at the source's top");
    }
}
