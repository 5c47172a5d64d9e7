// SPDX-License-Identifier: Apache-2.0
// The privacy indicator service as a program of its own.
#include <poll.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>
#include <vector>

#include "arguments.h"
#include "end_signals.h"
#include "file_watch.h"
#include "in_memory_service.h"
#include "print.h"
#include "sensor_input.h"
#include "system_ability.h"
#include "system_ability_status_change_stub.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples;

namespace {

constexpr const char* USAGE = R"(Usage: indicator_service [OPTION]...

Be the privacy indicator service, system ability 66090, and keep everything in memory, until SIGINT or SIGTERM. "ready"
on standard output says that callers can find it. The registrations of listeners and the power events are printed there
too, as long as they are read. When the bus ends it waits for the next one.

Standard input says which application uses which sensor (camera, microphone or location), in lines such as
"start camera com.example.chat 20010043" and "stop camera com.example.chat 20010043". A line that cannot be read is
named on standard error, with its number, and skipped. The end of the input does not end the service. In the background
of a terminal it reads nothing.

Options:
  --watch=SENSOR=PATH  count the sensor as in use, too, while a process has that file open, such as
                       --watch=camera=/dev/video0; may be given repeatedly. Which files the processes of other users
                       have open, only root sees
  -h, --help           print this and exit
  --version            print the version and exit

Environment:
  OHOS_BUS_ADDRESS  where the bus is that it is the service on
  HILOG_LEVEL       from which level on the library's log is printed: D, I, W, E, F or OFF; W if it is not set

Exit status:
  0  it was ended by a signal
  1  it cannot be the service, or not any more, or cannot watch a file
  2  the command line is wrong
  4  standard output cannot be written
)";

constexpr int FOREGROUND_TICK = 1000; // Milliseconds after which a process in the background looks where it is.

enum ExitCode { EXIT_ENDED = 0, EXIT_NO_SERVICE = 1 };

/** Ends the program, as SIGTERM does, once another process is the service: the bus ended, and came back. */
class LossListener : public SystemAbilityStatusChangeStub {
public:
    LossListener(const sptr<ISystemAbilityManager>& manager, const sptr<IRemoteObject>& service)
        : manager_(manager), service_(service)
    {}

    void OnAddSystemAbility(int32_t systemAbilityId, const std::string& /* deviceId */) override
    {
        const sptr<IRemoteObject> service = manager_->CheckSystemAbility(systemAbilityId);
        if (service != nullptr && service != service_) {
            kill(getpid(), SIGTERM);
        }
    }

    void OnRemoveSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */) override {}

private:
    const sptr<ISystemAbilityManager> manager_;
    const sptr<IRemoteObject> service_;
};

bool Publish(const sptr<ISystemAbilityManager>& manager, const sptr<Testing::InMemoryService>& service)
{
    const int32_t error = manager->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, service);
    if (error == 0) {
        return manager->SubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, new LossListener(manager, service)) == 0;
    }
    const std::string number = std::to_string(PRIVACY_INDICATOR_SA_ID);
    if (error == ERR_DEAD_OBJECT) {
        Complain("no bus answers at OHOS_BUS_ADDRESS");
    } else if (manager->CheckSystemAbility(PRIVACY_INDICATOR_SA_ID) != nullptr) {
        Complain("another process is system ability " + number + " already");
    } else {
        Complain("this user may not be system ability " + number + ": error " + std::to_string(error));
    }
    return false;
}

// In the background, what is typed on the terminal is for others, and reading it would stop this process.
bool MayReadInput()
{
    const pid_t foreground = tcgetpgrp(STDIN_FILENO); // -1 if it is no terminal.
    return foreground == -1 || foreground == getpgrp();
}

// Takes sensor use from standard input and the files until `ended` can be read.
void Serve(Testing::InMemoryService& service, FileWatch& files, int ended)
{
    SensorInput input(STDIN_FILENO, service);
    std::array<pollfd, 3> wait{{{ended, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}, {files.GetFd(), POLLIN, 0}}};
    for (bool isAtEnd = false; wait[0].revents == 0;) {
        const bool mayRead = MayReadInput();
        wait[1].fd = mayRead && !isAtEnd ? STDIN_FILENO : -1;
        const int count = poll(wait.data(), wait.size(), mayRead ? -1 : FOREGROUND_TICK);
        if (count > 0 && wait[1].revents != 0 && MayReadInput()) {
            isAtEnd = !input.Read();
        }
        if (count > 0 && wait[2].revents != 0) {
            files.Look();
        }
    }
}

std::vector<SensorFile> ParseFiles(const std::vector<std::string>& line)
{
    std::vector<SensorFile> files;
    const Arguments arguments(line, 0, {"--watch"});
    for (const auto& value : arguments.Values("--watch")) {
        files.push_back(ParseSensorFile(value));
    }
    return files;
}

int Run(const std::vector<std::string>& line)
{
    if (PrintHelpOrVersion(line, USAGE)) {
        return EXIT_ENDED;
    }
    LogQuietly();
    const std::vector<SensorFile> sensorFiles = ParseFiles(line);
    std::signal(SIGPIPE, SIG_IGN); // Callers are served whether or not anyone reads what this prints.
    const int ended = OpenEndSignals();
    const sptr<ISystemAbilityManager> manager = FindManager();
    const sptr<Testing::InMemoryService> service(new Testing::InMemoryService({PrintLineIfRead, Complain}));
    FileWatch files(sensorFiles, *service);
    if (manager == nullptr || !Publish(manager, service)) {
        return EXIT_NO_SERVICE;
    }
    PrintLineIfRead("ready");

    Serve(*service, files, ended);

    service->Close(); // First, so that no event comes after the notice of the service's end.
    if (manager->RemoveSystemAbility(PRIVACY_INDICATOR_SA_ID) == ERR_INVALID_VALUE) {
        Complain("another process is the service now");
        return EXIT_NO_SERVICE;
    }
    return EXIT_ENDED;
}

} // namespace

int main(int argc, char** argv) { return RunTool(argc, argv, Run); }
