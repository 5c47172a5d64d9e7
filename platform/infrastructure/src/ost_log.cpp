// SPDX-License-Identifier: Apache-2.0
#include "ost_log.h"

namespace OHOS::Korvane::Quenlar::Util::OstLog {

Tag Tag::Create(const std::string& module, const std::string& component, const std::string& subSystem)
{
    return {module, component, subSystem};
}

} // namespace OHOS::Korvane::Quenlar::Util::OstLog
