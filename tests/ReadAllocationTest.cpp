// A host polls numeric items continuously: such a read must not touch the
// heap beyond what the board-library call itself does. Counted with the
// malloc replacements of support/AllocationCounter.c (not in sanitizer
// builds, whose allocator is their own).
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "AllocationCounter.h"
#include "HeapUse.h"
#include "SimHarness.h"
#include "binding/Vora4Library.h"
#include "voradrv.h"

using vtest::Generation;

namespace {

constexpr int kReads = 100;

// Allocations made by `kReads` calls of `call`, each of which must succeed.
uint64_t AllocationsOf(const std::function<uint32_t()>& call) {
    const uint64_t before = vcount_allocations();
    for (int i = 0; i < kReads; ++i) {
        if (call() != 0) {
            ADD_FAILURE() << "the read failed";
            break;
        }
    }
    return vcount_allocations() - before;
}

}  // namespace

TEST(ReadAllocation, NumericReadsAddNoAllocationToTheLibraryCall) {
    if (vtest::UnderMemcheck()) {
        GTEST_SKIP() << "the allocator is Valgrind's under memcheck";
    }
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    const auto getValue = sim.function<decltype(VoraBoardGetValue)>("VoraBoardGetValue");
    const auto getLevel = sim.function<decltype(VoraGPIOGetLevel)>("VoraGPIOGetLevel");
    const auto getBrightness = sim.function<decltype(VoraVgaGetBacklightBrightness)>(
        "VoraVgaGetBacklightBrightness");
    ASSERT_TRUE(getValue != nullptr && getLevel != nullptr && getBrightness != nullptr);

    struct Case {
        const char* item;
        uint32_t id;
        json_t* value;
        std::function<uint32_t()> direct;
    };
    unsigned int out[64] = {};
    const Case cases[] = {
        {"first voltage", 0x1020201, json_real(0.0), [&] { return getValue(0x21000, out); }},
        {"level of pin 0", 0x1040301, json_integer(0), [&] { return getLevel(0, 1, out); }},
        {"brightness of panel 0", 0x1050501, json_integer(0),
         [&] { return getBrightness(0, out); }},
        {"network status", 0x10B0002, json_integer(0), [&] { return getValue(0x12001, out); }},
        {"boot up times", 0x1010102, json_integer(0), [&] { return getValue(1, out); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.item);
        const uint64_t library = AllocationsOf(c.direct);
        const uint64_t module = AllocationsOf([&] { return VoraIoTGetMDValue(c.id, c.value); });
        EXPECT_EQ(library, module);
        json_decref(c.value);
    }
}

TEST(ReadAllocation, TheCounterSeesTheModulesAllocations) {
    if (vtest::UnderMemcheck()) {
        GTEST_SKIP() << "the allocator is Valgrind's under memcheck";
    }
    // A text read must copy the text into the host's JSON string: the counter
    // has to see that, or the test above proves nothing.
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    json_t* name = json_string("");
    const uint64_t allocations =
        AllocationsOf([&] { return VoraIoTGetMDValue(0x1010402, name); });
    EXPECT_GE(allocations, static_cast<uint64_t>(kReads));
    json_decref(name);
}
