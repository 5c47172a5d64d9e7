// SPDX-License-Identifier: Apache-2.0
#ifndef BUS_TEST_H
#define BUS_TEST_H

#include <list>
#include <memory>
#include <string>

#include "helper.h"

/** A test with a bus daemon, and a folder, of its own. The helpers that run to its end must end well. */
class BusTest : public testing::Test {
public:
    /** Services may be had by `serviceUser` alone; by this process's user where it is empty. */
    explicit BusTest(const std::string& serviceUser = "");
    ~BusTest() override;

protected:
    /** Forks a helper. */
    Helper& Start();

    /** The same, and has it do something. */
    template <typename F>
    Helper& Start(F function)
    {
        Helper& helper = Start();
        helper.Ask(function);
        return helper;
    }

    /** At the same address as ever. */
    void StartDaemon();
    void KillDaemon();

    std::string folder_;     // Goes, with all in it.
    std::string busAddress_; // For the helpers that are yet to be started.
    std::unique_ptr<Helper> daemon_;

private:
    std::list<Helper> helpers_;
};

#endif // BUS_TEST_H
