// SPDX-License-Identifier: Apache-2.0
#ifndef SENSOR_INPUT_H
#define SENSOR_INPUT_H

#include <string>

#include "in_memory_service.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * Sensor use as lines of text, `start SENSOR BUNDLE UID` and `stop SENSOR BUNDLE UID`, reported to a service. A line
 * that cannot be read is skipped, with a message on standard error. Blank lines are skipped without one.
 */
class SensorInput {
public:
    /** Neither the descriptor nor the service is owned. */
    SensorInput(int fd, Testing::InMemoryService& service);

    /** Reads once, and waits if there is nothing. False at the end of the input. */
    bool Read();

private:
    void TakeByte(char byte);
    void TakeLine();

    const int fd_;
    Testing::InMemoryService& service_;
    std::string line_; // As far as it has been read; no longer than what can be taken, and one more.
    int lineNumber_ = 1;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // SENSOR_INPUT_H
