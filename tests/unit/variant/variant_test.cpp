// SPDX-License-Identifier: Apache-2.0
#include <functional>
#include <future>

#include "fake_service.h"
#include "iservice_registry.h"
#include "privacy_indicator_client.h"
#include "privacy_indicator_service_intf_proxy.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

Lines Initialize(char level, const std::string& message) { return Line(level, "InitializeProxy: " + message); }

const Lines NEW_RECIPIENT = Initialize('I', "new deathRecipient");
const Lines SUCCESS = Initialize('I', "LoadSystemAbility succeed");
const Lines KNOWN = Initialize('I', "it has been initialized, ignore.");
const Lines DEAD_PROXY = Initialize('I', "iRemoteObject is dead, let's initialize proxy.");
const Lines NO_SERVICE = Initialize('E', "SA=66090 is nullptr, please check.");
const Lines DROPPED = Line('I', "ResetProxy: remove deathRecipient and set proxy to nullptr done.");
const Lines NOTHING_TO_DROP = Line('W', "ResetProxy: proxy is nullptr, ignore.");
const Lines CALL = Line('I', "TurnOffIndicator: TurnOffIndicator");
const Lines ANSWERED = Labelled("Read Int32 failed!"); // With a 7.

// Leaves a client without proxy and without death recipient.
class VariantTest : public testing::Test {
public:
    ~VariantTest() override
    {
        ProvideNew();
        client.InitializeProxy();
        client.ResetProxy();
        EXPECT_EQ(manager->RemoveSystemAbility(PRIVACY_INDICATOR_SA_ID), 0);
    }

protected:
    sptr<FakeRemote> ProvideNew()
    {
        sptr<FakeRemote> object = new FakeRemote();
        object->answer = I32(7);
        EXPECT_EQ(manager->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, object), 0);
        return object;
    }

    Lines Logged(const std::vector<std::function<void()>>& steps)
    {
        Journal::Take();
        for (const auto& step : steps) {
            step();
        }
        return Journal::Take();
    }

    const std::function<void()> initialize = [this] { client.InitializeProxy(); };
    const std::function<void()> reset = [this] { client.ResetProxy(); };
    const std::function<void()> call = [this] {
        EXPECT_EQ(client.TurnOffIndicator(PrivacySensorType::LOCATION, 100), expected);
    };
    int32_t expected = 7; // What the calls return.
    PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    Journal journal;
};

TEST_F(VariantTest, ProxyIsKeptAsLongAsTheServiceLives)
{
    EXPECT_EQ(Logged({initialize}), NO_SERVICE);
    const auto former = ProvideNew();
    EXPECT_EQ(Logged({initialize, initialize}), NEW_RECIPIENT + SUCCESS + KNOWN);
    EXPECT_NE(former->recipient, nullptr);
    former->dead = true;
    const std::string dead = "SA is IsObjectDead, why load system ability return a dead SA?";
    EXPECT_EQ(Logged({initialize, reset}), DEAD_PROXY + Initialize('E', dead) + NOTHING_TO_DROP);
    const auto later = ProvideNew();
    EXPECT_EQ(Logged({initialize}), SUCCESS); // With the recipient that it has.
    EXPECT_NE(later->recipient, nullptr);
    EXPECT_EQ(Logged({reset}), DROPPED);
    EXPECT_EQ(later->recipient, nullptr);
    later->takesRecipients = false;
    const Lines refused = Initialize('E', "Sa AddDeathRecipient return false, please check.");
    EXPECT_EQ(Logged({initialize, reset}), NEW_RECIPIENT + refused + NOTHING_TO_DROP);
    later->takesRecipients = true;
    EXPECT_EQ(Logged({initialize}), SUCCESS);
    later->takesRecipients = false; // That it cannot be taken back makes no difference.
    EXPECT_EQ(Logged({[&] { later->recipient->OnRemoteDied(nullptr); }, reset}), DROPPED + NOTHING_TO_DROP);
}

TEST_F(VariantTest, NoProxyWithoutCreator)
{
    // An interface without an object, as a creator of another library's may make it.
    class Homeless : public PrivacyIndicatorServiceIntfProxy {
    public:
        explicit Homeless(const sptr<IRemoteObject>& /* object */) : PrivacyIndicatorServiceIntfProxy(nullptr) {}
    };
    auto& brokers = BrokerRegistration::Get();
    const std::u16string descriptor = PrivacyIndicatorServiceIntf::GetDescriptor();
    const auto service = ProvideNew();
    brokers.Unregister(descriptor);
    const std::string noInterface = "iface_cast SA=66090 is nullptr, there is nothing we can do.";
    EXPECT_EQ(Logged({initialize}), NEW_RECIPIENT + Initialize('E', noInterface));
    EXPECT_TRUE(brokers.Register(descriptor, BrokerCreator<Homeless>(), nullptr));
    EXPECT_EQ(Logged({initialize, initialize}), SUCCESS + DEAD_PROXY + SUCCESS);
    const std::string noObject = "ResetProxy: iRemoteObject is nullptr, failed to RemoveDeathRecipient, ignore.";
    EXPECT_EQ(Logged({reset}), Line('W', noObject) + Line('I', "ResetProxy: set proxy to nullptr done."));
    brokers.Unregister(descriptor);
    EXPECT_TRUE(brokers.Register(descriptor, BrokerCreator<PrivacyIndicatorServiceIntfProxy>(), nullptr));
    EXPECT_EQ(Logged({initialize}), SUCCESS); // With the recipient that was kept.
}

using EmulatorTest = VariantTest;
using DeviceTest = VariantTest;

TEST_F(EmulatorTest, RequestsReturnSuccessAndTouchNothing)
{
    const auto service = ProvideNew();
    expected = 0;
    EXPECT_EQ(Logged({call}), CALL + Line('I', "WithSystemAbilityProxy: emulator is not support"));
    EXPECT_EQ(service->calls, 0);
    EXPECT_EQ(Logged({reset}), NOTHING_TO_DROP);
}

TEST_F(DeviceTest, ACallUnderWayHoldsUpNobody)
{
    const auto former = ProvideNew();
    sptr<FakeRemote> later;
    std::future<void> other;
    former->whenCalled = [&] {
        other = std::async(std::launch::async, [&] {
            // Drops the proxy, which the call still uses.
            EXPECT_EQ(Logged({[&] { former->recipient->OnRemoteDied(nullptr); }}), DROPPED);
            later = ProvideNew();
            EXPECT_EQ(Logged({call}), CALL + NEW_RECIPIENT + SUCCESS + ANSWERED);
        });
        EXPECT_EQ(other.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    };
    call();
    other.wait();
    EXPECT_EQ(std::make_pair(former->calls, later->calls), std::make_pair(1, 1));
    EXPECT_EQ(Logged({call}), CALL + KNOWN + ANSWERED);
}

TEST_F(DeviceTest, WithoutAServiceACallIsRunAndReturnsSuccess)
{
    expected = 0;
    EXPECT_EQ(Logged({call}), CALL + NO_SERVICE + Line('E', "TurnOnIndicator: proxy is nullptr, please check."));
}

TEST_F(DeviceTest, AListenerThatGoesAtExitMayCallTheClient)
{
    struct Listener : Indicator::IndicatorSwitchListener {
        void OnSwitchChanged(const IndicatorData& /* data */) override {}
    };
    const auto end = [this](Listener* listener) {
        // The registry is whole, and empty already: the service is looked for.
        LOG_SetCallback([](LogType, LogLevel, unsigned int, const char*, const char*) { _exit(0); });
        client.UnregisterPrivacyIndicatorSwitchListener({std::shared_ptr<void>(), listener});
        _exit(1);
    };
    InNewProcess([&] {
        client.RegisterPrivacyIndicatorSwitchListener(std::shared_ptr<Listener>(new Listener(), end));
        std::exit(2);
    });
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
