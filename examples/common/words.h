// SPDX-License-Identifier: Apache-2.0
#ifndef WORDS_H
#define WORDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "indicator_data.h"
#include "privacy_event_remind_info.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** @{ The numbers of records as words; a number that has no word stays one. */
std::string SensorText(int32_t sensor); ///< "camera", "sensor 7"
std::string SensorText(PrivacySensorType sensor);
std::string StateText(Indicator::IndicatorState state); ///< "on", "off", "state 7"
std::string AccessText(int32_t accessState);            ///< The same for a use.
/** @} */

/** An application and its user, printable: "com.example.chat (20010043)". */
std::string ApplicationText(const std::string& bundleName, int32_t uid);

/** @{ What a listener was called with, as the rest of a line that begins with the time. Printable. */
std::string SwitchText(const Indicator::IndicatorData& data);                   ///< "indicator  camera on"
std::string UseText(const std::vector<Privacy::PrivacyEventRemindInfo>& infos); ///< "use        camera by A on, ..."
/** @} */

/** A request's result: "22, an argument is not valid". A code that the service itself defines stays a number. */
std::string ResultText(int32_t result);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // WORDS_H
