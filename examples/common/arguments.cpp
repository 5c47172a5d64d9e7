// SPDX-License-Identifier: Apache-2.0
#include "arguments.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "print.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

Arguments::Arguments(const std::vector<std::string>& line, size_t mostWords,
    const std::vector<std::string>& knownOptions, const std::vector<std::string>& knownFlags)
{
    for (const auto& option : knownOptions) {
        values_[option];
    }
    bool isAllWords = false;
    for (size_t i = 0; i < line.size(); ++i) {
        if (isAllWords || line[i].compare(0, 2, "--") != 0) {
            words_.push_back(line[i]);
            continue;
        }
        if (line[i] == "--") {
            isAllWords = true;
            continue;
        }
        const size_t sign = line[i].find('=');
        const std::string name = line[i].substr(0, sign);
        const auto option = values_.find(name);
        if (option != values_.end()) {
            if (sign == std::string::npos && ++i == line.size()) {
                throw ParseError(name + " needs a value");
            }
            option->second.push_back(sign == std::string::npos ? line[i] : line[i].substr(sign + 1));
        } else if (std::find(knownFlags.begin(), knownFlags.end(), line[i]) != knownFlags.end()) {
            flags_.insert(line[i]);
        } else {
            throw ParseError("there is no option " + line[i] + " here");
        }
    }
    if (words_.size() > mostWords) {
        throw ParseError("\"" + words_[mostWords] + "\" is one word too many");
    }
}

size_t Arguments::Count() const { return words_.size(); }

const std::string& Arguments::Word(size_t index, const std::string& meaning) const
{
    if (index >= words_.size()) {
        throw ParseError(meaning + " is missing");
    }
    return words_[index];
}

const std::vector<std::string>& Arguments::Values(const std::string& option) const { return values_.at(option); }

bool Arguments::Has(const std::string& flag) const { return flags_.count(flag) > 0; }

bool PrintHelpOrVersion(const std::vector<std::string>& line, const std::string& usage)
{
    const auto end = std::find(line.begin(), line.end(), "--");
    const auto has = [&](const char* option) { return std::find(line.begin(), end, option) != end; };
    const bool isForHelp = has("-h") || has("--help");
    if (isForHelp) {
        Print(usage);
    } else if (has("--version")) {
        Print(std::string(program_invocation_short_name) + " " EXAMPLES_VERSION "\n");
    }
    return isForHelp || has("--version");
}

int RunTool(int argc, char** argv, int (*run)(const std::vector<std::string>& line))
{
    try {
        return run({argv + 1, argv + argc});
    } catch (const ParseError& error) {
        Complain(std::string(error.what()) + " (see --help)");
        return EXIT_USAGE;
    } catch (const std::system_error& error) {
        Complain(error.what());
        return EXIT_FAILED;
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
