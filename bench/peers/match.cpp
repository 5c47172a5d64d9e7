// SPDX-License-Identifier: Apache-2.0
#include "match.h"

#include <algorithm>
#include <functional>
#include <future>
#include <thread>
#include <utility>

#include "sockets.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

void Repeat(Contender& contender, const Task& task)
{
    for (int i = 0; i < task.repeated; ++i) {
        task.records == 0 ? contender.Call() : contender.Query(task.records);
    }
}

/** The seconds that a task takes. Each thread has made a call before, and so is connected. */
double TimeOf(Contender& contender, const Task& task)
{
    if (task.threads == 1) {
        const auto begin = std::chrono::steady_clock::now();
        Repeat(contender, task);
        return SecondsSince(begin);
    }
    std::promise<void> gate;
    const std::shared_future<void> open = gate.get_future().share();
    std::vector<std::promise<void>> connected(static_cast<size_t>(task.threads));
    std::vector<std::thread> threads;
    threads.reserve(connected.size());
    for (auto& isConnected : connected) {
        threads.emplace_back([&, open] {
            contender.Call();
            isConnected.set_value();
            open.wait();
            Repeat(contender, task);
        });
    }
    for (auto& isConnected : connected) {
        isConnected.get_future().wait();
    }
    const auto begin = std::chrono::steady_clock::now();
    gate.set_value();
    for (auto& thread : threads) {
        thread.join();
    }
    return SecondsSince(begin);
}

/** As the client of `contender`, does its tasks, and says how many seconds each took. */
void RunTasks(Contender& contender, int line)
{
    contender.Query(1); // A wrong answer to a query is seen.
    Task task{};
    while (ReceiveAll(line, &task, sizeof(task))) {
        const double seconds = TimeOf(contender, task);
        SendAll(line, &seconds, sizeof(seconds));
    }
}

} // namespace

Match::Match(std::unique_ptr<Contender> contender) : contender_(std::move(contender))
{
    if (contender_->HasServer()) {
        server_ = std::make_unique<Worker>([this](int line) { contender_->Serve([line] { SendAll(line, "", 1); }); });
        server_->Receive<char>();
    }
    AddClient();
}

void Match::AddClient()
{
    clients_.push_back(std::make_unique<Worker>([this](int line) { RunTasks(*contender_, line); }));
    clients_.back()->Send(Task{1, 1, 1});
    clients_.back()->Receive<double>();
}

void Match::Place(Placement placement)
{
    const auto pin = [placement](pid_t process, int second) {
        Pin(process, placement == Placement::FREE ? -1 : placement == Placement::ONE_CORE ? 0 : second);
    };
    pin(clients_.front()->Pid(), 0);
    if (server_ != nullptr) {
        pin(server_->Pid(), 1);
    }
    if (contender_->Daemon() != 0) {
        pin(contender_->Daemon(), 1);
    }
}

double Match::Run(const Task& task, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        clients_[i]->Send(task);
    }
    double seconds = 0;
    for (size_t i = 0; i < count; ++i) {
        seconds = std::max(seconds, clients_[i]->Receive<double>());
    }
    return seconds / (static_cast<double>(count) * task.threads * task.repeated);
}

double Match::CallFirst()
{
    const Worker client([this](int line) {
        const auto begin = std::chrono::steady_clock::now();
        contender_->Call();
        const double seconds = SecondsSince(begin);
        SendAll(line, &seconds, sizeof(seconds));
    });
    return client.Receive<double>();
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double MedianRatio(const std::vector<double>& dividends, const std::vector<double>& divisors)
{
    std::vector<double> ratios(dividends.size());
    std::transform(dividends.begin(), dividends.end(), divisors.begin(), ratios.begin(), std::divides<>());
    return Median(std::move(ratios));
}

double SecondsSince(std::chrono::steady_clock::time_point begin)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
