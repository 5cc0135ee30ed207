// The lifecycle soak: on the largest board of one library generation, CYCLES
// cycles of initialise, capability, reading every item and uninitialise, as a
// long-lived host would repeat them. The capability document must be the same
// every cycle, and the heap in use and the resident memory flat: the figures
// at cycle 100 and at the last cycle are printed and compared.
//
//   soak 4|3|eapi CYCLES
//
// It runs under the path redirection (ctest preloads it; by hand, through
// build/sim/run-simulated). With glibc it runs itself again with glibc's
// cache turned off, for exact heap figures; in a sanitizer build the
// sanitizer's allocator answers, and resident memory, which its quarantine
// inflates, is reported but not held flat.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Harness.h"
#include "HeapUse.h"

using vtest::Generation;
using vtest::JsonPtr;
using vtest::Own;

namespace {

// The figures are compared from this cycle on: by then everything that lives
// as long as the process (bindings, buffers) is in place.
constexpr long kSettled = 100;
// Resident memory may move by a few pages as the C library reuses its free
// blocks; growth beyond this is a leak's.
constexpr size_t kResidentSlackKiB = 256;

struct Figures {
    size_t heap;
    size_t residentKiB;
};

Figures Now() { return {vtest::HeapInUse(), vtest::ResidentKiB()}; }

bool Sanitized() {
#if defined(__SANITIZE_ADDRESS__)
    return true;
#else
    return false;
#endif
}

int Soak(Generation generation, const char* name, long cycles) {
    vtest::UseSimulator(generation, vtest::LargestBoard(generation));
    std::string first;
    Figures settled{};
    int problems = 0;
    for (long cycle = 1; cycle <= cycles && problems < 10; ++cycle) {
        if (vtest::Module().initialize() != VORADRV_STATUS_SUCCESS) {
            std::printf("cycle %ld: initialise failed\n", cycle);
            ++problems;
            continue;
        }
        {
            JsonPtr document = Own(json_object());
            vtest::Module().capability(document.get());
            const std::string text = vtest::Dump(document.get());
            if (cycle == 1) {
                first = text;
            } else if (text != first) {
                std::printf("cycle %ld: the capability document changed\n", cycle);
                ++problems;
            }
            int failed = 0;
            for (const vtest::Item& item : vtest::Items(document.get())) {
                JsonPtr value = Own(vtest::Sentinel(item.type));
                failed += vtest::Module().get(item.id, value.get()) != 0;
            }
            if (failed != 0) {
                std::printf("cycle %ld: %d reads failed\n", cycle, failed);
                ++problems;
            }
        }
        vtest::Module().uninitialize();
        if (cycle == kSettled || (cycle < kSettled && cycle == cycles)) {
            settled = Now();
        }
    }
    const Figures last = Now();
    std::printf(
        "lifecycle soak (%s, largest board): %ld cycles, document of %zu bytes\n"
        "  heap in use  %8zu bytes at cycle %ld, %8zu bytes at cycle %ld\n"
        "  resident     %8zu KiB   at cycle %ld, %8zu KiB   at cycle %ld\n",
        name, cycles, first.size(), settled.heap, std::min(cycles, kSettled), last.heap, cycles,
        settled.residentKiB, std::min(cycles, kSettled), last.residentKiB, cycles);
    if (last.heap > settled.heap) {
        std::printf("the heap grew by %zu bytes\n", last.heap - settled.heap);
        ++problems;
    }
    if (!Sanitized() && last.residentKiB > settled.residentKiB + kResidentSlackKiB) {
        std::printf("resident memory grew by %zu KiB\n", last.residentKiB - settled.residentKiB);
        ++problems;
    }
    return problems == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    vtest::ExactHeapFigures(argv);
    const std::optional<Generation> generation = vtest::GenerationNamed(argc == 3 ? argv[1] : "");
    const long cycles = argc == 3 ? std::atol(argv[2]) : 0;
    if (!generation || cycles < 1) {
        std::fprintf(stderr, "usage: soak 4|3|eapi CYCLES\n");
        return 2;
    }
    return Soak(*generation, argv[1], cycles);
}
