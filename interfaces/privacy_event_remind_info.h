// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_REMIND_INFO_H
#define PRIVACY_EVENT_REMIND_INFO_H

#include <cstdint>
#include <string>

#include "parcel.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/**
 * What a privacy event listener is reminded of: one application's use of a sensor. A value: copied member by member,
 * without locks; nothing in it is range-checked. Throws nothing of its own.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventRemindInfo : public Parcelable {
public:
    std::string bundleName; // Of the application.
    int32_t uid = -1;       // Of the application.
    int32_t privacySensorType = 0;
    int32_t privacyAccessState = 0;
    uint32_t remindFlag = 0;

    /** Appends the fields in their order. False at the first write that fails; what was written before it stays. */
    bool Marshalling(Parcel& parcel) const override;

    /** Reads the fields: a new record, the caller's; null if one is cut or malformed, or there is no memory for it. */
    static PrivacyEventRemindInfo* Unmarshalling(Parcel& parcel);

    /** One line for logs. */
    std::string ToString() const;

private:
    /** The fields that a parcel carries, in their order there. */
    template <typename Self>
    static auto Fields(Self& self);
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_REMIND_INFO_H
