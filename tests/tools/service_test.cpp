// SPDX-License-Identifier: Apache-2.0
#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf.h"
#include "tools_test.h"

namespace {

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;

sptr<PrivacyIndicatorServiceIntf> Service()
{
    return iface_cast<PrivacyIndicatorServiceIntf>(PeerTest::Manager()->GetSystemAbility(PRIVACY_INDICATOR_SA_ID));
}

// Registers a listener that prints its events, "use NAME" or "switch SENSOR". It is kept for good: some may come during
// exit.
int32_t RegisterForUses()
{
    static const auto& listener = *new sptr<Privacy::PrivacyEventListenerIntf>(
        new Privacy::PrivacyEventListenerStubImpl([](const auto& /* dataType */, const auto& infos) {
            PeerTest::WaitWhileHeld("use " + infos.at(0).bundleName);
        }));
    return Service()->RegisterPrivacyEventListener("sensorStateChange", listener);
}

int32_t RegisterForSwitches()
{
    static const auto& listener = *new sptr<Indicator::IndicatorSwitchListenerIntf>(
        new Indicator::IndicatorSwitchListenerStubImpl([](const auto& data) {
            PeerTest::WaitWhileHeld("switch " + std::to_string(static_cast<int>(data.privacySensorType)));
        }));
    return Service()->RegisterPrivacyIndicatorSwitchListener(listener);
}

// Whether something waits to be read from a socket of this process.
bool HasUnread()
{
    int size = 0;
    for (int fd = STDERR_FILENO + 1; fd < 64 && size == 0; ++fd) {
        ioctl(fd, FIONREAD, &size);
    }
    return size > 0;
}

using ServiceTest = ToolsTest;

TEST_F(ServiceTest, NothingWaitsForWhoDoesNotReadWhatIsPrinted)
{
    StartService();
    Helper& app = Start();
    app.Expect("0", [] {
        int result = 0;
        const auto service = Service();
        for (int i = 0; i < 20000 && result == 0; ++i) {
            result = service->NotifyPowerEvent(1);
        }
        return result;
    });
    std::string line;
    while ((line = service_->ReadLine()).rfind("power event 1 ", 0) == 0) { // Now it is read, up to what was dropped.
        app.Ask([] { return Service()->NotifyPowerEvent(1); });
    }
    EXPECT_EQ(line.substr(line.size() - std::string(" lines were not read)").size()), " lines were not read)");
}

TEST_F(ServiceTest, TheServiceEndsItsPushesBeforeItGoes)
{
    StartService();
    Helper& app = Start([] { PeerTest::Watch(66090), PeerTest::Hold(), RegisterForUses(), RegisterForSwitches(); });
    Helper& other = Start();
    app.ExpectEvents({"up 66090"});
    Use("start camera x 1\nstart microphone x 1");
    EXPECT_EQ(app.Events(2), (std::vector<std::string>{"switch 0", "use x"})); // Where they stay.
    app.Await("1", HasUnread);                                                 // The next switch was sent.
    service_->Signal(SIGTERM);
    other.Await("28", RegisterForUses); // No push begins any more, of either kind, and the service is still there.
    other.Await("28", RegisterForSwitches);
    app.Ask(PeerTest::Release);
    app.ExpectEvents({"switch 1", "down 66090"});
    EXPECT_EQ(service_->AwaitEnd(), 0);
}

TEST_F(ServiceTest, AWatcherPrintsEventsAndTriesAgainWhereTheServiceIsBackAndStandsStill)
{
    StartService();
    Helper watcher({"sh", "-c", "exec " + CTL + " watch 2>&1"}, busAddress_);
    const auto prints = [&watcher](std::initializer_list<const char*> lines) {
        for (const char* line : lines) {
            EXPECT_EQ(watcher.ReadLine(), line);
        }
    };
    prints({"switch listener registered", "event listener registered"});
    service_->Kill();
    prints({"the service is gone"});
    // It takes listeners no better than one that stands still.
    Helper& other = Start([] { PeerTest::Manager()->AddSystemAbility(66090, new IPCObjectStub()); });
    const char* const again = "indicator_ctl: the service took no listener: 305; trying again";
    prints({"the service is back", again, again});
    other.Kill();
    AwaitLine(watcher, "the service is gone"); // It may have tried once more before.
    StartService();
    prints({"the service is back", "switch listener registered", "event listener registered"});
    Use("start camera com.example.maps 5");
    std::vector<std::string> events = {watcher.ReadLine().substr(12), watcher.ReadLine().substr(12)}; // In any order.
    std::sort(events.begin(), events.end());
    EXPECT_EQ(
        events, (std::vector<std::string>{"  indicator  camera on", "  use        camera by com.example.maps on"}));
}

} // namespace
