// SPDX-License-Identifier: Apache-2.0
#ifndef FIGURE_H
#define FIGURE_H

#include <cstdio>
#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** Prints one figure: its table, its row and column there, and its value. run.sh makes the tables of these lines. */
inline void PrintFigure(const std::string& table, const std::string& row, const std::string& column, double value)
{
    std::printf("%s|%s|%s|%.6g\n", table.c_str(), row.c_str(), column.c_str(), value);
    std::fflush(stdout);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // FIGURE_H
