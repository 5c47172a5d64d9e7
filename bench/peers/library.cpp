// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "contender.h"
#include "in_memory_service.h"
#include "iservice_registry.h"
#include "privacy_indicator_client.h"
#include "samples.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

class AnsweringService : public Testing::InMemoryService {
public:
    /** As many records as the user's number says. */
    int32_t GetPrivacyEventDetails(int32_t userId, std::vector<Privacy::PrivacyEventDetail>& details) override
    {
        details.assign(all_.begin(), all_.begin() + userId);
        return SUCCESS;
    }

private:
    const std::vector<Privacy::PrivacyEventDetail> all_ = Details(2000);
};

sptr<ISystemAbilityManager> Manager() { return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager(); }

class Library : public Contender {
public:
    Library(const std::string& name, Layer layer) : Contender(name), layer_(layer) {}

    bool HasServer() const override { return layer_ == Layer::CLIENT; }

    void Serve(const std::function<void()>& ready) override
    {
        if (Manager()->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, new AnsweringService()) != 0) {
            Fail("library: no bus");
        }
        ready();
        pause();
    }

    void Call() override
    {
        const int32_t result = layer_ == Layer::PROXY ? Proxy().TurnOffIndicator(0, 1)
                                                      : Client().TurnOffIndicator(PrivacySensorType::CAMERA, 1);
        if (result != 0) {
            Fail("library: wrong answer");
        }
    }

    void Query(int32_t records) override
    {
        std::vector<Privacy::PrivacyEventDetail> details;
        layer_ == Layer::PROXY ? Proxy().GetPrivacyEventDetails(records, details)
                               : Client().GetPrivacyEventDetails(records, details);
        if (details.size() != static_cast<size_t>(records)) {
            Fail("library: wrong number of records");
        }
    }

private:
    PrivacyIndicatorClient& Client()
    {
        static PrivacyIndicatorClient& client = [this]() -> PrivacyIndicatorClient& {
            if (layer_ == Layer::LOGGING_CLIENT) {
                setenv("HILOG_LEVEL", "I", 1);
                dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
            }
            return PrivacyIndicatorClient::GetInstance();
        }();
        return client;
    }

    static PrivacyIndicatorServiceIntf& Proxy()
    {
        static const sptr<PrivacyIndicatorServiceIntf> proxy =
            iface_cast<PrivacyIndicatorServiceIntf>(Manager()->GetSystemAbility(PRIVACY_INDICATOR_SA_ID));
        return *proxy;
    }

    const Layer layer_;
};

} // namespace

std::unique_ptr<Contender> MakeLibrary(Layer layer)
{
    const char* name = layer == Layer::CLIENT  ? "library"
                       : layer == Layer::PROXY ? "library, by its proxy alone"
                                               : "library, logging on";
    return std::make_unique<Library>(name, layer);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
