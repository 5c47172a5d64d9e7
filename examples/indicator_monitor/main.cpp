// SPDX-License-Identifier: Apache-2.0
// An app on the client: shows which sensors are used, and by which applications. The client copes with the service's
// coming and going.
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "arguments.h"
#include "board.h"
#include "end_signals.h"
#include "feed.h"
#include "line_views.h"
#include "local_time.h"
#include "print.h"
#include "privacy_indicator_client.h"
#include "system_ability.h"
#include "terminal.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples;

namespace {

constexpr const char* USAGE = R"(Usage: indicator_monitor [OPTION]...

Show which sensors are in use, and by which applications. On a terminal that is a board: a row for each sensor, and the
last events; q or Ctrl-C ends it. Otherwise it is a line for each event, until SIGINT or SIGTERM. Without the service it
waits for it.

Options:
  --json       print a JSON object for each event, and for the state whenever the service has come
  --lines      print a line for each event on a terminal, too
  --user=ID    of which user the uses under way are asked for; of all users if left out (-1)
  -h, --help   print this and exit
  --version    print the version and exit

Environment:
  OHOS_BUS_ADDRESS  where the bus is that the service is on
  NO_COLOR          if it is set, the board has no colours
  HILOG_LEVEL       from which level on the library's log is printed: D, I, W, E, F or OFF; W if it is not set, and OFF
                    under the board

Exit status:
  0  it was ended
  1  there is no system ability manager, or no descriptor or thread is left
  2  the command line is wrong
  4  standard output cannot be written
)";

constexpr int EXIT_ENDED = 0;

constexpr int32_t ALL_USERS = -1;
constexpr int TICK = 1000; // Milliseconds after which the board is drawn anew.

constexpr const char* EMULATOR =
    "this is the emulator's variant of the library, through which no request reaches the service; to run on the "
    "device's, unset LD_LIBRARY_PATH";

bool IsOnDeviceVariant()
{
    bool isCalled = false;
    PrivacyIndicatorClient::GetInstance().WithSystemAbilityProxy([&isCalled](const auto&) { isCalled = true; });
    return isCalled;
}

/**
 * Blocks the signals that end the program and, under a board, those that concern the terminal. To be called before
 * threads are started, which inherit that. Returns a descriptor to read them from.
 */
int OpenSignals(bool isBoard)
{
    const std::vector<int> ofTerminal{SIGHUP, SIGQUIT, SIGTSTP, SIGCONT, SIGWINCH, SIGTTIN, SIGTTOU};
    return OpenEndSignals(isBoard ? ofTerminal : std::vector<int>());
}

/** The next signal. */
int ReadSignal(int signals)
{
    signalfd_siginfo info{};
    return read(signals, &info, sizeof(info)) == sizeof(info) ? static_cast<int>(info.ssi_signo) : 0;
}

/** Returns when the program is to end. */
void ShowLines(Feed& feed, View& view, int signals)
{
    std::array<pollfd, 2> wait{{{signals, POLLIN, 0}, {feed.GetFd(), POLLIN, 0}}};
    while (wait[0].revents == 0) {
        poll(wait.data(), wait.size(), -1);
        feed.ShowIn(view);
    }
}

void ShowBoard(Feed& feed, Board& board, int signals)
{
    Terminal terminal;
    for (bool isEnd = false; !isEnd;) {
        if (terminal.Enter()) {
            isEnd = !Terminal::Draw(board.Lines(Now(), Terminal::GetSize().rows));
        }
        std::array<pollfd, 3> wait{{{signals, POLLIN, 0}, {feed.GetFd(), POLLIN, 0}, {terminal.GetKeyFd(), POLLIN, 0}}};
        poll(wait.data(), wait.size(), TICK);
        feed.ShowIn(board);
        isEnd = isEnd || terminal.ReadKey() == 'q';
        switch (wait[0].revents != 0 ? ReadSignal(signals) : 0) {
        case SIGINT:
        case SIGTERM:
        case SIGHUP:
        case SIGQUIT:
            isEnd = true;
            break;
        case SIGTSTP:
            terminal.Leave();
            std::raise(SIGSTOP); // Until the shell lets it go on.
            break;
        case SIGCONT:
            terminal.Leave(); // The shell may have had the screen meanwhile: it is taken anew.
            break;
        default:
            break; // Another size, or none.
        }
    }
}

// Returns the exit code. Throws std::system_error.
int Show(bool isJson, bool isBoard, int32_t user)
{
    const int signals = OpenSignals(isBoard);
    const sptr<ISystemAbilityManager> manager = FindManager();
    if (manager == nullptr) {
        return EXIT_FAILED;
    }
    const bool isReachable = IsOnDeviceVariant();
    if (!isReachable) {
        Complain(EMULATOR);
    }
    const sptr<Feed> feed(new Feed(user, isReachable && (isJson || isBoard)));
    feed->Start(*manager);
    if (isBoard) {
        Board board(isReachable ? "" : EMULATOR);
        ShowBoard(*feed, board, signals);
    } else {
        const std::unique_ptr<View> view(isJson ? std::unique_ptr<View>(new JsonView()) : std::make_unique<LineView>());
        ShowLines(*feed, *view, signals);
    }
    if (!feed->Stop(*manager)) {
        _exit(EXIT_ENDED);
    }
    return EXIT_ENDED;
}

int Run(const std::vector<std::string>& line)
{
    if (PrintHelpOrVersion(line, USAGE)) {
        return EXIT_ENDED;
    }
    const Arguments arguments(line, 0, {"--user"}, {"--json", "--lines"});
    const bool isJson = arguments.Has("--json");
    const bool isBoard = !isJson && !arguments.Has("--lines") && Terminal::IsThere();
    LogQuietly(isBoard && isatty(STDERR_FILENO) == 1 ? "OFF" : "W");
    return Show(isJson, isBoard, arguments.NumberOf("--user", ALL_USERS));
}

} // namespace

int main(int argc, char** argv) { return RunTool(argc, argv, Run); }
