// SPDX-License-Identifier: Apache-2.0
// The service that comes as an example, and programs that use it.
#include <fcntl.h>

#include <optional>

#include "indicator_switch_listener_stub_impl.h"
#include "peer_test.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf.h"

namespace {

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;

sptr<PrivacyIndicatorServiceIntf> Service()
{
    return iface_cast<PrivacyIndicatorServiceIntf>(PeerTest::Manager()->GetSystemAbility(PRIVACY_INDICATOR_SA_ID));
}

// Registers a listener that tells its events: "use SENSOR STATE NAME" or "switch SENSOR STATE". It is kept for good.
int32_t RegisterForUses()
{
    const auto tell = [](const std::string& /* dataType */, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) {
        const auto& info = infos.at(0);
        PeerTest::WaitWhileHeld("use " + std::to_string(info.privacySensorType) + " " +
                                std::to_string(info.privacyAccessState) + " " + info.bundleName);
    };
    auto& listener = *new sptr<Privacy::PrivacyEventListenerIntf>(new Privacy::PrivacyEventListenerStubImpl(tell));
    return Service()->RegisterPrivacyEventListener("sensorStateChange", listener);
}

int32_t RegisterForSwitches()
{
    const auto tell = [](const Indicator::IndicatorData& data) {
        PeerTest::WaitWhileHeld("switch " + std::to_string(static_cast<int>(data.privacySensorType)) + " " +
                                std::to_string(static_cast<int>(data.state)));
    };
    auto& listener =
        *new sptr<Indicator::IndicatorSwitchListenerIntf>(new Indicator::IndicatorSwitchListenerStubImpl(tell));
    return Service()->RegisterPrivacyIndicatorSwitchListener(listener);
}

class ExampleTest : public PeerTest {
protected:
    void StartService(const std::string& options = "")
    {
        const std::string command = "exec " EXAMPLES_DIR "/indicator_service " + options + " 2>&1";
        service_.emplace(std::vector<std::string>{"sh", "-c", command}, busAddress_);
        while (service_->ReadLine() != "ready" && !HasFailure()) { // Who has waited for it may come before that.
        }
    }

    std::optional<Helper> service_;
};

TEST_F(ExampleTest, OneProcessDoesNotTakeEveryListenersPlace)
{
    StartService();
    Helper& greedy = Start();
    for (int i = 0; i < 32; ++i) {
        greedy.Expect("0", RegisterForUses);
    }
    greedy.Expect("28", RegisterForUses);
    Start().Expect("0", RegisterForUses);
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
    Helper& app = Start([] { PeerTest::Watch(66090), PeerTest::Hold(), RegisterForUses(), RegisterForSwitches(); });
    Helper& other = Start();
    app.Hears({"up 66090"});
    service_->Input("start camera x 1\nstart microphone x 1\n");
    EXPECT_EQ(app.Events(2), (std::vector<std::string>{"switch 0 0", "use 0 1 x"})); // Where they stay.
    service_->Signal(SIGTERM);
    other.Await("28", RegisterForUses); // No push begins any more, of either kind, and the service is still there.
    other.Await("28", RegisterForSwitches);
    app.Ask(PeerTest::Release);
    app.Hears({"switch 1 0", "down 66090"}); // Was sent before.
    EXPECT_EQ(service_->AwaitEnd(), 0);
}

TEST_F(ExampleTest, AWatcherTriesAgainWhereTheServiceIsBackAndStandsStill)
{
    StartService();
    Helper watcher({"sh", "-c", "exec " EXAMPLES_DIR "/indicator_ctl watch 2>&1"}, busAddress_);
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
    prints({"the service is gone"});
    StartService();
    prints({"the service is back", "switch listener registered", "event listener registered"});
    watcher.Signal(SIGTERM);
    prints({"switch listener unregistered"});
}

TEST_F(ExampleTest, AWatchedFileIsFollowedThroughRemovalAndReplacementAndIsUsedOnceByAProcess)
{
    const std::string camera = folder_ + "/camera";
    const std::string location = folder_ + "/location";
    const auto create = [](const std::string& path) { std::ofstream(path).close(); };
    const auto use = [](const std::string& path) { return open(path.c_str(), O_RDONLY | O_CLOEXEC); };
    create(camera), create(location);
    StartService("--watch camera=" + camera + " --watch location=" + location);
    Helper& app = Start([] { RegisterForUses(), RegisterForSwitches(); });
    const auto hears = [&app](const char* change, const std::string& access) {
        EXPECT_EQ(app.Events(2), (std::vector<std::string>{change, access + " e2e_tests"}));
    };
    const auto serviceSays = [this](const std::string& line) { EXPECT_EQ(service_->ReadLine(), line); };
    const std::string process = std::to_string(app.Pid());
    serviceSays("event listener of process " + process);
    serviceSays("switch listener of process " + process);
    const int first = use(camera);
    const int second = use(camera);
    hears("switch 0 0", "use 0 1");
    close(first);
    const int other = use(location); // Which is told; the end of the first one is not.
    hears("switch 2 0", "use 2 1");
    close(other);
    hears("switch 2 1", "use 2 2");
    std::filesystem::remove(camera);
    serviceSays("indicator_service: " + camera + " is gone: No such file or directory");
    create(camera);
    serviceSays("indicator_service: " + camera + " is back");
    close(second); // It had the removed one open until now.
    hears("switch 0 1", "use 0 2");
    create(folder_ + "/other");
    std::filesystem::rename(folder_ + "/other", camera);
    serviceSays("indicator_service: " + camera + " was replaced");
    const int replaced = use(camera);
    hears("switch 0 0", "use 0 1");
    close(replaced);
}

} // namespace
