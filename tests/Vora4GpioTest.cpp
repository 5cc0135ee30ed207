// GPIO on the fourth-generation library.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "binding/VORA4Handle.h"
#include "gpio/Vora4GPIO.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Dump;
using vtest::FindElement;
using vtest::Generation;
using vtest::Own;
using vtest::ReadItem;

namespace {

const char kPins[] = R"({"board": {"name": "VB-1"}, "gpio": [
    {"pin": 0, "name": "IN", "input": true, "output": false, "level": 1},
    {"pin": 1, "name": "OUT", "input": false, "output": true, "level": 0},
    {"pin": 2, "input": true, "output": true, "direction": "out", "level": 1},
    {"pin": 40, "name": "SAME", "input": true, "output": false},
    {"pin": 127, "name": "SAME", "input": false, "output": true}]})";

json_t* Gpio(vtest::JsonPtr& document) {
    document = vtest::ModuleCapability();
    return json_object_get(document.get(), "GPIO");
}

}  // namespace

TEST(Vora4Gpio, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = Own(nullptr);
    vtest::ExpectGolden(Gpio(document), "vora4-gpio.json");
}

TEST(Vora4Gpio, CapabilitiesGiveRangesAndAccessModes) {
    vtest::UseSimulator(Generation::Vora4, kPins);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = Own(nullptr);
    const json_t* gpio = Gpio(document);
    // Input only: direction fixed at 1, level read-only.
    EXPECT_EQ(
        R"({"e":[{"n":"Dir","bv":1,"max":1,"min":1,"id":17039873,"u":"I/O","asm":"r","ui":"label"},)"
        R"({"n":"Level","bv":1,"max":1,"min":0,"id":17040129,"u":"H/L","asm":"r","ui":"label"}],)"
        R"("bn":"IN","bt":1276020076,"bu":"info","ver":1,"id":17039617})",
        Dump(json_object_get(gpio, "IN")));
    // Output only: direction fixed at 0, level writable.
    EXPECT_EQ(R"({"n":"Dir","bv":0,"max":0,"min":0,"id":17039874,"u":"I/O","asm":"r","ui":"label"})",
              Dump(FindElement(gpio, 0x1040202)));
    EXPECT_STREQ("rw", json_string_value(json_object_get(FindElement(gpio, 0x1040302), "asm")));
    // Both: either direction.
    EXPECT_EQ(
        R"({"n":"Dir","bv":0,"max":1,"min":0,"id":17039875,"u":"I/O","asm":"rw","ui":"TextBox"})",
        Dump(FindElement(gpio, 0x1040203)));
    EXPECT_TRUE(json_is_object(json_object_get(gpio, "GPIO2")));
    // Two pins named alike: the later one stands in the document, both work.
    EXPECT_EQ(0x1040180, json_integer_value(json_object_get(json_object_get(gpio, "SAME"), "id")));
    EXPECT_EQ(1, json_integer_value(ReadItem(0x1040229, JSON_INTEGER).get()));  // pin 40
    EXPECT_EQ(0, json_integer_value(ReadItem(0x1040280, JSON_INTEGER).get()));  // pin 127
}

TEST(Vora4Gpio, FailedCapabilityCallsPublishUnknownRanges) {
    vtest::UseSimulator(Generation::Vora4, kPins);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    Vora4GPIO block;  // finds the pins first
    sim.addFault(R"({"function": "VoraGPIOGetCaps", "arg": "0x10000", "status": "0xFFFFF0FF"})");
    ASSERT_EQ(0u, block.VoraIoTInitialize());
    auto host = Own(json_object());
    ASSERT_EQ(0u, block.VoraIoTGetMDCapability(host.get()));
    EXPECT_EQ(
        R"({"n":"Dir","bv":1,"max":-1,"min":-2,"id":17039873,"u":"I/O","asm":"N/A","ui":"TextBox"})",
        Dump(FindElement(host.get(), 0x1040201)));
    EXPECT_STREQ("N/A", json_string_value(json_object_get(FindElement(host.get(), 0x1040301), "asm")));
    // Pins of the other banks are unaffected.
    EXPECT_STREQ("r", json_string_value(json_object_get(FindElement(host.get(), 0x1040280), "asm")));
}

TEST(Vora4Gpio, BoardWithoutCapablePinsHasNoGpioMember) {
    vtest::UseSimulator(Generation::Vora4, R"({"board": {"name": "VB-1"}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = Own(nullptr);
    EXPECT_EQ(nullptr, Gpio(document));
}

TEST(Vora4Gpio, ReadsAndWritesReachTheLibraryWithMaskOne) {
    vtest::UseSimulator(Generation::Vora4, kPins);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    auto one = Own(json_integer(1));
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1040303, Own(json_integer(0)).get()));
    EXPECT_EQ(0, json_integer_value(ReadItem(0x1040303, JSON_INTEGER).get()));
    // Values go through unchecked; the library decides.
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1040203, Own(json_integer(5)).get()));
    EXPECT_EQ(1, json_integer_value(ReadItem(0x1040203, JSON_INTEGER).get()));
    vtest::StdoutCapture out;
    EXPECT_EQ(0xFFFFFCFFu, VoraIoTSetMDValue(0x1040301, one.get()));  // an input cannot be driven
    out.finish();
    EXPECT_EQ(
        "VoraGPIOSetLevel 0x2 mask=0x1 level=0x0\n"
        "VoraGPIOGetLevel 0x2 mask=0x1\n"
        "VoraGPIOSetDirection 0x2 mask=0x1 direction=0x5\n"
        "VoraGPIOGetDirection 0x2 mask=0x1\n"
        "VoraGPIOSetLevel 0x0 mask=0x1 level=0x1\n",
        sim.log());
}

TEST(Vora4Gpio, StatusesAndMessages) {
    vtest::UseSimulator(Generation::Vora4, kPins);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::StdoutCapture out;
    uint32_t status = 0;
    ReadItem(0x1040101, JSON_INTEGER, &status);  // a pin's group id is no item
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    ReadItem(0x1040201, JSON_REAL, &status);
    EXPECT_EQ(STATUS_INVALID_VALUE, status);
    EXPECT_EQ(STATUS_INVALID_VALUE, VoraIoTSetMDValue(0x1040202, Own(json_real(1.0)).get()));
    EXPECT_EQ(STATUS_NOT_FOUND, VoraIoTSetMDValue(0x1040205, Own(json_integer(1)).get()));
    sim.addFault(R"({"function": "VoraGPIOGetLevel", "status": "0x1234"})");
    auto level = ReadItem(0x1040301, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_ERROR, status);
    EXPECT_EQ(-12345, json_integer_value(level.get()));
    EXPECT_EQ(
        "VORADrv get value: function:GPIO get value failed fffffbff\n"
        "VORADRV GPIO Get Value: not a json integer\n"
        "VORADrv get value: function:GPIO get value failed fffff8ff\n"
        "VORADRV GPIO Get Value: not a json integer\n"
        "VORADrv set value: function:GPIO set value failed\n"
        "VORADrv set value: function:GPIO set value failed\n"
        "VORADrv get value: function:GPIO get value failed fffff0ff\n",
        out.finish());
}
