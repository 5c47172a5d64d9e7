// SPDX-License-Identifier: Apache-2.0
#include <set>

#include "in_memory_service.h"
#include "indicator_switch_listener_stub_impl.h"
#include "tools_test.h"

namespace {

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using SwitchListener = Indicator::IndicatorSwitchListenerIntf;

constexpr int ROOM = 40; // More than one process may register.

/** The service in memory, with all faults but one that a check looks for. */
class FaultyService : public Testing::InMemoryService {
public:
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        if (code == GET_ACTIVE_INDICATORS) { // With any token.
            MessageParcel checked;
            checked.WriteInterfaceToken(GetDescriptor());
            return InMemoryService::OnRemoteRequest(code, checked, reply, option);
        }
        const int32_t status = InMemoryService::OnRemoteRequest(code, data, reply, option);
        return status == IPC_STUB_UNKNOW_TRANS_ERR ? 0 : status;
    }

    // One that is registered again is called twice, and the dead keep their places.
    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const bool isKnown = !known_.insert(listener->AsObject()).second;
        if (known_.size() > ROOM) {
            return INVALID_VALUE;
        }
        const auto forward = [listener](const auto& data) { listener->OnSwitchChanged(data); };
        return InMemoryService::RegisterPrivacyIndicatorSwitchListener(
            isKnown ? sptr<SwitchListener>(new Indicator::IndicatorSwitchListenerStubImpl(forward)) : listener);
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& /* listener */) override { return 0; }

private:
    std::mutex mutex_;
    std::set<sptr<IRemoteObject>> known_; // Every listener that there ever was.
};

/** One that waits for its listeners. */
class WaitingService : public Testing::InMemoryService {
public:
    int32_t TurnOnIndicator(int32_t sensor, const Indicator::IndicatorPosition& position,
        const Indicator::IndicatorSize& size, int32_t animationType) override
    {
        for (const Registration& registration : GetRegistrations()) {
            MessageParcel question;
            MessageParcel answer;
            MessageOption option;
            registration.listener->SendRequest(1, question, answer, option);
        }
        return InMemoryService::TurnOnIndicator(sensor, position, size, animationType);
    }
};

/** One that lets nobody switch indicators. */
class UnwillingService : public Testing::InMemoryService {
public:
    int32_t TurnOnIndicator(
        int32_t, const Indicator::IndicatorPosition&, const Indicator::IndicatorSize&, int32_t) override
    {
        return 201;
    }
};

class VerifyTest : public ToolsTest {
protected:
    /** Exactly these rows, of which this is the beginning, must say that a service is not as it should be. */
    template <typename Service>
    void ExpectWrong(const std::string& rows)
    {
        static Service* service; // In the helper, whose manager holds it.
        Helper& helper = Start([] {
            service = new Service();
            Manager()->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, service);
        });
        EXPECT_EQ(Run(CTL + " verify >" + folder_ + "/rows"), "= 1\n");
        EXPECT_EQ(Run("grep '  NO: ' " + folder_ + "/rows | tr -s ' ' | cut -c 1-38"), rows + "= 0\n");
        helper.Ask([] { service->Close(); }); // No thread of its outlives the helper's main().
    }
};

TEST_F(VerifyTest, NamesFaults)
{
    ExpectWrong<FaultyService>("0 a request that there is not status 0\n"
                               "12 a request that there is not status \n"
                               "5 GetActiveIndicators another token re\n"
                               "OnSwitchChanged (a listener registered\n"
                               "OnSwitchChanged (a listener registered\n"
                               "OnSwitchChanged (on and off, ten times\n"
                               "OnSwitchChanged (a listener that is un\n"
                               "OnSwitchChanged (one that is not) loca\n"
                               "8 RegisterPrivacyIndicatorSwitchListen\n"
                               "OnSwitchChanged (a listener, after the\n");
}

TEST_F(VerifyTest, NamesAServiceThatWaitsForItsListeners)
{
    ExpectWrong<WaitingService>("6 TurnOnIndicator (while a listener's \n");
}

TEST_F(VerifyTest, LeavesOutWhatNeedsASwitchThatIsRefused)
{
    ExpectWrong<UnwillingService>("6 TurnOnIndicator location result 201 \n");
    EXPECT_EQ(Run("grep -c -e OnSwitchChanged -e 'does not read' " + folder_ + "/rows"), "0\n= 1\n");
}

TEST_F(VerifyTest, PassesTheReferenceService)
{
    // What it prints is not read meanwhile: it goes to a file.
    service_.emplace(std::vector<std::string>{"sh", "-c", "exec " + SERVICE + " >" + folder_ + "/log"}, busAddress_);
    const std::string output = Run(CTL + " --wait verify");
    EXPECT_NE(output.find(" checks came out as they should.\n= 0\n"), std::string::npos) << output;
    EXPECT_NE(output.find("  32, then 32 taken  "), std::string::npos) << output; // One process has no more places.
}

} // namespace
