// SPDX-License-Identifier: Apache-2.0
#ifndef PRINT_H
#define PRINT_H

#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** The exit code of a program whose standard output cannot be written. */
inline constexpr int EXIT_NOT_WRITTEN = 4;

/**
 * Prints text on standard output, at once and whole. Any thread may call it. Where nothing reads it any more, SIGPIPE
 * ends the program; after any other failure it ends with a message and EXIT_NOT_WRITTEN. A program that ignores SIGPIPE
 * goes on in either case.
 */
void Print(const std::string& text);

/** Prints a line, as Print does. A terminal gets it as Printable makes it. */
void PrintLine(const std::string& line);

/**
 * The same, but never waits: while standard output is not read, lines are dropped, and the next one that is printed
 * says how many.
 */
void PrintLineIfRead(const std::string& line);

/**
 * Prints "PROGRAM: message" as a line on standard error, Printable where that is a terminal. Any thread may call it.
 */
void Complain(const std::string& message);

/**
 * `text` with all but the printable characters of ASCII as "\xNN": names come from other programs, and must not control
 * the terminal that they are shown on.
 */
std::string Printable(const std::string& text);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // PRINT_H
