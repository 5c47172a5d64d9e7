// SPDX-License-Identifier: Apache-2.0
#include "commands.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

constexpr size_t SUMMARY_COLUMN = 42; // Beyond the longest command with its arguments.

constexpr const char* COMMON_OPTIONS =
    R"(  --json          print a JSON object for each record, a line each, instead of a table
  --raw           print the records' own text, a line each, instead of a table
  --wait          wait for a service that is not there yet
  -h, --help      print this and exit
  --version       print the version and exit
)";

constexpr const char* END = R"(
SENSOR is camera, microphone or location; MS is milliseconds since the epoch. The bus is the one that OHOS_BUS_ADDRESS
names. HILOG_LEVEL is the level from which on the library's log is printed: D, I, W, E, F or OFF; W if it is not set.

Exit status:
  0  done
  1  the service refused; or it is not as it should be (verify)
  2  the command line is wrong
  3  there is no bus, no service, or no answer from it
  4  standard output cannot be written
)";

} // namespace

std::string UsageOfAll()
{
    std::string text = R"(Usage: indicator_ctl COMMAND [ARGUMENT]... [OPTION]...

Send a request to the privacy indicator service and print what comes back; or watch it, or verify it.

Commands:
)";
    for (const auto& command : Commands()) {
        if (!command.summary.empty()) {
            const std::string words = "  " + command.name + " " + command.arguments;
            text += words + std::string(SUMMARY_COLUMN - words.size(), ' ') + command.summary + "\n";
        }
    }
    text += "\nOptions:\n";
    for (const auto& command : Commands()) {
        text += command.details;
    }
    return text + COMMON_OPTIONS + END;
}

std::string UsageOf(const Command& command)
{
    const std::string arguments = command.arguments.empty() ? "" : " " + command.arguments;
    return "Usage: indicator_ctl " + command.name + arguments + " [OPTION]...\n\n" + command.name + ": " +
           command.summary + ".\n\nOptions:\n" + command.details + COMMON_OPTIONS + END;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
