// SPDX-License-Identifier: Apache-2.0
#ifndef OST_LOG_H
#define OST_LOG_H

#include <cstdint>
#include <string>

#include "hilog/log.h"

namespace OHOS::Korvane::Quenlar::Util::OstLog {

/** What all log lines of one source file have in common. Immutable, so that any thread may read it. */
class Tag {
public:
    // Inline, so that they are ready for the static initialisers of every file that includes this header.
    static inline const std::string DEFAULT_SUB_SYSTEM_TAG = "KRV";
    static inline const std::string DEFAULT_COMPONENT_TAG = "QNL";
    static inline const std::string DEFAULT_MODULE_TAG = "default";

    /** Makes a tag of the component's log type and domain. */
    static Tag Create(const std::string& module, const std::string& component, const std::string& subSystem);

    /** What HiLogPrint takes: its tag is the subsystem's name. */
    LogType GetLogType() const { return LOG_CORE; }
    uint32_t GetDomain() const { return 0xD005610; }
    const std::string& GetSubSystemTag() const { return subSystem_; }

    /** The first two fields of a line. */
    const std::string& GetComponentTag() const { return component_; }
    const std::string& GetModuleTag() const { return module_; }

private:
    Tag(const std::string& module, const std::string& component, const std::string& subSystem)
        : module_(module), component_(component), subSystem_(subSystem)
    {}

    std::string module_;
    std::string component_;
    std::string subSystem_;
};

} // namespace OHOS::Korvane::Quenlar::Util::OstLog

#endif // OST_LOG_H
