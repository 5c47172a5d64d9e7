// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICE_REQUEST_H
#define SERVICE_REQUEST_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "iremote_broker.h"
#include "message_parcel.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * One request to the service, in its stub: the arguments are read in order, then the operation's reply is written. A
 * record or listener that cannot be read is logged and ends the request: nothing more is read, and Reply returns the
 * failure's code without running the operation. ServiceCall is the other side of it.
 */
class ServiceRequest {
public:
    ServiceRequest(MessageParcel& data, MessageParcel& reply) : data_(data), reply_(reply) {}

    /** This and ReadString do not fail: a missing argument reads as 0 or an empty string. */
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

    /** Runs `operation`, an int32_t(), and replies with its result. */
    template <typename Operation>
    int32_t Reply(const Operation& operation)
    {
        return IsGood() ? WriteResult(operation()) : error_;
    }

    /** Runs `operation`, an int32_t(std::vector<T>&), and replies with its result and, at success, the records. */
    template <typename T, typename Operation>
    int32_t Reply(int32_t limit, const Operation& operation)
    {
        if (!IsGood()) {
            return error_;
        }
        std::vector<T> records;
        const int32_t result = operation(records);
        const int32_t error = WriteResult(result);
        if (error != PrivacyIndicatorServiceIntf::SUCCESS || result != PrivacyIndicatorServiceIntf::SUCCESS) {
            return error;
        }
        if (records.size() > static_cast<size_t>(limit)) {
            return Fail(PrivacyIndicatorServiceIntf::INVALID_DATA, "The vector/array size exceeds the security limit!");
        }
        // A count that cannot be written is left to the first record's failure: meant.
        reply_.WriteInt32(static_cast<int32_t>(records.size()));
        for (const T& record : records) {
            if (!reply_.WriteParcelable(&record)) {
                return Fail(PrivacyIndicatorServiceIntf::INVALID_DATA, "Write [(*it)] failed!"); // Meant as it is.
            }
        }
        return PrivacyIndicatorServiceIntf::SUCCESS;
    }

private:
    bool IsGood() const
    {
        return error_ == PrivacyIndicatorServiceIntf::SUCCESS;
    }

    int32_t WriteResult(int32_t result);

    /** Logs the first failure only, and returns its code. */
    int32_t Fail(int32_t error, const char* message);

    MessageParcel& data_;
    MessageParcel& reply_;
    int32_t error_ = PrivacyIndicatorServiceIntf::SUCCESS; // The first failure's.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // SERVICE_REQUEST_H
