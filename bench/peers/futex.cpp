// SPDX-License-Identifier: Apache-2.0
#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstring>
#include <new>
#include <vector>

#include "contender.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

/** Memory that both processes share, and a word that says whose turn it is. */
class Futex : public Contender {
public:
    Futex() : Contender("futex, shared memory")
    {
        void* memory =
            mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
        if (memory == MAP_FAILED) {
            Fail("no shared memory");
        }
        shared_ = new (memory) Shared;
    }

    bool IsConcurrent() const override { return false; }

    void Serve(const std::function<void()>& ready) override
    {
        const std::vector<char> answer(MOST);
        std::vector<char> request(REQUEST_SIZE);
        ready();
        while (true) {
            Await(SERVER);
            std::memcpy(request.data(), shared_->bytes, request.size());
            std::memcpy(shared_->bytes, answer.data(), shared_->answerSize);
            Pass(CLIENT);
        }
    }

    void Call() override { Ask(ANSWER_SIZE); }

    void Query(int32_t records) override { Ask(AnswerSize(records)); }

private:
    static constexpr size_t MOST = AnswerSize(2000);
    enum Turn : uint32_t { CLIENT, SERVER };

    struct Shared {
        std::atomic<uint32_t> turn{CLIENT};
        size_t answerSize = 0;
        char bytes[MOST] = {};
    };

    void Ask(size_t answerSize)
    {
        static std::vector<char> answer(MOST);
        const char request[REQUEST_SIZE] = {};
        std::memcpy(shared_->bytes, request, sizeof(request));
        shared_->answerSize = answerSize;
        Pass(SERVER);
        Await(CLIENT);
        std::memcpy(answer.data(), shared_->bytes, answerSize);
    }

    void Pass(Turn turn)
    {
        shared_->turn = turn;
        syscall(SYS_futex, &shared_->turn, FUTEX_WAKE, 1, nullptr, nullptr, 0);
    }

    void Await(Turn turn)
    {
        while (shared_->turn != turn) {
            syscall(SYS_futex, &shared_->turn, FUTEX_WAIT, turn == CLIENT ? SERVER : CLIENT, nullptr, nullptr, 0);
        }
    }

    Shared* shared_ = nullptr;
};

} // namespace

std::unique_ptr<Contender> MakeFutex() { return std::make_unique<Futex>(); }

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
