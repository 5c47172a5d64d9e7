// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <sstream>

#include "tools_test.h"

namespace {

/** Which rows say that a service is not as it should be. */
class VerifyTest : public ToolsTest {
protected:
    /** Exactly these rows must, in this order. Each is given by how it begins. */
    void ExpectWrong(std::vector<std::string> command, const std::vector<std::string>& rows)
    {
        command.insert(command.begin(), PROCESSES_DIR "/faulty_service_process");
        service_.emplace(command, busAddress_);
        EXPECT_EQ(service_->ReadLine(), "ready");
        std::istringstream output(Run(CTL + " verify"));
        std::vector<std::string> wrong;
        std::string last;
        for (std::string line; std::getline(output, line); last = line) {
            if (line.find("  NO: ") != std::string::npos) {
                const size_t row = std::min(wrong.size(), rows.size() - 1);
                wrong.push_back(line.substr(0, rows[row].size()));
            }
        }
        EXPECT_EQ(last, "= 1");
        EXPECT_EQ(wrong, rows);
    }

    const std::string called_ = "OnSwitchChanged                              ";
};

TEST_F(VerifyTest, NamesFaultsOfSingleRequests)
{
    ExpectWrong({"any-token", "any-code", "keeps-unregistered"},
        {"0                                            a request that there is not",
            "12                                           a request that there is not",
            "5 GetActiveIndicators                        another token",
            called_ + "(a listener that is unregistered)"});
}

TEST_F(VerifyTest, NamesFaultsOfRegistrations)
{
    ExpectWrong({"twice", "keeps-dead"},
        {called_ + "(a listener registered twice)", called_ + "(a listener registered twice)",
            called_ + "(on and off, ten times)", called_ + "(one that is not)",
            "8 RegisterPrivacyIndicatorSwitchListener     150 listeners of a process that dies",
            called_ + "(a listener, after the death of others)"});
}

TEST_F(VerifyTest, NamesAServiceThatWaitsForItsListeners)
{
    ExpectWrong({"waits-for-listeners"},
        {"6 TurnOnIndicator                            (while a listener's process does not read)"});
}

TEST_F(VerifyTest, PassesTheReferenceService)
{
    // What it prints is not read meanwhile: it goes to a file.
    service_.emplace(std::vector<std::string>{"sh", "-c", "exec " + SERVICE + " >" + folder_ + "/log"}, busAddress_);
    const std::string output = Run(CTL + " --wait verify");
    EXPECT_NE(output.find(" checks came out as they should.\n= 0\n"), std::string::npos) << output;
}

} // namespace
