// SPDX-License-Identifier: Apache-2.0
// Reports power events with the library loaded at run time, and one function of it found by name.
#include <dlfcn.h>

#include <iostream>
#include <string>
#include <vector>

#include "arguments.h"
#include "notify_power_event.h"
#include "parse.h"
#include "print.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples;

namespace {

constexpr const char* USAGE = R"(Usage: power_reporter [EVENT]...

Load the library and report power events, 0 or 1: first those of the command line, then one for each line of standard
input, until its end. Each result is a line on standard output. An event that cannot be read is named on standard error
and skipped. While the program runs, the library reports the last event again whenever the service comes back, if the
user that it runs as is 3036.

Options:
  -h, --help  print this and exit
  --version   print the version and exit

Exit status:
  0  every event was taken
  1  an event was refused or could not be read
  2  the command line is wrong, or the library could not be loaded
  4  standard output cannot be written
)";

enum ExitCode { EXIT_TAKEN = 0, EXIT_NOT_ALL = 1, EXIT_NO_LIBRARY = 2 };

constexpr const char* LIBRARY = "libqnl_privacy_indicator_service_intf.so";
constexpr const char* FUNCTION = "NotifyPowerEvent";

using Notify = decltype(&NotifyPowerEvent);

/** The library's function. Null, with a message on standard error, if it cannot be loaded. */
Notify LoadNotify()
{
    // Never unloaded: the library's threads may call it as long as the program lives.
    void* const library = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL);
    void* const function = library != nullptr ? dlsym(library, FUNCTION) : nullptr;
    if (function == nullptr) {
        Complain(dlerror());
    }
    return reinterpret_cast<Notify>(function);
}

/** Whether the event was taken. `place` is where `text` was found, for the message if it cannot be read. */
bool Report(Notify notify, const std::string& text, const std::string& place)
{
    try {
        const auto event = ParseNumber<int32_t>(text);
        const int32_t result = notify(event);
        PrintLine("power event " + std::to_string(event) + ": " + std::to_string(result));
        return result == 0;
    } catch (const ParseError& error) {
        Complain(place + ": " + error.what());
        return false;
    }
}

int Run(const std::vector<std::string>& arguments)
{
    if (PrintHelpOrVersion(arguments, USAGE)) {
        return EXIT_TAKEN;
    }
    const Arguments events(arguments, arguments.size(), {});
    const Notify notify = LoadNotify();
    if (notify == nullptr) {
        return EXIT_NO_LIBRARY;
    }
    bool isAllTaken = true;
    for (size_t i = 0; i < events.Count(); ++i) {
        isAllTaken &= Report(notify, events.Word(i, "EVENT"), "event " + std::to_string(i + 1));
    }
    std::string line;
    for (int number = 1; std::getline(std::cin, line); ++number) {
        isAllTaken &= Report(notify, line, "line " + std::to_string(number));
    }
    return isAllTaken ? EXIT_TAKEN : EXIT_NOT_ALL;
}

} // namespace

int main(int argc, char** argv) { return RunTool(argc, argv, Run); }
