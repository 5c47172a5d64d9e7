// SPDX-License-Identifier: Apache-2.0
#ifndef CLIENT_TEST_H
#define CLIENT_TEST_H

#include <string>
#include <vector>

#include "bus_test.h"

/** Apps on the device's variant of the client, and their service. */
class ClientTest : public BusTest {
protected:
    /** What a switch listener "s" hears when the service goes, and then what an event listener "e" does. */
    static std::vector<std::string> Removal()
    {
        std::vector<std::string> lines;
        std::string infos;
        for (const char* sensor : {"0", "1", "2"}) {
            lines.push_back(std::string("s switch Indicator{privacySensorType=") + sensor +
                            ", state=1, positionX=0.000000, positionY=0.000000, width=0.000000, height=0.000000, "
                            "color='#000000', animationType=0}");
            infos += std::string(" PrivacyEventRemindInfo='', uid=-1, privacySensorType=") + sensor +
                     ", privacyAccessState=2, remindFlag=0}";
        }
        lines.push_back("e sensorStateChange" + infos);
        return lines;
    }

    static void ExpectRemoval(Helper& app)
    {
        for (const std::string& line : Removal()) {
            EXPECT_EQ(app.Event(), line);
        }
    }
};

#endif // CLIENT_TEST_H
