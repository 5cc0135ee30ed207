// Backlight on an Embedded API library.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Dump;
using vtest::Generation;
using vtest::Own;
using vtest::ReadItem;

namespace {

json_t* Backlight(vtest::JsonPtr& document) {
    document = vtest::ModuleCapability();
    return json_object_get(document.get(), "Backlight");
}

int64_t ReadInteger(uint32_t id) { return json_integer_value(ReadItem(id, JSON_INTEGER).get()); }

}  // namespace

TEST(EApiBkl, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = Own(nullptr);
    vtest::ExpectGolden(Backlight(document), "eapi-backlight.json");
}

TEST(EApiBkl, PanelsWithoutBrightnessAreSkippedSilently) {
    vtest::UseSimulator(Generation::EApi, R"({"board": {"name": "VB-1"}, "backlight": [
        {"panel": 0, "enable": true}, {"panel": 2, "brightness": 7, "max": 100}]})");
    vtest::StdoutCapture out;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("", out.finish());
    vtest::JsonPtr document = Own(nullptr);
    // Panel 2 is numbered 3; its on/off cannot be read and publishes 0.
    EXPECT_EQ(
        R"({"id":327680,"bn":"Backlight","Backlight 3":{"e":[)"
        R"({"n":"Backlight","bv":0,"max":1,"min":0,"id":17105923,"u":"ON/OFF","asm":"rw","ui":"TextBox"},)"
        R"({"n":"Brightness","v":7,"max":100,"min":0,"id":17106179,"u":"Step","asm":"rw","ui":"TextBox"}],)"
        R"("bn":"Backlight 3","bt":1276020076,"bu":"info","ver":1,"id":17105155}})",
        Dump(Backlight(document)));
}

TEST(EApiBkl, OnOffWritesAndReadsMapDifferently) {
    // Panel 0 on (library 0), panel 1 off (library 0xFFFFFFFF).
    vtest::UseSimulator(Generation::EApi);
    vtest::SimControl sim(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(0, ReadInteger(0x1050401));
    EXPECT_EQ(1, ReadInteger(0x1050402));
    sim.startLog();
    // Any non-zero value sends 0, zero sends 0xFFFFFFFF; written every time.
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050402, Own(json_integer(5)).get()));
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050402, Own(json_integer(1)).get()));
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050401, Own(json_integer(0)).get()));
    EXPECT_EQ(
        "EApiVgaSetBacklightEnable 0x1 value=0x0\n"
        "EApiVgaSetBacklightEnable 0x1 value=0x0\n"
        "EApiVgaSetBacklightEnable 0x0 value=0xFFFFFFFF\n",
        sim.log());
    // So a written 1 reads back as 0, and a written 0 as 1.
    EXPECT_EQ(0, ReadInteger(0x1050402));
    EXPECT_EQ(1, ReadInteger(0x1050401));
}

TEST(EApiBkl, BrightnessPassesThroughAndOtherKindsAreNotFound) {
    vtest::UseSimulator(Generation::EApi);
    vtest::SimControl sim(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050501, Own(json_integer(55)).get()));
    EXPECT_EQ(55, ReadInteger(0x1050501));
    vtest::StdoutCapture out;
    // No check against "max" 100: the library refuses on its own.
    EXPECT_EQ(0xFFFFFEFFu, VoraIoTSetMDValue(0x1050501, Own(json_integer(150)).get()));
    EXPECT_EQ(1, sim.count("EApiVgaSetBacklightBrightness 0x0 value=0x96"));
    uint32_t status = 0;
    for (uint32_t id : {0x1050101u, 0x1050201u, 0x1050301u, 0x1050403u}) {
        ReadItem(id, JSON_INTEGER, &status);
        EXPECT_EQ(STATUS_NOT_FOUND, status) << std::hex << id;
    }
    EXPECT_EQ(STATUS_NOT_FOUND, VoraIoTSetMDValue(0x1050201, Own(json_integer(200)).get()));
    EXPECT_EQ(STATUS_INVALID_VALUE, VoraIoTSetMDValue(0x1050401, Own(json_string("on")).get()));
    sim.addFault(R"({"function": "EApiVgaGetBacklightEnable", "status": "0x99"})");
    auto onOff = ReadItem(0x1050401, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_ERROR, status);
    EXPECT_EQ(-12345, json_integer_value(onOff.get()));
    const std::string printed = out.finish();
    EXPECT_NE(std::string::npos, printed.find("VORADRV BKL Get Value: not a json integer\n"));
}
