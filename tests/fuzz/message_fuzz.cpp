// SPDX-License-Identifier: Apache-2.0
// A message from a peer: any packet. What is taken of it is sent on, and must say the same.
// Covers: platform/transport/src/message.cpp platform/ipc/src/parcel_message.cpp
#include "message.h"

#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "descriptor.h"
#include "input.h"
#include "ipc_object_stub.h"
#include "object_table.h"
#include "parcel_message.h"
#include "peer.h"
#include "transport_error.h"

using namespace OHOS;
using namespace OHOS::Transport;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

constexpr size_t HEADER = 32;
constexpr size_t HANDLE = 16;
constexpr uint64_t OWN[] = {7, 0x01000000}; // The ids of this process's objects.

Bytes MakeHandles(Input& input, size_t count)
{
    Bytes handles;
    uint32_t position = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t how = count > 8 ? 0 : input.Byte();
        position += how >= 0xE0 ? input.Byte() : how / 32 * 4;
        const uint64_t ids[] = {OWN[0], OWN[1], 5, input.Number<uint64_t>()};
        handles += Number<uint32_t>(how >= 0xF8 ? input.Byte() : how / 4 % 2);
        handles += Number(position) + Number(ids[how % 4]);
        position += OBJECT_SIZE;
    }
    return handles;
}

// A packet as a peer would send it, but for what the input breaks.
Bytes MakePacket(Input& input)
{
    const uint8_t how = input.Byte();
    const uint8_t many = input.Byte();
    const bool isBroken = input.OneIn(8);
    const uint32_t kind = how >= 0xE0 ? input.Byte() : 1 + how % 4;
    const uint32_t code = input.OneIn(4) ? input.Number<uint32_t>() : 0;
    const uint32_t flags = input.OneIn(4) ? input.Byte() : 0;
    const uint64_t objectId = kind == 1 || input.OneIn(8) ? input.Number<uint64_t>() : 0;
    const Bytes handles = MakeHandles(input, many >= 0xFE ? MAX_HANDLES + many % 2 : many % 4);
    Bytes data = input.Take(input.OneIn(4) ? input.Number<uint16_t>() : 0);
    // Handles want room, which most packets have.
    data.resize(std::max(data.size(), how >= 0xC0 ? handles.size() : handles.size() * 2), 'd');
    data.resize(kind == 3 || kind == 4 || code != 0 ? 0 : data.size() / 4 * 4);
    const auto handleCount = static_cast<uint32_t>(handles.size() / HANDLE);
    const auto dataSize = static_cast<uint32_t>(data.size());
    const uint32_t toldCount = isBroken ? input.Number<uint32_t>() : handleCount;
    const uint32_t toldSize = isBroken ? input.Number<uint32_t>() : dataSize;
    const bool isNumbered = (kind == 1 && flags == 0) || kind == 2;
    const uint32_t number = isBroken ? input.Byte() % 2 : isNumbered ? 77 : 0;
    return Number(kind) + Number(code) + Number(flags) + Number(toldCount) + Number(objectId) + Number(toldSize) +
           Number(number) + handles + data;
}

// Whether a packet is sound, by the documentation of it.
bool IsSound(const Bytes& packet)
{
    Header header{};
    std::memcpy(&header, packet.data(), std::min(packet.size(), sizeof(header)));
    const uint64_t size = HEADER + uint64_t{header.handleCount} * HANDLE + header.dataSize;
    if (packet.size() < HEADER || packet.size() != size || size > (1U << 20) || header.handleCount > 1024 ||
        header.dataSize % 4 != 0) {
        return false;
    }
    uint64_t end = 0;
    for (size_t i = 0; i < header.handleCount; ++i) {
        Handle handle{};
        std::memcpy(&handle, &packet[HEADER + i * HANDLE], HANDLE);
        if (header.kind == 3 ? handle.owner != 1 || handle.position == 0
                             : handle.owner > 1 || handle.position % 4 != 0 || handle.position < end ||
                                   handle.position + uint64_t{24} > header.dataSize) {
            return false;
        }
        end = handle.position + uint64_t{24};
    }
    switch (header.kind) {
    case 1:
        return header.flags == 0 ? header.number != 0 : header.flags == 1 && header.number == 0;
    case 2:
        return header.flags == 0 && header.objectId == 0 && header.number != 0 &&
               (header.code == 0 || (header.dataSize == 0 && header.handleCount == 0));
    case 3:
    case 4:
        return header.flags == 0 && header.objectId == 0 && header.number == 0 && header.code == 0 &&
               header.dataSize == 0 && (header.kind == 3 || header.handleCount == 0);
    default:
        return false;
    }
}

// Filled by hand. An object received from the peer is a new one, which the table keeps.
struct FakeTable : ObjectTable {
    bool Pin(const sptr<RefBase>& object, uint64_t& id) override
    {
        const auto isIt = [&object](const auto& entry) { return entry.second == object; };
        const auto found = std::find_if(objects.begin(), objects.end(), isIt);
        const bool isThere = found != objects.end();
        id = isThere ? found->first : 0;
        pins += isThere ? 1 : 0;
        return isThere;
    }

    void Unpin(uint64_t /* id */, uint32_t count) override { pins -= count; }

    sptr<RefBase> Find(uint64_t id) override
    {
        const auto isIt = [id](const auto& entry) { return entry.first == id; };
        const auto found = std::find_if(objects.begin(), objects.end(), isIt);
        return found != objects.end() ? found->second : nullptr;
    }

    sptr<RefBase> Receive(uint64_t id) override
    {
        received.emplace_back(id, sptr<RefBase>(new IPCObjectStub()));
        return received.back().second;
    }

    using Objects = std::vector<std::pair<uint64_t, sptr<RefBase>>>;

    Objects objects; // Of this process.
    Objects received;
    size_t pins = 0;
};

// What becomes of a message on its way back, and the error for it.
enum Fate : uint8_t { SENT, CLOSED, FULL, TOO_LITTLE_BUFFER, TOO_MANY_OBJECTS, TOO_MUCH_DATA, GONE, FOREIGN, FATES };
constexpr int ERRORS[] = {0, DEAD, BUFFER_FULL, TOO_LARGE, TOO_LARGE, TOO_LARGE, DEAD, FOREIGN_OBJECT};

void SendBack(const Message& received, MessageParcel& parcel, FakeTable& table, Fate fate, const Bytes& expected)
{
    int fds[2];
    Require(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, fds) == 0, "there are sockets");
    const Descriptor ours = Descriptor::Open([&] { return fds[0]; });
    Descriptor theirs = Descriptor::Open([&] { return fds[1]; });
    const int size = fate == TOO_LITTLE_BUFFER ? 1 : 4 << 20;
    setsockopt(ours.Get(), SOL_SOCKET, SO_SNDBUF, &size, sizeof(size));
    const Bytes filler(size_t{1} << 14, 'f');
    MessageParcel large; // What was received can't be written to.
    if (fate == CLOSED) {
        theirs = {};
    } else if (fate == FULL) {
        while (send(ours.Get(), filler.data(), filler.size(), MSG_DONTWAIT) > 0) {
        }
    } else if (fate == TOO_MUCH_DATA) {
        large.SetMaxCapacity(size_t{4} << 20);
        while (large.GetDataSize() <= MAX_MESSAGE_SIZE - HEADER) {
            large.WriteBuffer(filler.data(), filler.size());
        }
    } else if (fate == GONE) {
        table.objects.clear(); // So that nothing can be pinned but what was received.
    }
    if (fate == FOREIGN) {
        const auto connect = [](int& error) { return error = DEAD, Descriptor(); };
        const auto peer = std::make_shared<Peer>(Identity(), 0, connect, [](const auto& /* peer */) {});
        const sptr<RefBase> proxy = peer->ProxyOf(1, false);
        large.WriteRemoteObject(dynamic_cast<IRemoteObject*>(proxy.GetRefPtr()));
        const ParcelMessage home(*peer, large);
        Require(home.error == 0 && home.HomeBound() == std::vector{proxy}, "a proxy can go to its own peer");
    }
    for (size_t i = 0; fate == TOO_MANY_OBJECTS && i <= MAX_HANDLES; ++i) {
        large.WriteRemoteObject(new IPCObjectStub());
    }
    for (auto& [id, object] : table.received) { // What came from the peer is this process's own here.
        table.objects.emplace_back(id, object);
    }
    int error = 0;
    {
        ParcelMessage message(table, large.GetDataSize() > 0 ? large : parcel);
        const Header sizes = message.message.header;
        message.message.header = received.header;
        message.message.header.dataSize = sizes.dataSize;
        error = message.error != 0 ? message.error : message.message.Send(ours.Get());
    }
    Require(table.pins == (error == 0 ? received.handles.size() : 0), "what is not sent is taken back");
    Require(error == 0 || error == ERRORS[fate], "a failure's code is the documented one");
    Require(error != 0 || (fate != CLOSED && fate != FULL && fate != TOO_MANY_OBJECTS && fate != TOO_MUCH_DATA &&
                              fate != FOREIGN),
        "what cannot travel fails");
    Bytes sent(expected.size() + 1, '\0');
    const ssize_t got = error == 0 ? recv(theirs.Get(), sent.data(), sent.size(), MSG_DONTWAIT) : 0;
    sent.resize(static_cast<size_t>(std::max<ssize_t>(got, 0)));
    Require(error != 0 || fate != SENT || sent == expected, "what was taken of a message is what was sent");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const uint8_t how = input.Byte();
    const Fate fate = input.OneIn(8) ? static_cast<Fate>(input.Byte() % FATES) : SENT;
    const Bytes prefix(how / 2 % 2 == 0 ? 0 : 8, 'p');
    const Bytes packet = how % 2 == 0 ? MakePacket(input) : input.Rest();

    Message message;
    const auto* const bytes = reinterpret_cast<const uint8_t*>(packet.data());
    const bool isTaken = message.Parse(bytes, packet.size());
    Require(isTaken == IsSound(packet), "a packet is taken if it is sound");
    if (!isTaken || message.header.kind > 2) {
        return 0;
    }
    FakeTable table;
    for (const uint64_t id : OWN) {
        table.objects.emplace_back(id, sptr<RefBase>(new IPCObjectStub()));
    }
    std::map<uint64_t, uint32_t> handedOver;
    bool areKnown = true;
    Bytes expected = packet.substr(0, HEADER);
    for (const Handle& handle : message.handles) {
        handedOver[handle.id] += handle.owner == 0 ? 1 : 0;
        areKnown = areKnown && (handle.owner == 0 || handle.id == OWN[0] || handle.id == OWN[1]);
        expected += Number(0U) + Number(handle.position + static_cast<uint32_t>(prefix.size())) + Number(handle.id);
    }
    expected += prefix + packet.substr(HEADER + message.handles.size() * HANDLE);
    expected.replace(24, 4, Number(static_cast<uint32_t>(prefix.size() + message.header.dataSize)));

    RawParcel parcel(prefix);
    const int error = ParcelMessage::Read(message, table, parcel);
    const Bytes taken =
        prefix + (error == 0 ? Bytes(static_cast<const char*>(message.data), message.header.dataSize) : "");
    Require(error == (areKnown ? 0 : REFUSED), "a message is taken unless it names an object that there is not");
    Require(BytesOf(parcel) == taken, "the parcel holds the message, or nothing");
    for (const auto& [id, object] : table.received) {
        Require(handedOver[id]-- > 0, "each object is received as often as it came");
    }
    if (error == 0) {
        SendBack(message, parcel, table, fate, expected);
    }
    return 0;
}
