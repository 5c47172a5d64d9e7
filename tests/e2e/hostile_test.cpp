// SPDX-License-Identifier: Apache-2.0
// What a process can do that keeps to no rule. It is the test's own: it uses nothing of the platform.
#include <gmock/gmock.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>

#include <optional>
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

// Packets are spelt as the numbers of 32 bits that they are made of: kind (1 for a call, 2 for a reply), code, flags,
// number of handles; object (of 64 bits), size of the data, number; handles and data. A handle is the object's owner (0
// for the sender), its position in the data, where it takes 24 bytes, and its id (of 64 bits).

// A text to repeat, and how that is answered.
const Packet ASKED{1, PeerTest::REPEAT, 0, 0, 66090, 0, 8, 1, 1, 'x'};

Packet ReplyTo(uint32_t number) { return {2, 0, 0, 0, 0, 0, 8, number, 1, 'x'}; }

// Of how many times an attack consists: more with HOSTILE_FACTOR, as in `./dev soak`.
int Times(int count) { return count * FromEnvironment("HOSTILE_FACTOR", 1) / (IS_SANITIZED ? 10 : 1); }

// Sends a packet, with a descriptor if it is said to. False if there is no connection any more.
bool SendPacket(int fd, const Packet& packet, bool withDescriptor = false)
{
    iovec part{const_cast<uint32_t*>(packet.data()), packet.size() * 4};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr message{nullptr, 0, &part, 1, control.data(), withDescriptor ? control.size() : 0, 0};
    const cmsghdr rights{CMSG_LEN(sizeof(int)), SOL_SOCKET, SCM_RIGHTS}; // Of descriptor 0.
    std::memcpy(control.data(), &rights, sizeof(rights));
    return sendmsg(fd, &message, MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

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
bool IsServed(int fd, const Packet& call = ASKED)
{
    SendPacket(fd, call);
    const Packet reply = Receive(fd);
    return reply.size() > 1 && reply[1] == 0;
}

// A socket that `attach`, which is bind or connect, has given that address; none where it cannot.
int OpenSocket(int type, const std::string& path, int (*attach)(int, const sockaddr*, socklen_t))
{
    sockaddr_un address{AF_UNIX, {}};
    path.copy(address.sun_path, sizeof(address.sun_path));
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    const int fd = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    const timeval patience{PATIENCE_S, 0};
    const int buffer = 1 << 21;
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &buffer, sizeof(buffer));
    attach(fd, reinterpret_cast<const sockaddr*>(&address), size);
    return fd;
}

/** One that is on the bus as long as it lives, under a name of its own, and listens where others look for it. */
class Stranger {
public:
    explicit Stranger(const std::string& busAddress)
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
        listening_ = Listen(getpid());
    }

    Stranger(const Stranger&) = delete;
    Stranger& operator=(const Stranger&) = delete;

    ~Stranger()
    {
        StopListening();
        std::for_each(connections_.begin(), connections_.end(), close);
        sd_bus_close_unref(bus_);
    }

    /** A socket where others look for its name, if it is that process's. */
    int Listen(pid_t pid) const
    {
        const int fd = OpenSocket(SOCK_SEQPACKET, PathOf(name_, pid), bind);
        listen(fd, 0);
        return fd;
    }

    void StopListening() { close(std::exchange(listening_, -1)); }

    /** A connection to the service, on which no name was sent yet. */
    int Open()
    {
        sd_bus_creds* owner = nullptr;
        const char* victim = "";
        pid_t pid = 0;
        sd_bus_get_name_creds(bus_, VICTIM, SD_BUS_CREDS_PID | SD_BUS_CREDS_UNIQUE_NAME, &owner);
        sd_bus_creds_get_pid(owner, &pid);
        sd_bus_creds_get_unique_name(owner, &victim);
        connections_.push_back(OpenSocket(SOCK_SEQPACKET, PathOf(victim, pid), connect));
        sd_bus_creds_unref(owner);
        return connections_.back();
    }

    /** One on which it has said `name`. */
    int Connect(const std::string& name)
    {
        const int fd = Open();
        send(fd, name.data(), name.size(), MSG_NOSIGNAL);
        return fd;
    }

    int Connect() { return Connect(name_); }

    /** Makes so many more connections, and says how many the service keeps in all. */
    size_t ConnectOften(int count)
    {
        for (int i = 0; i < count; ++i) {
            if (!IsServed(Connect())) {
                HangUp();
            }
        }
        return connections_.size();
    }

    void HangUp()
    {
        close(connections_.back());
        connections_.pop_back();
    }

    /** What comes back for a packet on a connection of its own; nothing where that is closed instead. */
    Packet Exchange(const Packet& packet, bool withDescriptor = false)
    {
        const int fd = Connect();
        SendPacket(fd, packet, withDescriptor);
        Packet answer = Receive(fd);
        HangUp();
        return answer;
    }

    /** Takes a connection that the service makes, and reads its name; -1 if none comes. */
    int Accept() const
    {
        const int fd = accept(listening_, nullptr, nullptr);
        Receive(fd);
        return fd;
    }

    const std::string& Name() const { return name_; }

private:
    std::string PathOf(const std::string& name, pid_t pid) const
    {
        return '\0' + ("ohos.ipc/" + id_ + "/" + name + "/" + std::to_string(pid));
    }

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
        first.Expect("0", [] { return Find("s", 66090), Hammer("s", 8, 50); }); // Warms up.
        first.Kill();
        std::ofstream("/proc/" + std::to_string(victim_.Pid()) + "/clear_refs") << 5; // VmHWM starts anew.
        memory_ = Memory("VmRSS");
        caller_.Begin([count = Times(400)] { return Find("s", 66090), Hammer("s", 8, count); });
        caller_.ExpectEvents({"begun"});
        attacker_.emplace(busAddress_);
    }

    void TearDown() override
    {
        newcomer_.Expect("0", [] { return Find("s", 66090), Call("s", CALL_BACK, "me").substr(0, 1); });
        caller_.ExpectEvents({"done 0"});
        const long taken = Memory("VmHWM") - memory_;
        std::printf("the service took %ld KiB more at most\n", taken);
        EXPECT_TRUE(IS_SANITIZED || taken < 32 << 10) << taken << " KiB, from " << memory_;
        caller_.Kill();
        newcomer_.Kill();
        attacker_.reset();
        victim_.Ask([] { Drop("x"); });
        EXPECT_TRUE(AwaitThat([this] {
            return victim_.Count("task") <= threads_ && victim_.Count("fd") == descriptors_ &&
                   victim_.Ask(Alive) == "1";
        })) << victim_.Count("fd")
            << " descriptors, not " << descriptors_;
    }

    // A field of the service's status, in KiB.
    long Memory(const std::string& key) const
    {
        return std::stol(Run("awk '/" + key + "/ { print $2 }' /proc/" + std::to_string(victim_.Pid()) + "/status"));
    }

    Helper& victim_ = Start([] { Serve(66090), Find("none", 1); });
    const long descriptors_ = victim_.Count("fd");
    const long threads_ = victim_.Count("task");
    long memory_ = 0;
    Helper& caller_ = Start();
    Helper& newcomer_ = Start();
    std::optional<Stranger> attacker_;
};

TEST_F(HostileTest, AProcessGetsAsManyConnectionsAsAnyoneHoweverManyItAsksFor)
{
    EXPECT_EQ(attacker_->ConnectOften(Times(3000)), 32U);
    EXPECT_EQ(Stranger(busAddress_).ConnectOften(1), 0U); // It is the same process.
}

TEST_F(HostileTest, GarbageEndsNoOtherConnection)
{
    std::minstd_rand random; // The same every time.
    const auto below = [&random](size_t end) { return static_cast<uint32_t>(random() % end); };
    int fd = attacker_->Connect();
    for (int i = 0; i < Times(20000); ++i) {
        const uint32_t handles = below(8) == 0 ? below(1030) : below(2);
        const uint32_t words = 2 + 6 * handles + (below(4) == 0 ? below(1 << 18) : 0);
        Packet packet{1 + below(4), below(2), below(2), handles, 66090, 0, words * 4, below(2)};
        for (uint32_t n = 0, owner = below(2), id = below(UINT32_MAX); n < handles; ++n) {
            packet.insert(packet.end(), {owner, 8 + 24 * n, id + n, 1}); // Of objects that there are not.
        }
        packet.resize(packet.size() + words);
        for (uint32_t changes = below(3); changes > 0; --changes) {
            packet[2 + below(8)] = below(2) == 0 ? below(256) : ~below(16);
        }
        packet.resize(below(8) == 0 ? below(packet.size()) : packet.size());
        if (!SendPacket(fd, packet, below(16) == 0)) {
            attacker_->HangUp();
            fd = attacker_->Connect();
        }
    }
    attacker_->HangUp();
}

TEST_F(HostileTest, AConnectionIsOfWhoMadeIt)
{
    const std::string others = ":1." + std::to_string(std::stoi(attacker_->Name().substr(3)) - 1);
    for (const std::string& name : {others, std::string(":1.99999"), std::string("1.2"), std::string(300, ':'),
             std::string(":1.0',arg1='"), std::string(VICTIM)}) {
        EXPECT_FALSE(IsServed(attacker_->Connect(name))) << name;
    }
    const int shared = attacker_->Open();
    if (const pid_t child = fork(); child != 0) {
        waitpid(child, nullptr, 0);
    } else { // Who shares its socket may outlive it.
        send(shared, attacker_->Name().data(), attacker_->Name().size(), 0);
        _exit(0);
    }
    EXPECT_FALSE(IsServed(shared));
    const Stranger other(busAddress_);
    EXPECT_TRUE(IsServed(attacker_->Connect(other.Name()))); // Another name of the same process is as good.
}

TEST_F(HostileTest, APeerThatIsCalledHarmsItsCallerOnly)
{
    // Its object 7, which the service is to know as "x".
    const Packet offer{1, TAKE, 0, 1, 66090, 0, 32, 1, 0, 8, 7, 0, 1, 'x', 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(IsServed(attacker_->Connect(), offer));
    victim_.Ask([] { SetWait(1); });
    int fd = -1;
    const auto answer = [&](const std::string& result, const auto& how) { // Whether the connection is kept.
        victim_.Begin([] { return Call("x", REPEAT, "hello"); });
        fd = fd >= 0 ? fd : attacker_->Accept();
        const Packet call = Receive(fd);
        const bool isKept = how(call.size() > 7 ? call[7] : 0);
        EXPECT_EQ(victim_.Event(), "done " + result);
        if (!isKept) {
            close(std::exchange(fd, -1));
        }
    };
    answer("0 x", [&](uint32_t n) { return SendPacket(fd, ReplyTo(n)); }); // As it should be.
    answer("0 x", [&](uint32_t n) { return SendPacket(fd, ReplyTo(n)) && SendPacket(fd, ReplyTo(n + 1)); });
    answer("0 x", [&](uint32_t) { return false; }); // Answered before it was sent.
    answer("32", [&](uint32_t) { return shutdown(fd, SHUT_RDWR) != 0; });
    answer("74", [&](uint32_t n) { return SendPacket(fd, ReplyTo(n + 1)), false; });
    answer("74", [&](uint32_t n) { return SendPacket(fd, {1, 1, 0, 0, 0, 0, 0, n}), false; });
    // With an object that there is not.
    answer("111", [&](uint32_t n) {
        return SendPacket(fd, {2, 0, 0, 1, 0, 0, 24, n, 1, 0, 0x01000000, 0, 0, 0, 0, 0, 0, 0}), false;
    });
    for (int i = 0; i < 4; ++i) { // Who does not accept: these are more than its queue holds.
        victim_.Begin([] { return Call("x", REPEAT); });
    }
    EXPECT_EQ(victim_.Events(4), std::vector<std::string>(4, "done 110"));
    const std::string oneWay = victim_.Ask([] { return Send("x", 1); });
    EXPECT_TRUE(oneWay == "0 then 105" || oneWay == "1 then 0") << oneWay;
    attacker_->StopListening();
    static int taken;
    Helper& thief = Start([this] { taken = attacker_->Listen(getppid()); });
    victim_.Expect("111", [] { return Call("x", REPEAT); }); // Another process has taken its address,
    thief.Expect("0", [] { return Receive(accept(taken, nullptr, nullptr)).size(); }); // and gets not even a name.
    thief.Kill();
    victim_.Ask([] { Mourn("x"), SetWait(600); });
    victim_.Expect("32", [] { return Call("x", REPEAT); }); // Which proves its death; the daemon knows of none.
    victim_.Expect("1", [] { return IsDead("x"); });
    victim_.ExpectEvents({"dead x"});
}

TEST_F(HostileTest, TheDaemonAloneSaysWhoOwnsANameAndCarriesNothingBetweenProcesses)
{
    victim_.Ask([] { Watch(66090); });
    victim_.ExpectEvents({"up 66090"});
    const std::string victim = VICTIM;
    const std::string send = "dbus-send --bus=$OHOS_BUS_ADDRESS ";
    const std::string daemon = " /org/freedesktop/DBus org.freedesktop.DBus.";
    const std::string ask = send + "--print-reply --dest=org.freedesktop.DBus" + daemon;
    const std::string news = daemon + "NameOwnerChanged string:" + victim + " string:" + victim + " string:";
    Run(send + "--type=signal" + news); // To everybody.
    Run(send + "--type=signal --dest=" + victim + news);
    for (const std::string& denied : {send + "--print-reply --dest=" + victim + " / ohos.ipc.Peer.Connect",
             ask + "ReloadConfig", ask + "UpdateActivationEnvironment dict:string:string:a,b",
             ask + "Debug.Stats.GetStats", ask + "Monitoring.BecomeMonitor array:string: uint32:0"}) {
        EXPECT_THAT(Run(denied), StartsWith("Error org.freedesktop.DBus.Error.AccessDenied:")) << denied;
    }
    EXPECT_THAT(Run(ask + "RequestName string:" + victim + " uint32:6"), HasSubstr("   uint32 3\n"));
    victim_.Expect("null", [] { return Find("none", 100); }); // What was sent to it so far has come.
    victim_.Ask([] { Watch(66090, "b"); });
    victim_.ExpectEvents({"up 66090b"});
}

TEST_F(HostileTest, AProcessThatStandsStillMissesNothingThoughOthersComeAndGo)
{
    victim_.Ask([] { Serve(100); });
    newcomer_.Ask([] { Watch(100), Find("s", 66090), Mourn("s"); });
    newcomer_.ExpectEvents({"up 100"});
    Helper& peer = Start([] { Serve(200); });
    newcomer_.Ask([] { Find("p", 200), Mourn("p"); });
    newcomer_.Signal(SIGSTOP);
    for (int i = 0; i < Times(4000); ++i) { // More than its queue at the daemon would hold.
        const Stranger passer(busAddress_);
    }
    peer.Kill();
    victim_.Ask([] { Unserve(100), Serve(100); });
    newcomer_.Signal(SIGCONT);
    newcomer_.ExpectEvents({"dead p", "down 100", "up 100"});
}

TEST_F(HostileTest, HalfOpenAndIdleConnectionsToTheDaemonShutNobodyOut)
{
    std::vector<int> halfOpen(300);
    for (int& fd : halfOpen) {
        fd = OpenSocket(SOCK_STREAM, folder_ + "/bus", connect);
    }
    newcomer_.Expect("0", [] { return Find("s", 66090); }); // Which waits less long than the daemon does for all these.
    std::list<Stranger> idle;
    for (int i = 0; i < 300; ++i) {
        idle.emplace_back(busAddress_);
    }
    std::for_each(halfOpen.begin(), halfOpen.end(), close);
}

using StrangerTest = PeerTest;

TEST_F(StrangerTest, AUsersProcessesDoNotGetEveryPlaceAndNoUsersDo)
{
    Start([] { Serve(66090); });
    Helper& caller = Start([] { Find("s", 66090), Hammer("s", 1, 1); });
    Helper& newcomer = Start();
    std::list<Helper> attackers;
    const auto connect = [&](uid_t user, int processes) {
        int kept = 0;
        for (int i = 0; i < processes; ++i) {
            kept += std::stoi(attackers.emplace_back(std::vector<std::string>(), busAddress_).Ask([user] {
                static Stranger& stranger = *new Stranger(getenv("OHOS_BUS_ADDRESS")); // As a user whom the bus knows.
                return setuid(user) == 0 ? stranger.ConnectOften(32) : 0;
            }));
        }
        return kept;
    };
    EXPECT_EQ(connect(getuid(), 17), 510); // The caller has one for calls, and one for those that are one-way.
    if (getuid() == 0) {
        EXPECT_EQ(connect(1, 17), 512);
        EXPECT_EQ(connect(2, 1), 0);
    }
    caller.Expect("0", [] { return Hammer("s", 1, 100); }); // Who has connected before is served.
    attackers.clear();
    newcomer.Await("0", [] { return Find("s", 66090), Call("s", REPEAT); });
}

TEST_F(StrangerTest, AMessageIsWhatItIsAndABadOneEndsItsConnectionOnly)
{
    Start([] { Serve(66090), Make("x"); });
    Stranger stranger(busAddress_);
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 0, 66090, 0, 12, 3, 5, 0x6c6c6568, 0x6f}),
        (Packet{2, 0, 0, 0, 0, 0, 12, 3, 5, 0x6c6c6568, 0x6f}));
    EXPECT_EQ(stranger.Exchange({1, 5, 0, 0, 66090, 0, 8, 1, 1, 'x'}),
        (Packet{2, 0, 0, 1, 0, 0, 32, 1, 0, 8, 0x01000000, 0, 1, 'x', 0, 0, 0, 0, 0, 0}));
    // An object that there is not, called or carried.
    const Packet refused{2, 111, 0, 0, 0, 0, 0, 1};
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 0, 66091, 0, 0, 1}), refused);
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 1, 66090, 0, 24, 1, 1, 0, 0x01000001, 0, 0, 0, 0, 0, 0, 0}), refused);
    // What else is no message, the fuzz target of messages says.
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 0, 66090, 0, 0, 1}, true), Packet()); // With a descriptor.
    EXPECT_EQ(stranger.Exchange({2, 0, 0, 0, 0, 0, 0, 1}), Packet());           // A reply to nothing.
    EXPECT_EQ(stranger.Exchange({1, 1, 0, 0, 66090, 0, 0, 0}), Packet());       // Without a number.
    for (int i = 0; i < 600; ++i) { // Each of these connections has given its place back.
        ASSERT_EQ(stranger.Exchange({1}), Packet());
    }
}

TEST_F(StrangerTest, NobodyIsAServiceWithoutTheRight)
{
    KillDaemon();
    StartDaemon("nobody");
    Start().Expect("1", [] { return Serve(66090); });
}

} // namespace
