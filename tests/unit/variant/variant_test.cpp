// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <dlfcn.h>
#include <functional>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "fake_remote.h"
#include "iservice_registry.h"
#include "log_capture.h"
#include "new_process.h"
#include "privacy_indicator_client.h"
#include "privacy_indicator_service_intf_proxy.h"
#include "samples.h"
#include "waiting.h"

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
const Lines ANSWERED = Labelled("Read Int32 failed!"); // What the service's proxy says of any answer but 0.
const Lines TURN_OFF = {Line('I', "TurnOffIndicator: TurnOffIndicator")};

// The service's object as another process sees it: it can die.
class FakeServiceObject : public FakeRemote {
public:
    bool IsObjectDead() const override
    {
        return dead;
    }

    bool AddDeathRecipient(const sptr<DeathRecipient>& added) override
    {
        recipients += takesRecipients ? 1 : 0;
        recipient = added;
        return takesRecipients;
    }

    bool RemoveDeathRecipient(const sptr<DeathRecipient>& removed) override
    {
        EXPECT_EQ(removed, recipient);
        --recipients;
        return true;
    }

    int SendRequest(uint32_t requestCode, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        if (whenCalled) {
            whenCalled();
        }
        answer = I32(7);
        return FakeRemote::SendRequest(requestCode, data, reply, option);
    }

    void Die()
    {
        dead = true;
        recipient->OnRemoteDied(wptr<IRemoteObject>(this));
    }

    bool dead = false;
    bool takesRecipients = true;
    int recipients = 0;
    sptr<DeathRecipient> recipient;
    std::function<void()> whenCalled;
};

bool IsDevice()
{
    Dl_info library = {};
    dladdr(dlsym(RTLD_DEFAULT, "NotifyPowerEvent"), &library);
    return std::string(library.dli_fname).find("/device/") != std::string::npos;
}

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
    sptr<FakeServiceObject> ProvideNew()
    {
        sptr<FakeServiceObject> object = new FakeServiceObject();
        EXPECT_EQ(manager->AddSystemAbility(SERVICE_ID, object), 0);
        return object;
    }

    // The lines since the last time, without those of the availability notices, which come when they may.
    Lines Logged()
    {
        Lines lines;
        for (const auto& line : log.Take()) {
            const auto has = [&line](const char* part) { return line.find(part) != std::string::npos; };
            if (!has("Ability: saId=66090") && !has("NotifyPowerEventByCache: ") && !has("Listener: begin.")) {
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

    int32_t TurnOff()
    {
        return client.TurnOffIndicator(PrivacySensorType::LOCATION, 100);
    }

    PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    LogCapture log;
};

TEST(VariantChoiceTest, IsTheLibraryPathsAlone)
{
    const char* const path = getenv("LD_LIBRARY_PATH");
    EXPECT_EQ(IsDevice(), path != nullptr && std::string(path).find("/lib/device") != std::string::npos);
}

TEST_F(VariantTest, ProxyIsKeptAsLongAsTheServiceLives)
{
    EXPECT_EQ(Initialized(), NO_SERVICE);
    const auto former = ProvideNew();
    EXPECT_EQ(Initialized(), NEW_RECIPIENT + SUCCESS);
    EXPECT_EQ(Initialized(), KNOWN);
    EXPECT_EQ(former->recipients, 1);
    former->dead = true;
    EXPECT_EQ(Initialized(), DEAD_PROXY + Initialize('E', "SA is IsObjectDead, why load system ability return a dead "
                                                          "SA?"));
    EXPECT_EQ(Reset(), NOTHING_TO_DROP);
    const auto later = ProvideNew();
    EXPECT_EQ(Initialized(), SUCCESS); // With the recipient that it has.
    EXPECT_EQ(later->recipients, 1);
    EXPECT_EQ(Reset(), DROPPED);
    EXPECT_EQ(later->recipients, 0);
    EXPECT_EQ(Initialized(), NEW_RECIPIENT + SUCCESS);
    later->Die();
    EXPECT_EQ(Logged(), DROPPED);
    EXPECT_EQ(Reset(), NOTHING_TO_DROP);
}

TEST_F(VariantTest, NoProxyWithoutDeathRecipient)
{
    const auto service = ProvideNew();
    service->takesRecipients = false;
    const Lines refused = Initialize('E', "Sa AddDeathRecipient return false, please check.");
    EXPECT_EQ(Initialized(), NEW_RECIPIENT + refused);
    EXPECT_EQ(Initialized(), refused);
    EXPECT_EQ(Reset(), NOTHING_TO_DROP);
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
    EXPECT_EQ(
        Initialized(), NEW_RECIPIENT + Initialize('E', "iface_cast SA=66090 is nullptr, there is nothing we can do."));
    EXPECT_TRUE(brokers.Register(DESCRIPTOR, BrokerCreator<Homeless>(), nullptr));
    EXPECT_EQ(Initialized(), SUCCESS);
    EXPECT_EQ(Initialized(), DEAD_PROXY + SUCCESS);
    EXPECT_EQ(
        Reset(), (Lines{Line('W', "ResetProxy: iRemoteObject is nullptr, failed to RemoveDeathRecipient, ignore."),
                     Line('I', "ResetProxy: set proxy to nullptr done.")}));
    brokers.Unregister(DESCRIPTOR);
    EXPECT_TRUE(brokers.Register(DESCRIPTOR, BrokerCreator<PrivacyIndicatorServiceIntfProxy>(), nullptr));
    EXPECT_EQ(Initialized(), SUCCESS); // With the recipient that was kept.
}

TEST(VariantWithoutManagerTest, HasNoProxy)
{
    InNewProcess([] {
        setenv("OHOS_BUS_ADDRESS", "unix:path=/nonexistent", 1);
        PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
        LogCapture log;
        client.InitializeProxy();
        EXPECT_EQ(log.Take(), Initialize('E', "SAM is nullptr, please check."));
        EXPECT_EQ(client.NotifyPowerEvent(1), 0);
        return true;
    });
}

TEST_F(VariantTest, NotifyPowerEventHasAPlainName)
{
    auto* const notify = reinterpret_cast<int32_t (*)(int32_t)>(dlsym(RTLD_DEFAULT, "NotifyPowerEvent"));
    ASSERT_NE(notify, nullptr);
    EXPECT_EQ(notify(-1), -1);
    EXPECT_EQ(Logged(), (Lines{Line('E', "UpdateEvent: error event: -1"), Line('I', "NotifyPowerEvent: event: -1"),
                            Line('E', "NotifyPowerEvent: error event: -1")}));
}

template <bool IS_DEVICE>
class OneVariantTest : public VariantTest {
protected:
    void SetUp() override
    {
        if (IsDevice() != IS_DEVICE) {
            GTEST_SKIP() << "This is the other variant's.";
        }
    }
};

using EmulatorTest = OneVariantTest<false>;
using DeviceTest = OneVariantTest<true>;

TEST_F(EmulatorTest, RequestsReturnSuccessAndTouchNothing)
{
    const auto service = ProvideNew();
    const Lines refused = {Line('I', "WithSystemAbilityProxy: emulator is not support")};
    std::vector<PrivacyEventDetail> details(2, *Read<PrivacyEventDetail>(DETAIL.bytes));
    std::vector<IndicatorData> indicators;
    std::vector<PermissionUsageDuration> durations(1);
    const std::string detail = ": '" + DETAIL.text + "'";

    EXPECT_EQ(client.GetPrivacyEventDetails(1, details), 0);
    const std::string debug = Line('D', "GetPrivacyEventDetails" + detail);
    EXPECT_EQ(Logged(), (refused + Lines{debug, debug}));
    EXPECT_EQ(client.GetPrivacyEventDetailsByPrivacySensorType(1, PrivacySensorType::CAMERA, details), 0);
    const std::string info = Line('I', "GetPrivacyEventDetailsByPrivacySensorType" + detail);
    EXPECT_EQ(Logged(), (refused + Lines{info, info}));
    EXPECT_EQ(client.GetActiveIndicators(indicators), 0);
    EXPECT_EQ(Logged(), refused);
    EXPECT_EQ(client.TurnOnIndicator(PrivacySensorType::CAMERA, {}, {}, 0), 0);
    EXPECT_EQ(Logged(), Lines{Line('I', "TurnOnIndicator: TurnOnIndicator")} + refused);
    EXPECT_EQ(TurnOff(), 0);
    EXPECT_EQ(Logged(), TURN_OFF + refused);
    EXPECT_EQ(client.GetPermissionUsageDurationSummary({}, durations), 0);
    const std::string summary = "GetPermissionUsageDurationSummary";
    EXPECT_EQ(Logged(), Lines{Line('I', summary + ": start " + summary + " in client.")} + refused +
                            Lines{Line('I', summary + ": stop " + summary + " in client.")});
    EXPECT_EQ(client.NotifyPowerEvent(1), 0);
    EXPECT_EQ(Logged(), Lines{Line('I', "NotifyPowerEvent: event: 1")} + refused);

    EXPECT_EQ(details.size() + indicators.size() + durations.size(), 3U);
    EXPECT_EQ(service->calls + service->recipients, 0);
    EXPECT_EQ(Reset(), NOTHING_TO_DROP);
}

TEST_F(DeviceTest, RequestsReachTheServiceThatIsThere)
{
    EXPECT_EQ(TurnOff(), 0);
    EXPECT_EQ(Logged(), TURN_OFF + NO_SERVICE + Lines{Line('E', "TurnOnIndicator: proxy is nullptr, please check.")});
    const auto former = ProvideNew();
    EXPECT_EQ(TurnOff(), 7);
    EXPECT_EQ(Logged(), TURN_OFF + NEW_RECIPIENT + SUCCESS + ANSWERED);
    EXPECT_EQ(former->code, 7U);
    EXPECT_EQ(former->request, Token(DESCRIPTOR) + I32(2) + I32(100));
    EXPECT_EQ(TurnOff(), 7);
    EXPECT_EQ(Logged(), TURN_OFF + KNOWN + ANSWERED);
    // Dead, and replaced before anyone was told.
    former->dead = true;
    const auto later = ProvideNew();
    EXPECT_EQ(TurnOff(), 7);
    EXPECT_EQ(Logged(), TURN_OFF + DEAD_PROXY + SUCCESS + ANSWERED);
    EXPECT_EQ(former->calls, 2);
    EXPECT_EQ(later->calls, 1);
}

TEST_F(DeviceTest, ACallUnderWayHoldsUpNobody)
{
    const auto former = ProvideNew();
    Counter begun;
    Counter goOn;
    former->whenCalled = [&] {
        begun.Add();
        EXPECT_TRUE(goOn.Reaches(1));
    };
    std::thread call([this] { EXPECT_EQ(TurnOff(), 7); });
    EXPECT_TRUE(begun.Reaches(1));
    Logged();
    former->Die(); // Drops the proxy, which the call still uses.
    EXPECT_EQ(Logged(), DROPPED);
    const auto later = ProvideNew();
    EXPECT_EQ(TurnOff(), 7);
    EXPECT_EQ(Logged(), TURN_OFF + NEW_RECIPIENT + SUCCESS + ANSWERED);
    EXPECT_EQ(later->calls, 1);
    EXPECT_EQ(former->calls, 0); // It has not come back.
    goOn.Add();
    call.join();
    EXPECT_EQ(former->calls, 1);
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
