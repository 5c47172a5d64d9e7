// SPDX-License-Identifier: Apache-2.0
#include "ost_log.h"

namespace OHOS::Korvane::Quenlar::Util::OstLog {

Tag Tag::Create(const std::string& module, const std::string& component, const std::string& subSystem)
{
    return {module, component, subSystem};
}

Tag::Tag(const std::string& module, const std::string& component, const std::string& subSystem)
    : module_(module), component_(component), subSystem_(subSystem)
{}

} // namespace OHOS::Korvane::Quenlar::Util::OstLog
