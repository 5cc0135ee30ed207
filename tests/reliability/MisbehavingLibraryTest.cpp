// A board library that answers absurdly, on the largest board of each
// generation: texts without a terminator, lengths beyond any buffer, every
// number 0xFFFFFFFF (pin counts, masks and a text's length query among them).
// The module must come up, publish and hand out only texts within its
// buffers and items within the id space, and never ask for an allocation out
// of proportion to the board (the largest single request is watched through
// operator new and jansson).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "AllocationWatch.h"
#include "SimHarness.h"
#include "SweepOracle.h"
#include "voradrv.h"

using vtest::Generation;
using vtest::JsonPtr;

namespace {

// No single allocation of the module is larger than this on any board; the
// largest seen are a few KiB (the hash table of a block with 255 pins, a
// third-generation text of at most 4 KiB).
constexpr size_t kLargestAllocation = 64 * 1024;

struct Bounds {
    size_t text;      // longest text published or read: the largest buffer
    unsigned pins;    // most pins published
    size_t elements;  // most elements in the document
};

Bounds BoundsOf(Generation generation) {
    switch (generation) {
        case Generation::Vora4:
            return {64, 128, 7 + 9 + 3 + 3 + 55 + 256 + 12 + 16};
        case Generation::Vora3:
            return {4096, 255, 3 + 25 + 2 * 255 + 1};
        default:
            return {64, 8, 5 + 7 + 3 + 16 + 3 + 3 + 1 + 16 + 6};
    }
}

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

// The misbehaviour: every library function with `trait` (or only
// `function`) answering `how`; `profile` is the board ("": the largest).
struct Case {
    const char* name;
    Generation generation;
    unsigned trait;
    const char* how;
    std::string profile = "";
    std::string function = "";
};

std::ostream& operator<<(std::ostream& out, const Case& c) { return out << c.name; }

const char kUnterminated[] = R"("unterminated": true)";
const char kHugeLength[] = R"("length": "0xFFFFFFFF")";
const char kAllOnes[] = R"("value": "0xFFFFFFFF")";

class MisbehavingLibrary : public ::testing::TestWithParam<Case> {};

TEST_P(MisbehavingLibrary, TextsAndItemsStayBounded) {
    const Case& c = GetParam();
    vtest::UseSimulator(c.generation,
                        c.profile.empty() ? vtest::LargestBoard(c.generation) : c.profile);
    vtest::SimControl sim(c.generation);
    for (const auto& [function, traits] : sweep::LibraryFunctions(c.generation)) {
        if ((traits & c.trait) != 0 && (c.function.empty() || c.function == function)) {
            sim.addFault(R"({"function": ")" + function + "\", " + c.how + "}");
        }
    }
    JsonPtr document = vtest::Own(json_object());
    size_t longestRead = 0;
    size_t largest = 0;  // the largest allocation while the module runs
    {
        vtest::StdoutCapture quiet;
        vtest::alloc::ResetLargest();
        ASSERT_EQ(0u, VoraIoTInitialize());
        VoraIoTGetMDCapability(document.get());
        largest = vtest::alloc::Largest();
        const std::vector<vtest::Item> items = vtest::Items(document.get());
        vtest::alloc::ResetLargest();
        for (const vtest::Item& item : items) {
            uint32_t status = 0;
            const JsonPtr value = vtest::ReadItem(item.id, item.type, &status);
            longestRead = std::max(longestRead, json_string_length(value.get()));
        }
        largest = std::max(largest, vtest::alloc::Largest());
    }
    const Bounds bounds = BoundsOf(c.generation);
    size_t elements = 0;
    unsigned pins = 0;
    vtest::ForEachElement(document.get(), [&](const json_t* element) {
        ++elements;
        pins += (json_integer_value(json_object_get(element, "id")) & 0xFFFFFF00) == 0x1040300;
    });
    const size_t longest = LongestText(document.get());
    EXPECT_LE(longest, bounds.text) << "a text published";
    EXPECT_LE(longestRead, bounds.text) << "a text read";
    EXPECT_LE(pins, bounds.pins);
    EXPECT_LE(elements, bounds.elements);
    EXPECT_LE(largest, kLargestAllocation) << "the largest single allocation";
    std::printf("%zu elements, %u pins, longest text %zu bytes, largest allocation %zu bytes\n",
                elements, pins, longest, largest);
    if (std::strcmp(c.name, "ThirdGenerationHugeTextIsCutTo4KiB") == 0) {
        EXPECT_GE(longest, 4000u) << "the board name, published cut to the 4 KiB buffer";
    }
    document.reset();
    vtest::Quietly(VoraIoTUninitialize);
}

// The texts' length query of the third generation answers through a number:
// "every number" includes it, and with it the pin count (0xFFFFFFFF twice).
INSTANTIATE_TEST_SUITE_P(
    Largest, MisbehavingLibrary,
    ::testing::Values(
        Case{"FourthGenerationTextsWithoutTerminator", Generation::Vora4,
             sweep::kText, kUnterminated},
        Case{"FourthGenerationTextsLongerThanAnyBuffer", Generation::Vora4,
             sweep::kText, kHugeLength},
        Case{"FourthGenerationEveryNumberAllOnes", Generation::Vora4, sweep::kNumber, kAllOnes},
        Case{"ThirdGenerationTextsWithoutTerminator", Generation::Vora3,
             sweep::kText, kUnterminated},
        Case{"ThirdGenerationTextsLongerThanAnyBuffer", Generation::Vora3,
             sweep::kText, kHugeLength},
        Case{"ThirdGenerationEveryNumberAllOnes", Generation::Vora3, sweep::kNumber, kAllOnes},
        // A board name of 100,000 characters behind a length query of
        // 0xFFFFFFFF: published, cut to the 4 KiB buffer.
        Case{"ThirdGenerationHugeTextIsCutTo4KiB", Generation::Vora3, sweep::kText, kAllOnes,
             R"({"board": {"name": ")" + std::string(100000, 'n') + R"("}})",
             "VoraCoreGetPlatformName"},
        Case{"EApiTextsWithoutTerminator", Generation::EApi, sweep::kText, kUnterminated},
        Case{"EApiTextsLongerThanAnyBuffer", Generation::EApi, sweep::kText, kHugeLength},
        Case{"EApiEveryNumberAllOnes", Generation::EApi, sweep::kNumber, kAllOnes}),
    [](const ::testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

}  // namespace
