// A board library that answers absurdly, on the largest board of each
// generation: texts without a terminator, lengths beyond any buffer, every
// number 0xFFFFFFFF (pin counts, masks and a text's length query among
// them). The module must come up, publish and hand out only texts within its
// buffers and items within the id space, and never ask for an allocation out
// of proportion to the board (the largest single request is watched through
// operator new and jansson).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "AllocationWatch.h"
#include "Faults.h"
#include "Harness.h"

using namespace vtest;

namespace {

// No single allocation of the module is larger than this on any board; the
// largest seen are a few KiB (the hash table of a block with 255 pins, a
// third-generation text of at most 4 KiB).
constexpr size_t kLargestAllocation = 64 * 1024;

// The longest text the module has a buffer for, and the most pins it can
// publish, on each generation.
struct Bounds {
    size_t text;
    unsigned pins;
};
constexpr Bounds kBounds[] = {{64, 128}, {4096, 255}, {64, 8}};

// The longest string (member name or value) anywhere in `json`.
size_t LongestText(const json_t* json) {
    size_t longest = json_string_length(json);
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(json), key, member) {
        longest = std::max({longest, std::strlen(key), LongestText(member)});
    }
    size_t i;
    json_array_foreach(json, i, member) { longest = std::max(longest, LongestText(member)); }
    return longest;
}

// Every function of the library that answers texts (`text`) or numbers
// answering as `how`; or only `function`, on `profile` ("": the largest
// board).
struct Case {
    const char* name;
    Generation generation;
    bool text;
    const char* how;
    std::string profile = "";
    std::string function = "";
};

std::ostream& operator<<(std::ostream& out, const Case& c) { return out << c.name; }

const char kUnterminated[] = R"("unterminated": true)";
const char kHugeLength[] = R"("length": "0xFFFFFFFF")";
const char kAllOnes[] = R"("value": "0xFFFFFFFF")";

class MisbehavingLibrary : public ::testing::TestWithParam<Case> {};

TEST_P(MisbehavingLibrary, StaysBounded) {
    const Case& c = GetParam();
    UseSimulator(c.generation, c.profile.empty() ? LargestBoard(c.generation) : c.profile);
    SimControl sim(c.generation);
    for (const LibraryFunction& f : LibraryFunctions(c.generation)) {
        if ((c.text ? f.text : f.numbers) && (c.function.empty() || c.function == f.name)) {
            ASSERT_EQ("", sim.addFaultError(R"({"function": ")" + f.name + "\", " + c.how + "}"));
        }
    }
    JsonPtr document = Own(json_object());
    size_t longestRead = 0;
    size_t largest = 0;  // the largest allocation while the module runs
    std::vector<Item> items;
    {
        StdoutCapture quiet;
        alloc::ResetLargest();
        ASSERT_EQ(0u, Module().initialize());
        Module().capability(document.get());
        items = Items(document.get());
        largest = alloc::Largest();
        alloc::ResetLargest();
        for (const Item& item : items) {
            JsonPtr value = Own(Sentinel(item.type));
            Module().get(item.id, value.get());
            longestRead = std::max(longestRead, json_string_length(value.get()));
        }
        largest = std::max(largest, alloc::Largest());
    }
    const Bounds bounds = kBounds[static_cast<int>(c.generation)];
    const auto pins = std::count_if(items.begin(), items.end(), [](const Item& item) {
        return (item.id & 0xFFFFFF00u) == 0x1040300u;
    });
    const size_t longest = LongestText(document.get());
    EXPECT_LE(longest, bounds.text) << "a text published";
    EXPECT_LE(longestRead, bounds.text) << "a text read";
    EXPECT_LE(pins, bounds.pins);
    EXPECT_LE(largest, kLargestAllocation) << "the largest single allocation";
    if (!c.function.empty()) {
        EXPECT_GE(longest, 4000u) << "the board name, published cut to the 4 KiB buffer";
    }
    document.reset();
    StdoutCapture quiet;
    Module().uninitialize();
}

// The texts' length query of the third generation answers through a number:
// "every number" includes it, and with it the pin count (0xFFFFFFFF twice).
INSTANTIATE_TEST_SUITE_P(
    Largest, MisbehavingLibrary,
    ::testing::Values(
        Case{"Vora4Unterminated", Generation::Vora4, true, kUnterminated},
        Case{"Vora4HugeLength", Generation::Vora4, true, kHugeLength},
        Case{"Vora4AllOnes", Generation::Vora4, false, kAllOnes},
        Case{"Vora3Unterminated", Generation::Vora3, true, kUnterminated},
        Case{"Vora3HugeLength", Generation::Vora3, true, kHugeLength},
        Case{"Vora3AllOnes", Generation::Vora3, false, kAllOnes},
        // A board name of 100,000 characters behind a length query of
        // 0xFFFFFFFF: published, cut to the 4 KiB buffer.
        Case{"Vora3HugeName", Generation::Vora3, true, kAllOnes,
             R"({"board": {"name": ")" + std::string(100000, 'n') + R"("}})",
             "VoraCoreGetPlatformName"},
        Case{"EApiUnterminated", Generation::EApi, true, kUnterminated},
        Case{"EApiHugeLength", Generation::EApi, true, kHugeLength},
        Case{"EApiAllOnes", Generation::EApi, false, kAllOnes}));

}  // namespace
