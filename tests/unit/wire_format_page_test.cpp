// SPDX-License-Identifier: Apache-2.0
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "wire.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

// The bytes of the page's example whose heading has `words`: those of each line, up to its remark.
Bytes ExampleOf(const std::string& words)
{
    std::ifstream page(WIRE_FORMAT_PAGE);
    Bytes bytes;
    std::string line;
    while (std::getline(page, line) && (line.rfind("### ", 0) != 0 || line.find(words) == std::string::npos)) {
    }
    while (std::getline(page, line) && line != "```hex") {
    }
    while (std::getline(page, line) && line != "```") {
        std::istringstream pairs(line.substr(0, line.find("  ")));
        for (int byte = 0; pairs >> std::hex >> byte;) {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

// The other tests compare what is sent and read with the same items.
TEST(WireFormatPageTest, TheExamplesAreOfThisFormat)
{
    EXPECT_EQ(ExampleOf("TurnOffIndicator"),
        Token(u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf") + I32(2) + I32(1));
    EXPECT_EQ(ExampleOf("GetActiveIndicators"), I32(0) + I32(1) + I32(1) + I32(0) + I32(0) + I32(0x41480000) +
                                                    I32(0xBE800000) + I32(0x40400000) + I32(0x3F000000) +
                                                    Str("#00ff00") + I32(4));
    EXPECT_EQ(ExampleOf("event"), Token(u"ohos.korvane.quenlar.PrivacyIndicator.Privacy.IPrivacyEventListener") +
                                      Str("sensorStateChange") + I32(1) + I32(1) + Str("com.example.chat") +
                                      I32(20010043) + I32(1) + I32(2) + I32(0));
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
