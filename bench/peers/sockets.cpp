// SPDX-License-Identifier: Apache-2.0
#include "sockets.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "contender.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

using Function = int (*)(int, const sockaddr*, socklen_t);

int OpenSocket(int type, const std::string& address, Function function)
{
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::memcpy(name.sun_path + 1, address.data(), address.size());
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + address.size());
    const int fd = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    if (fd < 0 || function(fd, reinterpret_cast<const sockaddr*>(&name), size) != 0) {
        Fail("no socket at " + address);
    }
    return fd;
}

/** The two raw sockets: a request bears the size of its answer, and nothing is made of the bytes. */
class RawSocket : public Contender {
public:
    RawSocket(const std::string& name, int type)
        : Contender(name), type_(type), address_(Address(name)), bytes_(AnswerSize(2000))
    {}

    void Serve(const std::function<void()>& ready) override
    {
        const int listener = Listen(type_, address_);
        ready();
        ServeEach(listener, [this](int fd) {
            std::vector<char> request(REQUEST_SIZE);
            size_t answerSize = 0;
            while (ReceiveAll(fd, request.data(), request.size())) {
                std::memcpy(&answerSize, request.data(), sizeof(answerSize));
                SendAll(fd, bytes_.data(), answerSize);
            }
        });
    }

    void Call() override { Ask(ANSWER_SIZE); }

    void Query(int32_t records) override { Ask(AnswerSize(records)); }

private:
    void Ask(size_t answerSize)
    {
        thread_local const int fd = Connect(type_, address_);
        thread_local std::vector<char> answer(bytes_.size());
        char request[REQUEST_SIZE] = {};
        std::memcpy(request, &answerSize, sizeof(answerSize));
        if (!SendAll(fd, request, sizeof(request)) || !ReceiveAll(fd, answer.data(), answerSize)) {
            Fail(Name() + ": no answer");
        }
    }

    const int type_;
    const std::string address_;
    const std::vector<char> bytes_;
};

} // namespace

int Listen(int type, const std::string& address)
{
    const int fd = OpenSocket(type, address, bind);
    if (listen(fd, SOMAXCONN) != 0) {
        Fail("cannot listen at " + address);
    }
    return fd;
}

int Connect(int type, const std::string& address) { return OpenSocket(type, address, connect); }

void ServeEach(int listener, const std::function<void(int)>& serve)
{
    while (true) {
        const int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0) {
            Fail("accept fails");
        }
        std::thread(serve, fd).detach();
    }
}

bool SendAll(int fd, const void* data, size_t size)
{
    return send(fd, data, size, MSG_NOSIGNAL) == static_cast<ssize_t>(size);
}

bool ReceiveAll(int fd, void* data, size_t size)
{
    return recv(fd, data, size, MSG_WAITALL) == static_cast<ssize_t>(size);
}

std::unique_ptr<Contender> MakeStream() { return std::make_unique<RawSocket>("stream socket", SOCK_STREAM); }

std::unique_ptr<Contender> MakePacket() { return std::make_unique<RawSocket>("packet socket", SOCK_SEQPACKET); }

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
