// SPDX-License-Identifier: Apache-2.0
#ifndef FORMAT_UTILS_H
#define FORMAT_UTILS_H

#include <sstream>
#include <string>
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

} // namespace OHOS::Korvane::Quenlar::Util

#endif // FORMAT_UTILS_H
