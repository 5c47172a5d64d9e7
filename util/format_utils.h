// SPDX-License-Identifier: Apache-2.0
#ifndef FORMAT_UTILS_H
#define FORMAT_UTILS_H

#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace OHOS::Korvane::Quenlar::Util {

/** Text forms for logs. */
class FormatUtils {
public:
    /** "['a', 'b']": the elements are quoted but not escaped. */
    template <typename T>
    static std::string ToString(const std::vector<T>& elements)
    {
        std::ostringstream text;
        const char* separator = "";
        text << "[";
        for (const T& element : elements) {
            text << separator << "'" << element << "'";
            separator = ", ";
        }
        text << "]";
        return text.str();
    }
};

/** Appends text as it is, and a number or an enumeration's value in decimal. */
template <typename T>
void AppendText(std::string& text, const T& part)
{
    if constexpr (std::is_enum_v<T>) {
        text += std::to_string(static_cast<int32_t>(part));
    } else if constexpr (std::is_arithmetic_v<T>) {
        text += std::to_string(part);
    } else {
        text += part;
    }
}

/** The parts one after another, each as AppendText appends it. */
template <typename... Parts>
std::string Concat(const Parts&... parts)
{
    std::string text;
    (AppendText(text, parts), ...);
    return text;
}

/** The text between single quotes, not escaped. */
inline std::string Quoted(const std::string& text) { return "'" + text + "'"; }

} // namespace OHOS::Korvane::Quenlar::Util

#endif // FORMAT_UTILS_H
