// What a host's polling costs on a fourth-generation board: reads through
// VoraIoTGetMDValue beside the same board-library call made directly, and a
// capability request, on an initialised module. Each benchmark reports the
// heap allocations per iteration ("allocs"); after the runs a table gives
// the module's overhead per read (OverheadReporter).
//
//   sim/run-simulated --profile sim/profiles/vora4-largest.json -- bench_read
#include <benchmark/benchmark.h>
#include <jansson.h>

#include <cstdio>
#include <cstdlib>

#include "AllocationCounter.h"
#include "Host.h"
#include "OverheadReporter.h"

namespace {

constexpr const char* kLibrary = "libVORA-4.00";

using GetValueFn = uint32_t (*)(unsigned int id, unsigned int* value);
using GetStringFn = uint32_t (*)(unsigned int id, char* buffer, unsigned int* length);
using GetLevelFn = uint32_t (*)(unsigned int pin, unsigned int mask, unsigned int* level);

// Runs `call` in the benchmark loop; reports the allocations per iteration
// and fails the benchmark when the last call did not succeed.
template <typename Call>
void Measure(benchmark::State& state, Call call) {
    uint32_t status = 0;
    const uint64_t before = vcount_allocations();
    for (auto _ : state) {
        status = call();
        benchmark::DoNotOptimize(status);
    }
    const uint64_t allocations = vcount_allocations() - before;
    state.counters["allocs"] = benchmark::Counter(static_cast<double>(allocations),
                                                  benchmark::Counter::kAvgIterations);
    if (status != 0) {
        char message[64];
        std::snprintf(message, sizeof message, "status 0x%08X", status);
        state.SkipWithError(message);
    }
}

// A read of item `id` through the module into a host value made by `make`.
void ModuleRead(benchmark::State& state, uint32_t id, json_t* (*make)()) {
    vbench::Module& module = vbench::LoadModule();
    json_t* value = make();
    Measure(state, [&] { return module.get(id, value); });
    json_decref(value);
}

json_t* Real() { return json_real(0.0); }
json_t* Integer() { return json_integer(0); }
json_t* String() { return json_string(""); }

void RegisterReads() {
    using benchmark::RegisterBenchmark;
    using benchmark::State;
    static const auto getValue = vbench::BoardFunction<GetValueFn>(kLibrary, "VoraBoardGetValue");
    static const auto getString =
        vbench::BoardFunction<GetStringFn>(kLibrary, "VoraBoardGetStringA");
    static const auto getLevel = vbench::BoardFunction<GetLevelFn>(kLibrary, "VoraGPIOGetLevel");

    // Hardware monitor, first voltage: item 0x1020201, board value 0x21000.
    RegisterBenchmark("Read/HwmVoltage/direct", [](State& state) {
        unsigned int raw = 0;
        Measure(state, [&] { return getValue(0x21000, &raw); });
    });
    RegisterBenchmark("Read/HwmVoltage/module",
                      [](State& state) { ModuleRead(state, 0x1020201, Real); });

    // GPIO, level of pin 0: item 0x1040301.
    RegisterBenchmark("Read/GpioLevel/direct", [](State& state) {
        unsigned int level = 0;
        Measure(state, [&] { return getLevel(0, 1, &level); });
    });
    RegisterBenchmark("Read/GpioLevel/module",
                      [](State& state) { ModuleRead(state, 0x1040301, Integer); });

    // Platform information, "Board name": item 0x1010402, string 1.
    RegisterBenchmark("Read/InfoBoardName/direct", [](State& state) {
        char buffer[65] = {};
        unsigned int length = 64;
        Measure(state, [&] {
            length = 64;
            return getString(1, buffer, &length);
        });
    });
    RegisterBenchmark("Read/InfoBoardName/module",
                      [](State& state) { ModuleRead(state, 0x1010402, String); });

    // Network, "Current device IP": item 0x10B0009, board value 0x12008.
    RegisterBenchmark("Read/NetworkAddress/direct", [](State& state) {
        unsigned int words[64] = {};
        Measure(state, [&] { return getValue(0x12008, words); });
    });
    RegisterBenchmark("Read/NetworkAddress/module",
                      [](State& state) { ModuleRead(state, 0x10B0009, String); });

    // The whole capability document copied into a fresh host object.
    RegisterBenchmark("Capability", [](State& state) {
        vbench::Module& module = vbench::LoadModule();
        Measure(state, [&] {
            json_t* capability = json_object();
            const uint32_t status = module.capability(capability);
            json_decref(capability);
            return status;
        });
    });
}

}  // namespace

int main(int argc, char** argv) {
    // Sensors with a wave stand still.
    ::setenv("VORA_SIM_TIME", "0", 0);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    vbench::Module& module = vbench::LoadModule();
    const uint32_t status = module.initialize();
    if (status != VORADRV_STATUS_SUCCESS) {
        std::fprintf(stderr, "bench_read: initialise failed (0x%08X)\n", status);
        return 1;
    }
    benchmark::AddCustomContext("board", vbench::BoardName());
    RegisterReads();
    vbench::OverheadReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    module.uninitialize();
    benchmark::Shutdown();
    return 0;
}
