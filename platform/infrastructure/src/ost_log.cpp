// SPDX-License-Identifier: Apache-2.0
#include "ost_log.h"

namespace OHOS::Korvane::Quenlar::Util::OstLog {
namespace {

constexpr uint32_t COMPONENT_DOMAIN = 0xD005610;

} // namespace

Tag Tag::Create(const std::string& module, const std::string& component, const std::string& subSystem)
{
    return {module, component, subSystem};
}

Tag::Tag(const std::string& module, const std::string& component, const std::string& subSystem)
    : module_(module), component_(component), subSystem_(subSystem)
{}

LogType Tag::GetLogType() const
{
    return LOG_CORE;
}

uint32_t Tag::GetDomain() const
{
    return COMPONENT_DOMAIN;
}

const std::string& Tag::GetSubSystemTag() const
{
    return subSystem_;
}

const std::string& Tag::GetComponentTag() const
{
    return component_;
}

const std::string& Tag::GetModuleTag() const
{
    return module_;
}

} // namespace OHOS::Korvane::Quenlar::Util::OstLog
