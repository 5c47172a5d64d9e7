// SPDX-License-Identifier: Apache-2.0
#ifndef TABLE_H
#define TABLE_H

#include <string>
#include <vector>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** Rows of cells as lines of text, in columns two blanks apart and as wide as their widest cell. */
class Table {
public:
    using Cells = std::vector<std::string>;

    /** The first row. Every other one has as many cells. */
    explicit Table(const Cells& header);

    void Add(const Cells& row);

    /** Every cell is Printable. */
    std::vector<std::string> Lines() const;

    /** The lines, each with its end. */
    std::string Text() const;

private:
    std::vector<Cells> rows_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // TABLE_H
