// SPDX-License-Identifier: Apache-2.0
#ifndef HOSTILE_PEER_H
#define HOSTILE_PEER_H

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

struct sd_bus;

/** A process on the bus that keeps to no rule: all by hand, of what is said between processes. */
class HostilePeer {
public:
    using Packet = std::vector<uint32_t>;

    /** On the bus, as long as it lives. `isListening`: others find it. */
    explicit HostilePeer(const std::string& busAddress, bool isListening = true);
    HostilePeer(const HostilePeer&) = delete;
    HostilePeer& operator=(const HostilePeer&) = delete;
    ~HostilePeer();

    /** A connection to the owner of service 66090, on which it has said `name`, by default its own. -1 if refused. */
    int Connect(const std::string& name = "");

    /** How many of so many connections the service keeps. They stay. */
    size_t ConnectOften(int count);

    /** The bytes that come back for these (in hexadecimal, with a descriptor if they end with "fd"), or "closed". */
    std::string Exchange(const std::string& hex);

    /** Takes a connection that the service makes, and reads its name; -1 if none comes. */
    int Accept() const;

    /** Leaves its address to others. */
    void StopListening();

    /** What the daemon's error to a method call is, or "". `destination` empty for the daemon itself. */
    std::string CallBus(const std::string& destination, const std::string& interface, const std::string& member) const;

    /** The daemon's error for a claim to a name. */
    int Claim(const std::string& name) const;

    /** Emits a signal that looks like the daemon's news that nobody owns `name`, to the service alone. */
    void Forge(const std::string& name) const;

    /** An address as others find the process of that pid under that name; bound there, and listening. */
    int Squat(const std::string& name, pid_t pid) const;

    const std::string& Name() const
    {
        return name_;
    }

    static bool Send(int fd, const Packet& packet, size_t size, bool withDescriptor = false);
    static bool Send(int fd, const Packet& packet)
    {
        return Send(fd, packet, packet.size() * sizeof(uint32_t));
    }

    /** Header, handles (four numbers each) and data of a message; sizes are filled in. */
    static Packet Message(
        uint32_t kind, uint32_t code, uint32_t number, const Packet& handles, const Packet& data, uint32_t flags = 0);

private:
    int Socket(const std::string& name, pid_t pid, bool isListening) const;
    std::string Owner(pid_t& pid) const;

    sd_bus* bus_ = nullptr;
    std::string id_;
    std::string name_;
    int listening_ = -1;
    std::vector<int> connections_;
};

#endif // HOSTILE_PEER_H
