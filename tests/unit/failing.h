// SPDX-License-Identifier: Apache-2.0
#ifndef FAILING_H
#define FAILING_H

#include <cstdint>
#include <optional>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** What fails on this thread while one of these lives. One at a time. */
struct Failing {
    static inline thread_local int nthNew = 0;               // The nth `new (std::nothrow)` from now.
    static inline thread_local std::optional<int32_t> write; // A parcel's WriteInt32 of this value.

    static constexpr int32_t TOKEN = 0x100; // The first int32 of an interface token.

    explicit Failing(int nth = 0, std::optional<int32_t> value = {})
    {
        nthNew = nth;
        write = value;
    }

    Failing(const Failing&) = delete;
    Failing& operator=(const Failing&) = delete;

    ~Failing()
    {
        nthNew = 0;
        write.reset();
    }
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // FAILING_H
