// A host polls numeric items continuously: such a read must not touch the
// heap beyond what the board-library call itself does, while a text read,
// which copies the text into the host's string, must show in the count (or
// the first check proves nothing). Counted with the malloc replacements of
// support/AllocationCounter.c (not in sanitizer builds, whose allocator is
// their own, nor under memcheck).
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <functional>

#include "AllocationCounter.h"
#include "Harness.h"
#include "HeapUse.h"


using namespace vtest;

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

TEST(ReadAllocation, NumbersAddNothingTextsShow) {
    if (UnderMemcheck()) {
        GTEST_SKIP() << "the allocator is Valgrind's under memcheck";
    }
    UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, Module().initialize());
    void* sim = dlopen(SimLibraryPath(Generation::Vora4).c_str(), RTLD_LAZY);
    using GetValue = uint32_t (*)(unsigned int, unsigned int*);
    using GetLevel = uint32_t (*)(unsigned int, unsigned int, unsigned int*);
    const auto getValue = reinterpret_cast<GetValue>(dlsym(sim, "VoraBoardGetValue"));
    const auto getLevel = reinterpret_cast<GetLevel>(dlsym(sim, "VoraGPIOGetLevel"));
    const auto getBrightness = reinterpret_cast<GetValue>(dlsym(sim, "VoraVgaGetBacklightBrightness"));
    ASSERT_TRUE(getValue != nullptr && getLevel != nullptr && getBrightness != nullptr);
    unsigned int out[64] = {};
    const struct {
        uint32_t id;
        json_t* value;
        std::function<uint32_t()> direct;
    } reads[] = {
        {0x1020201, json_real(0.0), [&] { return getValue(0x21000, out); }},
        {0x1040301, json_integer(0), [&] { return getLevel(0, 1, out); }},
        {0x1050501, json_integer(0), [&] { return getBrightness(0, out); }},
        {0x10B0002, json_integer(0), [&] { return getValue(0x12001, out); }},
        {0x1010102, json_integer(0), [&] { return getValue(1, out); }},
    };
    for (const auto& read : reads) {
        EXPECT_EQ(AllocationsOf(read.direct),
                  AllocationsOf([&] { return Module().get(read.id, read.value); }))
            << Hex(read.id);
        json_decref(read.value);
    }
    json_t* name = json_string("");
    EXPECT_GE(AllocationsOf([&] { return Module().get(0x1010402, name); }), uint64_t{kReads});
    json_decref(name);
}
