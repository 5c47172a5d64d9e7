// SPDX-License-Identifier: Apache-2.0
#ifndef TOOLS_TEST_H
#define TOOLS_TEST_H

#include <optional>
#include <string>
#include <vector>

#include "bus_test.h"

inline const std::string CTL = EXAMPLES_DIR "/indicator_ctl";
inline const std::string MONITOR = EXAMPLES_DIR "/indicator_monitor";
inline const std::string SERVICE = EXAMPLES_DIR "/indicator_service";

/** A test of the tools, with a bus of its own, and a service that learns from it what applications do. */
class ToolsTest : public BusTest {
public:
    ToolsTest();
    ~ToolsTest() override;

protected:
    /** Starts the service and waits until it can be found. */
    void StartService(const std::string& options = "");

    /** Has the service read a line. */
    void Use(const std::string& line) const;

    /** The service's next line, but for those about listeners. */
    std::string ServiceLine();

    /** Waits until the service has registered a monitor. */
    void AwaitMonitor();

    /** What a shell's command prints on either stream, and "= " and its exit code at the end. */
    std::string Run(const std::string& command) const;

    std::optional<Helper> service_;

private:
    int uses_ = -1; // To the service's standard input.
};

#endif // TOOLS_TEST_H
