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

constexpr int LISTENERS = 1000;

enum Side { CLIENT, SERVICE };

/** In memory that both processes share. */
using Counts = std::array<std::atomic<uint64_t>, 2>;

[[noreturn]] void Fail(const std::string& text)
{
    std::fprintf(stderr, "bench_calls: %s\n", text.c_str());
    std::exit(1);
}

class MarkingService : public Service<PrivacyIndicatorServiceIntfStub> {
public:
    explicit MarkingService(Counts& counts) : counts_(counts) {}

    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        getsid(0);
        allocationCount = &counts_[SERVICE]; // Only of threads that serve: others do their work at times of their own.
        return Service::OnRemoteRequest(code, data, reply, option);
    }

private:
    Counts& counts_;
};

/** Keeps its listeners, and answers a power event with the bytes that its process has allocated. */
class KeepingService : public Service<PrivacyIndicatorServiceIntfStub> {
public:
    explicit KeepingService(Counts& /* counts */) { listeners_.reserve(LISTENERS); }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        listeners_.push_back(listener);
        return 0;
    }

    int32_t NotifyPowerEvent(int32_t /* event */) override { return static_cast<int32_t>(mallinfo2().uordblks); }

private:
    std::vector<sptr<SwitchListener>> listeners_;
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
    const auto service = iface_cast<PrivacyIndicatorServiceIntf>(Manager()->GetSystemAbility(PRIVACY_INDICATOR_SA_ID));
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

/** How many allocations one request takes on each side, once everything is warm. */
std::array<double, 2> CountAllocations(const Request& request, PrivacyIndicatorServiceIntf& service, Counts& counts)
{
    constexpr int REPEATED = 100;
    // What the service does after its reply is counted with the next request, so that each round holds as many.
    for (int i = 0; i < 10; ++i) {
        Send(request, service);
    }
    const uint64_t before = counts[SERVICE];
    uint64_t fewest = UINT64_MAX; // Of the client: a listener that is about to be released takes some more.
    for (int i = 0; i < REPEATED; ++i) {
        const uint64_t beforeThis = counts[CLIENT];
        Send(request, service);
        fewest = std::min(fewest, counts[CLIENT] - beforeThis);
    }
    return {static_cast<double>(fewest), static_cast<double>(counts[SERVICE] - before) / REPEATED};
}

void CountAllocations(Counts& counts)
{
    constexpr int32_t FEW = 100;
    constexpr int32_t MANY = 200;
    const auto service = FindService();
    const auto few = Requests(FEW);
    const auto many = Requests(MANY);
    for (size_t i = 0; i < few.size(); ++i) {
        const bool isQuery =
            few[i].name == "GetPrivacyEventDetails" || few[i].name == "GetPermissionUsageDurationSummary";
        const auto ofFew = CountAllocations(few[i], *service, counts);
        if (few[i].name.find("By") != std::string::npos) {
            continue; // The same as the query without the sensor.
        }
        PrintFigure("allocations", few[i].name + (isQuery ? ", 100 records" : ""), "client", ofFew[CLIENT]);
        PrintFigure("allocations", few[i].name + (isQuery ? ", 100 records" : ""), "service", ofFew[SERVICE]);
        if (isQuery) {
            const auto ofMany = CountAllocations(many[i], *service, counts);
            const std::string row = few[i].name + ", a further record";
            PrintFigure("allocations", row, "client", (ofMany[CLIENT] - ofFew[CLIENT]) / (MANY - FEW));
            PrintFigure("allocations", row, "service", (ofMany[SERVICE] - ofFew[SERVICE]) / (MANY - FEW));
        }
    }
}

struct SilentListener : Indicator::IndicatorSwitchListener {
    void OnSwitchChanged(const Indicator::IndicatorData& /* data */) override {}
};

void CountMemory()
{
    const auto service = FindService();
    std::vector<sptr<SwitchListener>> stubs;
    stubs.reserve(LISTENERS);
    int32_t ofService = service->NotifyPowerEvent(1);
    auto ofClient = static_cast<int64_t>(mallinfo2().uordblks);
    for (int i = 0; i < LISTENERS; ++i) {
        stubs.emplace_back(new Indicator::IndicatorSwitchListenerStubImpl(nullptr));
        service->RegisterPrivacyIndicatorSwitchListener(stubs.back());
    }
    ofClient = static_cast<int64_t>(mallinfo2().uordblks) - ofClient;
    ofService = service->NotifyPowerEvent(1) - ofService;
    PrintFigure("memory, bytes", "a listener's proxy in the service", "", ofService / LISTENERS);
    PrintFigure("memory, bytes", "a listener's stub in its process", "", static_cast<double>(ofClient / LISTENERS));

    auto& client = PrivacyIndicatorClient::GetInstance();
    std::vector<std::shared_ptr<SilentListener>> listeners(10 * LISTENERS); // Many, since other threads allocate, too.
    for (auto& listener : listeners) {
        listener = std::make_shared<SilentListener>();
    }
    client.RegisterPrivacyIndicatorSwitchListener(listeners.front()); // The stub is made.
    ofClient = static_cast<int64_t>(mallinfo2().uordblks);
    for (const auto& listener : listeners) {
        client.RegisterPrivacyIndicatorSwitchListener(listener);
    }
    ofClient = static_cast<int64_t>(mallinfo2().uordblks) - ofClient;
    PrintFigure("memory, bytes", "an app's listener", "", static_cast<double>(ofClient / (10 * LISTENERS)));
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
    auto& counts = *new (shared) Counts{};
    const std::string mode = argc > 1 ? argv[1] : "";
    mode == "memory" ? StartService<KeepingService>(counts) : StartService<MarkingService>(counts);
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
