// SPDX-License-Identifier: Apache-2.0
// What is measured within one process.
#include <benchmark/benchmark.h>

#include "in_memory_service.h"
#include "service_process.h"

void RegisterRecords();
void RegisterDispatch();

int main(int argc, char** argv)
{
    using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing;
    ServiceProcess service(new InMemoryService());
    benchmark::Initialize(&argc, argv);
    RegisterRecords();
    RegisterDispatch();
    benchmark::RunSpecifiedBenchmarks();
}
