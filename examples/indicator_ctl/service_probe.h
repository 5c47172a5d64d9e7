// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICE_PROBE_H
#define SERVICE_PROBE_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "indicator_data.h"
#include "message_parcel.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** Sends requests whose bytes the caller writes, so that they can be malformed. Any thread may call anything. */
class ServiceProbe {
public:
    using Write = std::function<void(MessageParcel&)>;

    explicit ServiceProbe(const sptr<IRemoteObject>& service);

    /**
     * Sends a request with this token and these arguments. Returns the reply in words: "status 5, no reply", or
     * "result 22", or "result 0, 3 records".
     */
    std::string Ask(uint32_t code, const std::u16string& token, const Write& write) const;

    /** The same, with the service's own token. */
    std::string Ask(uint32_t code, const Write& write) const;

    /** The indicators that are on; none if the request fails. */
    std::vector<Indicator::IndicatorData> GetActiveIndicators() const;

    /** @{ Shows or hides an indicator. Returns the reply, as Ask does. */
    std::string TurnOn(int32_t sensor) const;
    std::string TurnOff(int32_t sensor) const;
    /** @} */

    std::string RegisterSwitchListener(const sptr<IRemoteObject>& listener) const;

private:
    const sptr<IRemoteObject> service_;
};

/** What ServiceProbe returns for a request that the service has carried out. */
inline constexpr const char* ACCEPTED = "result 0";

/** "6 TurnOnIndicator"; the code alone if there is no such request. */
std::string RequestName(uint32_t code);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // SERVICE_PROBE_H
