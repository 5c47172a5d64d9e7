// SPDX-License-Identifier: Apache-2.0
#ifndef PRINT_H
#define PRINT_H

#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** Prints a line on standard output, at once and whole. Any thread may call it. */
void PrintLine(const std::string& line);

/** Prints "PROGRAM: message" as a line on standard error. Any thread may call it. */
void Complain(const std::string& message);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // PRINT_H
