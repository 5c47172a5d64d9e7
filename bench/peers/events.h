// SPDX-License-Identifier: Apache-2.0
#ifndef EVENTS_H
#define EVENTS_H

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** Prints the figures of one event to many processes. On a bus, on which there is no service yet. */
void MeasureEvents();

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // EVENTS_H
