// SPDX-License-Identifier: Apache-2.0
#include "service_process.h"

#include <condition_variable>
#include <future>
#include <list>
#include <mutex>
#include <string>

#include "ipc_object_stub.h"
#include "ipc_types.h"
#include "iservice_registry.h"
#include "privacy_indicator_service_intf.h"
#include "system_ability_status_change_stub.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing {

namespace {

sptr<ISystemAbilityManager> Manager() { return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager(); }

class Arrival : public SystemAbilityStatusChangeStub {
public:
    void OnAddSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */) override
    {
        happened.set_value();
    }

    void OnRemoveSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */) override {}

    std::promise<void> happened;
};

// Returns when all notices until now have been delivered: they come in order, so a notice about one more system ability
// comes after them.
void AwaitNotices()
{
    constexpr int32_t LAST_ID = 0x00ffffff; // The greatest there is, which no service is expected to have.
    const sptr<Arrival> arrival(new Arrival());
    Manager()->AddSystemAbility(LAST_ID, new IPCObjectStub());
    Manager()->SubscribeSystemAbility(LAST_ID, arrival);
    arrival->happened.get_future().wait();
    Manager()->UnSubscribeSystemAbility(LAST_ID, arrival);
    Manager()->RemoveSystemAbility(LAST_ID);
}

} // namespace

class ServiceProcess::Remote : public IPCObjectStub {
public:
    explicit Remote(const sptr<IRemoteObject>& service) : service_(service) {}

    bool IsProxyObject() const override { return true; }

    bool IsObjectDead() const override
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return isDead_;
    }

    bool AddDeathRecipient(const sptr<DeathRecipient>& recipient) override
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (recipient == nullptr || isDead_) {
            return false;
        }
        recipients_.push_back(recipient);
        return true;
    }

    bool RemoveDeathRecipient(const sptr<DeathRecipient>& recipient) override
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        for (auto known = recipients_.begin(); known != recipients_.end(); ++known) {
            if (*known == recipient) {
                recipients_.erase(known);
                return true;
            }
        }
        return false;
    }

    int SendRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        {
            std::unique_lock<std::mutex> lock(mutex_);
            died_.wait_for(lock, delay_, [this] { return isDead_; });
            if (isDead_ || error_ != 0) {
                return isDead_ ? ERR_DEAD_OBJECT : error_;
            }
        }
        return service_->SendRequest(code, data, reply, option);
    }

    void Die()
    {
        std::list<sptr<DeathRecipient>> recipients;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            isDead_ = true;
            recipients.swap(recipients_);
        }
        died_.notify_all();
        for (const auto& recipient : recipients) {
            recipient->OnRemoteDied(this);
        }
    }

    void SetDelay(std::chrono::milliseconds delay)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        delay_ = delay;
    }

    void SetError(int error)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        error_ = error;
    }

private:
    const sptr<IRemoteObject> service_;
    mutable std::mutex mutex_;
    std::condition_variable died_;
    bool isDead_ = false;
    std::list<sptr<DeathRecipient>> recipients_;
    std::chrono::milliseconds delay_{0};
    int error_ = 0;
};

ServiceProcess::ServiceProcess(const sptr<IRemoteObject>& service) { Start(service); }

ServiceProcess::~ServiceProcess() { Kill(); }

void ServiceProcess::Start(const sptr<IRemoteObject>& service)
{
    Kill();
    remote_ = new Remote(service);
    Manager()->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, remote_);
    AwaitNotices();
}

void ServiceProcess::Kill()
{
    if (remote_ == nullptr) {
        return;
    }
    remote_->Die();
    Manager()->RemoveSystemAbility(PRIVACY_INDICATOR_SA_ID);
    AwaitNotices();
    remote_ = nullptr;
}

void ServiceProcess::SetDelay(std::chrono::milliseconds delay)
{
    if (remote_ != nullptr) {
        remote_->SetDelay(delay);
    }
}

void ServiceProcess::SetError(int error)
{
    if (remote_ != nullptr) {
        remote_->SetError(error);
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing
