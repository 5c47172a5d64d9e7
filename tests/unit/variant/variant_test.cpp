// SPDX-License-Identifier: Apache-2.0
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "fakes.h"
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

    // What was logged of the proxy and the gate since the last time.
    Lines Logged()
    {
        Lines lines;
        for (const auto& line : log.Take()) {
            if (line.find("Proxy: ") != std::string::npos) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    Lines Initialized()
    {
        client.InitializeProxy();
        return Logged();
    }

    Lines Reset()
    {
        client.ResetProxy();
        return Logged();
    }

    void ExpectCall(int32_t result, const Lines& lines)
    {
        EXPECT_EQ(client.TurnOffIndicator(PrivacySensorType::LOCATION, 100), result);
        EXPECT_EQ(Logged(), lines);
    }

    PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    LogCapture log;
};

TEST_F(VariantTest, ProxyIsKeptAsLongAsTheServiceLives)
{
    EXPECT_EQ(Initialized(), NO_SERVICE);
    const auto former = ProvideNew();
    EXPECT_EQ(Initialized(), NEW_RECIPIENT + SUCCESS);
    EXPECT_EQ(Initialized(), KNOWN);
    EXPECT_EQ(former->recipients, 1);
    former->dead = true;
    const std::string dead = "SA is IsObjectDead, why load system ability return a dead SA?";
    EXPECT_EQ(Initialized(), DEAD_PROXY + Initialize('E', dead));
    EXPECT_EQ(Reset(), NOTHING_TO_DROP);
    const auto later = ProvideNew();
    EXPECT_EQ(Initialized(), SUCCESS); // With the recipient that it has.
    EXPECT_EQ(later->recipients, 1);
    EXPECT_EQ(Reset(), DROPPED);
    EXPECT_EQ(later->recipients, 0);
    later->takesRecipients = false;
    const Lines refused = Initialize('E', "Sa AddDeathRecipient return false, please check.");
    EXPECT_EQ(Initialized(), NEW_RECIPIENT + refused);
    EXPECT_EQ(Initialized() + Reset(), refused + NOTHING_TO_DROP);
    later->takesRecipients = true;
    EXPECT_EQ(Initialized(), SUCCESS);
    later->recipient->OnRemoteDied(nullptr);
    EXPECT_EQ(Logged() + Reset(), DROPPED + NOTHING_TO_DROP);
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
    EXPECT_EQ(Initialized(), NEW_RECIPIENT + Initialize('E', noInterface));
    EXPECT_TRUE(brokers.Register(DESCRIPTOR, BrokerCreator<Homeless>(), nullptr));
    EXPECT_EQ(Initialized(), SUCCESS);
    EXPECT_EQ(Initialized(), DEAD_PROXY + SUCCESS);
    const std::string noObject = "ResetProxy: iRemoteObject is nullptr, failed to RemoveDeathRecipient, ignore.";
    EXPECT_EQ(Reset(), (Lines{Line('W', noObject), Line('I', "ResetProxy: set proxy to nullptr done.")}));
    brokers.Unregister(DESCRIPTOR);
    EXPECT_TRUE(brokers.Register(DESCRIPTOR, BrokerCreator<PrivacyIndicatorServiceIntfProxy>(), nullptr));
    EXPECT_EQ(Initialized(), SUCCESS); // With the recipient that was kept.
}

using EmulatorTest = VariantTest;
using DeviceTest = VariantTest;

TEST_F(EmulatorTest, RequestsReturnSuccessAndTouchNothing)
{
    const auto service = ProvideNew();
    std::vector<PrivacyEventDetail> details(2);
    std::vector<IndicatorData> indicators(3);
    std::vector<PermissionUsageDuration> durations(4);
    EXPECT_EQ(client.GetPrivacyEventDetails(1, details), 0);
    EXPECT_EQ(client.GetPrivacyEventDetailsByPrivacySensorType(1, PrivacySensorType::CAMERA, details), 0);
    EXPECT_EQ(client.GetActiveIndicators(indicators), 0);
    EXPECT_EQ(client.TurnOnIndicator(PrivacySensorType::CAMERA, {}, {}, 0), 0);
    EXPECT_EQ(client.GetPermissionUsageDurationSummary({}, durations), 0);
    EXPECT_EQ(client.NotifyPowerEvent(1), 0);
    const std::string refused = Line('I', "WithSystemAbilityProxy: emulator is not support");
    ExpectCall(0, Lines(7, refused));
    EXPECT_EQ(details.size() + indicators.size() + durations.size(), 9U);
    EXPECT_EQ(service->calls + service->recipients, 0);
    EXPECT_EQ(Reset(), NOTHING_TO_DROP);
}

TEST_F(DeviceTest, RequestsReachTheServiceThatIsThere)
{
    ExpectCall(0, NO_SERVICE);
    const auto former = ProvideNew();
    ExpectCall(7, NEW_RECIPIENT + SUCCESS);
    ExpectCall(7, KNOWN);
    former->dead = true; // And replaced before anyone was told.
    const auto later = ProvideNew();
    ExpectCall(7, DEAD_PROXY + SUCCESS);
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
    std::thread call([this] { EXPECT_EQ(client.TurnOffIndicator(PrivacySensorType::CAMERA, 1), 7); });
    EXPECT_TRUE(happens(begun));
    former->dead = true;
    Logged();
    former->recipient->OnRemoteDied(nullptr); // Drops the proxy, which the call still uses.
    EXPECT_EQ(Logged(), DROPPED);
    const auto later = ProvideNew();
    ExpectCall(7, NEW_RECIPIENT + SUCCESS);
    EXPECT_EQ(std::make_pair(former->calls, later->calls), std::make_pair(0, 1)); // The first has not come back.
    goOn.set_value();
    call.join();
    EXPECT_EQ(former->calls, 1);
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
