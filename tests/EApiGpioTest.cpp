// GPIO on an Embedded API library.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Dump;
using vtest::FindElement;
using vtest::Generation;
using vtest::Own;
using vtest::ReadItem;

namespace {

const char kPins[] = R"("gpio": [
    {"pin": 0, "input": true, "output": false, "level": 1},
    {"pin": 1, "input": false, "output": true, "level": 0},
    {"pin": 2, "input": true, "output": true, "direction": "out", "level": 1},
    {"pin": 3, "input": true, "output": true},
    {"pin": 7, "input": true, "output": true},
    {"pin": 8, "input": true, "output": true}])";

// The pins above, with these faults.
std::string Board(const std::string& faults = "") {
    return std::string(R"({"board": {"name": "VB-1"}, )") + kPins + R"(, "faults": [)" + faults +
           "]}";
}

json_t* Gpio(vtest::JsonPtr& document) {
    document = vtest::ModuleCapability();
    return json_object_get(document.get(), "GPIO");
}

std::string Access(const json_t* gpio, uint32_t id) {
    return json_string_value(json_object_get(FindElement(gpio, id), "asm"));
}

}  // namespace

TEST(EApiGpio, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = Own(nullptr);
    vtest::ExpectGolden(Gpio(document), "eapi-gpio.json");
}

TEST(EApiGpio, PinsZeroToSevenWhoseDirectionReads) {
    vtest::UseSimulator(Generation::EApi, Board(R"(
        {"function": "EApiGPIOGetDirection", "arg": 3, "status": "0xFFFFF0FF", "times": 1})"));
    vtest::SimControl sim(Generation::EApi);
    sim.startLog();
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(0, sim.count("EApiGPIOGetDirection 0x8"));
    vtest::JsonPtr document = Own(nullptr);
    const json_t* gpio = Gpio(document);
    // id, bn and pins 0, 1, 2 and 7; pin 3 failed its direction read.
    EXPECT_EQ(6u, json_object_size(gpio));
    EXPECT_EQ(0x1040108, json_integer_value(json_object_get(json_object_get(gpio, "GPIO7"), "id")));
    EXPECT_EQ(nullptr, json_object_get(gpio, "GPIO3"));
    vtest::StdoutCapture out;
    uint32_t status = 0;
    ReadItem(0x1040204, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    EXPECT_EQ(STATUS_NOT_FOUND, VoraIoTSetMDValue(0x1040306, Own(json_integer(1)).get()));
    out.finish();
}

TEST(EApiGpio, TheMasksGiveRangesAndAccessModes) {
    vtest::UseSimulator(Generation::EApi, Board(R"(
        {"function": "EApiGPIOGetDirectionCaps", "arg": 2, "value": 6},
        {"function": "EApiGPIOGetDirectionCaps", "arg": 3, "status": "0xFFFFF0FF"})"));
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = Own(nullptr);
    const json_t* gpio = Gpio(document);
    // Input only (masks 1 and 0): direction fixed at 1, level read-only.
    EXPECT_EQ(R"({"n":"Dir","bv":1,"max":1,"min":1,"id":17039873,"u":"I/O","asm":"r","ui":"label"})",
              Dump(FindElement(gpio, 0x1040201)));
    EXPECT_EQ("r", Access(gpio, 0x1040301));
    // Output only: direction fixed at 0, level writable.
    EXPECT_EQ("r", Access(gpio, 0x1040202));
    EXPECT_EQ("rw", Access(gpio, 0x1040302));
    // The masks as the library gives them, not one bit of them.
    EXPECT_EQ(R"({"n":"Dir","bv":0,"max":6,"min":7,"id":17039875,"u":"I/O","asm":"rw","ui":"TextBox"})",
              Dump(FindElement(gpio, 0x1040203)));
    // A failed call leaves the masks at 0: a pin that can be neither.
    EXPECT_EQ(R"({"n":"Dir","bv":1,"max":0,"min":1,"id":17039876,"u":"I/O","asm":"rw","ui":"TextBox"})",
              Dump(FindElement(gpio, 0x1040204)));
}

TEST(EApiGpio, ReadsAndWritesReachTheLibraryWithMaskOne) {
    vtest::UseSimulator(Generation::EApi, Board());
    vtest::SimControl sim(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1040303, Own(json_integer(0)).get()));
    EXPECT_EQ(0, json_integer_value(ReadItem(0x1040303, JSON_INTEGER).get()));
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1040203, Own(json_integer(1)).get()));
    EXPECT_EQ(1, json_integer_value(ReadItem(0x1040203, JSON_INTEGER).get()));
    vtest::StdoutCapture out;
    // An input cannot be driven: the library's status comes back.
    EXPECT_EQ(0xFFFFFCFFu, VoraIoTSetMDValue(0x1040301, Own(json_integer(1)).get()));
    sim.addFault(R"({"function": "EApiGPIOGetLevel", "status": "0x1234"})");
    uint32_t status = 0;
    ReadItem(0x1040301, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_ERROR, status);
    out.finish();
    EXPECT_EQ(
        "EApiGPIOSetLevel 0x2 mask=0x1 level=0x0\n"
        "EApiGPIOGetLevel 0x2 mask=0x1\n"
        "EApiGPIOSetDirection 0x2 mask=0x1 direction=0x1\n"
        "EApiGPIOGetDirection 0x2 mask=0x1\n"
        "EApiGPIOSetLevel 0x0 mask=0x1 level=0x1\n"
        "EApiGPIOGetLevel 0x0 mask=0x1\n",
        sim.log());
}
