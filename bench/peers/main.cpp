// SPDX-License-Identifier: Apache-2.0
// The library beside its peers. Runs on a bus, and prints a line for each figure.
#include "calls.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench;

int main() { MeasureCalls(); }
