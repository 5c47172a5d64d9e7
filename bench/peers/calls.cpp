// SPDX-License-Identifier: Apache-2.0
// Calls and queries between two processes, the library's beside its peers' and beside the bare bytes. The rounds of all
// are interleaved, and a figure is the median of its ratios to the stream socket in the same round.
#include "calls.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <thread>
#include <vector>

#include "contender.h"
#include "figure.h"
#include "sockets.h"
#include "worker.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

constexpr int ROUNDS = 21;
constexpr double ROUND_SECONDS = 0.015; // For each contender.

/** What a client is to do. */
struct Task {
    int32_t records; // 0 for a call, otherwise a query.
    int threads;
    int repeated; // By each thread.
};

double SecondsSince(std::chrono::steady_clock::time_point begin)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void Repeat(Contender& contender, const Task& task)
{
    for (int i = 0; i < task.repeated; ++i) {
        task.records == 0 ? contender.Call() : contender.Query(task.records);
    }
}

/** As the client of `contender`, does its tasks, and says how many seconds each took. */
void RunTasks(Contender& contender, int line)
{
    contender.Query(1); // Wrong answers to a query are seen.
    Task task{};
    while (ReceiveAll(line, &task, sizeof(task))) {
        const auto begin = std::chrono::steady_clock::now();
        if (task.threads == 1) {
            Repeat(contender, task);
        } else {
            std::vector<std::thread> threads;
            for (int i = 0; i < task.threads; ++i) {
                threads.emplace_back([&] { Repeat(contender, task); });
            }
            for (auto& thread : threads) {
                thread.join();
            }
        }
        const double seconds = SecondsSince(begin);
        SendAll(line, &seconds, sizeof(seconds));
    }
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/** A contender with its processes. */
class Match {
public:
    explicit Match(std::unique_ptr<Contender> contender) : contender_(std::move(contender))
    {
        if (contender_->HasServer()) {
            server_ = std::make_unique<Worker>([this](int line) {
                contender_->Serve([line] { SendAll(line, "", 1); });
            });
            server_->Receive<char>();
        }
        AddClient();
    }

    const Contender& Subject() const { return *contender_; }

    void AddClient()
    {
        clients_.push_back(std::make_unique<Worker>([this](int line) { RunTasks(*contender_, line); }));
        Run({1, 1, 1}, 1);
    }

    void Place(Placement placement)
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

    /** Does the task in the first `count` clients at once. The seconds that a call took, of all that were done. */
    double Run(const Task& task, size_t count)
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

    size_t CountClients() const { return clients_.size(); }

private:
    const std::unique_ptr<Contender> contender_;
    std::unique_ptr<Worker> server_;
    std::vector<std::unique_ptr<Worker>> clients_;
};

using Matches = std::vector<std::unique_ptr<Match>>;

/** One column of a table: the medians of all, in the order of `matches`; the first is what the others are measured by.*/
struct Column {
    std::vector<double> microseconds;
    std::vector<double> ratios;
};

Column Measure(const std::vector<Match*>& matches, Task task, size_t clients)
{
    std::vector<Task> tasks;
    for (Match* match : matches) {
        task.repeated = 3;
        match->Run(task, clients);
        const double seconds = match->Run(task, clients) * static_cast<double>(clients) * task.threads;
        task.repeated = std::max(1, static_cast<int>(ROUND_SECONDS / seconds));
        tasks.push_back(task);
    }
    std::vector<std::vector<double>> times(matches.size());
    std::vector<std::vector<double>> ratios(matches.size());
    for (int round = 0; round < ROUNDS; ++round) {
        std::vector<double> now(matches.size());
        for (size_t i = 0; i < matches.size(); ++i) {
            const size_t turn = (i + static_cast<size_t>(round)) % matches.size();
            now[turn] = matches[turn]->Run(tasks[turn], clients);
        }
        for (size_t i = 0; i < matches.size(); ++i) {
            times[i].push_back(now[i] * 1e6);
            ratios[i].push_back(now[i] / now[0]);
        }
    }
    Column column;
    for (size_t i = 0; i < matches.size(); ++i) {
        column.microseconds.push_back(Median(times[i]));
        column.ratios.push_back(Median(ratios[i]));
    }
    return column;
}

/** Prints a column: its ratios, its times, and the library's time as a multiple of each peer's. */
void Print(const std::string& table, const std::string& name, const std::vector<Match*>& matches, const Column& column)
{
    double library = 0;
    for (size_t i = 0; i < matches.size(); ++i) {
        if (matches[i]->Subject().Name() == "library") {
            library = column.microseconds[i];
        }
    }
    for (size_t i = 0; i < matches.size(); ++i) {
        const std::string& row = matches[i]->Subject().Name();
        PrintFigure(table, row, name, column.ratios[i]);
        PrintFigure(table + ", microseconds", row, name, column.microseconds[i]);
        PrintFigure(table + ", the library's share", row, name, library / column.microseconds[i]);
    }
}

std::string WithCommas(int32_t number)
{
    const std::string digits = std::to_string(number);
    return number < 1000 ? digits : digits.substr(0, digits.size() - 3) + "," + digits.substr(digits.size() - 3);
}

} // namespace

void MeasureCalls()
{
    Address(""); // Before any fork.
    Matches all;
    std::vector<Match*> matches;
    const auto add = [&](std::unique_ptr<Contender> contender) {
        all.push_back(std::make_unique<Match>(std::move(contender)));
        matches.push_back(all.back().get());
    };
    add(MakeStream());
    add(MakePacket());
    add(MakeFutex());
    add(MakeLibrary(Layer::CLIENT));
    add(MakeLibrary(Layer::PROXY));
    add(MakeLibrary(Layer::LOGGING_CLIENT));
    add(MakeDirectSdBus());
    add(MakeDaemonSdBus());
    add(MakeGrpc());

    const std::vector<std::pair<Placement, const char*>> placements{
        {Placement::ONE_CORE, "one core"}, {Placement::TWO_CORES, "two cores"}, {Placement::FREE, "free"}};
    for (const auto& [placement, name] : placements) {
        for (Match* match : matches) {
            match->Place(placement);
        }
        Print("small call", name, matches, Measure(matches, {0, 1, 0}, 1));
    }
    for (const int32_t records : {1, 10, 100, 1000, 2000}) {
        Print("query", WithCommas(records), matches, Measure(matches, {records, 1, 0}, 1));
    }

    std::vector<Match*> concurrent;
    std::copy_if(matches.begin(), matches.end(), std::back_inserter(concurrent), [](Match* match) {
        const std::string& name = match->Subject().Name();
        return match->Subject().IsConcurrent() && (match->Subject().HasServer()) && name != "packet socket";
    });
    for (const int threads : {1, 2, 4, 8}) {
        Print("threads", std::to_string(threads), concurrent, Measure(concurrent, {0, threads, 0}, 1));
    }
    for (const size_t clients : {1, 4, 16}) {
        for (Match* match : concurrent) {
            while (match->CountClients() < clients) {
                match->AddClient();
            }
        }
        Print("processes", std::to_string(clients), concurrent, Measure(concurrent, {0, 1, 0}, clients));
    }
    // The same with one client, while those before are idle.
    Print("processes", "1, and 15 idle", concurrent, Measure(concurrent, {0, 1, 0}, 1));
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
