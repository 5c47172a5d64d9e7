// SPDX-License-Identifier: Apache-2.0
#ifndef BUS_TEST_H
#define BUS_TEST_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstdio>
#include <deque>
#include <initializer_list>
#include <list>
#include <memory>
#include <string>
#include <vector>

/** A process that a test gives commands and hears events from (see command_loop.h). It ends with this object. */
class Helper {
public:
    /** `busAddress` becomes its OHOS_BUS_ADDRESS; there is none where it is empty. */
    Helper(const std::vector<std::string>& command, const std::string& busAddress);
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;
    ~Helper();

    /** Has it run commands, each of which must answer "0". */
    void Do(std::initializer_list<std::string> commands);

    /** The answer to a command. */
    std::string Ask(const std::string& command);

    /** Asks until the answer is `answer`. */
    void AskUntil(const std::string& answer, const std::string& command);

    /** The next event. */
    std::string Event();

    /** Its next events must be these, in this order. */
    void Hears(std::initializer_list<std::string> events);

    /** The next `count` events, sorted. */
    std::vector<std::string> Events(size_t count);

    /** Its next line; empty, and a failed test, if none comes. */
    std::string ReadLine();

    /** How many of "task" or "fd", its threads or descriptors, it has. */
    size_t Count(const std::string& what) const;

    void Signal(int signal) const;
    void Kill();

    /** Ends its input, at which it ends by itself. */
    void EndInput() const;

    /** Waits for its end. Its exit code, or -1 for a signal. */
    int AwaitEnd();

    pid_t Pid() const
    {
        return pid_;
    }

private:
    pid_t pid_ = -1;             // -1 once it has ended.
    int line_ = -1;              // To its standard input and output.
    std::FILE* input_ = nullptr; // What comes on the line, which it closes.
    std::deque<std::string> events_;
};

/** A test with a bus daemon, and a folder, of its own. The helpers that run to its end must end well. */
class BusTest : public testing::Test {
public:
    /** Services may be had by `serviceUser` alone; by this process's user where it is empty. */
    explicit BusTest(const std::string& serviceUser = "");
    ~BusTest() override;

protected:
    /** Starts a helper, and has it do some commands. */
    Helper& Start(std::initializer_list<std::string> commands = {}, const std::string& program = "peer_process");

    /** The launcher for helpers on a variant of the library. */
    static std::vector<std::string> OnVariant(const std::string& variant);

    /** What starts one of the programs beside these tests. */
    std::vector<std::string> CommandFor(const std::string& program) const;

    // For the helpers that are yet to be started.
    std::string busAddress_;
    std::vector<std::string> launcher_; // Goes before the program.
    std::unique_ptr<Helper> daemon_;
    std::string folder_; // Goes, with all in it.

private:
    std::list<Helper> helpers_;
};

#endif // BUS_TEST_H
