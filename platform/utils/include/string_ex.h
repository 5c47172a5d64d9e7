// SPDX-License-Identifier: Apache-2.0
#ifndef STRING_EX_H
#define STRING_EX_H

#include <string>

namespace OHOS {

/** UTF-8 to UTF-16, up to the first NUL. Nothing is checked but the end: empty if that cuts a sequence short. */
std::u16string Str8ToStr16(const std::string& text);

/** UTF-16 to UTF-8, up to the first NUL. A lone surrogate is left out. */
std::string Str16ToStr8(const std::u16string& text);

} // namespace OHOS

#endif // STRING_EX_H
