// SPDX-License-Identifier: Apache-2.0
#ifndef FAILING_H
#define FAILING_H

#include <cstdint>
#include <optional>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** What fails on this thread: writing a value as long as one of these lives, too. One at a time. */
struct Failing {
    static inline thread_local bool everyNew = false;        // Every `new` that may throw.
    static inline thread_local int nthNew = 0;               // The nth `new (std::nothrow)` from now.
    static inline thread_local std::optional<int32_t> write; // A parcel's WriteInt32 of this value.

    static constexpr int32_t TOKEN = 0x100; // The first int32 of an interface token.

    explicit Failing(int32_t value) { write = value; }

    ~Failing() { write.reset(); }
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // FAILING_H
