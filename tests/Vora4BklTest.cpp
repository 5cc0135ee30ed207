// Backlight on the fourth-generation library.
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

json_t* Backlight(vtest::JsonPtr& document) {
    document = vtest::ModuleCapability();
    return json_object_get(document.get(), "Backlight");
}

}  // namespace

TEST(Vora4Bkl, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = Own(nullptr);
    vtest::ExpectGolden(Backlight(document), "vora4-backlight.json");
}

TEST(Vora4Bkl, PanelWithAllControlsInTheirOrder) {
    vtest::UseSimulator(Generation::Vora4, R"({"board": {"name": "VB-1"}, "backlight": [
        {"panel": 0, "name": "LVDS", "brightness": 80, "min": 5, "max": 90, "frequency": 200,
         "polarity": 1, "enable": true}]})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = Own(nullptr);
    EXPECT_EQ(
        R"({"id":327680,"bn":"Backlight","LVDS":{"e":[)"
        R"({"n":"Brightness","v":80,"max":90,"min":5,"id":17106177,"u":"Step","asm":"rw","ui":"TextBox"},)"
        R"({"n":"Frequency","v":200,"max":65535,"min":0,"id":17105409,"u":"Hz","asm":"rw","ui":"TextBox"},)"
        R"({"n":"Polarity","bv":1,"max":1,"min":0,"id":17105665,"u":"ON/OFF","asm":"rw","ui":"TextBox"},)"
        R"({"n":"Backlight","bv":1,"max":1,"min":0,"id":17105921,"u":"ON/OFF","asm":"rw","ui":"TextBox"}],)"
        R"("bn":"LVDS","bt":1276020076,"bu":"info","ver":1,"id":17105153}})",
        Dump(Backlight(document)));
}

TEST(Vora4Bkl, OnlyBrightnessOrOnOffStartAPanel) {
    vtest::UseSimulator(Generation::Vora4, R"({"board": {"name": "VB-1"}, "backlight": [
        {"panel": 0, "frequency": 300, "polarity": 0},
        {"panel": 1, "enable": false},
        {"panel": 2}]})");
    vtest::StdoutCapture out;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(
        "VORADrv BKL : cap frequency unable to append new value\n"
        "VORADrv BKL : cap polarity unable to append new value\n",
        out.finish());
    vtest::JsonPtr document = Own(nullptr);
    const json_t* backlight = Backlight(document);
    // Panel 1 has only its on/off item and the default name; 0 and 2 are absent.
    EXPECT_EQ(3u, json_object_size(backlight));
    EXPECT_EQ(
        R"({"e":[{"n":"Backlight","bv":0,"max":1,"min":0,"id":17105922,"u":"ON/OFF","asm":"rw","ui":"TextBox"}],)"
        R"("bn":"BackLight1","bt":1276020076,"bu":"info","ver":1,"id":17105154})",
        Dump(json_object_get(backlight, "BackLight1")));
    // Panel 0's frequency stays readable by id although it is not published.
    EXPECT_EQ(300, json_integer_value(ReadItem(0x1050201, JSON_INTEGER).get()));
    uint32_t status = 0;
    ReadItem(0x1050403, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_NOT_FOUND, status);
}

TEST(Vora4Bkl, RangeAndNameLengthCarryOverFromTheEarlierPanel) {
    vtest::UseSimulator(Generation::Vora4, R"({"board": {"name": "VB-1"}, "backlight": [
        {"panel": 0, "name": "eDP", "brightness": 50, "min": 10, "max": 70},
        {"panel": 1, "name": "LVDS-B", "brightness": 20, "min": 0, "max": 100}],
        "faults": [{"function": "VoraVgaGetCaps", "arg": 1, "status": "0xFFFFF0FF"}]})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = Own(nullptr);
    const json_t* brightness = FindElement(Backlight(document), 0x1050502);
    EXPECT_EQ(70, json_integer_value(json_object_get(brightness, "max")));
    EXPECT_EQ(10, json_integer_value(json_object_get(brightness, "min")));
    // The name call of panel 1 gets the length the first call left (3): the
    // longer name does not fit and the default name is used.
    EXPECT_TRUE(json_is_object(json_object_get(Backlight(document), "BackLight1")));
}

TEST(Vora4Bkl, OnOffIsWrittenOnlyWhenItChanges) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050402, Own(json_integer(1)).get()));
    EXPECT_EQ(0, sim.count("VoraVgaSetBacklightEnable"));
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050402, Own(json_integer(0)).get()));
    EXPECT_EQ(1, sim.count("VoraVgaSetBacklightEnable 0x1 value=0x0"));
    EXPECT_EQ(0, json_integer_value(ReadItem(0x1050402, JSON_INTEGER).get()));

    sim.addFault(R"({"function": "VoraVgaGetBacklightEnable", "status": "0x4321"})");
    vtest::StdoutCapture out;
    EXPECT_EQ(0x4321u, VoraIoTSetMDValue(0x1050402, Own(json_integer(1)).get()));
    out.finish();
    EXPECT_EQ(1, sim.count("VoraVgaSetBacklightEnable"));
}

TEST(Vora4Bkl, WritesPassThroughAndStatusesFollowTheRules) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050501, Own(json_integer(55)).get()));
    EXPECT_EQ(55, json_integer_value(ReadItem(0x1050501, JSON_INTEGER).get()));
    EXPECT_EQ(0u, VoraIoTSetMDValue(0x1050301, Own(json_integer(1)).get()));
    vtest::StdoutCapture out;
    // No range check against "max": the library refuses on its own.
    EXPECT_EQ(0xFFFFFEFFu, VoraIoTSetMDValue(0x1050201, Own(json_integer(100000)).get()));
    EXPECT_EQ(1, sim.count("VoraVgaSetFrequency 0x0 value=0x186A0"));
    uint32_t status = 0;
    ReadItem(0x1050101, JSON_INTEGER, &status);  // a panel's group id is no item
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    ReadItem(0x1050501, JSON_STRING, &status);
    EXPECT_EQ(STATUS_INVALID_VALUE, status);
    EXPECT_EQ(STATUS_INVALID_VALUE, VoraIoTSetMDValue(0x1050501, nullptr));
    sim.addFault(R"({"function": "VoraVgaGetFrequency", "status": "0x99"})");
    ReadItem(0x1050201, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_ERROR, status);
    EXPECT_EQ(
        "VORADrv set value: function:Backlight set value failed\n"
        "VORADrv get value: function:Backlight get value failed fffffbff\n"
        "VORADRV BKL Get Value: not a json integer\n"
        "VORADrv get value: function:Backlight get value failed fffff8ff\n"
        "VORADRV BKL Get Value: not a json integer\n"
        "VORADrv set value: function:Backlight set value failed\n"
        "VORADrv get value: function:Backlight get value failed fffff0ff\n",
        out.finish());
}

TEST(Vora4Bkl, UninitialiseLeavesTheHostsCopyIntact) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    EXPECT_EQ(0u, VoraIoTUninitialize());
    // The block object under "Backlight" is the host's own copy of the
    // package's members; it survives the package (ASan checks the release).
    const json_t* backlight = json_object_get(document.get(), "Backlight");
    EXPECT_STREQ("Backlight", json_string_value(json_object_get(backlight, "bn")));
}
