// GPIO on the third-generation library.
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

json_int_t ReadInteger(uint32_t id) {
    return json_integer_value(ReadItem(id, JSON_INTEGER).get());
}

}  // namespace

// The default board counts 3 input-only pins and 5 others: GPIO0 to GPIO7,
// fixed inputs, fixed outputs and pins whose direction can change.
TEST(Vora3Gpio, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    vtest::ExpectGolden(json_object_get(document.get(), "GPIO"), "vora3-gpio.json");
}

TEST(Vora3Gpio, UnreadableMasksOrCountPublishUnknownRangesOrNothing) {
    vtest::UseSimulator(Generation::Vora3, R"({"board": {"name": "VB-1"}, "gpio": [
        {"pin": 0, "input": true, "output": true, "direction": "in"}],
        "faults": [{"function": "VoraIOQueryMask", "arg": 2, "status": 0}]})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    EXPECT_EQ(
        R"({"n":"Dir","bv":1,"max":-1,"min":-2,"id":17039873,"u":"I/O","asm":"N/A","ui":"TextBox"})",
        Dump(FindElement(json_object_get(document.get(), "GPIO"), 0x1040201)));
    EXPECT_EQ(1u, VoraIoTUninitialize());  // the library's own result, passed back

    vtest::SimControl sim(Generation::Vora3);
    sim.addFault(R"({"function": "VoraIOCountEx", "status": 0})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    document = vtest::ModuleCapability();
    EXPECT_EQ(nullptr, json_object_get(document.get(), "GPIO"));
}

TEST(Vora3Gpio, ReadsTakeThePinFromTheIdAlone) {
    vtest::UseSimulator(Generation::Vora3);
    vtest::SimControl sim(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    EXPECT_EQ(1, ReadInteger(0x1040301));
    EXPECT_EQ(0, ReadInteger(0x1040204));
    vtest::StdoutCapture out;
    uint32_t status = 0;
    ReadItem(0x1040300 + 40, JSON_INTEGER, &status);  // pin 39, not on the board
    ReadItem(0x1040300, JSON_INTEGER, &status);       // item 0: pin 255
    EXPECT_EQ(STATUS_ERROR, status);
    EXPECT_EQ("VoraIOReadEx 0x0\nVoraIOQueryMask 0x20\nVoraIOReadEx 0x27\nVoraIOReadEx 0xFF\n",
              sim.log());
    ReadItem(0x1040501, JSON_STRING, &status);  // the type is checked before the id
    EXPECT_EQ(STATUS_INVALID_VALUE, status);
    out.finish();
    // Item 0 of the directions is bit 31 of the mask.
    sim.addFault(R"({"function": "VoraIOQueryMask", "arg": 32, "value": "0x80000000"})");
    EXPECT_EQ(1, ReadInteger(0x1040200));
    EXPECT_EQ(0, ReadInteger(0x1040201));
}

TEST(Vora3Gpio, WritesMapOneToSuccessAndPassOtherResults) {
    vtest::UseSimulator(Generation::Vora3);
    vtest::SimControl sim(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1040304, Own(json_integer(1)).get()));
    EXPECT_EQ(1, ReadInteger(0x1040304));
    // A direction is written as its low 8 bits: 257 is 1 (input).
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1040206, Own(json_integer(257)).get()));
    EXPECT_EQ(1, ReadInteger(0x1040206));
    // The library refuses to drive an input with 0, which also reads as success.
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1040301, Own(json_integer(0)).get()));
    EXPECT_EQ(1, ReadInteger(0x1040301));
    sim.addFault(R"({"function": "VoraIOWriteEx", "status": "0x1234"})");
    vtest::StdoutCapture out;
    EXPECT_EQ(0x1234u, VoraIoTSetMDValue(0x1040304, Own(json_integer(0)).get()));
    EXPECT_EQ(STATUS_INVALID_VALUE, VoraIoTSetMDValue(0x1040304, Own(json_real(1.0)).get()));
    EXPECT_EQ(STATUS_NOT_FOUND, VoraIoTSetMDValue(0x1040101, Own(json_integer(1)).get()));
    out.finish();
}
