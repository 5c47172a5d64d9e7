// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bus_test.h"
#include "peer.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf.h"

namespace {

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;

sptr<PrivacyIndicatorServiceIntf> Service()
{
    return iface_cast<PrivacyIndicatorServiceIntf>(Peer::Manager()->GetSystemAbility(PRIVACY_INDICATOR_SA_ID));
}

// Registers a listener that tells its events.
int32_t Register()
{
    static auto& listeners = *new std::vector<sptr<Privacy::PrivacyEventListenerIntf>>();
    listeners.push_back(new Privacy::PrivacyEventListenerStubImpl(
        [](const std::string&, const std::vector<Privacy::PrivacyEventRemindInfo>&) { Peer::WaitWhileHeld("use"); }));
    return Service()->RegisterPrivacyEventListener("sensorStateChange", listeners.back());
}

/** The service that comes as an example. */
class ExampleTest : public BusTest {
protected:
    void StartService()
    {
        service_.emplace(std::vector<std::string>{EXAMPLES_DIR "/indicator_service"}, busAddress_);
        EXPECT_EQ(service_->ReadLine(), "ready");
    }

    std::optional<Helper> service_;
};

TEST_F(ExampleTest, OneProcessDoesNotTakeEveryListenersPlace)
{
    StartService();
    Helper& greedy = Start();
    for (int i = 0; i < 32; ++i) {
        greedy.Expect("0", Register);
    }
    greedy.Expect("28", Register);
    Start().Expect("0", Register);
}

TEST_F(ExampleTest, NothingWaitsForWhoDoesNotReadWhatIsPrinted)
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

TEST_F(ExampleTest, TheServiceEndsItsPushesBeforeItGoes)
{
    StartService();
    Helper& app = Start([] { Peer::Watch(66090), Peer::Hold(), Register(); });
    Helper& other = Start();
    app.Hears({"up 66090"});
    service_->Input("start camera com.example.chat 1\n");
    app.Hears({"use"}); // Where it stays.
    service_->Signal(SIGTERM);
    other.Await("28", Register); // No push begins any more, and the service is still there.
    app.Ask(Peer::Release);
    app.Hears({"down 66090"});
    EXPECT_EQ(service_->AwaitEnd(), 0);
}

TEST_F(ExampleTest, AWatcherTriesAgainWhereTheServiceIsBackAndStandsStill)
{
    StartService();
    Helper watcher({"sh", "-c", "exec " EXAMPLES_DIR "/indicator_ctl watch 2>&1"}, busAddress_);
    EXPECT_EQ(watcher.ReadLine(), "switch listener registered");
    EXPECT_EQ(watcher.ReadLine(), "event listener registered");
    service_->Kill();
    EXPECT_EQ(watcher.ReadLine(), "the service is gone");
    // It takes listeners no better than one that stands still.
    Helper& other = Start([] { Peer::Manager()->AddSystemAbility(66090, new IPCObjectStub()); });
    EXPECT_EQ(watcher.ReadLine(), "the service is back");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(watcher.ReadLine(), "indicator_ctl: the service took no listener: 305; trying again");
    }
    other.Kill();
    EXPECT_EQ(watcher.ReadLine(), "the service is gone");
    StartService();
    EXPECT_EQ(watcher.ReadLine(), "the service is back");
    EXPECT_EQ(watcher.ReadLine(), "switch listener registered");
    EXPECT_EQ(watcher.ReadLine(), "event listener registered");
    KillDaemon();
    EXPECT_EQ(watcher.ReadLine(), "the service is gone");
    StartDaemon();
    EXPECT_EQ(watcher.ReadLine(), "the service is back"); // The same process as before.
    EXPECT_EQ(watcher.ReadLine(), "switch listener registered");
    EXPECT_EQ(watcher.ReadLine(), "event listener registered");
    watcher.Signal(SIGTERM);
    EXPECT_EQ(watcher.ReadLine(), "switch listener unregistered");
}

} // namespace
