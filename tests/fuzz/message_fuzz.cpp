// SPDX-License-Identifier: Apache-2.0
// A message from a peer: any packet. What is taken of it is sent on, and must say the same.
// Covers: platform/ipc/src/message.cpp
#include "message.h"

#include <cstring>
#include <dlfcn.h>
#include <map>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>

#include "bus.h"
#include "exports.h"
#include "input.h"
#include "ipc_object_stub.h"
#include "peer.h"

using namespace OHOS;
using namespace OHOS::Transport;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

bool g_failingExtend = false;

} // namespace

// A program's own definitions come before those of its libraries, for calls between these too.

uint8_t* OHOS::Parcel::Extend(size_t size)
{
    // The library's own, as the pointer to a member that the C++ ABI makes of it.
    static const auto behind = [] {
        void* const parts[] = {dlsym(RTLD_NEXT, "_ZN4OHOS6Parcel6ExtendEm"), nullptr};
        uint8_t* (Parcel::*member)(size_t) = nullptr;
        static_assert(sizeof(member) == sizeof(parts));
        std::memcpy(&member, parts, sizeof(member));
        return member;
    }();
    return g_failingExtend ? nullptr : (this->*behind)(size);
}

// There is no bus here; what it should send is asked of the peer. NOLINTNEXTLINE(performance-unnecessary-value-param)
void OHOS::Transport::Bus::Post(std::function<void()> /*task*/) {}

namespace {

constexpr size_t HEADER = 32;
constexpr size_t HANDLE = 16;
constexpr int SERVICE = 7;

// What this process offers: a service, and an object that any peer may be pinned to under the same id.
struct Offer {
    Offer()
    {
        static_cast<void>(Exports::Get().AddService(SERVICE, new IPCObjectStub()));
        Require(Exports::Get().Pin(holder, object, id), "an object can be pinned");
    }

    Peer holder{"holder"};
    sptr<IRemoteObject> object{new IPCObjectStub()};
    uint64_t id = 0;
};

const Offer& GetOffer()
{
    static const auto& offer = *new Offer();
    return offer;
}

struct HandleField {
    uint32_t owner; // 0 the sender, 1 the receiver.
    uint32_t position;
    uint64_t id;
};

Bytes MakeHandles(Input& input, size_t count)
{
    Bytes handles;
    uint32_t position = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t how = count > 8 ? 0 : input.Byte();
        position += how >= 0xE0 ? input.Byte() : how / 32 * 4;
        const uint64_t ids[] = {SERVICE, GetOffer().id, 5, input.Number<uint64_t>()};
        handles += Number<uint32_t>(how >= 0xF8 ? input.Byte() : how / 4 % 2);
        handles += Number(position) + Number(ids[how % 4]);
        position += HANDLE_SIZE;
    }
    return handles;
}

// A packet as a peer would send it, but for what the input breaks.
Bytes MakePacket(Input& input)
{
    const uint8_t how = input.Byte();
    const uint8_t many = input.Byte();
    const bool isBroken = input.OneIn(8);
    const uint32_t kind = how >= 0xE0 ? input.Byte() : 1 + how % 3;
    const uint32_t code = input.OneIn(4) ? input.Number<uint32_t>() : 0;
    const uint32_t flags = input.OneIn(4) ? input.Byte() : 0;
    const auto objectId = input.Number<uint64_t>();
    const Bytes handles = MakeHandles(input, many >= 0xFE ? MAX_HANDLES + many % 2 : many % 4);
    Bytes data = input.Take(input.OneIn(4) ? input.Number<uint16_t>() : 0);
    // Handles want room, which most packets have.
    data.resize(std::max(data.size(), how >= 0xC0 ? handles.size() : handles.size() * 2), 'd');
    const auto handleCount = static_cast<uint32_t>(handles.size() / HANDLE);
    const auto dataSize = static_cast<uint32_t>(data.size());
    const uint32_t toldCount = isBroken ? input.Number<uint32_t>() : handleCount;
    const uint32_t toldSize = isBroken ? input.Number<uint32_t>() : dataSize;
    const uint32_t reserved = isBroken ? input.Byte() % 2 : 0;
    return Number(kind) + Number(code) + Number(flags) + Number(toldCount) + Number(objectId) + Number(toldSize) +
           Number(reserved) + handles + data;
}

bool Send(const Descriptor& to, const Bytes& bytes, bool carriesDescriptor = false)
{
    iovec part{const_cast<char*>(bytes.data()), bytes.size()}; // It is only read.
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr packet{};
    packet.msg_iov = &part;
    packet.msg_iovlen = 1;
    if (carriesDescriptor) {
        packet.msg_control = control;
        packet.msg_controllen = sizeof(control);
        cmsghdr* const rights = CMSG_FIRSTHDR(&packet);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        rights->cmsg_len = CMSG_LEN(sizeof(int));
        const int descriptor = to.Get();
        std::memcpy(CMSG_DATA(rights), &descriptor, sizeof(descriptor));
    }
    return sendmsg(to.Get(), &packet, MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
}

Bytes ReceiveFrom(const Descriptor& socket, size_t most)
{
    Bytes bytes(most, '\0');
    const ssize_t size = recv(socket.Get(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_TRUNC);
    bytes.resize(size > 0 ? static_cast<size_t>(size) : 0);
    return bytes;
}

// A packet taken apart, by the documentation of it.
struct Parts {
    explicit Parts(const Bytes& packet)
    {
        std::memcpy(&header, packet.data(), std::min(packet.size(), sizeof(header)));
        const uint64_t size = HEADER + uint64_t{header.handleCount} * HANDLE + header.dataSize;
        const bool hasData = header.kind == 1 || (header.kind == 2 && header.code == 0);
        isSound = packet.size() >= HEADER && packet.size() == size && header.kind >= 1 && header.kind <= 3 &&
                  header.flags <= (header.kind == 1 ? 1U : 0U) && header.handleCount <= 1024 && header.reserved == 0 &&
                  (hasData || header.dataSize == 0);
        if (isSound) {
            handles.resize(header.handleCount);
            for (size_t i = 0; i < handles.size(); ++i) {
                std::memcpy(&handles[i], &packet[HEADER + i * HANDLE], HANDLE);
            }
            data = packet.substr(HEADER + handles.size() * HANDLE);
        }
        uint64_t end = 0;
        for (const HandleField& handle : handles) {
            handlesAreSound = handlesAreSound && handle.owner <= 1 && handle.position % 4 == 0 &&
                              handle.position >= end && handle.position + uint64_t{24} <= data.size();
            end = handle.position + uint64_t{24};
            const bool isOffered = handle.id == SERVICE || handle.id == GetOffer().id;
            namesUnknown = namesUnknown || (handle.owner == 1 && !isOffered);
            if (handle.owner == 0) {
                ++handedOver[handle.id];
            }
        }
    }

    Header header{};
    std::vector<HandleField> handles;
    Bytes data;
    bool isSound = false;
    bool handlesAreSound = true;
    bool namesUnknown = false;
    std::map<uint64_t, uint32_t> handedOver; // How often each of the peer's objects was.
};

// The packet that sends a message on, behind a prefix: who sent an object owns it, and is now the receiver.
Bytes SentOn(const Parts& parts, const Bytes& prefix)
{
    Bytes handles;
    for (const HandleField& handle : parts.handles) {
        handles += Number(1 - handle.owner) + Number(handle.position + static_cast<uint32_t>(prefix.size()));
        handles += Number(handle.id);
    }
    const Header& header = parts.header;
    return Number(header.kind) + Number(header.code) + Number(header.flags) + Number(header.handleCount) +
           Number(header.objectId) + Number(static_cast<uint32_t>(prefix.size() + parts.data.size())) + Number(0U) +
           handles + prefix + parts.data;
}

// What becomes of a message on its way back, and the code for it.
enum Fate : uint8_t { SENT, CLOSED, FULL, TOO_LITTLE_BUFFER, TOO_MANY_OBJECTS, STRANGER, FORGOTTEN, FATES };
constexpr int CODES[] = {
    0, ERR_DEAD_OBJECT, ERR_BUFFER_FULL, ERR_TOO_LARGE, ERR_TOO_LARGE, ERR_FOREIGN_OBJECT, ERR_DEAD_OBJECT};

void SendBack(
    const Header& received, MessageParcel& parcel, const std::shared_ptr<Peer>& peer, Fate fate, const Bytes& expected)
{
    Descriptor ours;
    Descriptor theirs;
    Require(Descriptor::MakePair(ours, theirs), "there are sockets");
    const auto receiver = fate == STRANGER ? std::make_shared<Peer>("stranger") : peer;
    if (fate == CLOSED) {
        theirs = {};
    } else if (fate == FULL) {
        const Bytes filler(size_t{1} << 12, 'f');
        while (Send(ours, filler)) {
        }
    } else if (fate == TOO_LITTLE_BUFFER) {
        const int least = 1;
        setsockopt(ours.Get(), SOL_SOCKET, SO_SNDBUF, &least, sizeof(least));
    } else if (fate == FORGOTTEN) {
        static_cast<void>(Exports::Get().Forget(*peer));
    }
    Require(!parcel.WriteInt32(0), "what was received cannot be written to");
    MessageParcel many;
    for (size_t i = 0; fate == TOO_MANY_OBJECTS && i <= MAX_HANDLES; ++i) {
        many.WriteRemoteObject(GetOffer().object);
    }
    Header header{};
    header.kind = received.kind;
    header.code = received.code;
    header.flags = received.flags;
    header.objectId = received.objectId;
    const int error = Outgoing(receiver, fate == TOO_MANY_OBJECTS ? &many : &parcel).Send(ours.Get(), header);
    Require(error == 0 || error == CODES[fate], "a failure's code is the documented one");
    Require(error != 0 || (fate != CLOSED && fate != FULL && fate != TOO_MANY_OBJECTS), "what cannot travel fails");
    Require(error != 0 || fate == STRANGER || ReceiveFrom(theirs, expected.size()) == expected,
        "what was taken of a message is what was sent");
    if (receiver != peer) {
        static_cast<void>(Exports::Get().Forget(*receiver));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const uint8_t how = input.Byte();
    const bool carriesDescriptor = how >= 0xF8;
    const bool hasMemory = input.Byte() < 0xE0;
    const Bytes prefix(how / 2 % 2 == 0 ? 0 : 8, 'p');
    const Fate fate = input.OneIn(8) ? static_cast<Fate>(input.Byte() % FATES) : SENT;
    const Bytes packet = how % 2 == 0 ? MakePacket(input) : input.Rest();
    const Bytes next = Number(3U) + Number(1U) + Bytes(24, '\0');

    const auto peer = std::make_shared<Peer>("peer");
    uint64_t id = 0;
    Require(Exports::Get().Pin(*peer, GetOffer().object, id) && id == GetOffer().id, "a peer can be pinned");
    Descriptor ours;
    Descriptor theirs;
    Require(Descriptor::MakePair(ours, theirs), "there are sockets");
    Require(Send(theirs, packet, carriesDescriptor) && Send(theirs, next), "the packets can be sent");
    theirs = {};

    const Parts parts(packet);
    Incoming message;
    const bool isAwaited = message.Await(ours.Get());
    Require(isAwaited == (parts.isSound && !carriesDescriptor), "a packet is looked at if its header is sound");
    if (isAwaited) {
        const bool hasRoom = hasMemory || parts.data.empty();
        const int expected = !parts.handlesAreSound ? ERR_BAD_MESSAGE
                             : parts.namesUnknown   ? ERR_REFUSED
                             : !hasRoom             ? ERR_NO_MEMORY
                                                    : ERR_NONE;
        auto parcel = std::make_unique<RawParcel>(prefix);
        g_failingExtend = !hasMemory;
        const int error = message.Receive(ours.Get(), peer, *parcel);
        g_failingExtend = false;
        Require(error == expected, "a message is taken or refused as documented");
        Require(
            BytesOf(*parcel) == prefix + (error == 0 ? parts.data : ""), "the parcel holds the message, or nothing");
        if (error != ERR_BAD_MESSAGE) {
            Incoming following;
            RawParcel nothing;
            Require(following.Await(ours.Get()) && following.Receive(ours.Get(), peer, nothing) == 0 &&
                        following.GetHeader().kind == Header::RELEASE,
                "the connection is as good as before");
        }
        if (error == 0) {
            SendBack(message.GetHeader(), *parcel, peer, fate, SentOn(parts, prefix));
        }
        parcel.reset();
        std::map<uint64_t, uint32_t> released;
        peer->FlushReleases([&released](Peer::Releases& releases) { released.swap(releases); });
        Require(released == (error != ERR_BAD_MESSAGE ? parts.handedOver : std::map<uint64_t, uint32_t>()),
            "what was handed over is released, as often as it was");
    }
    static_cast<void>(Exports::Get().Forget(*peer));
    return 0;
}
