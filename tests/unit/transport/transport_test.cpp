// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <atomic>
#include <csignal>
#include <future>
#include <list>
#include <thread>

#include "call_connections.h"
#include "connection.h"
#include "ipc_object_stub.h"
#include "message_option.h"
#include "one_way_connection.h"
#include "pins.h"
#include "transport_error.h"

namespace OHOS::Transport::Test {
namespace {

using namespace std::chrono_literals;

struct Pair {
    Pair()
    {
        int fds[2];
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, fds), 0);
        ours = Descriptor::Open([&] { return fds[0]; });
        theirs = Descriptor::Open([&] { return fds[1]; });
    }

    Descriptor ours;
    Descriptor theirs;
};

std::string Packet(const Descriptor& socket)
{
    std::string bytes(4096, '\0');
    const ssize_t size = recv(socket.Get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    return bytes.substr(0, static_cast<size_t>(std::max<ssize_t>(size, 0)));
}

TEST(PinsTest, AnObjectIsHeldAsLongAsItIsPinned)
{
    Pins pins;
    const sptr<RefBase> first = new IPCObjectStub();
    const sptr<RefBase> second = new IPCObjectStub();
    EXPECT_EQ(pins.Pin(first), 0x01000000U);
    EXPECT_EQ(pins.Pin(second), 0x01000001U);
    EXPECT_EQ(pins.Pin(first), 0x01000000U);
    EXPECT_EQ(pins.Find(0x01000001), second);
    EXPECT_EQ(pins.Unpin(0x01000000, 1), nullptr);
    EXPECT_EQ(first->GetSptrRefCount(), 2);
    EXPECT_EQ(pins.Unpin(0x01000000, 5), first); // More than there are.
    EXPECT_EQ(pins.Unpin(0x01000000, 1), nullptr);
    EXPECT_EQ(first->GetSptrRefCount(), 1);
    EXPECT_EQ(pins.Pin(first), 0x01000002U); // No id comes twice.
    EXPECT_EQ(pins.Close(), (std::vector<sptr<RefBase>>{second, first}));
    EXPECT_EQ(pins.Pin(first), 0U);
    EXPECT_EQ(pins.Find(0x01000002), nullptr);
}

class CallConnectionsTest : public testing::Test {
protected:
    CallConnections connections_{[this](int& error) {
        ++asked_;
        error = error_;
        return error_ == 0 ? std::move(pairs_.emplace_back().ours) : Descriptor();
    }};
    std::list<Pair> pairs_;
    std::atomic<int> error_{0};
    std::atomic<int> asked_{0};
};

TEST_F(CallConnectionsTest, ACallTakesTheIdleOneAndNoMoreThanThereMayBe)
{
    int error = 0;
    std::vector<std::unique_ptr<Connection>> taken(CallConnections::MAX);
    for (auto& connection : taken) {
        connection = connections_.Take(Clock::now(), error);
        ASSERT_NE(connection, nullptr);
    }
    EXPECT_EQ(connections_.Take(Clock::now() + 20ms, error), nullptr);
    EXPECT_EQ(error, 110);
    Connection* const last = taken.back().get();
    connections_.Return(std::move(taken.back()), true);
    taken.back() = connections_.Take(Clock::now(), error);
    EXPECT_EQ(taken.back().get(), last);
    connections_.Return(std::move(taken.back()), false);
    taken.back() = connections_.Take(Clock::now(), error);
    EXPECT_EQ(asked_, 32);
    connections_.Close(); // Ends those under way.
    char byte = 0;
    EXPECT_EQ(recv(taken.front()->Get(), &byte, 1, 0), 0);
    EXPECT_EQ(connections_.Take(Clock::now(), error), nullptr);
    EXPECT_EQ(error, 32);
    for (auto& connection : taken) {
        connections_.Return(std::move(connection), true);
    }
}

TEST_F(CallConnectionsTest, OneThatIsReturnedIsAsGoodAsOneThatCannotBeMade)
{
    for (const int failure : {BUFFER_FULL, NO_DESCRIPTOR, NO_MEMORY}) {
        int error = 0;
        error_ = 0;
        std::unique_ptr<Connection> only = connections_.Take(Clock::now(), error);
        error_ = failure;
        const int before = asked_;
        auto waiting = std::async(std::launch::async, [&] {
            int mine = 0;
            return connections_.Take(Clock::now() + 20s, mine);
        });
        while (asked_ == before) {
            std::this_thread::yield();
        }
        connections_.Return(std::move(only), true);
        only = waiting.get();
        ASSERT_NE(only, nullptr) << failure;
        connections_.Return(std::move(only), false);
        EXPECT_EQ(connections_.Take(Clock::now() + 20ms, error), nullptr);
        EXPECT_EQ(error, failure == BUFFER_FULL ? TIMED_OUT : failure); // There is none to wait for.
    }
}

TEST(ConnectionTest, AWaitEndsAtItsDeadlineThoughSignalsComeMeanwhile)
{
    std::signal(SIGALRM, [](int) {});
    const itimerval often{{0, 5000}, {0, 5000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    Pair pair;
    Message message;
    const auto begin = Clock::now();
    EXPECT_EQ(Connection(std::move(pair.ours)).Receive(message, begin + 300ms), 110);
    EXPECT_GE(Clock::now(), begin + 300ms);
    EXPECT_LT(Clock::now(), begin + 5s); // It would never end, if each signal began it anew.
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
}

TEST(OneWayConnectionTest, WhatFindsNoRoomIsRefusedAndReleasesGoWithTheNextCall)
{
    std::list<Pair> pairs;
    OneWayConnection connection([&](int& error) {
        error = 0;
        return std::move(pairs.emplace_back().ours);
    });
    Message call;
    call.header.kind = Header::CALL;
    call.header.flags = Header::ONE_WAY;
    int error = 0;
    while ((error = connection.Send(call)) == 0) {
    }
    EXPECT_EQ(error, 105);
    connection.Release(7, 2);
    connection.Release(8, 1);
    while (Packet(pairs.front().theirs).size() == 32) {
    }
    EXPECT_EQ(connection.Send(call), 0);
    // Kind 3, two handles, whose position is the number of references; from the header to the end.
    EXPECT_EQ(
        Packet(pairs.front().theirs), std::string("\3\0\0\0\0\0\0\0\0\0\0\0\2\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                                                  "\1\0\0\0\2\0\0\0\7\0\0\0\0\0\0\0\1\0\0\0\1\0\0\0\10\0\0\0\0\0\0\0",
                                          64));
    EXPECT_EQ(Packet(pairs.front().theirs).size(), 32U);
    pairs.front().theirs = {}; // The peer hangs up: nothing was sent, and it is called anew.
    EXPECT_EQ(connection.Send(call), 0);
    EXPECT_EQ(Packet(pairs.back().theirs).size(), 32U);
    connection.Close();
    EXPECT_EQ(connection.Send(call), 32);
    EXPECT_EQ(pairs.size(), 2U);
}

TEST(MessageOptionTest, SettersPutInOrderWhatTheConstructorKeeps)
{
    MessageOption option = {MessageOption::TF_SYNC, -3};
    EXPECT_EQ(option.GetWaitTime(), -3);
    option.SetWaitTime(0);
    EXPECT_EQ(option.GetWaitTime(), 8);
    option.SetWaitTime(3001);
    EXPECT_EQ(option.GetWaitTime(), 3000);
    option.SetFlags(MessageOption::TF_ASYNC);
    option.SetFlags(2);
    EXPECT_EQ(option.GetFlags(), 3);
}

} // namespace
} // namespace OHOS::Transport::Test
