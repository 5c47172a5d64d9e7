// SPDX-License-Identifier: Apache-2.0
#include "arguments.h"

#include <cstdio>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

Arguments::Arguments(
    const std::vector<std::string>& line, size_t mostWords, const std::vector<std::string>& knownOptions)
{
    for (const auto& option : knownOptions) {
        values_[option];
    }
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i].compare(0, 2, "--") != 0) {
            words_.push_back(line[i]);
            continue;
        }
        const auto option = values_.find(line[i]);
        if (option == values_.end()) {
            throw ParseError("there is no option " + line[i] + " here");
        }
        if (++i == line.size()) {
            throw ParseError(option->first + " needs a value");
        }
        option->second.push_back(line[i]);
    }
    if (words_.size() > mostWords) {
        throw ParseError("\"" + words_[mostWords] + "\" is one word too many");
    }
}

size_t Arguments::Count() const
{
    return words_.size();
}

const std::string& Arguments::Word(size_t index, const std::string& meaning) const
{
    if (index >= words_.size()) {
        throw ParseError(meaning + " is missing");
    }
    return words_[index];
}

const std::vector<std::string>& Arguments::Values(const std::string& option) const
{
    return values_.at(option);
}

bool PrintHelp(const std::vector<std::string>& line, const char* usage)
{
    const bool isAskedFor = line == std::vector<std::string>{"--help"};
    if (isAskedFor) {
        std::fputs(usage, stdout);
    }
    return isAskedFor;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
