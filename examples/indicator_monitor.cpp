// SPDX-License-Identifier: Apache-2.0
// An app on the client: shows every switch of an indicator and every use of a sensor as it happens, a line each, until
// SIGINT or SIGTERM. That the service may come and go meanwhile is the client's business.
#include <unistd.h>

#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "arguments.h"
#include "clock_time.h"
#include "end_signals.h"
#include "parse.h"
#include "print.h"
#include "privacy_indicator_client.h"
#include "system_ability.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples;

namespace {

constexpr const char* USAGE = R"(usage: indicator_monitor

Shows every switch of an indicator and every use of a sensor as it happens, a line each on standard output, until SIGINT
or SIGTERM. Without the service it waits for it.

Exit codes: 0 it was ended, 1 there is no system ability manager, 2 the command line is wrong.
)";

enum ExitCode { EXIT_ENDED = 0, EXIT_NO_MANAGER = 1, EXIT_USAGE = 2 };

std::string StateText(bool isOn)
{
    static const bool isColored = isatty(STDOUT_FILENO) == 1;
    const std::string text = isOn ? "on" : "off";
    return isColored ? (isOn ? "\033[32m" : "\033[31m") + text + "\033[0m" : text;
}

class Monitor : public Indicator::IndicatorSwitchListener, public Privacy::PrivacyEventListener {
public:
    void OnSwitchChanged(const Indicator::IndicatorData& data) override
    {
        PrintLine(ClockTime() + "  indicator  " + NameOf(data.privacySensorType) + " " +
                  StateText(data.state == Indicator::IndicatorState::ON));
    }

    // Of the records of one event, in one line: who uses what, or does no more. Nobody by name means everybody.
    void OnPrivacyEventChanged(
        const std::string& /* dataType */, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) override
    {
        std::string line = ClockTime() + "  use       ";
        for (const auto& info : infos) {
            line += &info == &infos.front() ? " " : ", ";
            line += NameOf(static_cast<PrivacySensorType>(info.privacySensorType));
            line += info.bundleName.empty() ? "" : " by " + info.bundleName;
            line += " " + StateText(info.privacyAccessState == ACCESS_BEGUN);
        }
        PrintLine(line);
    }

private:
    static constexpr int32_t ACCESS_BEGUN = 1; // What the service calls it.
};

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> line(argv + 1, argv + argc);
    if (PrintHelp(line, USAGE)) {
        return EXIT_ENDED;
    }
    if (!line.empty()) {
        Complain("there is nothing to say to it but --help");
        return EXIT_USAGE;
    }
    const sigset_t endSignals = BlockEndSignals();
    if (FindManager() == nullptr) {
        return EXIT_NO_MANAGER;
    }
    auto& client = PrivacyIndicatorClient::GetInstance();
    const auto monitor = std::make_shared<Monitor>();
    const int32_t ofSwitch = client.RegisterPrivacyIndicatorSwitchListener(monitor);
    const int32_t ofEvent = client.RegisterPrivacyEventListener("sensorStateChange", monitor);
    if (ofSwitch != 0 || ofEvent != 0) {
        Complain("the service takes no listener for now: " + std::to_string(ofSwitch != 0 ? ofSwitch : ofEvent));
    }
    PrintLine("listening");

    int signal = 0;
    sigwait(&endSignals, &signal);
    client.UnregisterPrivacyIndicatorSwitchListener(monitor);
    client.UnregisterPrivacyEventListener(monitor);
    return EXIT_ENDED;
}
