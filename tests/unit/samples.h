// SPDX-License-Identifier: Apache-2.0
#ifndef SAMPLES_H
#define SAMPLES_H

#include <memory>

#include "privacy_indicator_service_intf.h" // With every record.
#include "wire.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

using Indicator::IndicatorData;
using Indicator::IndicatorPosition;
using Indicator::IndicatorSize;
using Privacy::PrivacyEventDetail;
using Privacy::PrivacyEventRemindInfo;
using Record::PermissionUsageDuration;
using Record::PermissionUsageDurationQuery;

/** A record in a parcel and as text, with a value of its own in every field. */
struct Sample {
    Bytes bytes;
    std::string text;
};

// 0x41480000 is 12.5, 0xBE800000 is -0.25, 0x40400000 is 3.
inline const Sample DATA = {I32(0x12345678) + I32(-90000) + I32(0x41480000) + I32(0xBE800000) + I32(0x40400000) +
                                I32(0x3F000000) + Str("#00ff7f") + I32(4),
    "Indicator{privacySensorType=305419896, state=-90000, positionX=12.500000, positionY=-0.250000, width=3.000000, "
    "height=0.500000, color='#00ff7f', animationType=4}"};

inline const Sample POSITION = {I32(0x41480000) + I32(0xBE800000) + I32(-1080) + I32(2340) + I32(270),
    "IndicatorPosition{positionX=12.500000, positionY=-0.250000, screenWidth=-1080, screenHeight=2340, "
    "screenRotation=270}"};

inline const Sample SIZE = {I32(0x40400000) + I32(0x3F000000), "IndicatorSize{width=3.000000, height=0.500000}"};

inline const Sample DETAIL = {Str("com.o'hara") + I32(20010043) + I32(2) + I64(-5) + I32(0x55667788) + I32(0x11223344) +
                                  I64(6) + I32(7) + I32(1) + I32(3000000000),
    "PrivacyEventDetail='com.o'hara', uid=20010043, privacySensorType=2, startTimestamp=-5, "
    "realEndTimestamp=1234605616436508552, showEndTimestamp=6, realAccessState=7, showAccessState=13000000000}"};

inline const Sample REMIND_INFO = {Str("com.example") + I32(100) + I32(1) + I32(-2) + I32(-1),
    "PrivacyEventRemindInfo='com.example', uid=100, privacySensorType=1, privacyAccessState=-2, "
    "remindFlag=4294967295}"};

inline const Sample DURATION = {
    Str("com.example.chat") + I32(21) + Str("CAMERA") + I32(-22) + I32(0) + I32(1) + I64(-1),
    "PermissionUsageDuration{bundleName_='com.example.chat', uid=21, usageDuration_=-22, permissionGroup_='CAMERA', "
    "lastBeginTimestamp_=4294967296, lastEndTimestamp_=-1}"};

inline const Sample QUERY = {I32(2) + Str("x") + Str("") + I32(1) + Str("LOCATION") + I64(100) + I64(-200),
    "PermissionUsageDurationQuery{bundleNames=['x', ''], permissionGroups=['LOCATION'], beginTimestamp=100, "
    "endTimestamp=-200}"};

template <typename T>
std::unique_ptr<T> Read(const Bytes& bytes)
{
    RawParcel parcel(bytes);
    return std::unique_ptr<T>(T::Unmarshalling(parcel));
}

/** A record as a parcelable, after its presence flag. */
inline Bytes Present(const Sample& sample) { return I32(1) + sample.bytes; }

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // SAMPLES_H
