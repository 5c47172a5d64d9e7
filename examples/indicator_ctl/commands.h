// SPDX-License-Identifier: Apache-2.0
#ifndef COMMANDS_H
#define COMMANDS_H

#include <functional>
#include <string>
#include <vector>

#include "arguments.h"
#include "if_system_ability_manager.h"
#include "output.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** The service that a command is for, and the manager that it was found with. */
struct Target {
    sptr<ISystemAbilityManager> manager;
    sptr<PrivacyIndicatorServiceIntf> service;
};

enum ExitCode { EXIT_DONE = 0, EXIT_REFUSED = 1, EXIT_NO_SERVICE = 3 };

/** Carries a command out and prints its result. Returns the exit code. */
using Action = std::function<ExitCode(const Target&)>;

/** A command of the command line, with its help. */
struct Command {
    std::string name;
    std::string arguments;
    std::string summary; // Empty for a command that the help leaves out.
    std::string details; // Lines of help for the command's own options.
    size_t mostWords;
    std::vector<std::string> options; // Those with a value.
    Action (*parse)(const Arguments&, Format);
};

const std::vector<Command>& Commands();

/** The help for all commands. */
std::string UsageOfAll();

/** The help for one command. */
std::string UsageOf(const Command& command);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // COMMANDS_H
