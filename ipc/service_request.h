// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICE_REQUEST_H
#define SERVICE_REQUEST_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "iremote_broker.h"
#include "message_parcel.h"
#include "service_exchange.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * One request to the service, on the stub's side: its arguments are read in order, then the operation is run, and the
 * reply is written. Each `failure` is what is logged if that step fails. ServiceCall is the proxy's side of it.
 */
class ServiceRequest : private ServiceExchange {
public:
    /** Begins after the interface token. Both parcels must outlive this. */
    ServiceRequest(MessageParcel& data, MessageParcel& reply, int32_t vectorSizeLimit)
        : ServiceExchange(vectorSizeLimit), data_(data), reply_(reply)
    {}

    // Contract: these two cannot fail. What is missing reads as 0 or as an empty string.
    int32_t ReadInt32();
    std::string ReadString();

    template <typename T>
    std::unique_ptr<T> ReadRecord(const char* failure)
    {
        std::unique_ptr<T> record(IsGood() ? data_.ReadParcelable<T>() : nullptr);
        if (record == nullptr) {
            Fail(PrivacyIndicatorServiceIntf::INVALID_DATA, failure);
        }
        return record;
    }

    template <typename Listener>
    sptr<Listener> ReadListener(const char* failure)
    {
        sptr<Listener> listener = IsGood() ? iface_cast<Listener>(data_.ReadRemoteObject()) : nullptr;
        if (listener == nullptr) {
            Fail(PrivacyIndicatorServiceIntf::INVALID_DATA, failure);
        }
        return listener;
    }

    /** Runs `operation`, an int32_t(), and writes its result. Returns what OnRemoteRequest is to return. */
    template <typename Operation>
    int32_t Reply(const Operation& operation)
    {
        return IsGood() ? WriteResult(operation()) : Error();
    }

    /** As above, for an int32_t(std::vector<T>&); a good result is followed by the records. */
    template <typename T, typename Operation>
    int32_t Reply(const Operation& operation)
    {
        if (!IsGood()) {
            return Error();
        }
        std::vector<T> records;
        const int32_t result = operation(records);
        if (WriteResult(result) != PrivacyIndicatorServiceIntf::SUCCESS ||
            result != PrivacyIndicatorServiceIntf::SUCCESS || !CheckCount(static_cast<int64_t>(records.size()))) {
            return Error();
        }
        // Contract: whether the count can be written is not checked.
        reply_.WriteInt32(static_cast<int32_t>(records.size()));
        for (const T& record : records) {
            if (!reply_.WriteParcelable(&record)) {
                // Contract: this text for a record of any kind.
                return Fail(PrivacyIndicatorServiceIntf::INVALID_DATA, "Write [(*it)] failed!");
            }
        }
        return PrivacyIndicatorServiceIntf::SUCCESS;
    }

private:
    int32_t WriteResult(int32_t result);

    MessageParcel& data_;
    MessageParcel& reply_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // SERVICE_REQUEST_H
