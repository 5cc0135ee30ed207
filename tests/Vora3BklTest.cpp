// Backlight on the third-generation library.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Generation;
using vtest::Own;
using vtest::ReadItem;

namespace {

json_int_t ReadBrightness(uint32_t id) {
    return json_integer_value(ReadItem(id, JSON_INTEGER).get());
}

}  // namespace

// One panel "VGA" with its brightness; the range's minimum (10) and maximum
// (255) tell which output of the range call is which.
TEST(Vora3Bkl, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    vtest::ExpectGolden(json_object_get(document.get(), "Backlight"), "vora3-backlight.json");
}

TEST(Vora3Bkl, AFailingRangeCallPublishesNothing) {
    vtest::UseSimulator(Generation::Vora3, R"({"board": {"name": "VB-1"},
        "backlight": [{"panel": 0, "brightness": 70, "min": 10, "max": 255}],
        "faults": [{"function": "VoraVCGetBrightRange", "status": 0}]})");
    vtest::StdoutCapture out;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("", out.finish());
    auto document = vtest::ModuleCapability();
    EXPECT_EQ(nullptr, json_object_get(document.get(), "Backlight"));
    EXPECT_EQ(70, ReadBrightness(0x1050501));  // the block is there all the same
}

TEST(Vora3Bkl, BrightnessByKindAsItsLowByte) {
    vtest::UseSimulator(Generation::Vora3);
    vtest::SimControl sim(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050500, Own(json_integer(300)).get()));
    EXPECT_EQ(44, ReadBrightness(0x1050501));
    // Refused by the library with 0, which also reads as success.
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050501, Own(json_integer(256)).get()));
    EXPECT_EQ(44, ReadBrightness(0x1050500));
    EXPECT_EQ(
        "VoraVCSetBright value=0x2C\nVoraVCGetBright\nVoraVCSetBright value=0x0\nVoraVCGetBright\n",
        sim.log());
    sim.addFault(R"({"function": "VoraVCSetBright", "status": "0x77"})");
    sim.addFault(R"({"function": "VoraVCGetBright", "status": 0})");
    vtest::StdoutCapture out;
    EXPECT_EQ(0x77u, VoraIoTSetMDValue(0x1050501, Own(json_integer(50)).get()));
    uint32_t status = 0;
    ReadItem(0x1050501, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_ERROR, status);
    out.finish();
}

TEST(Vora3Bkl, OnOffIsAWriteOnlyScreenCommand) {
    vtest::UseSimulator(Generation::Vora3);
    vtest::SimControl sim(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    vtest::StdoutCapture out;
    uint32_t status = 0;
    ReadItem(0x1050401, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050401, Own(json_integer(0)).get()));
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050401, Own(json_integer(1)).get()));
    EXPECT_EQ(STATUS_ERROR, VoraIoTSetMDValue(0x1050401, Own(json_integer(2)).get()));
    // Only the low 32 bits count: this is 0.
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050401, Own(json_integer(0x100000000)).get()));
    // The type is checked before the kind.
    EXPECT_EQ(STATUS_INVALID_VALUE, VoraIoTSetMDValue(0x1050201, Own(json_string("1")).get()));
    EXPECT_EQ(0u, out.finish().find("VORADrv get value: function:Backlight get value failed"));
    EXPECT_EQ("VoraVCScreenOff\nVoraVCScreenOn\nVoraVCScreenOff\n", sim.log());
}
