// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICE_CALL_H
#define SERVICE_CALL_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "iremote_broker.h"
#include "message_parcel.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * One call of the service, from its proxy: the request's arguments are written in order, then it is sent. The first
 * failure is logged and ends the call: what follows does nothing, and Send returns the failure's code. ServiceRequest
 * is the other side of it.
 */
class ServiceCall {
public:
    /** Begins the request with the interface's token. */
    explicit ServiceCall(uint32_t code);

    void WriteInt32(int32_t value, const char* failure);
    void WriteString(const std::string& value, const char* failure);
    void WriteRecord(const Parcelable& record, const char* failure);
    void WriteListener(const sptr<IRemoteBroker>& listener, const char* nullFailure, const char* failure);

    /** Sends the request and reads the service's result. */
    int32_t Send(const sptr<IRemoteObject>& remote);

    /** As above, and appends the records of the reply to `records`; `failure` is for one that cannot be read. */
    template <typename T>
    int32_t Send(const sptr<IRemoteObject>& remote, std::vector<T>& records, int32_t limit, const char* failure)
    {
        const int32_t result = Send(remote);
        if (result != PrivacyIndicatorServiceIntf::SUCCESS) {
            return result;
        }
        const int32_t count = reply_.ReadInt32();
        if (count > limit) {
            return Fail(PrivacyIndicatorServiceIntf::INVALID_DATA, "The vector/array size exceeds the security limit!");
        }
        // No memory is reserved for a count that the reply may not hold.
        for (int32_t i = 0; i < count; ++i) {
            const std::unique_ptr<T> record(reply_.ReadParcelable<T>());
            if (record == nullptr) {
                return Fail(PrivacyIndicatorServiceIntf::INVALID_DATA, failure);
            }
            records.push_back(*record);
        }
        return result;
    }

private:
    int32_t Fail(int32_t error, const char* message);

    const uint32_t code_;
    MessageParcel data_;
    MessageParcel reply_;
    int32_t error_ = PrivacyIndicatorServiceIntf::SUCCESS; // The first failure's.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // SERVICE_CALL_H
