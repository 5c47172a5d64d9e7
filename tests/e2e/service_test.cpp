// SPDX-License-Identifier: Apache-2.0
#include "../unit/samples.h"
#include "bus_test.h"

namespace {

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

using ServiceTest = BusTest;

TEST_F(ServiceTest, EveryRequestAndCallbackGoesBetweenProcesses)
{
    Helper& service = Start({"serve"}, "service_process");
    Helper& caller = Start({}, "service_process");
    EXPECT_EQ(caller.Ask("call"), "0 0 0 0 0 0 0 0 0 0 0 ");
    for (const std::string& request : {std::string("events of camera"), std::string("no events for it"),
             std::string("details of 100"), std::string("details of -5 and 3"), std::string("active"),
             "on 1" + POSITION.text + SIZE.text + "7", std::string("off 2-8"), std::string("switches"),
             std::string("no switches for it"), QUERY.text, std::string("power 11")}) {
        EXPECT_EQ(service.Event(), std::to_string(caller.Pid()) + " " + request);
    }
    const std::string callbacks =
        "camera " + PrivacyEventRemindInfo().ToString() + ", camera " + REMIND_INFO.text + ", switch " + DATA.text;
    EXPECT_EQ(caller.Events(8), DATA.text + ", " + DURATION.text + ", " + PrivacyEventDetail().ToString() + ", " +
                                    DETAIL.text + ", " + DETAIL.text + ", " + callbacks);
    EXPECT_EQ(service.Ask("result -77"), "0");
    EXPECT_EQ(caller.Ask("call"), "-77 -77 -77 -77 -77 -77 -77 -77 -77 -77 -77 ");
    EXPECT_EQ(caller.Events(3), callbacks); // With an error come no records.
}

} // namespace
