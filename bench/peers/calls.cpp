// SPDX-License-Identifier: Apache-2.0
// Calls and queries between two processes, the library's beside its peers' and beside the bare bytes. The rounds of all
// are interleaved, and a figure is the median of its ratios to the stream socket in the same round.
#include "calls.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "contender.h"
#include "figure.h"
#include "first_answer.h"
#include "match.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

constexpr size_t ROUNDS = 21;
constexpr double ROUND_SECONDS = 0.015; // For each contender.

using Matches = std::vector<std::unique_ptr<Match>>;

/** How often each thread of each client is to do the task, for a round to take its time. */
int CountForRound(Match& match, Task task, size_t clients)
{
    double seconds = 1;
    task.repeated = 3;
    for (int i = 0; i < 3; ++i) {
        seconds = std::min(seconds, match.Run(task, clients));
    }
    return std::max(1, static_cast<int>(ROUND_SECONDS / (seconds * static_cast<double>(clients) * task.threads)));
}

/**
 * Prints a column of three tables: each one's time as a multiple of the first one's, its time, and the library's time
 * as a multiple of it.
 */
void Measure(
    const std::string& table, const std::string& column, const std::vector<Match*>& matches, Task task, size_t clients)
{
    std::vector<Task> tasks(matches.size(), task);
    size_t library = 0;
    for (size_t i = 0; i < matches.size(); ++i) {
        tasks[i].repeated = CountForRound(*matches[i], task, clients);
        library = matches[i]->Subject().Name() == "library" ? i : library;
    }
    std::vector<std::vector<double>> times(matches.size());
    for (size_t round = 0; round < ROUNDS; ++round) {
        for (size_t i = 0; i < matches.size(); ++i) {
            const size_t turn = (i + round) % matches.size();
            times[turn].push_back(matches[turn]->Run(tasks[turn], clients));
        }
    }
    for (size_t i = 0; i < matches.size(); ++i) {
        const std::string& row = matches[i]->Subject().Name();
        PrintFigure(table, row, column, MedianRatio(times[i], times[0]));
        PrintFigure(table + ", microseconds", row, column, Median(times[i]) * 1e6);
        PrintFigure(table + ", the library's share", row, column, MedianRatio(times[library], times[i]));
    }
}

/** The first call of a process that is only just forked. */
void MeasureFirstCalls(const std::vector<Match*>& matches)
{
    std::vector<std::vector<double>> times(matches.size());
    for (size_t round = 0; round < ROUNDS; ++round) {
        for (size_t i = 0; i < matches.size(); ++i) {
            times[i].push_back(matches[i]->CallFirst() * 1e6);
        }
    }
    for (size_t i = 0; i < matches.size(); ++i) {
        PrintFigure("first call", matches[i]->Subject().Name(), "microseconds", Median(times[i]));
    }
}

std::string WithCommas(int32_t number)
{
    const std::string digits = std::to_string(number);
    return number < 1000 ? digits : digits.substr(0, digits.size() - 3) + "," + digits.substr(digits.size() - 3);
}

} // namespace

void MeasureCalls(const std::string& programs)
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
        Measure("small call", name, matches, {0, 1, 0}, 1);
    }
    for (Match* match : matches) {
        match->Place(Placement::ONE_CORE);
    }
    for (const int32_t records : {1, 10, 100, 1000, 2000}) {
        Measure("query", WithCommas(records), matches, {records, 1, 0}, 1);
    }

    std::vector<Match*> concurrent;
    std::copy_if(matches.begin(), matches.end(), std::back_inserter(concurrent), [](Match* match) {
        const std::string& name = match->Subject().Name();
        return match->Subject().IsConcurrent() && match->Subject().HasServer() && name != "packet socket";
    });
    for (Match* match : concurrent) {
        match->Place(Placement::FREE);
    }
    for (const int threads : {1, 2, 4, 8}) {
        Measure("threads", std::to_string(threads), concurrent, {0, threads, 0}, 1);
    }
    for (const size_t clients : {1U, 4U, 16U}) {
        for (Match* match : concurrent) {
            while (match->CountClients() < clients) {
                match->AddClient();
            }
        }
        Measure("processes", std::to_string(clients), concurrent, {0, 1, 0}, clients);
    }
    Measure("processes", "1, and 15 idle", concurrent, {0, 1, 0}, 1);
    MeasureFirstCalls(concurrent);
    MeasureFirstAnswers(programs);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
