// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <sstream>

#include "../unit/samples.h"
#include "app.h"
#include "client_test.h"
#include "peer.h"

namespace {

using namespace App;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;
using Clock = std::chrono::steady_clock;

constexpr size_t KEEPERS = 4; // Apps whose listeners are always there, and check the order of what they hear.
constexpr long LOADS = 5;     // Threads that call at once, with a connection each.
constexpr long MEBIBYTE = 1 << 20;
constexpr long LONGEST_MS = 16000; // A call's wait and the look-up before it.

// What listeners hear when the service calls them, after their names and kinds.
const std::string& INFOS = *new std::string(
    REMIND_INFO.text + " PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, privacyAccessState=0, remindFlag=0}");

int FromEnvironment(const char* name, int otherwise)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::atoi(value) : otherwise;
}

/** A service that ends and is started again and again, and apps that do not leave it in peace. */
class StormTest : public ClientTest {
protected:
    enum Way { AT_ANY_TIME, STOPPED, IN_ITS_EVENTS, EARLY, CLEANLY, SLOWLY, WAYS }; // How a service ends.

    StormTest()
    {
        for (size_t i = 0; i < KEEPERS + 2; ++i) {
            apps_.push_back(&Start());
        }
        for (size_t i = 0; i < apps_.size(); ++i) {
            if (i < KEEPERS) { // In the order in which they register anew.
                apps_[i]->Ask([] { Listen("switch", "s"), Listen("a", "-"), Listen("sensorStateChange", "e"); });
            }
            apps_[i]->Ask(Storm);
        }
        StartService();
    }

    // Waits until the keepers' stubs are there: at least the last one, or the first but one, that they register at the
    // news of it.
    void StartService()
    {
        service_.emplace(busAddress_);
        service_->Ask([generation = ++generation_] { Service::Serve(generation); });
        const char* const kind = generation_ % WAYS == EARLY ? "a" : "sensorStateChange";
        service_->Await(
            std::string(kind) + " " + kind + " " + kind + " " + kind, [kind] { return Service::ShowHeld(0, kind); });
    }

    void Restart()
    {
        const int way = generation_ % WAYS;
        if (way == STOPPED) {
            service_->Signal(SIGSTOP); // So that calls are under way.
        } else if (way == IN_ITS_EVENTS) {
            service_->Begin([] { Service::Flood(); });
            service_->Hears({"flooding"});
        } else if (way == CLEANLY) {
            service_->Ask(Service::Unserve);
        } else if (way == SLOWLY) { // Its last events find a keeper that does not answer for a while.
            apps_[0]->Ask(Peer::Hold);
            service_->Begin([] { return Service::CallAll(0, "switch"); });
        }
        service_->Kill();
        if (way == SLOWLY) {
            apps_[0]->Ask(Peer::Release);
        }
        StartService();
        for (size_t i = 0; i < KEEPERS; ++i) {
            ExpectLife(*apps_[i]);
        }
    }

    // A keeper has heard of the last service but one, then of its end, and nothing else.
    void ExpectLife(Helper& keeper) const
    {
        const auto told = [this](std::string text, const std::string& what) {
            return text.replace(text.find(what), what.size(), std::to_string(generation_ - 1));
        };
        const std::vector<std::string> removal = Removal();
        const std::string change = told("s switch " + DATA.text, "#00ff7f");
        const std::string event = told("e sensorStateChange " + INFOS, "com.example");
        std::vector<std::string> changes;
        std::vector<std::string> events{event}; // Which may have come to nothing.
        while (changes.empty() || changes.back() != removal[2] || events.back() != removal[3]) {
            const std::string line = keeper.Event();
            ASSERT_NE(line, "");
            std::vector<std::string>& heard = line[0] == 's' ? changes : events;
            if (heard.size() != 1 || line != heard[0]) { // The service may say it again.
                heard.push_back(line);
            }
        }
        EXPECT_EQ(changes, (std::vector<std::string>{change, removal[0], removal[1], removal[2]}));
        EXPECT_EQ(events, (std::vector<std::string>{event, removal[3]}));
    }

    // Ends the storm with one more service, which must get every stub that was ever made.
    void EndStorm()
    {
        for (Helper* app : apps_) {
            long answered = 0;
            long longest = 0;
            std::istringstream(app->Ask(Calm)) >> answered >> longest;
            answered_ += answered;
            longest_ = std::max(longest_, longest);
        }
        Restart();
        for (size_t i = 0; i < apps_.size() && !HasFailure(); ++i) {
            service_->Await(i < KEEPERS ? "a camera location sensorStateChange switch" : "camera location switch",
                [pid = apps_[i]->Pid()] { return Service::ShowHeld(pid); });
        }
        const std::string held = service_->Ask([] { return Service::ShowHeld(); });
        EXPECT_EQ(std::count(held.begin(), held.end(), ' '), 25); // Nobody else's.
    }

    // An app's threads and descriptors, once those that served former services are gone, and its heap's bytes in use.
    static std::array<long, 3> Count(Helper& app)
    {
        std::array<long, 3> last{};
        for (int same = 0; same < 100; ++same) {
            const long bytes = std::stol(app.Ask(CountHeap));
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

TEST_F(StormTest, NothingIsLostDoubledOrLeftHoweverOftenTheServiceEnds)
{
    const int restarts = FromEnvironment("STORM_RESTARTS", 12);
    const std::chrono::seconds least(FromEnvironment("STORM_SECONDS", 0));
    for (int i = 0; i < WAYS; ++i) {
        Restart();
    }
    EndStorm();
    ASSERT_FALSE(HasFailure());
    std::vector<std::array<long, 3>> before;
    for (Helper* app : apps_) {
        before.push_back(Count(*app));
        app->Ask(Storm);
    }
    const Clock::time_point begin = Clock::now();
    answered_ = 0;
    int done = 0;
    for (; !HasFailure() && (done < restarts || Clock::now() - begin < least); ++done) {
        Restart();
        if (done == restarts / 2) { // An app comes and goes, too.
            apps_.back()->Kill();
            apps_.back() = &Start();
            apps_.back()->Ask(Storm);
        }
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    EndStorm();
    const double rate = static_cast<double>(answered_) / seconds;
    std::printf("%d restarts in %.1f s; %ld calls answered, %.0f a second, the longest call took %ld ms\n", done,
        seconds, answered_, rate, longest_);
    EXPECT_LT(longest_, LONGEST_MS);
    EXPECT_GE(answered_, 1);
    for (size_t i = 0; i < apps_.size() - 1; ++i) {
        const auto [threads, descriptors, bytes] = Count(*apps_[i]);
        std::printf("app %zu: %d removals, %ld threads, then %ld; %ld descriptors, then %ld; %ld bytes, then %ld\n",
            i + 1, i < KEEPERS ? generation_ - 1 : 0, before[i][0], threads, before[i][1], descriptors, before[i][2],
            bytes);
        EXPECT_LE(threads, before[i][0] + LOADS);
        EXPECT_LE(descriptors, before[i][1] + 2 * LOADS); // Its own connections, and the service's.
        EXPECT_LE(bytes - before[i][2], MEBIBYTE);
    }
}

} // namespace
