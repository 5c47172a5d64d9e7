// SPDX-License-Identifier: Apache-2.0
#include "report.h"

#include <nlohmann/json.hpp>

#include <algorithm>

#include "print.h"
#include "record_json.h"
#include "table.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

void Report::Add(const std::string& request, const std::string& sent, const std::string& came,
    const std::string& expected, bool isRight)
{
    checks_.push_back({request, sent, came, expected, isRight});
}

void Report::Compare(
    const std::string& request, const std::string& sent, const std::string& came, const std::string& expected)
{
    Add(request, sent, came, expected, came == expected);
}

bool Report::IsFaultless() const
{
    return std::all_of(checks_.begin(), checks_.end(), [](const Check& check) { return check.isRight; });
}

void Report::PrintAll(Format format) const
{
    if (format == Format::JSON) {
        for (const auto& [request, sent, came, expected, isRight] : checks_) {
            PrintLine(ToLine(
                {{"request", request}, {"sent", sent}, {"came", came}, {"expected", expected}, {"isRight", isRight}}));
        }
        return;
    }
    Table table({"REQUEST", "SENT", "CAME", "AS IT SHOULD BE?"});
    for (const auto& [request, sent, came, expected, isRight] : checks_) {
        table.Add({request, sent, came, isRight ? "yes" : "NO: should be " + expected});
    }
    const auto wrong = std::count_if(checks_.begin(), checks_.end(), [](const Check& check) { return !check.isRight; });
    Print(table.Text() + (wrong == 0 ? "All " + std::to_string(checks_.size()) + " checks came out as they should.\n"
                                     : std::to_string(wrong) + " of " + std::to_string(checks_.size()) +
                                           " checks did not come out as they should.\n"));
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
