// SPDX-License-Identifier: Apache-2.0
#include "table.h"

#include <algorithm>
#include <iterator>

#include "print.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

Table::Table(const Cells& header) : rows_{header} {}

void Table::Add(const Cells& row)
{
    auto& cells = rows_.emplace_back();
    std::transform(row.begin(), row.end(), std::back_inserter(cells), Printable);
}

std::vector<std::string> Table::Lines() const
{
    std::vector<size_t> widths(rows_[0].size());
    for (const auto& row : rows_) {
        for (size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].size());
        }
    }
    std::vector<std::string> lines;
    for (const auto& row : rows_) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) {
            line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    return lines;
}

std::string Table::Text() const
{
    std::string text;
    for (const auto& line : Lines()) {
        text += line + "\n";
    }
    return text;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
