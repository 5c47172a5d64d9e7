// SPDX-License-Identifier: Apache-2.0
#include <set>
#include <sstream>

#include "in_memory_service.h"
#include "indicator_switch_listener_stub_impl.h"
#include "tools_test.h"

namespace {

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using SwitchListener = Indicator::IndicatorSwitchListenerIntf;

constexpr int ROOM = 40; // More than one process may register.

/** The service in memory, with some of these faults. */
class FaultyService : public Testing::InMemoryService {
public:
    explicit FaultyService(std::string faults) : faults_(std::move(faults)) {}

    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        if (Has("any-token") && code == GET_ACTIVE_INDICATORS) {
            MessageParcel checked;
            checked.WriteInterfaceToken(GetDescriptor());
            return InMemoryService::OnRemoteRequest(code, checked, reply, option);
        }
        const bool isKnown = code >= REGISTER_PRIVACY_EVENT_LISTENER && code <= NOTIFY_POWER_EVENT;
        const int32_t status = InMemoryService::OnRemoteRequest(code, data, reply, option);
        return Has("any-code") && !isKnown && status != TOKEN_MISMATCH ? 0 : status;
    }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const bool isKnown = !known_.insert(listener->AsObject()).second;
        if (Has("keeps-dead") && known_.size() > ROOM) {
            return INVALID_VALUE;
        }
        const auto forward = [listener](const auto& data) { listener->OnSwitchChanged(data); };
        return InMemoryService::RegisterPrivacyIndicatorSwitchListener(
            Has("twice") && isKnown ? sptr<SwitchListener>(new Indicator::IndicatorSwitchListenerStubImpl(forward))
                                    : listener);
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Has("keeps-unregistered") ? 0 : InMemoryService::UnregisterPrivacyIndicatorSwitchListener(listener);
    }

    int32_t TurnOnIndicator(int32_t sensor, const Indicator::IndicatorPosition& position,
        const Indicator::IndicatorSize& size, int32_t animationType) override
    {
        if (Has("waits-for-listeners")) {
            for (const Registration& registration : GetRegistrations()) {
                MessageParcel question;
                MessageParcel answer;
                MessageOption option;
                registration.listener->SendRequest(1, question, answer, option);
            }
        }
        return InMemoryService::TurnOnIndicator(sensor, position, size, animationType);
    }

private:
    bool Has(const std::string& fault) const { return faults_.find(fault) != std::string::npos; }

    const std::string faults_;
    std::mutex mutex_;
    std::set<sptr<IRemoteObject>> known_; // Every listener that there ever was.
};

/** Which rows say that a service is not as it should be. */
class VerifyTest : public ToolsTest {
protected:
    /** Exactly these rows must, in this order. Each is given by how it begins. */
    void ExpectWrong(const char* faults, const std::vector<std::string>& rows)
    {
        static FaultyService* service; // In the helper, whose manager holds it.
        Helper& helper = Start([faults] {
            service = new FaultyService(faults);
            Manager()->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, service);
        });
        std::istringstream output(Run(CTL + " verify"));
        std::vector<std::string> wrong;
        std::string last;
        for (std::string line; std::getline(output, line); last = line) {
            if (line.find("  NO: ") != std::string::npos) {
                const size_t row = std::min(wrong.size(), rows.size() - 1);
                wrong.push_back(line.substr(0, rows[row].size()));
            }
        }
        EXPECT_EQ(last, "= 1");
        EXPECT_EQ(wrong, rows);
        helper.Ask([] { service->Close(); }); // No thread of its outlives the helper's main().
    }

    const std::string called_ = "OnSwitchChanged                              ";
};

TEST_F(VerifyTest, NamesFaultsOfSingleRequests)
{
    ExpectWrong("any-token any-code keeps-unregistered",
        {"0                                            a request that there is not",
            "12                                           a request that there is not",
            "5 GetActiveIndicators                        another token",
            called_ + "(a listener that is unregistered)"});
}

TEST_F(VerifyTest, NamesFaultsOfRegistrations)
{
    ExpectWrong(
        "twice keeps-dead", {called_ + "(a listener registered twice)", called_ + "(a listener registered twice)",
                                called_ + "(on and off, ten times)", called_ + "(one that is not)",
                                "8 RegisterPrivacyIndicatorSwitchListener     150 listeners of a process that dies",
                                called_ + "(a listener, after the death of others)"});
}

TEST_F(VerifyTest, NamesAServiceThatWaitsForItsListeners)
{
    ExpectWrong("waits-for-listeners",
        {"6 TurnOnIndicator                            (while a listener's process does not read)"});
}

TEST_F(VerifyTest, PassesTheReferenceService)
{
    // What it prints is not read meanwhile: it goes to a file.
    service_.emplace(std::vector<std::string>{"sh", "-c", "exec " + SERVICE + " >" + folder_ + "/log"}, busAddress_);
    const std::string output = Run(CTL + " --wait verify");
    EXPECT_NE(output.find(" checks came out as they should.\n= 0\n"), std::string::npos) << output;
}

} // namespace
