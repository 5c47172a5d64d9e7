// SPDX-License-Identifier: Apache-2.0
#ifndef FIRST_ANSWER_H
#define FIRST_ANSWER_H

#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/**
 * Starts programs, and prints the time from there to the first answer that they got, and the memory that is theirs
 * alone then. The services must be there already.
 */
void MeasureFirstAnswers(const std::string& programs);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // FIRST_ANSWER_H
