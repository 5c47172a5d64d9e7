// SPDX-License-Identifier: Apache-2.0
// One event to many processes, the library's beside a raw socket to each: from its sending until the last process has
// it, and for events that are answered, until the last answer is there.
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
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "figure.h"
#include "in_memory_service.h"
#include "iservice_registry.h"
#include "match.h"
#include "privacy_event_values.h"
#include "privacy_indicator_client.h"
#include "sockets.h"
#include "worker.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

enum class Kind { SWITCH, EVENT };

constexpr int REPEATED = 20;
constexpr int ROUNDS = 31;

/** Counts, for all processes, how many of them have an event. */
class Heard {
public:
    explicit Heard(uint32_t all) : all_(all) {}

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
                Fail("events: only " + std::to_string(now) + " of " + std::to_string(all_) + " processes heard");
            }
        }
        count_ = 0;
    }

private:
    std::atomic<uint32_t> count_{0};
    const uint32_t all_;
};

std::unique_ptr<Heard, void (*)(Heard*)> MakeHeard(int processes)
{
    void* memory = mmap(nullptr, sizeof(Heard), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        Fail("no shared memory");
    }
    return {new (memory) Heard(static_cast<uint32_t>(processes)), [](Heard* heard) { munmap(heard, sizeof(Heard)); }};
}

/** A sender and its listeners, each a process. */
class Audience {
public:
    explicit Audience(int processes) : heard_(MakeHeard(processes)) {}
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

    const std::unique_ptr<Heard, void (*)(Heard*)> heard_;

private:
    std::unique_ptr<Worker> sender_;
    std::vector<std::unique_ptr<Worker>> listeners_;
};

class RawAudience : public Audience {
public:
    RawAudience(Kind kind, int processes) : Audience(processes)
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
                    heard_->Add();
                    if (kind == Kind::EVENT) {
                        SendAll(line[1], event.data(), ANSWER_SIZE);
                    }
                }
            });
        }
        SetSender([&, kind](int line) {
            SendEvents(line, [&](int /* number */) {
                const std::string event(SizeOf(kind), '\0');
                std::array<char, ANSWER_SIZE> answer{};
                for (const auto& listener : lines) {
                    SendAll(listener[0], event.data(), event.size());
                }
                heard_->AwaitAll();
                for (size_t i = 0; kind == Kind::EVENT && i < lines.size(); ++i) {
                    ReceiveAll(lines[i][0], answer.data(), answer.size());
                }
            });
        });
        for (const auto& line : lines) {
            close(line[0]);
            close(line[1]);
        }
    }

private:
    /** As the library's messages are, with their header. */
    static size_t SizeOf(Kind kind) { return kind == Kind::SWITCH ? 188 : 264; }
};

struct Listener : Indicator::IndicatorSwitchListener, Privacy::PrivacyEventListener {
    explicit Listener(Heard& toAdd) : heard(toAdd) {}

    void OnSwitchChanged(const Indicator::IndicatorData& /* data */) override { heard.Add(); }

    void OnPrivacyEventChanged(
        const std::string& /* dataType */, const std::vector<Privacy::PrivacyEventRemindInfo>& /* infos */) override
    {
        heard.Add();
    }

    Heard& heard;
};

class LibraryAudience : public Audience {
public:
    LibraryAudience(Kind kind, int processes) : Audience(processes)
    {
        SetSender([&, kind](int line) {
            const sptr<Testing::InMemoryService> service(new Testing::InMemoryService());
            if (SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager()->AddSystemAbility(
                    PRIVACY_INDICATOR_SA_ID, service) != 0) {
                Fail("events: no bus");
            }
            SendEvents(line, [&](int number) {
                if (kind == Kind::SWITCH) {
                    number % 2 == 0 ? service->TurnOnIndicator(0, {}, {}, 0) : service->TurnOffIndicator(0, 0);
                    heard_->AwaitAll();
                    return;
                }
                const Testing::SensorUse use{PrivacySensorType::CAMERA, "com.example.application.n00001", 20010000};
                number % 2 == 0 ? service->BeginUse(use) : service->EndUse(use);
                heard_->AwaitAll();
                service->AwaitDelivery();
            });
        });
        for (int i = 0; i < processes; ++i) {
            AddListener([&, kind](int line) {
                auto& client = PrivacyIndicatorClient::GetInstance();
                const auto listener = std::make_shared<Listener>(*heard_);
                kind == Kind::SWITCH ? client.RegisterPrivacyIndicatorSwitchListener(listener)
                                     : client.RegisterPrivacyEventListener(Privacy::SENSOR_STATE_CHANGE, listener);
                SendAll(line, "", 1);
                pause();
            });
        }
    }
};

} // namespace

void MeasureEvents()
{
    for (const auto& [kind, name] : {std::pair(Kind::SWITCH, "switch"), std::pair(Kind::EVENT, "event, answered")}) {
        for (const int processes : {1, 10, 50}) {
            const std::string row = std::to_string(processes) + (processes == 1 ? " process" : " processes");
            RawAudience raw(kind, processes);
            LibraryAudience library(kind, processes);
            std::vector<double> limits;
            std::vector<double> times;
            for (int round = 0; round < ROUNDS; ++round) {
                limits.push_back(raw.Run());
                times.push_back(library.Run());
            }
            PrintFigure("events", row, name, MedianRatio(times, limits));
            PrintFigure("events", row, std::string(name) + ", microseconds", Median(times) * 1e6);
        }
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
