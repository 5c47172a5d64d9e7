// SPDX-License-Identifier: Apache-2.0
#ifndef ARGUMENTS_H
#define ARGUMENTS_H

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "parse.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * A command line: words, and among them options: `--name value` or `--name=value`, which may be given repeatedly, and
 * flags, `--name`. After `--` everything is a word.
 */
class Arguments {
public:
    /** Throws ParseError if there are more words than `mostWords`, or an option that is not one of those known. */
    Arguments(const std::vector<std::string>& line, size_t mostWords, const std::vector<std::string>& knownOptions,
        const std::vector<std::string>& knownFlags = {});

    /** How many words there are. */
    size_t Count() const;

    /** Throws ParseError if there is no such word. `meaning` is what the message calls it. */
    const std::string& Word(size_t index, const std::string& meaning) const;

    /** All values of an option that is known, in their order. */
    const std::vector<std::string>& Values(const std::string& option) const;

    /** Whether a flag was given. */
    bool Has(const std::string& flag) const;

    /** The word at `index` as a number; `otherwise` if there is none. */
    template <typename Number>
    Number NumberAt(size_t index, Number otherwise) const
    {
        return index < words_.size() ? ParseNumber<Number>(words_[index]) : otherwise;
    }

    /** The last value of an option as a number; `otherwise` if there is none. */
    template <typename Number>
    Number NumberOf(const std::string& option, Number otherwise) const
    {
        const auto& values = Values(option);
        return values.empty() ? otherwise : ParseNumber<Number>(values.back());
    }

private:
    std::vector<std::string> words_;
    std::map<std::string, std::vector<std::string>> values_; // Of every known option.
    std::set<std::string> flags_;                            // Those that were given.
};

/**
 * Prints `usage` if `-h` or `--help` is anywhere on the command line before `--`, else the program's name and version
 * if `--version` is. Returns whether it printed.
 */
bool PrintHelpOrVersion(const std::vector<std::string>& line, const std::string& usage);

/** The exit codes of RunTool. */
inline constexpr int EXIT_FAILED = 1;
inline constexpr int EXIT_USAGE = 2;

/**
 * The main function of every tool: returns what `run` returns for the command line. If that throws, prints the message
 * and returns EXIT_USAGE after a ParseError, EXIT_FAILED after a std::system_error.
 */
int RunTool(int argc, char** argv, int (*run)(const std::vector<std::string>& line));

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // ARGUMENTS_H
