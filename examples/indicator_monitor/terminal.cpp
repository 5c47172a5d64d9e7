// SPDX-License-Identifier: Apache-2.0
#include "terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

constexpr const char* TAKE_SCREEN = "\033[?1049h\033[?25l"; // The alternate screen, without a cursor.
constexpr const char* GIVE_SCREEN = "\033[?25h\033[?1049l";

bool IsInForegroundOf(int fd) { return tcgetpgrp(fd) == getpgrp(); }

// Not by stdio, so that what could not be written is not kept.
bool Write(const std::string& text)
{
    for (size_t done = 0; done < text.size();) {
        const ssize_t count = write(STDOUT_FILENO, &text[done], text.size() - done);
        if (count < 0 && errno != EINTR) {
            return false;
        }
        done += count > 0 ? static_cast<size_t>(count) : 0;
    }
    return true;
}

bool IsColored()
{
    const char* const without = std::getenv("NO_COLOR");
    return without == nullptr || *without == '\0';
}

} // namespace

Terminal::~Terminal() { Leave(); }

bool Terminal::IsThere()
{
    const char* const type = std::getenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && type != nullptr && *type != '\0' && std::strcmp(type, "dumb") != 0;
}

bool Terminal::Enter()
{
    if (!IsInForegroundOf(STDOUT_FILENO)) {
        hasScreen_ = false; // Another process has it now, as it is.
        return false;
    }
    if (hasScreen_) {
        return true;
    }
    termios modes{};
    if (IsInForegroundOf(STDIN_FILENO) && tcgetattr(STDIN_FILENO, &modes) == 0) {
        formerModes_ = modes;
        modes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        modes.c_cc[VMIN] = 0;
        modes.c_cc[VTIME] = 0;
        tcsetattr(STDIN_FILENO, TCSADRAIN, &modes);
    }
    hasScreen_ = Write(TAKE_SCREEN);
    return hasScreen_;
}

void Terminal::Leave()
{
    if (hasScreen_ && IsInForegroundOf(STDOUT_FILENO)) {
        Write(GIVE_SCREEN);
    }
    if (formerModes_ && IsInForegroundOf(STDIN_FILENO)) {
        tcsetattr(STDIN_FILENO, TCSADRAIN, &*formerModes_);
    }
    hasScreen_ = false;
    formerModes_.reset();
}

Terminal::Size Terminal::GetSize()
{
    winsize size{};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
    return isKnown ? Size{size.ws_col, size.ws_row} : Size{80, 24};
}

bool Terminal::Draw(const std::vector<ScreenLine>& lines)
{
    static const bool isColored = IsColored();
    const auto [columns, rows] = GetSize();
    std::string frame = "\033[H";
    for (size_t i = 0; i < lines.size() && i < rows; ++i) {
        const bool hasColor = isColored && *lines[i].color != '\0';
        frame += i > 0 ? "\r\n" : "";
        frame += hasColor ? "\033[" + std::string(lines[i].color) + "m" : "";
        // A terminal's last column is left alone: some would erase what has just been written there.
        frame += lines[i].text.substr(0, columns - 1);
        frame += hasColor ? "\033[0m\033[K" : "\033[K";
    }
    return Write(frame + "\033[J");
}

int Terminal::GetKeyFd() const
{
    return hasScreen_ && formerModes_ && IsInForegroundOf(STDIN_FILENO) ? STDIN_FILENO : -1;
}

char Terminal::ReadKey() const
{
    char key = '\0';
    return GetKeyFd() >= 0 && read(STDIN_FILENO, &key, 1) == 1 ? key : '\0';
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
