// SPDX-License-Identifier: Apache-2.0
#ifndef LINE_VIEWS_H
#define LINE_VIEWS_H

#include "view.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** A line of text for each event. */
class LineView : public View {
public:
    void OnListening() override;
    void OnSwitch(int64_t time, const Indicator::IndicatorData& data) override;
    void OnUse(
        int64_t time, const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) override;
    void OnService(int64_t time, bool isThere) override;

private:
    bool wasGone_ = false;
};

/** A JSON object on a line of its own for each event, and for each answer with the service's state. */
class JsonView : public View {
public:
    void OnSwitch(int64_t time, const Indicator::IndicatorData& data) override;
    void OnUse(
        int64_t time, const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) override;
    void OnService(int64_t time, bool isThere) override;
    void OnState(int64_t time, const ServiceState& state) override;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // LINE_VIEWS_H
