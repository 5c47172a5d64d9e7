// SPDX-License-Identifier: Apache-2.0
#include <fstream>
#include <sstream>

#include "fake_service.h"
#include "privacy_event_listener_proxy.h"
#include "privacy_indicator_service_intf_proxy.h"

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

TEST(WireFormatPageTest, TheExamplesAreWhatIsSentAndRead)
{
    const sptr<FakeRemote> remote = new FakeRemote();
    PrivacyIndicatorServiceIntfProxy service(remote);
    EXPECT_EQ(service.TurnOffIndicator(2, 1), 0);
    EXPECT_EQ(remote->header.at(0), 7);
    EXPECT_EQ(remote->request, ExampleOf("TurnOffIndicator"));

    remote->answer = ExampleOf("GetActiveIndicators");
    std::vector<IndicatorData> indicators;
    EXPECT_EQ(service.GetActiveIndicators(indicators), 0);
    ASSERT_EQ(indicators.size(), 1U);
    EXPECT_EQ(indicators[0].ToString(),
        "Indicator{privacySensorType=0, state=0, positionX=12.500000, positionY=-0.250000, width=3.000000, "
        "height=0.500000, color='#00ff00', animationType=4}");

    PrivacyEventRemindInfo info;
    info.bundleName = "com.example.chat";
    info.uid = 20010043;
    info.privacySensorType = 1;
    info.privacyAccessState = 2;
    Privacy::PrivacyEventListenerProxy(remote).OnPrivacyEventChanged("sensorStateChange", {info});
    EXPECT_EQ(remote->request, ExampleOf("event"));
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
