// SPDX-License-Identifier: Apache-2.0
#ifndef PSEUDO_TERMINAL_H
#define PSEUDO_TERMINAL_H

#include <sys/types.h>
#include <termios.h>

#include <string>
#include <vector>

/** A process on a terminal of its own, which it is in front of, and what that terminal shows. It ends with this object.
 */
class PseudoTerminal {
public:
    /** `settings` are NAME=VALUE, for its environment. */
    PseudoTerminal(const std::vector<std::string>& command, const std::vector<std::string>& settings);
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;
    ~PseudoTerminal();

    void Type(const std::string& keys) const;
    void Resize(unsigned short columns, unsigned short rows) const;
    void Signal(int signal) const;

    /** Reads until the board on the screen holds `text`. Returns the board: lines, without colours. */
    std::string AwaitBoard(const std::string& text);

    /** Reads until the terminal has got `text`, after what an earlier call waited for. */
    void AwaitBytes(const std::string& text);

    /** Waits for the process's end. Its exit code, or -1 for a signal. */
    int AwaitEnd();

    /** All bytes that the terminal has got. */
    const std::string& Bytes() const
    {
        return bytes_;
    }

    /** The terminal's modes. */
    tcflag_t LocalModes() const;

private:
    /** Reads more. False at the end, or after a while. */
    bool Read();

    pid_t process_ = -1;
    int terminal_ = -1;
    std::string bytes_;
    size_t awaited_ = 0;
};

#endif // PSEUDO_TERMINAL_H
