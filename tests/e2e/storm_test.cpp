// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>

#include "bus_test.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t KEEPERS = 4; // Apps whose listeners are always there, and check the order of what they hear.
constexpr long MEBIBYTE = 1 << 20;
constexpr long LONGEST_MS = 9000; // A call's wait, and a second for a busy machine.

int FromEnvironment(const char* name, int otherwise)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::atoi(value) : otherwise;
}

/** A service that is killed and started again and again, and apps that do not leave it in peace. */
class StormTest : public BusTest {
protected:
    enum Way { AT_ANY_TIME, STOPPED, IN_ITS_EVENTS, EARLY, WAYS }; // How a service ends.

    StormTest()
    {
        launcher_ = OnVariant("device");
        for (size_t i = 0; i < KEEPERS + 2; ++i) {
            apps_.push_back(&Start({}, "app_process"));
            EXPECT_EQ(i < KEEPERS ? apps_[i]->Ask("keep") : "000", "000");
            apps_[i]->Do({"storm"});
        }
        StartService();
    }

    // Waits until the keepers' stubs are there: at least the last one, or the first but one, that they register at the
    // news of it.
    void StartService()
    {
        service_.emplace(CommandFor("service_process"), busAddress_);
        service_->Do({"serve " + std::to_string(++generation_)});
        const std::string kind = generation_ % WAYS == EARLY ? "a" : "sensorStateChange";
        service_->AskUntil(kind + " " + kind + " " + kind + " " + kind, "held all " + kind);
    }

    void Restart()
    {
        const int way = generation_ % WAYS;
        if (way == STOPPED) {
            service_->Signal(SIGSTOP); // So that calls are under way.
        } else if (way == IN_ITS_EVENTS) {
            service_->Do({"background flood all"});
            service_->Hears({"flooding"});
        }
        service_->Kill();
        StartService();
    }

    // Ends the storm with one more service, which must get every stub that was ever made.
    void Calm()
    {
        for (Helper* app : apps_) {
            long answered = 0;
            long longest = 0;
            std::istringstream(app->Ask("calm")) >> answered >> longest;
            answered_ += answered;
            longest_ = std::max(longest_, longest);
        }
        Restart();
        const std::string gone = std::to_string(generation_ - 1);
        const std::string order = gone + " " + gone + " " + std::to_string(generation_) + " 0";
        for (size_t i = 0; i < apps_.size() && !HasFailure(); ++i) {
            service_->AskUntil(i < KEEPERS ? "a camera location sensorStateChange switch" : "camera location switch",
                "held " + std::to_string(apps_[i]->Pid()));
            apps_[i]->AskUntil(i < KEEPERS ? order : "0 0 0 0", "order");
        }
        const std::string held = service_->Ask("held all");
        EXPECT_EQ(std::count(held.begin(), held.end(), ' '), 25); // Nobody else's.
    }

    // An app's threads and descriptors, once those that served former services are gone, and its heap's bytes in use.
    static std::array<long, 3> Count(Helper& app)
    {
        std::array<long, 3> last{};
        for (int same = 0; same < 100; ++same) {
            const long bytes = std::stol(app.Ask("heap"));
            const std::array<long, 3> next{
                static_cast<long>(app.Count("task")), static_cast<long>(app.Count("fd")), bytes};
            same = next[0] == last[0] && next[1] == last[1] ? same : 0;
            last = next;
        }
        return last;
    }

    std::optional<Helper> service_;
    std::vector<Helper*> apps_;
    int generation_ = 0;
    long answered_ = 0;
    long longest_ = 0;
};

TEST_F(StormTest, NothingIsLostDoubledOrLeftHoweverOftenTheServiceDies)
{
    const int restarts = FromEnvironment("STORM_RESTARTS", 10);
    const std::chrono::seconds least(FromEnvironment("STORM_SECONDS", 0));
    for (int i = 0; i < WAYS; ++i) {
        Restart();
    }
    Calm();
    ASSERT_FALSE(HasFailure());
    std::vector<std::array<long, 3>> before;
    for (Helper* app : apps_) {
        before.push_back(Count(*app));
        app->Do({"storm"});
    }
    const Clock::time_point begin = Clock::now();
    answered_ = 0;
    int done = 0;
    for (; !HasFailure() && (done < restarts || Clock::now() - begin < least); ++done) {
        Restart();
        if (done == restarts / 2) { // An app comes and goes, too.
            apps_.back()->Kill();
            apps_.back() = &Start({"storm"}, "app_process");
        }
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    Calm();
    const double rate = static_cast<double>(answered_) / seconds;
    std::printf("%d restarts in %.1f s; %ld calls answered, %.0f a second, the longest call took %ld ms\n", done,
        seconds, answered_, rate, longest_);
    EXPECT_LT(longest_, LONGEST_MS);
    EXPECT_GE(rate, least.count() > 0 ? 200 : 1);
    for (size_t i = 0; i < apps_.size() - 1; ++i) {
        const auto [threads, descriptors, bytes] = Count(*apps_[i]);
        std::printf("app %zu: %d removals, %ld threads, then %ld; %ld descriptors, then %ld; %ld bytes, then %ld\n",
            i + 1, i < KEEPERS ? generation_ - 1 : 0, before[i][0], threads, before[i][1], descriptors, before[i][2],
            bytes);
        EXPECT_EQ(threads, before[i][0]);
        EXPECT_EQ(descriptors, before[i][1]);
        EXPECT_LE(bytes - before[i][2], MEBIBYTE);
    }
}

} // namespace
