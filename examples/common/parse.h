// SPDX-License-Identifier: Apache-2.0
#ifndef PARSE_H
#define PARSE_H

#include <charconv>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <type_traits>

#include "privacy_sensor_type.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** A text that is not what it should be. Its message is for the text's author. */
class ParseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** `camera`, `microphone` or `location`. Throws ParseError for anything else. */
PrivacySensorType ParseSensor(const std::string& name);

/** A decimal number that fits `Number`. Throws ParseError for anything else. */
template <typename Number>
Number ParseNumber(const std::string& text)
{
    Number number{};
    bool isNumber = false;
    if constexpr (std::is_floating_point_v<Number>) { // Not every standard library has from_chars for these.
        std::istringstream stream(text);
        stream.imbue(std::locale::classic());
        isNumber = text.find_first_not_of("+-.0123456789Ee") == std::string::npos && stream >> number && stream.eof();
    } else {
        const char* const end = text.data() + text.size();
        const auto [rest, error] = std::from_chars(text.data(), end, number);
        isNumber = error == std::errc() && rest == end;
    }
    if (!isNumber) {
        throw ParseError("\"" + text + "\" is not a number, or out of range");
    }
    return number;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // PARSE_H
