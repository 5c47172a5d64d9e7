// SPDX-License-Identifier: Apache-2.0
#include "first_answer.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <vector>

#include "contender.h"
#include "figure.h"
#include "match.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

struct Program {
    std::string name;
    std::vector<std::string> command;
    std::vector<double> milliseconds;
    std::vector<double> kilobytes;
};

/** The memory that a process shares with no other. */
double PrivateKilobytes(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    double sum = 0;
    for (std::string word; file >> word;) {
        double number = 0;
        if (word.rfind("Private_", 0) == 0 && file >> number) {
            sum += number;
        }
    }
    return sum;
}

void Run(Program& program)
{
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) {
        Fail("no pipe");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    for (std::string& argument : program.command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    pid_t process = 0;
    char byte = 0;
    const auto begin = std::chrono::steady_clock::now();
    if (posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
        Fail("cannot start " + program.command[0]);
    }
    close(output[1]);
    if (read(output[0], &byte, 1) != 1) {
        Fail(program.command[0] + " gets no answer");
    }
    program.milliseconds.push_back(SecondsSince(begin) * 1e3);
    program.kilobytes.push_back(PrivateKilobytes(process));
    for (const int fd : {input[0], input[1], output[0]}) {
        close(fd);
    }
    waitpid(process, nullptr, 0);
    posix_spawn_file_actions_destroy(&actions);
}

} // namespace

void MeasureFirstAnswers(const std::string& programs)
{
    constexpr int ROUNDS = 31;
    const std::string sdBus = programs + "/bench_first_answer_sd_bus";
    std::vector<Program> all{
        {"sd-bus, by a daemon", {sdBus, "unix:abstract=" + Address("daemon"), "qnl.Indicator"}, {}, {}},
        {"sd-bus, direct", {sdBus, "unix:abstract=" + Address("sd-bus")}, {}, {}},
        {"library", {programs + "/bench_first_answer"}, {}, {}},
    };
    for (int round = 0; round < ROUNDS; ++round) {
        for (Program& program : all) {
            Run(program);
        }
    }
    for (const Program& program : all) {
        PrintFigure("first answer", program.name, "milliseconds", Median(program.milliseconds));
        PrintFigure("first answer", program.name, "private memory, KB", Median(program.kilobytes));
    }
    PrintFigure("first answer", "library / sd-bus, by a daemon", "milliseconds",
        MedianRatio(all.back().milliseconds, all.front().milliseconds));
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
