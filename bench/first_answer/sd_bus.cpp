// SPDX-License-Identifier: Apache-2.0
// usage: sd_bus ADDRESS [NAME]
// The same by sd-bus: with a name, which its daemon knows; without one, directly.
#include <systemd/sd-bus.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    const char* name = argc > 2 ? argv[2] : nullptr;
    sd_bus* bus = nullptr;
    sd_bus_message* reply = nullptr;
    int result = -1;
    if (argc < 2 || sd_bus_new(&bus) < 0 || sd_bus_set_address(bus, argv[1]) < 0 ||
        sd_bus_set_bus_client(bus, name != nullptr ? 1 : 0) < 0 || sd_bus_start(bus) < 0 ||
        sd_bus_call_method(bus, name, "/indicator", "qnl.Indicator", "TurnOffIndicator", nullptr, &reply, "ii", 0, 1) <
            0 ||
        sd_bus_message_read(reply, "i", &result) < 0 || result != 0) {
        return 1;
    }
    char byte = 0;
    return write(STDOUT_FILENO, &byte, 1) == 1 && read(STDIN_FILENO, &byte, 1) == 0 ? 0 : 1;
}
