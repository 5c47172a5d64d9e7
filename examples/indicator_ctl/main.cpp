// SPDX-License-Identifier: Apache-2.0
// Sends one request to the privacy indicator service and prints what comes back, or watches what it tells listeners.
#include <csignal>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "arguments.h"
#include "end_signals.h"
#include "print.h"
#include "system_ability.h"
#include "watcher.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples;

namespace {

constexpr const char* USAGE = R"(usage: indicator_ctl COMMAND [ARGUMENT...]

Sends one request to the privacy indicator service on the bus that OHOS_BUS_ADDRESS names, and prints the records that
come back, a line each. SENSOR is camera, microphone or location; MS is milliseconds since the epoch.

  on SENSOR [X Y WIDTH HEIGHT ANIMATION]   show the sensor's indicator; what is left out is 0
  off SENSOR [ANIMATION]                   take it off the screen
  active                                   the indicators that are on
  events [SENSOR] [--user ID]              who used which sensor, and when; of every user, or of one
  usage [--app BUNDLE]... [--group SENSOR]... [--from MS] [--to MS]
                                           how long; of all, or only of those named, or within that time
  power 0|1                                tell the service of a power event
  watch                                    register a listener of each kind and print what they are told, until SIGINT
                                           or SIGTERM; when the service is gone, wait until it is back

Exit codes: 0 done, 1 the service refused (its code is on standard error), 2 wrong usage, 3 no bus, no service, or no
answer from it.
)";

enum ExitCode { EXIT_DONE = 0, EXIT_SERVICE_REFUSED = 1, EXIT_USAGE = 2, EXIT_NO_SERVICE = 3 };

using Service = PrivacyIndicatorServiceIntf;

/** Sends a request and prints its records. Returns the request's result. */
using Request = std::function<int32_t(Service&)>;

constexpr int32_t EVERY_USER = -1;

int32_t SensorAt(const Arguments& arguments, size_t index)
{
    return static_cast<int32_t>(ParseSensor(arguments.Word(index, "SENSOR")));
}

template <typename Record>
void PrintAll(const std::vector<Record>& records)
{
    for (const auto& record : records) {
        PrintLine(record.ToString());
    }
}

Request ParseOn(const Arguments& arguments)
{
    Indicator::IndicatorPosition position;
    Indicator::IndicatorSize size;
    const int32_t sensor = SensorAt(arguments, 0);
    position.positionX = arguments.NumberAt(1, 0.0F);
    position.positionY = arguments.NumberAt(2, 0.0F);
    size.width = arguments.NumberAt(3, 0.0F);
    size.height = arguments.NumberAt(4, 0.0F);
    const int32_t animation = arguments.NumberAt(5, 0);
    return [=](Service& service) { return service.TurnOnIndicator(sensor, position, size, animation); };
}

Request ParseOff(const Arguments& arguments)
{
    const int32_t sensor = SensorAt(arguments, 0);
    const int32_t animation = arguments.NumberAt(1, 0);
    return [=](Service& service) { return service.TurnOffIndicator(sensor, animation); };
}

Request ParseActive(const Arguments& /* arguments */)
{
    return [](Service& service) {
        std::vector<Indicator::IndicatorData> indicators;
        const int32_t result = service.GetActiveIndicators(indicators);
        PrintAll(indicators);
        return result;
    };
}

Request ParseEvents(const Arguments& arguments)
{
    const bool isOfOneSensor = arguments.Count() > 0;
    const int32_t sensor = isOfOneSensor ? SensorAt(arguments, 0) : 0;
    const int32_t user = arguments.NumberOf("--user", EVERY_USER);
    return [=](Service& service) {
        std::vector<Privacy::PrivacyEventDetail> details;
        const int32_t result = isOfOneSensor ? service.GetPrivacyEventDetailsByPrivacySensorType(user, sensor, details)
                                             : service.GetPrivacyEventDetails(user, details);
        PrintAll(details);
        return result;
    };
}

Request ParseUsage(const Arguments& arguments)
{
    Record::PermissionUsageDurationQuery query;
    query.SetBundleNames(arguments.Values("--app"));
    query.SetPermissionGroups(arguments.Values("--group"));
    query.SetBeginTimestamp(arguments.NumberOf("--from", int64_t{0}));
    query.SetEndTimestamp(arguments.NumberOf("--to", int64_t{0}));
    return [=](Service& service) {
        std::vector<Record::PermissionUsageDuration> durations;
        const int32_t result = service.GetPermissionUsageDurationSummary(query, durations);
        PrintAll(durations);
        return result;
    };
}

Request ParsePower(const Arguments& arguments)
{
    const auto event = ParseNumber<int32_t>(arguments.Word(0, "0 or 1"));
    return [=](Service& service) { return service.NotifyPowerEvent(event); };
}

struct Command {
    size_t mostWords;
    std::vector<std::string> options;
    Request (*parse)(const Arguments&);
};

/** What the command line asks for; empty for `watch`. Throws ParseError. */
Request ParseCommand(const std::vector<std::string>& line)
{
    const std::map<std::string, Command> commands{
        {"on", {6, {}, ParseOn}},
        {"off", {2, {}, ParseOff}},
        {"active", {0, {}, ParseActive}},
        {"events", {1, {"--user"}, ParseEvents}},
        {"usage", {0, {"--app", "--group", "--from", "--to"}, ParseUsage}},
        {"power", {1, {}, ParsePower}},
        {"watch", {0, {}, [](const Arguments&) { return Request(); }}},
    };
    if (line.empty()) {
        throw ParseError("COMMAND is missing");
    }
    const auto command = commands.find(line[0]);
    if (command == commands.end()) {
        throw ParseError("there is no command \"" + line[0] + "\"");
    }
    const auto& [mostWords, options, parse] = command->second;
    return parse(Arguments({line.begin() + 1, line.end()}, mostWords, options));
}

int ExitCodeOf(int32_t result)
{
    switch (result) {
    case 0:
        return EXIT_DONE;
    case ERR_DEAD_OBJECT:
    case ERR_TIMED_OUT:
    case ERR_REFUSED:
        Complain("the service did not answer: " + std::to_string(result));
        return EXIT_NO_SERVICE;
    default:
        Complain("the service refused: " + std::to_string(result));
        return EXIT_SERVICE_REFUSED;
    }
}

int32_t Watch(const sptr<ISystemAbilityManager>& manager, const sptr<Service>& service)
{
    const sigset_t endSignals = BlockEndSignals();
    const sptr<Watcher> watcher(new Watcher(manager));
    const int32_t result = watcher->Start(service);
    if (result != 0) {
        return result;
    }
    int signal = 0;
    sigwait(&endSignals, &signal);
    return watcher->Stop();
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> line(argv + 1, argv + argc);
    if (PrintHelp(line, USAGE)) {
        return EXIT_DONE;
    }
    Request request;
    try {
        request = ParseCommand(line);
    } catch (const ParseError& error) {
        Complain(std::string(error.what()) + " (--help tells more)");
        return EXIT_USAGE;
    }
    const sptr<ISystemAbilityManager> manager = FindManager();
    if (manager == nullptr) {
        return EXIT_NO_SERVICE;
    }
    const sptr<Service> service = FindService(*manager);
    if (service == nullptr) {
        Complain("the service is not there");
        return EXIT_NO_SERVICE;
    }
    return ExitCodeOf(request ? request(*service) : Watch(manager, service));
}
