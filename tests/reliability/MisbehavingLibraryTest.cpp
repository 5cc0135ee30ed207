// A board library that answers absurdly, on the largest board of each
// generation: texts without a terminator, lengths beyond any buffer, every
// number 0xFFFFFFFF (pin counts, masks and a text's length query among them).
// The module must come up or fail with a status, publish and hand out only
// texts within its buffers and items within the id space, and never ask for
// an allocation out of proportion to the board (the largest single request is
// watched through operator new and jansson).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "AllocationWatch.h"
#include "SimHarness.h"
#include "voradrv.h"

using vtest::Generation;
using vtest::JsonPtr;
using vtest::Own;

namespace {

// No single allocation of the module is larger than this on any board; the
// largest seen are a few KiB (the hash table of a block with 255 pins, a
// third-generation text of at most 4 KiB).
constexpr size_t kLargestAllocation = 64 * 1024;

struct Bounds {
    size_t text;      // longest text published or read
    unsigned pins;    // most pins published
    size_t elements;  // most elements in the document
};

// The largest text the module hands out is its largest buffer: 4 KiB on the
// third generation, 64 bytes elsewhere.
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

// Every function of a kind, made to misbehave in one way for every call.
std::vector<std::string> Faults(const std::vector<const char*>& functions, const char* how) {
    std::vector<std::string> faults;
    for (const char* f : functions) {
        faults.push_back(std::string("{\"function\": \"") + f + "\", " + how + "}");
    }
    return faults;
}

const std::vector<const char*> kVora4Texts = {"VoraBoardGetStringA"};
const std::vector<const char*> kVora4Numbers = {"VoraBoardGetValue",
                                                "VoraGPIOGetCaps",
                                                "VoraGPIOGetDirection",
                                                "VoraGPIOGetLevel",
                                                "VoraVgaGetCaps",
                                                "VoraVgaGetFrequency",
                                                "VoraVgaGetPolarity",
                                                "VoraVgaGetBacklightEnable",
                                                "VoraVgaGetBacklightBrightness"};
const std::vector<const char*> kVora3Texts = {"VoraCoreGetPlatformName", "VoraCoreGetBIOSVersion"};
// With the text calls: their length query answers through a number.
const std::vector<const char*> kVora3Numbers = {
    "VoraCoreGetPlatformName", "VoraCoreGetBIOSVersion", "VoraDllGetVersion",
    "VoraHWMGetVoltage",       "VoraHWMGetFanSpeed",     "VoraHWMGetTemperature",
    "VoraIOQueryMask",         "VoraIOCountEx",          "VoraIOReadEx",
    "VoraVCGetBrightRange",    "VoraVCGetBright"};
const std::vector<const char*> kEApiTexts = {"EApiBoardGetStringA"};
const std::vector<const char*> kEApiNumbers = {
    "EApiBoardGetValue",        "EApiHWMGetCaps",   "EApiGPIOGetDirectionCaps",
    "EApiGPIOGetDirection",     "EApiGPIOGetLevel", "EApiVgaGetBacklightBrightness",
    "EApiVgaGetBacklightEnable"};

const char kUnterminated[] = "\"unterminated\": true";
const char kHugeLength[] = "\"length\": \"0xFFFFFFFF\"";
const char kAllOnes[] = "\"value\": \"0xFFFFFFFF\"";

size_t LongestText(const json_t* node, size_t& elements, unsigned& pins) {
    size_t longest = 0;
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(node, "e"), i, element) {
        ++elements;
        for (const char* key : {"n", "sv"}) {
            longest = std::max(longest, json_string_length(json_object_get(element, key)));
        }
        const auto id = static_cast<uint32_t>(json_integer_value(json_object_get(element, "id")));
        pins += (id & 0xFFFFFF00u) == 0x1040300 ? 1 : 0;
    }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(node), key, member) {
        longest = std::max(longest, std::strlen(key));
        if (json_is_object(member)) {
            longest = std::max(longest, LongestText(member, elements, pins));
        }
    }
    return longest;
}

// Reads every element of the document with a value of its own type; returns
// the longest text read.
size_t ReadEverything(const json_t* node) {
    size_t longest = 0;
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(node, "e"), i, element) {
        const auto id = static_cast<uint32_t>(json_integer_value(json_object_get(element, "id")));
        const json_t* v = json_object_get(element, "v");
        const json_type type = json_object_get(element, "sv") != nullptr ? JSON_STRING
                               : json_is_real(v)                         ? JSON_REAL
                                                                         : JSON_INTEGER;
        uint32_t status = 0;
        JsonPtr value = vtest::ReadItem(id, type, &status);
        longest = std::max(longest, json_string_length(value.get()));
    }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(node), key, member) {
        if (json_is_object(member)) {
            longest = std::max(longest, ReadEverything(member));
        }
    }
    return longest;
}

// Returns the longest text published.
size_t Misbehave(Generation generation, const std::vector<std::string>& faults,
                 const std::string& profile = "") {
    vtest::UseSimulator(generation, profile.empty() ? vtest::LargestBoard(generation) : profile);
    vtest::SimControl sim(generation);
    for (const std::string& fault : faults) {
        sim.addFault(fault);
    }
    const Bounds bounds = BoundsOf(generation);
    vtest::alloc::ResetLargest();
    uint32_t status = 0;
    JsonPtr document = Own(json_object());
    size_t longestRead = 0;
    {
        vtest::StdoutCapture quiet;
        status = VoraIoTInitialize();
        if (status == 0) {
            VoraIoTGetMDCapability(document.get());
            longestRead = ReadEverything(document.get());
        }
    }
    EXPECT_EQ(0u, status) << "initialise";
    size_t elements = 0;
    unsigned pins = 0;
    const size_t longest = LongestText(document.get(), elements, pins);
    EXPECT_LE(longest, bounds.text) << "a text published";
    EXPECT_LE(longestRead, bounds.text) << "a text read";
    EXPECT_LE(pins, bounds.pins);
    EXPECT_LE(elements, bounds.elements);
    EXPECT_LE(vtest::alloc::Largest(), kLargestAllocation) << "the largest single allocation";
    std::printf("%zu elements, %u pins, longest text %zu bytes, largest allocation %zu bytes\n",
                elements, pins, longest, vtest::alloc::Largest());
    document.reset();
    vtest::StdoutCapture quiet;
    VoraIoTUninitialize();
    return longest;
}

}  // namespace

TEST(MisbehavingLibrary, FourthGenerationTextsWithoutTerminator) {
    Misbehave(Generation::Vora4, Faults(kVora4Texts, kUnterminated));
}

TEST(MisbehavingLibrary, FourthGenerationTextsLongerThanAnyBuffer) {
    Misbehave(Generation::Vora4, Faults(kVora4Texts, kHugeLength));
}

TEST(MisbehavingLibrary, FourthGenerationEveryNumberAllOnes) {
    Misbehave(Generation::Vora4, Faults(kVora4Numbers, kAllOnes));
}

TEST(MisbehavingLibrary, ThirdGenerationTextsWithoutTerminator) {
    Misbehave(Generation::Vora3, Faults(kVora3Texts, kUnterminated));
}

TEST(MisbehavingLibrary, ThirdGenerationTextsLongerThanAnyBuffer) {
    Misbehave(Generation::Vora3, Faults(kVora3Texts, kHugeLength));
}

// The pin count (0xFFFFFFFF twice), every mask and the texts' length query.
TEST(MisbehavingLibrary, ThirdGenerationEveryNumberAllOnes) {
    Misbehave(Generation::Vora3, Faults(kVora3Numbers, kAllOnes));
}

// A board name of 100,000 characters behind a length query of 0xFFFFFFFF:
// published, cut to the 4 KiB buffer.
TEST(MisbehavingLibrary, ThirdGenerationHugeTextIsCutTo4KiB) {
    EXPECT_GE(Misbehave(Generation::Vora3, Faults({"VoraCoreGetPlatformName"}, kAllOnes),
                        R"({"board": {"name": ")" + std::string(100000, 'n') + R"("}})"),
              4000u);
}

TEST(MisbehavingLibrary, EApiTextsWithoutTerminator) {
    Misbehave(Generation::EApi, Faults(kEApiTexts, kUnterminated));
}

TEST(MisbehavingLibrary, EApiTextsLongerThanAnyBuffer) {
    Misbehave(Generation::EApi, Faults(kEApiTexts, kHugeLength));
}

TEST(MisbehavingLibrary, EApiEveryNumberAllOnes) {
    Misbehave(Generation::EApi, Faults(kEApiNumbers, kAllOnes));
}
