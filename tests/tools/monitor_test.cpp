// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>

#include "tools_test.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* TAKE_SCREEN = "\033[?1049h\033[?25l";
constexpr const char* GIVE_SCREEN = "\033[?25h\033[?1049l";
const std::string END_OF_ROW = "\033[K\r\r\n";             // The terminal puts a CR of its own before each LF.
const std::string UNKNOWN = "unknown\033[0m" + END_OF_ROW; // In yellow.
const std::string OFF = "\nmicrophone  off" + END_OF_ROW + "location    off" + END_OF_ROW;

using MonitorTest = ToolsTest;

TEST_F(MonitorTest, ABoardShowsHowThingsAreWhatHappensAndWhatIsUnknown)
{
    StartService();
    Use("start camera com.example.chat 20010043");
    PseudoTerminal monitor({"env", "TERM=xterm", MONITOR}, busAddress_);
    monitor.Await("\033[32mcamera      on     com.example.chat (20010043)");
    monitor.Await(OFF);

    // A name that would change the terminal's colours.
    Use("start microphone evil\033[41m\x9b"
        "41m 7");
    monitor.Await("microphone  on     evil\\x1b[41m\\x9b41m (7)");
    monitor.Await("microphone  evil\\x1b[41m\\x9b41m (7) on" + END_OF_ROW);
    EXPECT_THAT(monitor.Bytes(), Not(HasSubstr("\033[41m")));
    Use("stop camera com.example.chat 20010043");
    monitor.Await("\ncamera      off" + END_OF_ROW);

    service_->Kill();
    monitor.Await("\033[33mThe state is unknown: the service is not there.");
    monitor.Await(
        "\033[33mcamera      " + UNKNOWN + "\033[33mmicrophone  " + UNKNOWN + "\033[33mlocation    " + UNKNOWN);
    StartService();
    monitor.Await("\ncamera      off" + END_OF_ROW + OFF.substr(1));
    daemon_->Kill();
    monitor.Await("The state is unknown: the service is not there.");
    service_->Signal(SIGKILL); // It may have ended with the bus.
    service_->AwaitEnd();
}

TEST_F(MonitorTest, ABoardFitsTheTerminalAndLeavesItAsItWas)
{
    StartService();
    PseudoTerminal monitor({"env", "TERM=xterm", MONITOR}, busAddress_);
    const tcflag_t modes = monitor.LocalModes();
    monitor.Await(OFF);
    EXPECT_EQ(monitor.LocalModes() & static_cast<tcflag_t>(ICANON | ECHO), 0U);
    monitor.Resize(9, 5);
    monitor.Await("\033[1mSENSOR  \033[0m" + END_OF_ROW + END_OF_ROW + "\033[2mq or Ctr\033[0m\033[K\033[J");
    monitor.Signal(SIGTERM);
    EXPECT_EQ(monitor.AwaitEnd(), 0);
    EXPECT_THAT(monitor.Bytes(), testing::EndsWith(GIVE_SCREEN));
    EXPECT_EQ(monitor.LocalModes(), modes);

    PseudoTerminal plain({"env", "TERM=xterm", "NO_COLOR=1", MONITOR}, busAddress_);
    plain.Await(OFF);
    EXPECT_THAT(plain.Bytes(), Not(testing::ContainsRegex("\033\\[[0-9;]*m")));
    plain.Type("q");
    EXPECT_EQ(plain.AwaitEnd(), 0);
}

TEST_F(MonitorTest, ABoardKeepsOffATerminalThatItIsNotInFrontOf)
{
    StartService();
    PseudoTerminal shell({"env", "TERM=xterm", "PS1=$ ", "bash", "--norc", "--noprofile", "-i"}, busAddress_);
    shell.Type("", {"$ "});
    shell.Type(MONITOR + " & echo began=$((40 + 2))\n", {"began=42"});
    AwaitLine(*service_, "event listener of process ");
    Use("start camera com.example.chat 5");
    shell.Type("jobs; echo alive=$((40 + 3))\n", {"Running", "alive=43"});
    EXPECT_THAT(shell.Bytes(), Not(HasSubstr(TAKE_SCREEN)));
    shell.Type("fg\n", {TAKE_SCREEN});
    shell.Await("camera      on     com.example.chat (5)");
    shell.Type("\x1a", {GIVE_SCREEN, "Stopped"});
    shell.Type("fg\n", {TAKE_SCREEN});
    shell.Type("q", {GIVE_SCREEN});
    shell.Type("echo code=$?; exit\n", {"code=0"});
    EXPECT_EQ(shell.AwaitEnd(), 0);
}

TEST_F(MonitorTest, JsonIsAnObjectALine)
{
    StartService();
    Use("start camera com.example.chat 5");
    Helper monitor({MONITOR, "--json"}, busAddress_);
    const auto next = [&monitor] { return nlohmann::json::parse(monitor.ReadLine()); };
    EXPECT_EQ(next()["event"], "service");
    const auto now = next();
    EXPECT_EQ(now["event"], "state");
    EXPECT_EQ(now["indicators"][0]["sensor"], "camera");
    EXPECT_EQ(now["uses"][0]["bundleName"], "com.example.chat");
    Use("start camera \"\xff 5");
    const auto use = next();
    EXPECT_EQ(use["event"], "use");
    EXPECT_EQ(use["uses"][0]["bundleName"], "\"\xef\xbf\xbd");
}

} // namespace
