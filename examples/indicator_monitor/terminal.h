// SPDX-License-Identifier: Apache-2.0
#ifndef TERMINAL_H
#define TERMINAL_H

#include <termios.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** A line of a screen. */
struct ScreenLine {
    std::string text;       // Printable.
    const char* color = ""; // The parameters of the terminal's "SGR" sequence: "32" is green.
};

/**
 * The terminal that this process was started on: standard output, and keys from standard input where that is a terminal
 * too. It is neither read nor changed while this process is not in its foreground. Not thread-safe.
 */
class Terminal {
public:
    struct Size {
        size_t columns;
        size_t rows;
    };

    Terminal() = default;
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal();

    /** Whether standard output is a terminal that can show a board. */
    static bool IsThere();

    /** Takes the screen, if that can be done now and has not been. Returns whether it has the screen. */
    bool Enter();

    /** Gives the screen back as it was. */
    void Leave();

    static Size GetSize();

    /** To be called after Enter has returned true. False if the terminal is gone. */
    static bool Draw(const std::vector<ScreenLine>& lines);

    /** The descriptor for keys, to be polled; negative where keys are not read at the moment. */
    int GetKeyFd() const;

    /** A key that was pressed; '\0' if there was none. */
    char ReadKey() const;

private:
    bool hasScreen_ = false;
    std::optional<termios> formerModes_; // Of standard input, while they are changed.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // TERMINAL_H
