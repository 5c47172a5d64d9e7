// SPDX-License-Identifier: Apache-2.0
#ifndef COMMAND_LOOP_H
#define COMMAND_LOOP_H

#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <future>
#include <iostream>
#include <iterator>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

/** A command and its arguments; missing ones are empty. */
using Words = std::vector<std::string>;

/** What a helper process does at a command. Returns the answer. */
using Command = std::function<std::string(const Words& words)>;

/** Prints `! EVENT`. A line is one write, whatever other threads, or the child of a fork, have to say. */
inline void Tell(const std::string& event, const char* mark = "! ")
{
    const std::string line = mark + event + "\n";
    if (write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        _exit(1); // Nobody listens any more.
    }
}

/** Never destroyed: some threads run on while the process exits. */
struct Hold {
    std::mutex mutex;
    std::condition_variable released;
    bool isOn = false;
};
inline Hold& g_hold = *new Hold();

/** A `hold` that comes after `event`, which is announced if it is not empty, is too late for it. */
inline void WaitWhileHeld(const std::string& event = "")
{
    std::unique_lock<std::mutex> lock(g_hold.mutex);
    if (!event.empty()) {
        Tell(event);
    }
    g_hold.released.wait(lock, [] { return !g_hold.isOn; });
}

/**
 * Serves commands, a line each, until the end of standard input, and answers each with `= ANSWER`. With `background`
 * before it, a command runs on a thread of its own and tells `done ANSWER` in the end. At `hold`, what calls
 * WaitWhileHeld waits there for `release`.
 */
inline void ServeCommands(const std::map<std::string, Command>& commands)
{
    std::vector<std::future<void>> background; // Waits for all in the end.
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream stream(line);
        Words words{std::istream_iterator<std::string>(stream), {}};
        const bool isBackground = words.at(0) == "background";
        words.erase(words.begin(), words.begin() + (isBackground ? 1 : 0));
        words.resize(std::max<size_t>(words.size(), 5));
        if (words[0] == "hold" || words[0] == "release") {
            std::lock_guard<std::mutex> lock(g_hold.mutex);
            g_hold.isOn = words[0] == "hold";
            g_hold.released.notify_all();
            Tell("0", "= ");
            continue;
        }
        const Command& command = commands.at(words[0]);
        if (isBackground) {
            background.push_back(std::async(std::launch::async, [&command, words] { Tell("done " + command(words)); }));
        }
        Tell(isBackground ? "0" : command(words), "= ");
    }
}

#endif // COMMAND_LOOP_H
