// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "local_time.h"
#include "tools_test.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

const std::string TIME = "20[0-9-]+ [0-9]+:[0-9]+:[0-9]+";

/** Requests to a service in which one application uses the camera, and one has used it. */
class CtlTest : public ToolsTest {
protected:
    CtlTest()
    {
        StartService();
        Use("start camera com.example.chat 20010043");
        Use("stop camera com.example.chat 20010043");
        Use("start camera com.example.maps 5");
        EXPECT_THAT(Run("until " + CTL + " events | grep -q maps; do :; done"), HasSubstr("= 0"));
    }
};

TEST_F(CtlTest, TablesHaveWordsAndLocalTimes)
{
    EXPECT_EQ(Run(CTL + " on microphone -1.5 2 30 40 5"), "= 0\n");
    EXPECT_EQ(Run(CTL + " active"), "SENSOR      STATE  POSITION  SIZE     COLOUR   ANIMATION\n"
                                    "camera      on     0, 0      0 x 0    #00ff00  0\n"
                                    "microphone  on     -1.5, 2   30 x 40  #00ff00  5\n"
                                    "= 0\n");
    EXPECT_THAT(Run(CTL + " usage --app=com.example.chat"),
        MatchesRegex("APPLICATION       UID       GROUP   USED FOR +LAST BEGAN +LAST ENDED\n"
                     "com.example.chat  20010043  camera  [0-9.]+ s +" +
                     TIME + "  " + TIME + "\n= 0\n"));
    EXPECT_EQ(Run(CTL + " usage --group location"), "There was no use.\n= 0\n");

    setenv("TZ", "Asia/Kolkata", 1);
    tzset();
    using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples;
    EXPECT_EQ(DateAndTime(1), "1970-01-01 05:30:00");
    EXPECT_EQ(TimeWithOffset(-1), "1970-01-01T05:29:59.999+0530");
    EXPECT_EQ(DurationText(59999) + DurationText(60000) + DurationText(7384000), "59 s1 min 00 s2 h 03 min");
}

TEST_F(CtlTest, OptionsStandAnywhereAndInEitherForm)
{
    for (const char* const line : {"events --user=100 --raw", "--raw events --user 100", "events --raw --user=100"}) {
        EXPECT_THAT(Run(CTL + " " + line), MatchesRegex("PrivacyEventDetail='com.example.chat', [^\n]*\n= 0\n"));
    }
    EXPECT_THAT(
        Run(CTL + " active --json"), testing::StartsWith("{\"sensor\":\"camera\",\"state\":\"on\",\"positionX\""));
    for (const char* const line : {"events -h", "--help events", "events camera --user 5 --help"}) {
        EXPECT_THAT(Run(CTL + " " + line), testing::StartsWith("Usage: indicator_ctl events [SENSOR] [OPTION]...\n"));
    }
    EXPECT_EQ(Run(CTL + " --version"), "indicator_ctl 1.0.0\n= 0\n");
    EXPECT_EQ(Run(CTL + " active --user=1"), "indicator_ctl: there is no option --user=1 here (see --help)\n= 2\n");
    EXPECT_EQ(Run(CTL + " events --user"), "indicator_ctl: --user needs a value (see --help)\n= 2\n");
    EXPECT_EQ(Run(CTL), "indicator_ctl: COMMAND is missing (see --help)\n= 2\n");
}

TEST_F(CtlTest, FailuresAreWordsAndExitCodes)
{
    EXPECT_EQ(Run(CTL + " power 7"), "indicator_ctl: the service refused: 22, an argument is not valid\n= 1\n");
    EXPECT_EQ(Run(CTL + " power 7 --raw"), "indicator_ctl: the service refused: 22\n= 1\n");
    for (const char* const line : {"events", "active --raw", "--help", "--version"}) {
        EXPECT_EQ(Run(CTL + " " + line + " >/dev/full"),
            "indicator_ctl: standard output cannot be written: No space left on device\n= 4\n");
    }
    // Until the reader is gone by the time of the write.
    EXPECT_EQ(Run("bash -c 'until " + CTL + " active | true; end=${PIPESTATUS[0]}; ((end)); do :; done; echo $end'"),
        "141\n= 0\n");
    service_->Kill();
    EXPECT_EQ(Run("until ! " + CTL + " active >/dev/null 2>&1; do :; done; " + CTL + " active"),
        "indicator_ctl: the service is not there\n= 3\n");
    Helper waiting({CTL, "--wait", "active"}, busAddress_);
    StartService();
    EXPECT_EQ(waiting.ReadLine(), "No indicator is on.");
    EXPECT_EQ(waiting.AwaitEnd(), 0);
    EXPECT_THAT(Run("unset OHOS_BUS_ADDRESS; " + CTL + " active"), HasSubstr("OHOS_BUS_ADDRESS is not set"));
}

TEST_F(CtlTest, WhatATerminalGetsIsPrintable)
{
    Use("start location evil\033[41m 5");
    EXPECT_THAT(Run("until " + CTL + " events | grep -q evil; do :; done"), HasSubstr("= 0"));
    EXPECT_THAT(Run(CTL + " events location --raw"), HasSubstr("'evil\033[41m'"));
    PseudoTerminal terminal({"sh", "-c", CTL + " events location --raw; " + CTL + " events location"}, busAddress_);
    EXPECT_EQ(terminal.AwaitEnd(), 0);
    EXPECT_THAT(terminal.Bytes(), HasSubstr("'evil\\x1b[41m'"));
    EXPECT_EQ(terminal.Bytes().find('\033'), std::string::npos);
}

} // namespace
