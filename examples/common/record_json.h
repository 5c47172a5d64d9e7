// SPDX-License-Identifier: Apache-2.0
#ifndef RECORD_JSON_H
#define RECORD_JSON_H

#include <nlohmann/json_fwd.hpp>

#include <string>

#include "indicator_data.h"
#include "permission_usage_duration.h"
#include "privacy_event_detail.h"
#include "privacy_event_remind_info.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

using Json = nlohmann::ordered_json;

/** @{ A record as an object: its fields' names and values, but sensors and states of indicators as words. */
Json ToJson(const Indicator::IndicatorData& data);
Json ToJson(const Privacy::PrivacyEventDetail& detail);
Json ToJson(const Privacy::PrivacyEventRemindInfo& info);
Json ToJson(const Record::PermissionUsageDuration& duration);
/** @} */

/** The object on one line, in ASCII. A text's bytes that are not UTF-8 are replaced by U+FFFD. */
std::string ToLine(const Json& object);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // RECORD_JSON_H
