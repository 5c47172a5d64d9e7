// SPDX-License-Identifier: Apache-2.0
#include "sensor_input.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <sstream>
#include <vector>

#include "parse.h"
#include "print.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

constexpr size_t MAX_LINE = 1000;

void ReportUse(Testing::InMemoryService& service, const std::string& line)
{
    if (line.size() > MAX_LINE) {
        throw ParseError("longer than " + std::to_string(MAX_LINE) + " bytes");
    }
    std::vector<std::string> words;
    std::istringstream stream(line);
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    if (words.empty()) {
        return;
    }
    if (words.size() != 4 || (words[0] != "start" && words[0] != "stop")) {
        throw ParseError("neither \"start SENSOR BUNDLE UID\" nor \"stop SENSOR BUNDLE UID\"");
    }
    const Testing::SensorUse use{ParseSensor(words[1]), words[2], ParseNumber<int32_t>(words[3])};
    if (use.bundleName.size() > Testing::UseHistory::MAX_BUNDLE_NAME) {
        throw ParseError(
            "the bundle name is longer than " + std::to_string(Testing::UseHistory::MAX_BUNDLE_NAME) + " bytes");
    }
    if (use.uid < 0) {
        throw ParseError("the uid is negative");
    }
    if (words[0] == "start" && !service.BeginUse(use)) {
        throw ParseError("this use has begun already, or too many are under way");
    }
    if (words[0] == "stop" && !service.EndUse(use)) {
        throw ParseError("this use has not begun");
    }
}

} // namespace

SensorInput::SensorInput(int fd, Testing::InMemoryService& service) : fd_(fd), service_(service) {}

bool SensorInput::Read()
{
    std::array<char, 4096> bytes{};
    const ssize_t count = read(fd_, bytes.data(), bytes.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
        return true;
    }
    for (ssize_t i = 0; i < count; ++i) {
        TakeByte(bytes[static_cast<size_t>(i)]);
    }
    if (count <= 0) {
        TakeLine(); // The last one may have no end.
    }
    return count > 0;
}

void SensorInput::TakeByte(char byte)
{
    if (byte == '\n') {
        TakeLine();
    } else if (line_.size() <= MAX_LINE) {
        line_ += byte;
    }
}

void SensorInput::TakeLine()
{
    try {
        ReportUse(service_, line_);
    } catch (const ParseError& error) {
        Complain("line " + std::to_string(lineNumber_) + ": " + error.what());
    }
    line_.clear();
    ++lineNumber_;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
