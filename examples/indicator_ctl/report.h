// SPDX-License-Identifier: Apache-2.0
#ifndef REPORT_H
#define REPORT_H

#include <string>
#include <vector>

#include "output.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** The checks of a service, in their order. */
class Report {
public:
    /** In a table, `expected` is printed only if `isRight` is false. */
    void Add(const std::string& request, const std::string& sent, const std::string& came, const std::string& expected,
        bool isRight);

    /** A check whose answer must be this very text. */
    void Compare(
        const std::string& request, const std::string& sent, const std::string& came, const std::string& expected);

    bool IsFaultless() const;

    void PrintAll(Format format) const;

private:
    struct Check {
        std::string request;
        std::string sent;
        std::string came;
        std::string expected;
        bool isRight;
    };

    std::vector<Check> checks_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // REPORT_H
