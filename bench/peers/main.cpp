// SPDX-License-Identifier: Apache-2.0
// usage: peers calls | peers events
// The library beside its peers. Runs on a bus, beside the other programs, and prints a line for each figure.
#include <cstring>
#include <filesystem>

#include "calls.h"
#include "events.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench;

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "calls") == 0) {
        MeasureCalls(std::filesystem::path(argv[0]).parent_path().string());
        return 0;
    }
    if (argc == 2 && std::strcmp(argv[1], "events") == 0) {
        MeasureEvents();
        return 0;
    }
    return 2;
}
