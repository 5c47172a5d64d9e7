// SPDX-License-Identifier: Apache-2.0
// What a process can do that keeps to no rule. It is the test's own: it uses nothing of the platform.
#include <gmock/gmock.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>

#include <random>

#include "peer_test.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using Packet = std::vector<uint32_t>;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

constexpr const char* VICTIM = "ohos.sa.SA66090";
constexpr uint32_t CALL = 1;
constexpr uint32_t REPLY = 2;
constexpr uint32_t MAX_SIZE = 1 << 20;
const Packet TEXT{1, 'x'};
const std::string DBUS_SEND = "dbus-send --bus=$OHOS_BUS_ADDRESS ";
const std::string REQUEST_NAME = "org.freedesktop.DBus.RequestName ";
const std::string DENIED = "Error org.freedesktop.DBus.Error.AccessDenied:";

// Of how many times an attack consists: more with HOSTILE_FACTOR, as in `./dev soak`.
int Times(int count) { return count * FromEnvironment("HOSTILE_FACTOR", 1) / (IS_SANITIZED ? 10 : 1); }

// Header, handles (four numbers each) and data of a message, whose sizes are filled in.
Packet Message(
    uint32_t kind, uint32_t code, uint32_t number, const Packet& handles, const Packet& data, uint32_t flags = 0)
{
    Packet packet{kind, code, flags, static_cast<uint32_t>(handles.size() / 4), kind == CALL ? 66090U : 0U, 0,
        static_cast<uint32_t>(data.size() * 4), number};
    packet.insert(packet.end(), handles.begin(), handles.end());
    packet.insert(packet.end(), data.begin(), data.end());
    return packet;
}

// The handles of so many objects of the sender's, or (owner 1) of the receiver's, of which there are none.
Packet InventHandles(uint32_t count, uint32_t owner, uint32_t id, Packet& data)
{
    Packet handles;
    for (uint32_t i = 0; i < count; ++i) {
        handles.insert(handles.end(), {owner, static_cast<uint32_t>(data.size() * 4), id + i, 1});
        data.resize(data.size() + 6);
    }
    return handles;
}

// Sends `size` bytes of a packet, with a descriptor if it is said to. False if there is no connection any more.
bool SendPart(int fd, const Packet& packet, size_t size, bool withDescriptor)
{
    iovec part{const_cast<uint32_t*>(packet.data()), size};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr message{nullptr, 0, &part, 1, control.data(), withDescriptor ? control.size() : 0, 0};
    const cmsghdr rights{CMSG_LEN(sizeof(int)), SOL_SOCKET, SCM_RIGHTS}; // Of descriptor 0.
    std::memcpy(control.data(), &rights, sizeof(rights));
    return sendmsg(fd, &message, MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

bool SendPacket(int fd, const Packet& packet) { return SendPart(fd, packet, packet.size() * 4, false); }

// What comes next; nothing where the connection has ended, and a 0 where nothing happens.
Packet Receive(int fd)
{
    Packet packet(256);
    ssize_t size = recv(fd, packet.data(), packet.size() * 4, 0);
    if (size < 0) { // A reset comes before what was said last.
        size = recv(fd, packet.data(), packet.size() * 4, 0);
    }
    packet.resize(size < 0 ? 1 : static_cast<size_t>(size) / 4);
    return packet;
}

// Whether a call on a connection is answered, and well.
bool IsServed(int fd)
{
    SendPacket(fd, Message(CALL, PeerTest::REPEAT, 1, {}, TEXT));
    const Packet reply = Receive(fd);
    return reply.size() > 1 && reply[1] == 0;
}

/** One that is on the bus as long as it lives, under a name of its own. */
class Stranger {
public:
    /** `isListening`: others find it. */
    explicit Stranger(const std::string& busAddress, bool isListening = true)
    {
        const char* name = nullptr;
        sd_id128_t id{};
        std::array<char, SD_ID128_STRING_MAX> text{};
        sd_bus_new(&bus_);
        sd_bus_set_address(bus_, busAddress.c_str());
        sd_bus_set_bus_client(bus_, 1);
        if (sd_bus_start(bus_) < 0 || sd_bus_get_unique_name(bus_, &name) < 0 || sd_bus_get_bus_id(bus_, &id) < 0) {
            std::abort();
        }
        name_ = name;
        id_ = sd_id128_to_string(id, text.data());
        listening_ = isListening ? Socket(name_, getpid(), true) : -1;
    }

    Stranger(const Stranger&) = delete;
    Stranger& operator=(const Stranger&) = delete;

    ~Stranger()
    {
        StopListening();
        std::for_each(connections_.begin(), connections_.end(), close);
        sd_bus_close_unref(bus_);
    }

    /** Leaves its address to others. */
    void StopListening() { close(std::exchange(listening_, -1)); }

    /** A socket that is bound to where others find the process of that pid under that name, or connected to it. */
    int Socket(const std::string& name, pid_t pid, bool isListening) const
    {
        const std::string path = '\0' + ("ohos.ipc/" + id_ + "/" + name + "/" + std::to_string(pid));
        sockaddr_un address{AF_UNIX, {}};
        path.copy(address.sun_path, sizeof(address.sun_path));
        const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
        const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
        const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
        const timeval patience{PATIENCE_S, 0};
        const int buffer = 1 << 21;
        setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
        setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &buffer, sizeof(buffer));
        isListening ? bind(fd, generic, size) + listen(fd, 0) : connect(fd, generic, size);
        return fd;
    }

    /** A connection to the service, on which it, or a child of its, has said `name`, by default its own. */
    int Connect(const std::string& name = "", bool isSaidByChild = false)
    {
        sd_bus_creds* owner = nullptr;
        const char* victim = "";
        pid_t pid = 0;
        sd_bus_get_name_creds(bus_, VICTIM, SD_BUS_CREDS_PID | SD_BUS_CREDS_UNIQUE_NAME, &owner);
        sd_bus_creds_get_pid(owner, &pid);
        sd_bus_creds_get_unique_name(owner, &victim);
        connections_.push_back(Socket(victim, pid, false));
        sd_bus_creds_unref(owner);
        const std::string& said = name.empty() ? name_ : name;
        const auto say = [&] { return send(connections_.back(), said.data(), said.size(), MSG_NOSIGNAL); };
        if (!isSaidByChild) {
            say();
        } else if (const pid_t child = fork(); child == 0) {
            say();
            _exit(0);
        } else {
            waitpid(child, nullptr, 0);
        }
        return connections_.back();
    }

    /** How many of so many connections the service keeps. They stay. */
    int ConnectOften(int count)
    {
        int kept = 0;
        for (int i = 0; i < count; ++i) {
            const bool isKept = IsServed(Connect());
            kept += isKept ? 1 : 0;
            if (!isKept) {
                HangUp();
            }
        }
        return kept;
    }

    /** Closes the last connection. */
    void HangUp()
    {
        close(connections_.back());
        connections_.pop_back();
    }

    /** What comes back for a packet on a connection of its own; nothing where that is closed instead. */
    Packet Exchange(const Packet& packet, size_t size, bool withDescriptor = false)
    {
        const int fd = Connect();
        SendPart(fd, packet, size, withDescriptor);
        Packet answer = Receive(fd);
        HangUp();
        return answer;
    }

    Packet Exchange(const Packet& packet) { return Exchange(packet, packet.size() * 4); }

    /** Has the service know an object of the sender's, by the name of x. */
    bool Offer()
    {
        const Packet reply = Exchange(Message(CALL, PeerTest::TAKE, 1, {0, 8, 7, 0}, {1, 'x', 0, 0, 0, 0, 0, 0}));
        return reply.size() > 1 && reply[1] == 0;
    }

    /** Takes a connection that the service makes, and reads its name; -1 if none comes. */
    int Accept() const
    {
        pollfd wait{listening_, POLLIN, 0};
        const int fd = poll(&wait, 1, PATIENCE_S * 1000) > 0 ? accept(listening_, nullptr, nullptr) : -1;
        std::array<char, 256> name{};
        recv(fd, name.data(), name.size(), 0);
        return fd;
    }

    const std::string& Name() const { return name_; }

private:
    sd_bus* bus_ = nullptr;
    std::string id_;
    std::string name_;
    int listening_ = -1;
    std::vector<int> connections_;
};

/** A service, a caller that keeps it busy, and an attacker. In the end the service is as it was. */
class HostileTest : public PeerTest {
protected:
    HostileTest()
    {
        Helper first({}, busAddress_);
        first.Ask([] { Find("s", 66090); });
        first.Expect("0 wrong, 0 failed", [] { return Hammer("s", 8, 50); }); // Warms up.
        first.Kill();
        std::ofstream("/proc/" + std::to_string(victim_.Pid()) + "/clear_refs") << 5; // VmHWM starts anew.
        memory_ = Memory("VmRSS:");
        caller_.Ask([] { Find("s", 66090); });
        caller_.Begin([count = Times(400)] { return Hammer("s", 8, count); });
        caller_.Hears({"begun"});
    }

    // A field of the service's status, in KiB.
    long Memory(const std::string& key) const
    {
        std::ifstream file("/proc/" + std::to_string(victim_.Pid()) + "/status");
        std::string word;
        while (word != key && file >> word) {
        }
        long size = 0;
        file >> size;
        return size;
    }

    void ExpectAllWell()
    {
        newcomer_.Ask([] { Find("s", 66090); });
        newcomer_.Expect("0", [] { return Call("s", CALL_BACK, "me").substr(0, 1); }); // Both sides connect.
        caller_.Hears({"done 0 wrong, 0 failed"});
        const long taken = Memory("VmHWM:") - memory_;
        std::printf("the service took %ld KiB more at most\n", taken);
        EXPECT_TRUE(IS_SANITIZED || taken < 32 << 10) << taken << " KiB, from " << memory_;
        caller_.Kill();
        newcomer_.Kill();
    }

    void TearDown() override
    {
        attacker_ = nullptr;
        EXPECT_TRUE(AwaitThat([this] {
            return victim_.Count("task") <= threads_ && victim_.Count("fd") == descriptors_ &&
                   victim_.Ask(Alive) == "1";
        })) << victim_.Count("fd")
            << " descriptors, not " << descriptors_;
    }

    Stranger& Attacker()
    {
        attacker_ = attacker_ != nullptr ? std::move(attacker_) : std::make_unique<Stranger>(busAddress_);
        return *attacker_;
    }

    Helper& victim_ = Start([] { Serve(66090), Find("none", 1); });
    const long descriptors_ = victim_.Count("fd");
    const long threads_ = victim_.Count("task");
    long memory_ = 0;
    Helper& caller_ = Start();
    Helper& newcomer_ = Start();

private:
    std::unique_ptr<Stranger> attacker_; // Made when all helpers are.
};

TEST_F(HostileTest, AProcessGetsAsManyConnectionsAsAnyoneHoweverManyItAsksFor)
{
    EXPECT_EQ(Attacker().ConnectOften(Times(3000)), 32);
    EXPECT_EQ(Stranger(busAddress_).ConnectOften(1), 0); // It is the same process.
    ExpectAllWell();
}

TEST_F(HostileTest, AUsersProcessesDoNotGetEveryPlaceAndNoUsersDo)
{
    std::list<Helper> attackers;
    const auto connect = [&](uid_t user, int processes) {
        int kept = 0;
        for (int i = 0; i < processes; ++i) {
            kept += std::stoi(attackers.emplace_back(std::vector<std::string>(), busAddress_).Ask([user] {
                static Stranger& stranger = *new Stranger(getenv("OHOS_BUS_ADDRESS")); // As a user whom the bus knows.
                return setuid(user) == 0 ? stranger.ConnectOften(32) : -1;
            }));
        }
        return kept;
    };
    const int ofUser = connect(getuid(), 17);
    EXPECT_GE(ofUser, 480);
    EXPECT_LT(ofUser, 512);                    // The caller has some.
    caller_.Hears({"done 0 wrong, 0 failed"}); // Who has connected before is served.
    if (getuid() == 0) {
        EXPECT_EQ(connect(1, 17), 512);
        EXPECT_EQ(connect(2, 1), 0);
    }
    EXPECT_LT(victim_.Count("task"), threads_ + (getuid() == 0 ? 1034 : 522));
    attackers.clear();
    newcomer_.Await("0", [] { return Find("s", 66090), Call("s", REPEAT); });
    caller_.Kill();
    newcomer_.Kill();
}

TEST_F(HostileTest, GarbageEndsNoOtherConnection)
{
    std::minstd_rand random; // The same every time.
    const auto below = [&random](size_t end) { return static_cast<uint32_t>(random() % end); };
    int fd = Attacker().Connect();
    for (int i = 0; i < Times(20000); ++i) {
        Packet data = TEXT;
        const uint32_t kind = 1 + below(4);
        const Packet handles = InventHandles(below(8) == 0 ? below(1030) : below(2), below(2), below(UINT32_MAX), data);
        data.resize(data.size() + (below(16) == 0 ? below(MAX_SIZE / 4) : 0));
        Packet packet = Message(kind, below(2), below(2), handles, data, below(2));
        for (uint32_t changes = below(3); changes > 0; --changes) {
            packet[below(std::min<size_t>(packet.size(), 16))] = below(2) == 0 ? below(256) : ~below(16);
        }
        packet[1] = packet[0] == CALL ? std::array{REPEAT, WHO, GIVE}.at(below(3)) : packet[1];
        const size_t size = packet.size() * 4;
        if (!SendPart(fd, packet, below(8) == 0 ? below(size) : size, below(16) == 0)) {
            Attacker().HangUp();
            fd = Attacker().Connect();
        }
    }
    Attacker().HangUp();
    ExpectAllWell();
}

TEST_F(HostileTest, AConnectionIsOfWhoMadeIt)
{
    const std::string others = ":1." + std::to_string(std::stoi(Attacker().Name().substr(3)) - 1);
    for (const std::string& name : {others, std::string(":1.99999"), std::string("1.2"), std::string(300, ':'),
             std::string(":1.0',arg1='"), std::string(VICTIM)}) {
        EXPECT_FALSE(IsServed(Attacker().Connect(name))) << name;
    }
    EXPECT_FALSE(IsServed(Attacker().Connect("", true))); // Who shares its socket may outlive it.
    const Stranger other(busAddress_);
    EXPECT_TRUE(IsServed(Attacker().Connect(other.Name()))); // Another name of the same process is as good.
    ExpectAllWell();
}

TEST_F(HostileTest, APeerThatIsCalledHarmsItsCallerOnly)
{
    EXPECT_TRUE(Attacker().Offer());
    victim_.Ask([] { SetWait(1); });
    Packet data = TEXT;
    const Packet forged = InventHandles(1, 1, 0x01000000, data); // An object that there is not.
    const auto reply = [](uint32_t number) { return Message(REPLY, 0, number, {}, TEXT); };
    int fd = -1;
    const auto answer = [&](const std::string& result, const auto& how) { // Whether the connection is kept.
        victim_.Begin([] { return Call("x", REPEAT, "hello"); });
        fd = fd >= 0 ? fd : Attacker().Accept();
        const Packet call = Receive(fd);
        const bool isKept = how(call.size() > 7 ? call[7] : 0);
        EXPECT_EQ(victim_.Event(), "done " + result);
        if (!isKept) {
            close(std::exchange(fd, -1));
        }
    };
    answer("0 x", [&](uint32_t n) { return SendPacket(fd, reply(n)); }); // As it should be.
    answer("0 x", [&](uint32_t n) { return SendPacket(fd, reply(n)) && SendPacket(fd, reply(n + 1)); });
    answer("0 x", [&](uint32_t) { return false; }); // Answered before it was sent.
    answer("32", [&](uint32_t) { return shutdown(fd, SHUT_RDWR) != 0; });
    answer("74", [&](uint32_t n) { return SendPacket(fd, reply(n + 1)), false; });
    answer("74", [&](uint32_t n) { return SendPart(fd, reply(n), 16, false), false; });
    answer("74", [&](uint32_t n) { return SendPart(fd, reply(n), 40, true), false; });
    answer("74", [&](uint32_t n) { return SendPacket(fd, Message(CALL, 1, n, {}, TEXT)), false; });
    answer("111", [&](uint32_t n) { return SendPacket(fd, Message(REPLY, 0, n, forged, data)), false; });
    answer("110", [&](uint32_t) { return false; });
    ExpectAllWell();
    victim_.Ask([] { Drop("x"); });
}

TEST_F(HostileTest, APeerThatDoesNotAcceptOrIsNotThereCostsACallItsWait)
{
    EXPECT_TRUE(Attacker().Offer());
    victim_.Ask([] { SetWait(1); });
    for (int i = 0; i < 4; ++i) { // More than its queue holds.
        victim_.Begin([] { return Call("x", REPEAT); });
    }
    EXPECT_EQ(victim_.Events(4), std::vector<std::string>(4, "done 110"));
    const std::string oneWay = victim_.Ask([] { return Send("x", 1); });
    EXPECT_TRUE(oneWay == "0 then 105" || oneWay == "1 then 0") << oneWay;
    Attacker().StopListening();
    victim_.Ask([] { SetWait(600); });
    victim_.Expect("32", [] { return Call("x", REPEAT); });
    victim_.Expect("1", [] { return IsDead("x"); });
    victim_.Ask([] { Drop("x"); });
    ExpectAllWell();
}

TEST_F(HostileTest, WhoHasTakenAnAddressGetsNothing)
{
    const std::string name = newcomer_.Ask([] {
        static Stranger& stranger = *new Stranger(getenv("OHOS_BUS_ADDRESS"), false);
        EXPECT_TRUE(stranger.Offer());
        return stranger.Name();
    });
    const int taken = Attacker().Socket(name, newcomer_.Pid(), true);
    victim_.Expect("111", [] { return Call("x", REPEAT); });
    const int fd = accept(taken, nullptr, nullptr);
    EXPECT_EQ(Receive(fd), Packet()); // Not even a name.
    close(fd);
    close(taken);
    newcomer_.Kill();
    victim_.Ask([] { Drop("x"); });
    caller_.Hears({"done 0 wrong, 0 failed"});
    caller_.Kill();
}

TEST_F(HostileTest, TheDaemonAloneSaysWhoOwnsANameAndCarriesNothingBetweenProcesses)
{
    victim_.Ask([] { Watch(66090); });
    victim_.Hears({"up 66090"});
    const auto send = [this](const std::string& message) { return Run(DBUS_SEND + message); };
    const std::string to = "--print-reply --dest=", daemon = "org.freedesktop.DBus ", path = "/org/freedesktop/DBus ";
    const std::string victim = std::string(VICTIM) + " ", text = "string:" + victim;
    const std::string news = "NameOwnerChanged " + text + text + "string:";
    send("--type=signal " + path + "org.freedesktop.DBus." + news); // To everybody.
    send("--type=signal --dest=" + victim + path + "org.freedesktop.DBus." + news);
    for (const std::string& message :
        {to + victim + "/ ohos.ipc.Peer.Connect", to + daemon + path + "org.freedesktop.DBus.ReloadConfig",
            to + daemon + path + "org.freedesktop.DBus.UpdateActivationEnvironment dict:string:string:a,b",
            to + daemon + path + "org.freedesktop.DBus.Debug.Stats.GetStats",
            to + daemon + path + "org.freedesktop.DBus.Monitoring.BecomeMonitor array:string: uint32:0"}) {
        EXPECT_THAT(send(message), StartsWith(DENIED)) << message;
    }
    EXPECT_THAT(send(to + daemon + path + REQUEST_NAME + text + "uint32:6"), HasSubstr("   uint32 3\n"));
    victim_.Expect("null", [] { return Find("none", 100); }); // What was sent to it so far has come.
    victim_.Ask([] { Watch(66090, "b"); });
    victim_.Hears({"up 66090b"});
    victim_.Ask([] { Unwatch(66090), Unwatch(66090, "b"); });
    ExpectAllWell();
}

TEST_F(HostileTest, AProcessThatStandsStillMissesNothingThoughOthersComeAndGo)
{
    victim_.Ask([] { Serve(100); });
    newcomer_.Ask([] { Watch(100), Find("s", 66090), Mourn("s"); });
    newcomer_.Hears({"up 100"});
    Helper& peer = Start([] { Serve(200); });
    newcomer_.Ask([] { Find("p", 200), Mourn("p"); });
    newcomer_.Signal(SIGSTOP);
    for (int i = 0; i < Times(4000); ++i) { // More than its queue at the daemon would hold.
        const Stranger passer(busAddress_, false);
    }
    peer.Kill();
    victim_.Ask([] { Unserve(100), Serve(100); });
    newcomer_.Signal(SIGCONT);
    newcomer_.Hears({"dead p", "down 100", "up 100"});
    ExpectAllWell();
}

TEST_F(HostileTest, HalfOpenAndIdleConnectionsToTheDaemonShutNobodyOut)
{
    std::vector<int> halfOpen(500);
    sockaddr_un address{AF_UNIX, {}};
    (folder_ + "/bus").copy(address.sun_path, sizeof(address.sun_path) - 1);
    for (int& fd : halfOpen) {
        fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_EQ(connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    }
    std::list<Stranger> idle;
    for (int i = 0; i < 300; ++i) {
        idle.emplace_back(busAddress_, false);
    }
    ExpectAllWell();
    std::for_each(halfOpen.begin(), halfOpen.end(), close);
}

using WireTest = PeerTest;

TEST_F(WireTest, AMessageIsWhatItIsAndABadOneEndsItsConnectionOnly)
{
    Start([] { Serve(66090), Make("x"); });
    Helper& caller = Start([] { Find("s", 66090); });
    Helper& late = Start();
    Stranger stranger(busAddress_);
    // Kind, code, flags, number of handles; object (of 64 bits), size of the data, number; the data.
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 0, 66090, 0, 12, 3, 5, 0x6c6c6568, 0x6f}),
        (Packet{2, 0, 0, 0, 0, 0, 12, 3, 5, 0x6c6c6568, 0x6f}));
    // An object is a handle (owner, position, id) and 24 bytes of data.
    EXPECT_EQ(stranger.Exchange({1, 5, 0, 0, 66090, 0, 8, 1, 1, 'x'}),
        (Packet{2, 0, 0, 1, 0, 0, 32, 1, 0, 8, 0x01000000, 0, 1, 'x', 0, 0, 0, 0, 0, 0}));
    // An object that there is not, called or carried.
    const Packet refused{2, 111, 0, 0, 0, 0, 0, 1};
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 0, 66091, 0, 0, 1}), refused);
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 1, 66090, 0, 24, 1, 1, 0, 0x01000001, 0, 0, 0, 0, 0, 0, 0}), refused);
    // What else is no message, the fuzz target of messages says.
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 0, 66090, 0, 0, 1}, 32, true), Packet()); // With a descriptor.
    EXPECT_EQ(stranger.Exchange({2, 0, 0, 0, 0, 0, 0, 1}), Packet());               // A reply to nothing.
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 0, 66090, 0, 0, 0}), Packet());           // Without a number.
    caller.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    for (int i = 0; i < 600; ++i) { // Each of these connections has given its place back.
        ASSERT_EQ(stranger.Exchange({1}), Packet());
    }
    late.Ask([] { Find("s", 66090); });
    late.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
}

struct RightlessTest : PeerTest {
    RightlessTest() : PeerTest("nobody") {}
};

TEST_F(RightlessTest, NobodyIsAServiceWithoutTheRight)
{
    Helper& other = Start();
    other.Expect("1", [] { return Serve(66090); });
    other.Expect("null", [] { return Find("s", 66090); });
    EXPECT_THAT(Run(DBUS_SEND + "--print-reply --dest=org.freedesktop.DBus / " + REQUEST_NAME + "string:" + VICTIM +
                    " uint32:2"),
        StartsWith(DENIED));
}

} // namespace
