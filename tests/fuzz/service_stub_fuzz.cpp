// SPDX-License-Identifier: Apache-2.0
// The service's stub: any request, and whatever the service answers.
// Covers: ipc/privacy_indicator_service_intf_stub.cpp ipc/service_request.cpp ipc/service_request.h
#include <cstring>
#include <iterator>
#include <optional>
#include <sstream>

#include "fake_service.h"
#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_stub_impl.h"
#include "string_ex.h"
#include "stub_request.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

// By request code: its name at the fake service, the arguments, and the records of the reply. O is a listener.
struct Operation {
    const char* name;
    const char* arguments;
    const char* record;
};
constexpr Operation OPERATIONS[] = {{}, {"RegisterEvent ", "u O", ""}, {"UnregisterEvent", "O", ""},
    {"Details", "i", Layout::DETAIL}, {"DetailsOf", "i i", Layout::DETAIL}, {"Active", "", Layout::DATA},
    {"On", "i ?iiiii ?ii i", ""}, {"Off", "i i", ""}, {"RegisterSwitch", "O", ""}, {"UnregisterSwitch", "O", ""},
    {"Usage", "?LLll", Layout::DURATION}, {"Power", "i", ""}};

constexpr size_t MAX_RECORDS = 102400;

sptr<IRemoteObject> ChooseObject(uint8_t choice)
{
    // As another process's object is seen.
    struct Remote : IPCObjectStub {
        bool IsProxyObject() const override { return true; }
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
    return Str16ToStr8(text);
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
        const Bytes bytes = isRead ? reader.Take() : I32(0); // No number, or a text of no length.
        heard += argument == "u" ? Heard(bytes) : bytes;
    }
    return true;
}

// A reply that was written whole: the result, and at success the records.
void CheckReply(const FakeService& service, const char* layout, const MessageParcel& reply)
{
    Bytes expected = I32(service.result);
    if (service.result == 0 && *layout != '\0') {
        Reader sample(service.record.value());
        Reader records(BytesOf(reply).substr(8));
        const bool isGiven = sample.Read(layout);
        const Bytes element = sample.Take();
        for (size_t i = 0; i < service.elements; ++i) {
            Require(records.Read(std::string("?") + layout), "every record of the reply is whole");
            const Bytes bytes = records.Take();
            Require(!isGiven || bytes == element, "a record travels as the service gave it");
        }
        Require(records.cursor == reply.GetDataSize() - 8, "nothing follows the last record");
        expected += I32(static_cast<int32_t>(service.elements));
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
    FakeService service;
    service.result = input.OneIn(4) ? input.Number<int32_t>() : 0;
    const auto count = input.Number<uint32_t>();
    service.elements = count == MAX_RECORDS + 1 ? count : count % 4;
    std::optional<int32_t> failingWrite; // Of the reply.
    if (input.OneIn(8)) {
        failingWrite = input.OneIn(2) ? input.Byte() % 2 : service.result;
    }
    service.whenCalled = [failingWrite] { Failing::write = failingWrite; };
    const int failingNew = input.OneIn(16) ? 1 + input.Byte() % 2 : 0;
    service.record = input.Take(input.Byte());

    const Bytes token = Token(u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf");
    StubRequest request((code8 % 2 == 0 ? token : "") + input.Rest(), token, ChooseObject(object));
    Bytes arguments;
    const bool isCallable = request.isForStub && isKnown && IsCallable(code, request.reader, object, arguments);

    RawParcel reply;
    reply.SetMaxCapacity(size_t{1} << 24);
    const int32_t result = request.Send(service, code, reply, failingNew);
    const Lines calls = Journal::Take();
    Require(isCallable ? calls.size() == 1 || failingNew != 0 : calls.empty(), "what is whole is served, once");
    if (calls.empty()) {
        Require(result == (!request.isForStub ? 1 : !isKnown ? 305 : 5), "a refusal's code is the documented one");
        Require(reply.GetDataSize() == 0, "a refusal's reply is empty");
        const bool lacksRecord = result == 5 && std::strchr(OPERATIONS[code].arguments, 'O') == nullptr;
        Require(!lacksRecord || failingNew != 0 || request.GetReadPosition() == request.reader.cursor,
            "nothing is read after what is missing");
        return 0;
    }
    const Operation& operation = OPERATIONS[code];
    Require(calls[0] == operation.name + arguments, "the operation hears what was sent");
    const bool hasListener = std::strchr(operation.arguments, 'O') != nullptr;
    Require((service.listenerObject != nullptr) == hasListener, "no operation runs without its listener");
    const bool hasRecords = service.result == 0 && *operation.record != '\0';
    if (failingWrite.has_value()) {
        Require(result == 0 || result == (reply.GetDataSize() == 0 ? 22 : 5), "a failure's code is the documented one");
    } else if (hasRecords && service.elements > MAX_RECORDS) {
        Require(result == 5, "a reply of too many records fails");
    } else {
        Require(result == 0, "what can be answered is");
        CheckReply(service, operation.record, reply);
    }
    return 0;
}
