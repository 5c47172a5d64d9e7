// SPDX-License-Identifier: Apache-2.0
// The service's stub: any request, and whatever the service answers.
// Covers: ipc/privacy_indicator_service_intf_stub.cpp ipc/service_request.cpp ipc/service_request.h
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>

#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf_stub.h"
#include "string_ex.h"
#include "stub_request.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

// By request code: the arguments, and the records of the reply. O is a listener.
struct Operation {
    const char* arguments;
    const char* record;
};
constexpr Operation OPERATIONS[] = {{"", ""}, {"u O", ""}, {"O", ""}, {"i", Layout::DETAIL}, {"i i", Layout::DETAIL},
    {"", Layout::DATA}, {"i ?iiiii ?ii i", ""}, {"i i", ""}, {"O", ""}, {"O", ""}, {"?LLll", Layout::DURATION},
    {"i", ""}};

constexpr size_t MAX_RECORDS = 102400;

// Writes down its arguments, and answers with the result and the records that the input chose.
class Service : public PrivacyIndicatorServiceIntfStub {
    using SwitchListener = Indicator::IndicatorSwitchListenerIntf;

public:
    int32_t RegisterPrivacyEventListener(
        const std::string& dataType, const sptr<Privacy::PrivacyEventListenerIntf>& listener) override
    {
        return Answer(Str(dataType), listener != nullptr);
    }

    int32_t UnregisterPrivacyEventListener(const sptr<Privacy::PrivacyEventListenerIntf>& listener) override
    {
        return Answer("", listener != nullptr);
    }

    int32_t GetPrivacyEventDetails(int32_t userId, std::vector<Privacy::PrivacyEventDetail>& details) override
    {
        return Fill(I32(userId), details);
    }

    int32_t GetPrivacyEventDetailsByPrivacySensorType(
        int32_t userId, int32_t sensor, std::vector<Privacy::PrivacyEventDetail>& details) override
    {
        return Fill(I32(userId) + I32(sensor), details);
    }

    int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) override
    {
        return Fill("", indicators);
    }

    int32_t TurnOnIndicator(int32_t sensor, const Indicator::IndicatorPosition& position,
        const Indicator::IndicatorSize& size, int32_t animation) override
    {
        return Answer(I32(sensor) + Layout::Marshalled(position) + Layout::Marshalled(size) + I32(animation));
    }

    int32_t TurnOffIndicator(int32_t sensor, int32_t animation) override
    {
        return Answer(I32(sensor) + I32(animation));
    }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Answer("", listener != nullptr);
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Answer("", listener != nullptr);
    }

    int32_t GetPermissionUsageDurationSummary(const Record::PermissionUsageDurationQuery& query,
        std::vector<Record::PermissionUsageDuration>& durations) override
    {
        return Fill(Layout::Marshalled(query), durations);
    }

    int32_t NotifyPowerEvent(int32_t event) override
    {
        return Answer(I32(event));
    }

    Bytes record; // The one that fills an answer.
    size_t count = 0;
    int32_t result = 0;
    std::optional<int32_t> failingWrite; // Of the reply.
    int calls = 0;
    Bytes heard; // The arguments, as they travel, but for a listener.

private:
    int32_t Answer(const Bytes& arguments, bool hasListener = true)
    {
        Require(hasListener, "no operation runs without its listener");
        ++calls;
        heard = arguments;
        Failing::nthNew = 0;
        Failing::write = failingWrite;
        return result;
    }

    template <typename T>
    int32_t Fill(const Bytes& arguments, std::vector<T>& records)
    {
        Failing::nthNew = 0;
        RawParcel parcel(record);
        const std::unique_ptr<T> sample(T::Unmarshalling(parcel));
        records.assign(count, sample != nullptr ? *sample : T());
        return Answer(arguments);
    }
};

sptr<IRemoteObject> ChooseObject(uint8_t choice)
{
    // As another process's object is seen.
    struct Remote : IPCObjectStub {
        bool IsProxyObject() const override
        {
            return true;
        }
    };
    const sptr<IRemoteObject> objects[] = {new Remote(), new Privacy::PrivacyEventListenerStubImpl(nullptr),
        new Indicator::IndicatorSwitchListenerStubImpl(nullptr), nullptr};
    return objects[choice % 4];
}

// A string16 as the operation hears it.
Bytes Heard(const Bytes& bytes)
{
    std::u16string text((bytes.size() - sizeof(int32_t)) / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), bytes.data() + sizeof(int32_t), text.size() * sizeof(char16_t));
    return Str(Str16ToStr8(text));
}

// Whether the stub should get to its operation, and with what. A number or a text may be missing, nothing else may.
bool IsCallable(uint32_t code, Reader& reader, uint8_t object, Bytes& heard)
{
    std::istringstream arguments(OPERATIONS[code].arguments);
    for (std::string argument; arguments >> argument;) {
        if (argument == "O") {
            const uint8_t wanted = code <= PrivacyIndicatorServiceIntf::UNREGISTER_PRIVACY_EVENT_LISTENER ? 1 : 2;
            return reader.objects == std::vector<size_t>{reader.cursor} && (object % 4 == 0 || object % 4 == wanted);
        }
        const bool isRead = reader.Read(argument);
        if (!isRead && argument[0] == '?') {
            return false;
        }
        const Bytes bytes = isRead ? reader.Take() : I32(0);
        heard += argument == "u" ? Heard(bytes) : bytes;
    }
    return true;
}

// A reply that was written whole: the result, and at success the records.
void CheckReply(const Service& service, const char* layout, const MessageParcel& reply)
{
    Bytes expected = I32(service.result);
    if (service.result == 0 && *layout != '\0') {
        Reader sample(service.record);
        Reader records(BytesOf(reply).substr(8));
        const bool isGiven = sample.Read(layout);
        const Bytes element = sample.Take();
        for (size_t i = 0; i < service.count; ++i) {
            Require(records.Read(std::string("?") + layout), "every record of the reply is whole");
            const Bytes bytes = records.Take();
            Require(!isGiven || bytes == element, "a record travels as the service gave it");
        }
        Require(records.cursor == reply.GetDataSize() - 8, "nothing follows the last record");
        expected += I32(static_cast<int32_t>(service.count));
    }
    Require(BytesOf(reply).compare(0, 8, expected) == 0, "the reply begins with the result and the count");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const uint8_t code8 = input.Byte();
    const uint32_t code = code8 >= 0xF8 ? input.Number<uint32_t>() : code8 / 2 % (std::size(OPERATIONS) + 1);
    const bool isKnown = code >= 1 && code < std::size(OPERATIONS);
    const uint8_t object = input.Byte();
    Service service;
    service.result = input.OneIn(4) ? input.Number<int32_t>() : 0;
    const auto count = input.Number<uint32_t>();
    service.count = count == MAX_RECORDS + 1 ? count : count % 4;
    if (input.OneIn(8)) {
        service.failingWrite = input.OneIn(2) ? input.Byte() % 2 : service.result;
    }
    const int failingNew = input.OneIn(16) ? 1 + input.Byte() % 2 : 0;
    service.record = input.Take(input.Byte());

    const Bytes token = Token(u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf");
    StubRequest request((code8 % 2 == 0 ? token : "") + input.Rest(), token, ChooseObject(object));
    Bytes arguments;
    const bool isCallable = request.isForStub && isKnown && IsCallable(code, request.reader, object, arguments);

    RawParcel reply;
    reply.SetMaxCapacity(size_t{1} << 24);
    const int32_t result = request.Send(service, code, reply, failingNew);
    Require(isCallable ? service.calls == 1 || failingNew != 0 : service.calls == 0, "what is whole is served, once");
    if (service.calls == 0) {
        Require(result == (!request.isForStub ? 1 : !isKnown ? 305 : 5), "a refusal's code is the documented one");
        Require(reply.GetDataSize() == 0, "a refusal's reply is empty");
        return 0;
    }
    Require(service.heard == arguments, "the operation hears what was sent");
    const bool hasRecords = service.result == 0 && *OPERATIONS[code].record != '\0';
    if (service.failingWrite.has_value()) {
        Require(result == 0 || result == (reply.GetDataSize() == 0 ? 22 : 5), "a failure's code is the documented one");
    } else if (hasRecords && service.count > MAX_RECORDS) {
        Require(result == 5, "a reply of too many records fails");
    } else {
        Require(result == 0, "what can be answered is");
        CheckReply(service, OPERATIONS[code].record, reply);
    }
    return 0;
}
