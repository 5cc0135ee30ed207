// What bringing the module up costs on the board the simulator presents
// (meant for the largest boards, sim/profiles/*-largest.json): initialise,
// a capability request and uninitialise, repeated, and the heap the module
// holds once initialised ("heap_after_init", bytes).
//
//   sim/run-simulated --generation 3 --profile sim/profiles/vora3-largest.json -- bench_lifecycle
#include <benchmark/benchmark.h>
#include <jansson.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "AllocationCounter.h"
#include "Host.h"

namespace {

// One initialise, capability request and uninitialise; the status of the
// first two, or 0. `heap` receives the bytes the initialise left in use.
uint32_t Cycle(vbench::Module& module, int64_t& heap) {
    const int64_t before = vcount_bytes_in_use();
    uint32_t status = module.initialize();
    heap = vcount_bytes_in_use() - before;
    if (status != VORADRV_STATUS_SUCCESS) {
        return status;
    }
    json_t* capability = json_object();
    status = module.capability(capability);
    json_decref(capability);
    // Its status is the board library's own (1 for success on the third
    // generation), so it is not judged here.
    module.uninitialize();
    return status;
}

void InitCapabilityUninit(benchmark::State& state) {
    vbench::Module& module = vbench::LoadModule();
    int64_t heap = 0;
    uint32_t status = 0;
    const uint64_t before = vcount_allocations();
    for (auto _ : state) {
        status = Cycle(module, heap);
        benchmark::DoNotOptimize(status);
    }
    const uint64_t allocations = vcount_allocations() - before;
    state.counters["allocs"] = benchmark::Counter(static_cast<double>(allocations),
                                                  benchmark::Counter::kAvgIterations);
    state.counters["heap_after_init"] =
        benchmark::Counter(static_cast<double>(heap), benchmark::Counter::kDefaults,
                           benchmark::Counter::kIs1024);
    if (status != 0) {
        char message[64];
        std::snprintf(message, sizeof message, "status 0x%08X", status);
        state.SkipWithError(message);
    }
}

}  // namespace

int main(int argc, char** argv) {
    ::setenv("VORA_SIM_TIME", "0", 0);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    // One cycle first: it loads the board library and the simulator reads its
    // profile, which happens once per process and is not what is measured.
    int64_t heap = 0;
    const uint32_t status = Cycle(vbench::LoadModule(), heap);
    if (status != VORADRV_STATUS_SUCCESS) {
        std::fprintf(stderr, "bench_lifecycle: the first cycle failed (0x%08X)\n", status);
        return 1;
    }
    const std::string name = std::string("InitCapabilityUninit/") + vbench::BoardName();
    benchmark::RegisterBenchmark(name.c_str(), InitCapabilityUninit)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
