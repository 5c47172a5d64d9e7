// SPDX-License-Identifier: Apache-2.0
#ifndef OUTPUT_H
#define OUTPUT_H

#include <string>
#include <vector>

#include "indicator_data.h"
#include "permission_usage_duration.h"
#include "privacy_event_detail.h"
#include "privacy_event_remind_info.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** How results are printed: for people; as the records' own ToString; as a JSON object a line. */
enum class Format { TABLE, RAW, JSON };

/** @{ Prints records on standard output: a row or a line each. */
void PrintRecords(const std::vector<Indicator::IndicatorData>& indicators, Format format);
void PrintRecords(const std::vector<Privacy::PrivacyEventDetail>& events, Format format);
void PrintRecords(const std::vector<Record::PermissionUsageDuration>& durations, Format format);
/** @} */

/** @{ Prints what a listener is called with, a line for each record. Any thread may call these. */
void PrintSwitch(const Indicator::IndicatorData& data, Format format);
void PrintEvent(const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos, Format format);
/** @} */

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // OUTPUT_H
