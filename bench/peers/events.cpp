// SPDX-License-Identifier: Apache-2.0
// One event to many processes, the library's beside a raw socket to each: from its sending until the last process has
// it, and for events that are answered, until the last answer is there. A service has one thread for all listeners, or
// one for each, so that none delays another.
#include "events.h"

#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <ctime>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "figure.h"
#include "in_memory_service.h"
#include "iservice_registry.h"
#include "match.h"
#include "privacy_event_values.h"
#include "privacy_indicator_client.h"
#include "privacy_indicator_service_intf_stub.h"
#include "push_queue.h"
#include "samples.h"
#include "service.h"
#include "sockets.h"
#include "worker.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

enum class Kind { SWITCH, EVENT };
enum class Threads { ONE, EACH };

constexpr int REPEATED = 20;
constexpr int ROUNDS = 31;

/** Counts, for all processes, how many of them have an event. */
class Receipts {
public:
    explicit Receipts(uint32_t all) : all_(all) {}

    void Add()
    {
        if (++count_ == all_) {
            syscall(SYS_futex, &count_, FUTEX_WAKE, 1, nullptr, nullptr, 0);
        }
    }

    void AwaitAll()
    {
        const timespec patience{10, 0};
        for (uint32_t now = count_; now < all_; now = count_) {
            if (syscall(SYS_futex, &count_, FUTEX_WAIT, now, &patience, nullptr, 0) != 0 && errno == ETIMEDOUT) {
                Fail("events: only " + std::to_string(now) + " of " + std::to_string(all_) + " processes received it");
            }
        }
        count_ = 0;
    }

private:
    std::atomic<uint32_t> count_{0};
    const uint32_t all_;
};

std::unique_ptr<Receipts, void (*)(Receipts*)> MakeReceipts(int processes)
{
    void* memory = mmap(nullptr, sizeof(Receipts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        Fail("no shared memory");
    }
    return {new (memory) Receipts(static_cast<uint32_t>(processes)),
        [](Receipts* receipts) { munmap(receipts, sizeof(Receipts)); }};
}

/** A sender and its listeners, each a process. */
class Audience {
public:
    explicit Audience(int processes) : receipts_(MakeReceipts(processes)) {}
    virtual ~Audience() = default;

    /** The seconds that an event took. */
    double Run()
    {
        sender_->Send('!');
        return sender_->Receive<double>();
    }

protected:
    /** In the sender: says that it is ready, and sends events at each byte that it is sent. */
    template <typename F>
    void SendEvents(int line, const F& sendOne)
    {
        SendAll(line, "", 1);
        char byte = 0;
        while (ReceiveAll(line, &byte, 1)) {
            const auto begin = std::chrono::steady_clock::now();
            for (int i = 0; i < REPEATED; ++i) {
                sendOne(i);
            }
            const double seconds = SecondsSince(begin) / REPEATED;
            SendAll(line, &seconds, sizeof(seconds));
        }
    }

    void AddListener(const std::function<void(int)>& body)
    {
        listeners_.push_back(std::make_unique<Worker>(body));
        listeners_.back()->Receive<char>();
    }

    void SetSender(const std::function<void(int)>& body)
    {
        sender_ = std::make_unique<Worker>(body);
        sender_->Receive<char>();
    }

    const std::unique_ptr<Receipts, void (*)(Receipts*)> receipts_;

private:
    std::unique_ptr<Worker> sender_;
    std::vector<std::unique_ptr<Worker>> listeners_;
};

class RawAudience : public Audience {
public:
    RawAudience(Kind kind, Threads threads, int processes) : Audience(processes)
    {
        std::vector<std::array<int, 2>> lines(static_cast<size_t>(processes));
        for (auto& line : lines) {
            if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, line.data()) != 0) {
                Fail("no socket pair");
            }
            AddListener([&, kind](int ready) {
                std::string event(SizeOf(kind), '\0');
                SendAll(ready, "", 1);
                while (ReceiveAll(line[1], event.data(), event.size())) {
                    receipts_->Add();
                    if (kind == Kind::EVENT) {
                        SendAll(line[1], event.data(), ANSWER_SIZE);
                    }
                }
            });
        }
        SetSender([&, kind, threads](int line) {
            threads == Threads::ONE ? SendFromOne(kind, lines, line) : SendFromEach(kind, lines, line);
        });
        for (const auto& line : lines) {
            close(line[0]);
            close(line[1]);
        }
    }

private:
    using Lines = std::vector<std::array<int, 2>>;

    void SendFromOne(Kind kind, const Lines& lines, int ready)
    {
        SendEvents(ready, [&](int /* number */) {
            for (const auto& line : lines) {
                SendOne(kind, line[0]);
            }
            receipts_->AwaitAll();
            for (size_t i = 0; kind == Kind::EVENT && i < lines.size(); ++i) {
                ReceiveAnswer(lines[i][0]);
            }
        });
    }

    void SendFromEach(Kind kind, const Lines& lines, int ready)
    {
        std::list<Testing::PushQueue> queues;
        for (size_t i = 0; i < lines.size(); ++i) {
            queues.emplace_back("", nullptr);
            std::thread([&queue = queues.back()] { queue.Run(); }).detach();
        }
        SendEvents(ready, [&](int /* number */) {
            auto queue = queues.begin();
            for (const auto& line : lines) {
                (queue++)->Push([kind, fd = line[0]] {
                    SendOne(kind, fd);
                    if (kind == Kind::EVENT) {
                        ReceiveAnswer(fd);
                    }
                });
            }
            receipts_->AwaitAll();
            for (auto& each : queues) {
                each.AwaitCalls();
            }
        });
    }

    static void SendOne(Kind kind, int fd)
    {
        const std::array<char, 264> event{};
        SendAll(fd, event.data(), SizeOf(kind));
    }

    static void ReceiveAnswer(int fd)
    {
        std::array<char, ANSWER_SIZE> answer{};
        ReceiveAll(fd, answer.data(), answer.size());
    }

    /** As the library's messages are, with their header. */
    static size_t SizeOf(Kind kind) { return kind == Kind::SWITCH ? 188 : 264; }
};

struct Listener : Indicator::IndicatorSwitchListener, Privacy::PrivacyEventListener {
    explicit Listener(Receipts& toAdd) : receipts(toAdd) {}

    void OnSwitchChanged(const Indicator::IndicatorData& /* data */) override { receipts.Add(); }

    void OnPrivacyEventChanged(
        const std::string& /* dataType */, const std::vector<Privacy::PrivacyEventRemindInfo>& /* infos */) override
    {
        receipts.Add();
    }

    Receipts& receipts;
};

/** Calls its listeners one after the other, on one thread. */
class SendingService : public Service<PrivacyIndicatorServiceIntfStub> {
public:
    int32_t RegisterPrivacyEventListener(
        const std::string& /* dataType */, const sptr<EventListener>& listener) override
    {
        return Add([this, listener] { listener->OnPrivacyEventChanged(Privacy::SENSOR_STATE_CHANGE, infos_); });
    }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Add([this, listener] { listener->OnSwitchChanged(data_); });
    }

    void SendToAll()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& send : sends_) {
            send();
        }
    }

private:
    int32_t Add(std::function<void()> send)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        sends_.push_back(std::move(send));
        return 0;
    }

    const Indicator::IndicatorData data_ = Indicators(1).front();
    const std::vector<Privacy::PrivacyEventRemindInfo> infos_ = RemindInfos(1);
    std::mutex mutex_;
    std::vector<std::function<void()>> sends_;
};

class LibraryAudience : public Audience {
public:
    LibraryAudience(Kind kind, Threads threads, int processes) : Audience(processes)
    {
        SetSender(
            [&, kind, threads](int line) { threads == Threads::ONE ? SendFromOne(line) : SendFromEach(kind, line); });
        for (int i = 0; i < processes; ++i) {
            AddListener([&, kind](int line) {
                auto& client = PrivacyIndicatorClient::GetInstance();
                const auto listener = std::make_shared<Listener>(*receipts_);
                kind == Kind::SWITCH ? client.RegisterPrivacyIndicatorSwitchListener(listener)
                                     : client.RegisterPrivacyEventListener(Privacy::SENSOR_STATE_CHANGE, listener);
                SendAll(line, "", 1);
                pause();
            });
        }
    }

private:
    template <typename Kept>
    static sptr<Kept> Start()
    {
        sptr<Kept> service(new Kept());
        if (SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager()->AddSystemAbility(
                PRIVACY_INDICATOR_SA_ID, service) != 0) {
            Fail("events: no bus");
        }
        return service;
    }

    void SendFromOne(int line)
    {
        const auto service = Start<SendingService>();
        SendEvents(line, [&](int /* number */) {
            service->SendToAll();
            receipts_->AwaitAll();
        });
    }

    void SendFromEach(Kind kind, int line)
    {
        const auto service = Start<Testing::InMemoryService>();
        SendEvents(line, [&](int number) {
            const Testing::SensorUse use{PrivacySensorType::CAMERA, "com.example.application.n00001", 20010000};
            if (kind == Kind::SWITCH) {
                number % 2 == 0 ? service->TurnOnIndicator(0, {}, {}, 0) : service->TurnOffIndicator(0, 0);
            } else {
                number % 2 == 0 ? service->BeginUse(use) : service->EndUse(use);
            }
            receipts_->AwaitAll();
            service->AwaitDelivery();
        });
    }
};

} // namespace

void MeasureEvents()
{
    for (const auto& [kind, name] : {std::pair(Kind::SWITCH, "a switch to "), std::pair(Kind::EVENT, "an event to ")}) {
        for (const int processes : {1, 10, 50}) {
            const std::string row = name + std::to_string(processes) + (processes == 1 ? " process" : " processes");
            for (const auto& [threads, column] :
                {std::pair(Threads::ONE, "one thread"), std::pair(Threads::EACH, "a thread each")}) {
                RawAudience raw(kind, threads, processes);
                LibraryAudience library(kind, threads, processes);
                std::vector<double> limits;
                std::vector<double> times;
                for (int round = 0; round < ROUNDS; ++round) {
                    limits.push_back(raw.Run());
                    times.push_back(library.Run());
                }
                PrintFigure("events", row, column, MedianRatio(times, limits));
                PrintFigure("events", row, std::string(column) + ", microseconds", Median(times) * 1e6);
            }
        }
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
