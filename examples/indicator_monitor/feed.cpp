// SPDX-License-Identifier: Apache-2.0
#include "feed.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <memory>
#include <system_error>
#include <utility>

#include "local_time.h"
#include "print.h"
#include "privacy_event_values.h"
#include "privacy_indicator_client.h"
#include "words.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

constexpr std::chrono::seconds RETRY_INTERVAL{2};
constexpr std::chrono::seconds END_PATIENCE{1};

bool HasEnded(const Privacy::PrivacyEventDetail& use)
{
    return use.realEndTimestamp != 0 || use.realAccessState == Privacy::ACCESS_STATE_OFF;
}

} // namespace

/** What is registered with the client. It is called on the platform's threads, and does not block. */
class Feed::Listener : public Indicator::IndicatorSwitchListener, public Privacy::PrivacyEventListener {
public:
    explicit Listener(Feed* feed) : feed_(feed) {}

    void OnSwitchChanged(const Indicator::IndicatorData& data) override
    {
        feed_->Push([time = Now(), data](View& view) { view.OnSwitch(time, data); });
    }

    void OnPrivacyEventChanged(
        const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) override
    {
        feed_->Push([time = Now(), dataType, infos](View& view) { view.OnUse(time, dataType, infos); });
    }

private:
    const sptr<Feed> feed_;
};

Feed::Feed(int32_t user, bool asksState)
    : user_(user), asksState_(asksState), fd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (fd_ < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot queue events");
    }
}

Feed::~Feed() { close(fd_); }

void Feed::Start(ISystemAbilityManager& manager)
{
    thread_ = std::async(std::launch::async, [this] { Run(); });
    manager.SubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, this);
}

bool Feed::Stop(ISystemAbilityManager& manager)
{
    manager.UnSubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, this);
    {
        std::lock_guard<std::mutex> lock(mutex_);
        isStopped_ = true;
        changed_.notify_one();
    }
    return thread_.wait_for(END_PATIENCE) == std::future_status::ready;
}

int Feed::GetFd() const { return fd_; }

void Feed::ShowIn(View& view)
{
    std::deque<Call> calls;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        calls.swap(calls_);
        eventfd_t count = 0;
        eventfd_read(fd_, &count);
    }
    for (const auto& call : calls) {
        call(view);
    }
}

void Feed::OnAddSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */)
{
    Push([time = Now()](View& view) { view.OnService(time, true); });
    std::lock_guard<std::mutex> lock(mutex_);
    isAskWanted_ = asksState_;
    changed_.notify_one();
}

void Feed::OnRemoveSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */)
{
    Push([time = Now()](View& view) { view.OnService(time, false); });
}

void Feed::Push(Call call)
{
    std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(std::move(call));
    eventfd_write(fd_, 1);
}

void Feed::Run()
{
    auto& client = PrivacyIndicatorClient::GetInstance();
    const auto listener = std::make_shared<Listener>(this);
    const auto registerBoth = [&client, &listener] {
        const int32_t ofSwitch = client.RegisterPrivacyIndicatorSwitchListener(listener);
        const int32_t ofEvent = client.RegisterPrivacyEventListener(Privacy::SENSOR_STATE_CHANGE, listener);
        return ofSwitch != 0 ? ofSwitch : ofEvent;
    };
    const auto unregisterBoth = [&client, &listener] {
        client.UnregisterPrivacyIndicatorSwitchListener(listener);
        client.UnregisterPrivacyEventListener(listener);
    };
    int32_t result = registerBoth();
    if (result != 0) {
        Complain("the service takes no listener for now: " + ResultText(result));
    }
    Push([](View& view) { view.OnListening(); });
    bool isAnswered = true;
    while (AwaitTurn(result != 0 || !isAnswered)) {
        if (result != 0) {
            unregisterBoth(); // The client keeps a listener that the service did not take.
            result = registerBoth();
        }
        isAnswered = !asksState_ || AskState();
    }
    unregisterBoth();
}

bool Feed::AwaitTurn(bool hasFailed)
{
    std::unique_lock<std::mutex> lock(mutex_);
    const auto isTurn = [this] { return isStopped_ || isAskWanted_; };
    if (!hasFailed) {
        changed_.wait(lock, isTurn);
    } else {
        changed_.wait_for(lock, RETRY_INTERVAL, isTurn);
    }
    isAskWanted_ = false;
    return !isStopped_;
}

bool Feed::AskState()
{
    auto& client = PrivacyIndicatorClient::GetInstance();
    Push([](View& view) { view.OnAsking(); });
    ServiceState state;
    // By the proxy, not the client's own requests: they return 0 without a service, too.
    client.WithSystemAbilityProxy([this, &state](const sptr<PrivacyIndicatorServiceIntf>& service) {
        state.result = service != nullptr ? service->GetActiveIndicators(state.indicators) : ERR_DEAD_OBJECT;
        if (state.result == 0) {
            state.result = service->GetPrivacyEventDetails(user_, state.uses);
        }
    });
    state.uses.erase(std::remove_if(state.uses.begin(), state.uses.end(), HasEnded), state.uses.end());
    Push([time = Now(), state](View& view) { view.OnState(time, state); });
    return state.result == 0;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
