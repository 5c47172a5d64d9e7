// SPDX-License-Identifier: Apache-2.0
#ifndef MATCH_H
#define MATCH_H

#include <chrono>
#include <memory>
#include <vector>

#include "contender.h"
#include "worker.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** What a client is to do. */
struct Task {
    int32_t records; // 0 for a call, otherwise a query.
    int threads;
    int repeated; // By each thread.
};

/** A contender with its processes: its server, unless it has none of its own, and clients. */
class Match {
public:
    explicit Match(std::unique_ptr<Contender> contender);

    const Contender& Subject() const { return *contender_; }

    void AddClient();
    size_t CountClients() const { return clients_.size(); }

    void Place(Placement placement);

    /** Does the task in the first `count` clients at once. The seconds that a call took, of all that were done. */
    double Run(const Task& task, size_t count);

    /** The seconds that a new process takes for its first call, connecting included. */
    double CallFirst();

private:
    const std::unique_ptr<Contender> contender_;
    std::unique_ptr<Worker> server_;
    std::vector<std::unique_ptr<Worker>> clients_;
};

double Median(std::vector<double> values);

/** The median of the ratios of two series, round by round. */
double MedianRatio(const std::vector<double>& dividends, const std::vector<double>& divisors);

double SecondsSince(std::chrono::steady_clock::time_point begin);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // MATCH_H
