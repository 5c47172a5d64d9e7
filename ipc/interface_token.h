// SPDX-License-Identifier: Apache-2.0
#ifndef INTERFACE_TOKEN_H
#define INTERFACE_TOKEN_H

#include <cstring>
#include <string>

#include "message_parcel.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** The token of every request to interface I, made once. It is never destroyed, since a request may come at exit. */
template <typename I>
const std::u16string& TokenOf()
{
    static const auto& token = *new std::u16string(I::GetDescriptor());
    return token;
}

/** Reads the token of the request in `data`. True if it is interface I's. */
template <typename I>
bool ReadTokenOf(MessageParcel& data)
{
    const std::u16string& expected = TokenOf<I>();
    const std::u16string token = data.ReadInterfaceToken();
    // As bytes, which is faster: the standard library compares unit by unit.
    return token.size() == expected.size() &&
           std::memcmp(token.data(), expected.data(), token.size() * sizeof(char16_t)) == 0;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // INTERFACE_TOKEN_H
