// SPDX-License-Identifier: Apache-2.0
#include "commands.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "end_signals.h"
#include "listener_process.h"
#include "parse.h"
#include "print.h"
#include "verify.h"
#include "watcher.h"
#include "words.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

constexpr int32_t EVERY_USER = -1;

// The action that makes `request`, and names its result on standard error if that is not 0.
Action Requesting(Format format, const std::function<int32_t(const Target&)>& request)
{
    return [=](const Target& target) {
        const int32_t result = request(target);
        if (result == 0) {
            return EXIT_DONE;
        }
        const std::string text = format == Format::RAW ? std::to_string(result) : ResultText(result);
        if (target.service->AsObject()->IsObjectDead() || result == ERR_TIMED_OUT || result == ECONNREFUSED) {
            Complain("the service did not answer: " + text);
            return EXIT_NO_SERVICE;
        }
        Complain("the service refused: " + text);
        return EXIT_REFUSED;
    };
}

int32_t SensorAt(const Arguments& arguments, size_t index)
{
    return static_cast<int32_t>(ParseSensor(arguments.Word(index, "SENSOR")));
}

Action ParseOn(const Arguments& arguments, Format format)
{
    Indicator::IndicatorPosition position;
    Indicator::IndicatorSize size;
    const int32_t sensor = SensorAt(arguments, 0);
    position.positionX = arguments.NumberAt(1, 0.0F);
    position.positionY = arguments.NumberAt(2, 0.0F);
    size.width = arguments.NumberAt(3, 0.0F);
    size.height = arguments.NumberAt(4, 0.0F);
    const int32_t animation = arguments.NumberAt(5, 0);
    return Requesting(format,
        [=](const Target& target) { return target.service->TurnOnIndicator(sensor, position, size, animation); });
}

Action ParseOff(const Arguments& arguments, Format format)
{
    const int32_t sensor = SensorAt(arguments, 0);
    const int32_t animation = arguments.NumberAt(1, 0);
    return Requesting(
        format, [=](const Target& target) { return target.service->TurnOffIndicator(sensor, animation); });
}

// Prints the records that `query` appends, also those before a failure.
template <typename Record>
Action PrintQuery(Format format, std::function<int32_t(PrivacyIndicatorServiceIntf&, std::vector<Record>&)> query)
{
    return Requesting(format, [=](const Target& target) {
        std::vector<Record> records;
        const int32_t result = query(*target.service, records);
        if (result == 0 || !records.empty()) {
            PrintRecords(records, format);
        }
        return result;
    });
}

Action ParseActive(const Arguments& /* arguments */, Format format)
{
    return PrintQuery<Indicator::IndicatorData>(
        format, [](auto& service, auto& indicators) { return service.GetActiveIndicators(indicators); });
}

Action ParseEvents(const Arguments& arguments, Format format)
{
    const bool isOfOneSensor = arguments.Count() > 0;
    const int32_t sensor = isOfOneSensor ? SensorAt(arguments, 0) : 0;
    const int32_t user = arguments.NumberOf("--user", EVERY_USER);
    return PrintQuery<Privacy::PrivacyEventDetail>(format, [=](auto& service, auto& details) {
        return isOfOneSensor ? service.GetPrivacyEventDetailsByPrivacySensorType(user, sensor, details)
                             : service.GetPrivacyEventDetails(user, details);
    });
}

Action ParseUsage(const Arguments& arguments, Format format)
{
    Record::PermissionUsageDurationQuery query;
    query.SetBundleNames(arguments.Values("--app"));
    query.SetPermissionGroups(arguments.Values("--group"));
    query.SetBeginTimestamp(arguments.NumberOf("--from", int64_t{0}));
    query.SetEndTimestamp(arguments.NumberOf("--to", int64_t{0}));
    return PrintQuery<Record::PermissionUsageDuration>(format,
        [=](auto& service, auto& durations) { return service.GetPermissionUsageDurationSummary(query, durations); });
}

Action ParsePower(const Arguments& arguments, Format format)
{
    const auto event = ParseNumber<int32_t>(arguments.Word(0, "EVENT"));
    return Requesting(format, [=](const Target& target) { return target.service->NotifyPowerEvent(event); });
}

Action ParseWatch(const Arguments& /* arguments */, Format format)
{
    if (format == Format::JSON) {
        throw ParseError("watch has no --json: indicator_monitor --json prints the same events");
    }
    return Requesting(format, [=](const Target& target) {
        constexpr timespec NEXT_TRY{2, 0};
        constexpr int BACK = SIGUSR1;
        const sigset_t signals = BlockEndSignals({BACK});
        const sptr<Watcher> watcher(new Watcher(
            target.manager, [=](const auto& data) { PrintSwitch(data, format); },
            [=](const auto& dataType, const auto& infos) { PrintEvent(dataType, infos, format); },
            [=] { kill(getpid(), BACK); }));
        const int32_t result = watcher->Start(target.service);
        if (result != 0) {
            return result;
        }
        for (int signal = 0; signal != SIGINT && signal != SIGTERM;
             signal = sigtimedwait(&signals, nullptr, &NEXT_TRY)) {
            watcher->Attach();
        }
        return watcher->Stop();
    });
}

Action ParseVerify(const Arguments& /* arguments */, Format format)
{
    return [=](const Target& target) { return Verify(target.service->AsObject(), format) ? EXIT_DONE : EXIT_REFUSED; };
}

Action ParseHoldListeners(const Arguments& arguments, Format /* format */)
{
    const auto count = ParseNumber<size_t>(arguments.Word(0, "COUNT"));
    return [=](const Target& target) -> ExitCode { HoldListeners(target.service->AsObject(), count); };
}

} // namespace

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands{
        {"on", "SENSOR [X Y WIDTH HEIGHT ANIMATION]", "show the sensor's indicator; what is left out is 0", "", 6, {},
            ParseOn},
        {"off", "SENSOR [ANIMATION]", "take it off the screen", "", 2, {}, ParseOff},
        {"active", "", "print the indicators that are on", "", 0, {}, ParseActive},
        {"events", "[SENSOR]", "print who used which sensor, and when",
            "  --user=ID       of this user's applications only (events)\n", 1, {"--user"}, ParseEvents},
        {"usage", "", "print how long applications used the sensors",
            "  --app=NAME      of this application only; may be given repeatedly (usage)\n"
            "  --group=SENSOR  of this sensor only; may be given repeatedly (usage)\n"
            "  --from=MS       from this time on (usage)\n"
            "  --to=MS         up to this time (usage)\n",
            0, {"--app", "--group", "--from", "--to"}, ParseUsage},
        {"power", "EVENT", "report the power event 0 or 1", "", 1, {}, ParsePower},
        {"watch", "", "print what listeners are called with, until SIGINT or SIGTERM", "", 0, {}, ParseWatch},
        {"verify", "", "check that the service keeps to the contract, and print each check", "", 0, {}, ParseVerify},
        {HOLD_LISTENERS, "COUNT", "", "", 1, {}, ParseHoldListeners}, // Not in the help: verify starts it.
    };
    return commands;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
