// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICE_CALL_H
#define SERVICE_CALL_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "iremote_broker.h"
#include "message_parcel.h"
#include "received_records.h"
#include "service_exchange.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * One request to the service, on the proxy's side: its arguments are written in order, then it is sent, and the result
 * is read. Each `failure` is what is logged if that step fails. ServiceRequest is the stub's side of it.
 */
class ServiceCall : private ServiceExchange {
public:
    /** Begins the request with the interface token. */
    ServiceCall(uint32_t code, int32_t vectorSizeLimit);

    void WriteInt32(int32_t value, const char* failure);
    void WriteString(const std::string& value, const char* failure);
    void WriteRecord(const Parcelable& record, const char* failure);

    /** `nullFailure` is logged if `listener` is null, `failure` if it cannot be written. */
    void WriteListener(const sptr<IRemoteBroker>& listener, const char* nullFailure, const char* failure);

    /** Sends the request and returns the service's result, or the first failure's code. */
    int32_t Send(const sptr<IRemoteObject>& remote);

    /** As above; a good result is followed by records, which are appended to `records`. */
    template <typename T>
    int32_t Send(const sptr<IRemoteObject>& remote, std::vector<T>& records, const char* failure)
    {
        if (Send(remote) != PrivacyIndicatorServiceIntf::SUCCESS) {
            return Error();
        }
        const int32_t count = reply_.ReadInt32();
        if (!CheckCount(count)) {
            return Error();
        }
        for (int32_t i = 0; i < count; ++i) {
            const std::unique_ptr<T> record(reply_.ReadParcelable<T>());
            if (record == nullptr) {
                return Fail(PrivacyIndicatorServiceIntf::INVALID_DATA, failure);
            }
            if (i == 0) {
                ReserveReceived(records, count, reply_);
            }
            records.push_back(*record);
        }
        return PrivacyIndicatorServiceIntf::SUCCESS;
    }

private:
    const uint32_t code_;
    MessageParcel data_;
    MessageParcel reply_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // SERVICE_CALL_H
