// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <sstream>

#include "tools_test.h"

namespace {

const std::string CALLED = "OnSwitchChanged                              ";

/** A fault of the service, and how each row begins that must say so. */
struct Fault {
    const char* name;
    std::vector<std::string> rows;
};

void PrintTo(const Fault& fault, std::ostream* stream)
{
    *stream << fault.name;
}

class FaultTest : public ToolsTest, public testing::WithParamInterface<Fault> {};

TEST_P(FaultTest, IsNamed)
{
    const auto& [fault, rows] = GetParam();
    service_.emplace(std::vector<std::string>{PROCESSES_DIR "/faulty_service_process", fault}, busAddress_);
    EXPECT_EQ(service_->ReadLine(), "ready");
    std::istringstream output(Run(CTL + " verify"));
    std::vector<std::string> wrong;
    std::string last;
    for (std::string line; std::getline(output, line); last = line) {
        if (line.find("  NO: ") != std::string::npos) {
            wrong.push_back(line);
        }
    }
    EXPECT_EQ(last, wrong.empty() ? "= 0" : "= 1");
    ASSERT_EQ(wrong.size(), rows.size()) << testing::PrintToString(wrong);
    for (size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(wrong[i].find(rows[i]), 0U) << wrong[i];
    }
}

INSTANTIATE_TEST_SUITE_P(Planted, FaultTest,
    testing::Values(Fault{"none", {}},
        Fault{"any-token", {"5 GetActiveIndicators                        another token"}},
        Fault{"any-code", {"0                                            a request that there is not",
                              "12                                           a request that there is not"}},
        Fault{"twice", {CALLED + "(a listener registered twice)", CALLED + "(a listener registered twice)",
                           CALLED + "(on and off, ten times)", CALLED + "(one that is not)",
                           CALLED + "(a listener, after the death of others)"}},
        Fault{"keeps-unregistered", {CALLED + "(a listener that is unregistered)"}},
        Fault{"keeps-dead", {"8 RegisterPrivacyIndicatorSwitchListener     150 listeners of a process that dies"}},
        Fault{"waits-for-listeners",
            {"6 TurnOnIndicator                            (while a listener's process does not read)"}}),
    [](const auto& fault) {
        std::string name = fault.param.name;
        std::replace(name.begin(), name.end(), '-', '_');
        return name;
    });

using VerifyTest = ToolsTest;

TEST_F(VerifyTest, TheReferenceServicePasses)
{
    // What it prints is not read meanwhile: it goes to a file.
    service_.emplace(std::vector<std::string>{"sh", "-c", "exec " + SERVICE + " >" + folder_ + "/log"}, busAddress_);
    const std::string output = Run(CTL + " --wait verify");
    EXPECT_NE(output.find(" checks came out as they should.\n= 0\n"), std::string::npos) << output;
}

} // namespace
