// SPDX-License-Identifier: Apache-2.0
#include <functional>
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "fake_service.h"
#include "iservice_registry.h"
#include "privacy_indicator_client.h"
#include "privacy_indicator_service_intf_proxy.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

constexpr int32_t SERVICE_ID = 66090;
const std::u16string DESCRIPTOR = u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf";

Lines Initialize(char level, const std::string& message)
{
    return {Line(level, "InitializeProxy: " + message)};
}

const Lines NEW_RECIPIENT = Initialize('I', "new deathRecipient");
const Lines SUCCESS = Initialize('I', "LoadSystemAbility succeed");
const Lines KNOWN = Initialize('I', "it has been initialized, ignore.");
const Lines DEAD_PROXY = Initialize('I', "iRemoteObject is dead, let's initialize proxy.");
const Lines NO_SERVICE = Initialize('E', "SA=66090 is nullptr, please check.");
const Lines DROPPED = {Line('I', "ResetProxy: remove deathRecipient and set proxy to nullptr done.")};
const Lines NOTHING_TO_DROP = {Line('W', "ResetProxy: proxy is nullptr, ignore.")};

// Leaves a client without proxy and without death recipient.
class VariantTest : public testing::Test {
public:
    ~VariantTest() override
    {
        ProvideNew();
        client.InitializeProxy();
        client.ResetProxy();
        EXPECT_EQ(manager->RemoveSystemAbility(SERVICE_ID), 0);
    }

protected:
    // The service from now on.
    sptr<FakeRemote> ProvideNew()
    {
        sptr<FakeRemote> object = new FakeRemote();
        object->answer = I32(7);
        EXPECT_EQ(manager->AddSystemAbility(SERVICE_ID, object), 0);
        return object;
    }

    // What the steps log of the proxy and the gate.
    Lines Logged(const std::vector<std::function<void()>>& steps)
    {
        log.Take();
        Lines lines;
        for (const auto& step : steps) {
            step();
        }
        for (const auto& line : log.Take()) {
            if (line.find("Proxy: ") != std::string::npos) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    const std::function<void()> initialize = [this] { client.InitializeProxy(); };
    const std::function<void()> reset = [this] { client.ResetProxy(); };
    const std::function<void()> call = [this] {
        EXPECT_EQ(client.TurnOffIndicator(PrivacySensorType::LOCATION, 100), expected);
    };
    int32_t expected = 7; // What the calls return.
    PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    LogCapture log;
};

TEST_F(VariantTest, ProxyIsKeptAsLongAsTheServiceLives)
{
    EXPECT_EQ(Logged({initialize}), NO_SERVICE);
    const auto former = ProvideNew();
    EXPECT_EQ(Logged({initialize, initialize}), NEW_RECIPIENT + SUCCESS + KNOWN);
    EXPECT_EQ(former->recipients, 1);
    former->dead = true;
    const std::string dead = "SA is IsObjectDead, why load system ability return a dead SA?";
    EXPECT_EQ(Logged({initialize, reset}), DEAD_PROXY + Initialize('E', dead) + NOTHING_TO_DROP);
    const auto later = ProvideNew();
    EXPECT_EQ(Logged({initialize}), SUCCESS); // With the recipient that it has.
    EXPECT_EQ(later->recipients, 1);
    EXPECT_EQ(Logged({reset}), DROPPED);
    EXPECT_EQ(later->recipients, 0);
    later->takesRecipients = false;
    const Lines refused = Initialize('E', "Sa AddDeathRecipient return false, please check.");
    EXPECT_EQ(Logged({initialize, reset}), NEW_RECIPIENT + refused + NOTHING_TO_DROP);
    later->takesRecipients = true;
    EXPECT_EQ(Logged({initialize}), SUCCESS);
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
    const auto service = ProvideNew();
    brokers.Unregister(DESCRIPTOR);
    const std::string noInterface = "iface_cast SA=66090 is nullptr, there is nothing we can do.";
    EXPECT_EQ(Logged({initialize}), NEW_RECIPIENT + Initialize('E', noInterface));
    EXPECT_TRUE(brokers.Register(DESCRIPTOR, BrokerCreator<Homeless>(), nullptr));
    EXPECT_EQ(Logged({initialize, initialize}), SUCCESS + DEAD_PROXY + SUCCESS);
    const std::string noObject = "ResetProxy: iRemoteObject is nullptr, failed to RemoveDeathRecipient, ignore.";
    EXPECT_EQ(Logged({reset}), (Lines{Line('W', noObject), Line('I', "ResetProxy: set proxy to nullptr done.")}));
    brokers.Unregister(DESCRIPTOR);
    EXPECT_TRUE(brokers.Register(DESCRIPTOR, BrokerCreator<PrivacyIndicatorServiceIntfProxy>(), nullptr));
    EXPECT_EQ(Logged({initialize}), SUCCESS); // With the recipient that was kept.
}

using EmulatorTest = VariantTest;
using DeviceTest = VariantTest;

TEST_F(EmulatorTest, RequestsReturnSuccessAndTouchNothing)
{
    const auto service = ProvideNew();
    std::vector<PrivacyEventDetail> details(2);
    expected = 0;
    EXPECT_EQ(Logged({call}), Lines{Line('I', "WithSystemAbilityProxy: emulator is not support")});
    EXPECT_EQ(client.GetPrivacyEventDetails(1, details), 0);
    EXPECT_EQ(details.size(), 2U);
    EXPECT_EQ(service->calls + service->recipients, 0);
    EXPECT_EQ(Logged({reset}), NOTHING_TO_DROP);
}

TEST_F(DeviceTest, RequestsReachTheServiceThatIsThere)
{
    expected = 0;
    EXPECT_EQ(Logged({call}), NO_SERVICE);
    expected = 7;
    const auto former = ProvideNew();
    EXPECT_EQ(Logged({call, call}), NEW_RECIPIENT + SUCCESS + KNOWN);
    former->dead = true; // And replaced before anyone was told.
    const auto later = ProvideNew();
    EXPECT_EQ(Logged({call}), DEAD_PROXY + SUCCESS);
    EXPECT_EQ(std::make_pair(former->calls, later->calls), std::make_pair(2, 1));
}

TEST_F(DeviceTest, ACallUnderWayHoldsUpNobody)
{
    const auto former = ProvideNew();
    std::promise<void> begun;
    std::promise<void> goOn;
    const auto happens = [](std::promise<void>& event) {
        return event.get_future().wait_for(std::chrono::seconds(30)) == std::future_status::ready;
    };
    former->whenCalled = [&] {
        begun.set_value();
        EXPECT_TRUE(happens(goOn));
    };
    std::thread caller(call);
    EXPECT_TRUE(happens(begun));
    // Drops the proxy, which the call still uses.
    EXPECT_EQ(Logged({[&] { former->recipient->OnRemoteDied(nullptr); }}), DROPPED);
    const auto later = ProvideNew();
    EXPECT_EQ(Logged({call}), NEW_RECIPIENT + SUCCESS);
    EXPECT_EQ(std::make_pair(former->calls, later->calls), std::make_pair(0, 1)); // The first has not come back.
    goOn.set_value();
    caller.join();
    EXPECT_EQ(former->calls, 1);
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
