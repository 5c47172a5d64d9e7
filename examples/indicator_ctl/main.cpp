// SPDX-License-Identifier: Apache-2.0
// Sends one request to the privacy indicator service and prints what comes back, or watches or verifies the service.
#include <algorithm>
#include <string>
#include <vector>

#include "arguments.h"
#include "commands.h"
#include "print.h"
#include "system_ability.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples;

namespace {

/** What the command line asks for. */
struct Call {
    Action action;
    bool waitsForService;
};

/** Null if there is no command on the command line. Throws ParseError. */
const Command* FindCommand(const std::vector<std::string>& line)
{
    const auto name =
        std::find_if(line.begin(), line.end(), [](const std::string& word) { return word.compare(0, 1, "-") != 0; });
    if (name == line.end()) {
        return nullptr;
    }
    const auto& commands = Commands();
    const auto command =
        std::find_if(commands.begin(), commands.end(), [&name](const Command& each) { return each.name == *name; });
    if (command == commands.end()) {
        throw ParseError("there is no command \"" + *name + "\"");
    }
    return &*command;
}

Call ParseCall(const Command& command, std::vector<std::string> line)
{
    line.erase(std::find(line.begin(), line.end(), command.name));
    const Arguments arguments(line, command.mostWords, command.options, {"--json", "--raw", "--wait"});
    if (arguments.Has("--json") && arguments.Has("--raw")) {
        throw ParseError("--json and --raw exclude each other");
    }
    const Format format = arguments.Has("--json") ? Format::JSON : arguments.Has("--raw") ? Format::RAW : Format::TABLE;
    return {command.parse(arguments, format), arguments.Has("--wait")};
}

ExitCode Send(const Call& call)
{
    Target target;
    target.manager = FindManager();
    if (target.manager == nullptr) {
        return EXIT_NO_SERVICE;
    }
    target.service = call.waitsForService ? AwaitService(*target.manager) : FindService(*target.manager);
    if (target.service == nullptr) {
        Complain("the service is not there");
        return EXIT_NO_SERVICE;
    }
    return call.action(target);
}

int Run(const std::vector<std::string>& line)
{
    LogQuietly();
    const Command* const command = FindCommand(line);
    if (PrintHelpOrVersion(line, command == nullptr ? UsageOfAll() : UsageOf(*command))) {
        return EXIT_DONE;
    }
    if (command == nullptr) {
        throw ParseError("COMMAND is missing");
    }
    return Send(ParseCall(*command, line));
}

} // namespace

int main(int argc, char** argv) { return RunTool(argc, argv, Run); }
