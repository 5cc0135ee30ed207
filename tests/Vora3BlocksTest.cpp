// Platform information, hardware monitor, GPIO and backlight on the
// third-generation library. The default board's documents are golden files
// (GoldenCapability); each block's status and message rules for any id and
// value are held by the hostile-input and fault-sweep checks.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "binding/VORA3Handle.h"
#include "info/Vora3INFO.h"
#include "module/Status.h"
#include "voradrv.h"

using namespace vtest;

TEST(Vora3Info, OneLengthVariableServesBothTexts) {
    // The BIOS query answers 1 without giving a length: its buffer is twice
    // what the board name left (3), so the revision is cut to 5 characters.
    Initialised(Generation::Vora3, R"({"board": {"name": "AB", "bios_revision": "3.20.R14"},
        "faults": [{"function": "VoraCoreGetBIOSVersion", "status": 1, "times": 1}]})");
    EXPECT_EQ("3.20.", ReadText(0x1010405));
}

TEST(Vora3Info, ALengthOfZeroIsDoubledToZero) {
    // The name leaves 0 in the length; the BIOS query answers 1 without
    // writing it, so the revision is asked for with a length of 0.
    UseSimulator(Generation::Vora3, R"({"board": {"name": "AB", "bios_revision": "R14"},
        "faults": [{"function": "VoraCoreGetPlatformName", "length": 0, "times": 2},
                   {"function": "VoraCoreGetBIOSVersion", "status": 1, "times": 1}]})");
    SimControl sim(Generation::Vora3);
    sim.startLog();
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(1, sim.count("VoraCoreGetBIOSVersion buffer=0x1 size=0x0")) << sim.log();
    EXPECT_EQ("", ReadText(0x1010405));
}

TEST(Vora3Info, LengthAnswersCannotOverrunOrUnboundTheBuffers) {
    // The name fills its whole buffer (twice its length) without a
    // terminator and claims 100000 bytes; the BIOS query claims 4 GiB. Both
    // texts still come from bounded buffers (ASan checks the reads).
    Initialised(Generation::Vora3, R"({"board": {"name": "VB-3200", "bios_revision": "R14"},
        "faults": [{"function": "VoraCoreGetPlatformName", "unterminated": true, "length": 100000},
                   {"function": "VoraCoreGetBIOSVersion", "value": "0xFFFFFFFF"}]})");
    EXPECT_EQ("VB-3200VB-3200VB", ReadText(0x1010402));
    EXPECT_EQ("R14", ReadText(0x1010405));
}

TEST(Vora3Info, WithoutTextsOrVersionOnlyTheVersionZeroIsPublished) {
    UseSimulator(Generation::Vora3, R"({"board": {"name": "VB-3200", "bios_revision": "R14"},
        "faults": [{"function": "VoraCoreGetPlatformName", "status": 0},
                   {"function": "VoraCoreGetBIOSVersion", "status": "0xF0000000"}]})");
    HideSymbols("VoraDllGetVersion");
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(R"([{"n":"Driver version","sv":"0.0","asm":"r","id":16843265}])",
              Dump(json_object_get(CapabilityOf("Platform Information").get(), "e")));
    EXPECT_EQ("", ReadText(0x1010402));  // an unpublished text reads as ""
}

TEST(Vora3Info, ReadsAnswerTheTextsKeptAtBuildTime) {
    SimControl sim = Initialised(Generation::Vora3);
    sim.loadProfile(R"({"board": {"name": "Other", "bios_revision": "X"}})");
    sim.startLog();
    EXPECT_EQ("VB-3200", ReadText(0x1010402));
    EXPECT_EQ("3.2", ReadText(0x1010201));
    EXPECT_EQ("", sim.log());
}

TEST(Vora3Info, AFailingItemEndsTheBuild) {
    // The name's buffer ends inside a two-byte character: not UTF-8, so the
    // entry cannot be packed and neither later item is built.
    UseSimulator(Generation::Vora3, R"({"board": {"name": "a\u00e9"}, "faults": [
        {"function": "VoraCoreGetPlatformName", "unterminated": true}]})");
    SimControl sim(Generation::Vora3);
    ASSERT_EQ(1u, VORA3Handle::instance()->mVoraDllInit());
    sim.startLog();
    Vora3INFO block;
    StdoutCapture out;
    EXPECT_EQ(STATUS_ERROR, block.VoraIoTInitialize());
    EXPECT_EQ(
        "VORADrv Info get platform name: json_pack array failed"
        "VORADrv Info init: json_pack array failed\n",
        out.finish());
    EXPECT_EQ(0, sim.count("VoraCoreGetBIOSVersion"));
    EXPECT_EQ(0, sim.count("VoraDllGetVersion"));
    // The text was kept before its entry failed. A JSON string cannot carry
    // it: the read succeeds and the value keeps what it held.
    auto value = Own(json_string("before"));
    EXPECT_EQ(STATUS_SUCCESS, block.VoraIoTGetMDValue(0x1010402, value.get()));
    EXPECT_STREQ("before", json_string_value(value.get()));
}

TEST(Vora3Hwm, MasksDecideTheSensorsAndBitsTheirNames) {
    Initialised(Generation::Vora3, R"({"board": {"name": "VB-1"}, "sensors": {
        "temperature": [{"index": 0, "value": -12.38}, {"index": 2, "value": 20}],
        "voltage": [{"index": 15, "value": 2.017}, {"index": 12, "value": 1.05},
                    {"index": 16, "value": 1}],
        "fan": [{"index": 4, "value": 1000}, {"index": 5, "value": 2000}]},
        "faults": [{"function": "VoraHWMGetVoltage", "arg": "0x1000", "status": 0}]})");
    const JsonPtr hwm = CapabilityOf("Hardware Monitor");
    std::string published;  // item number and name of every entry
    ForEachElement(hwm.get(), [&](const json_t* entry) {
        published += std::to_string(json_integer_value(json_object_get(entry, "id")) & 0xFF) +
                     json_string_value(json_object_get(entry, "n")) + " ";
    });
    // Voltage bit 12 does not answer and bit 16 is beyond the table; fan bit
    // 5 is never published; temperature mask 0x0005 gives items 1 and 3.
    EXPECT_EQ("16V24 1CPU 3AUX 5AUX2 ", published);
    // Cut in single precision (2.017 stays 2.017, not 2.016) and towards zero.
    const json_t* volts = FindElement(hwm.get(), 0x1020210);
    EXPECT_DOUBLE_EQ(2.017, json_real_value(json_object_get(volts, "v")));
    EXPECT_DOUBLE_EQ(15.0, json_real_value(json_object_get(volts, "max")));
    EXPECT_DOUBLE_EQ(-12.3,
                     json_real_value(json_object_get(FindElement(hwm.get(), 0x1020101), "v")));
}

TEST(Vora3Hwm, NamesOfEveryBitAndOnlyAnAnswerOfOneMakesASensor) {
    UseSimulator(Generation::Vora3, LargestBoard(Generation::Vora3));
    SimControl sim(Generation::Vora3);
    sim.addFault(R"({"function": "VoraHWMGetFanSpeed", "arg": "0x10", "status": 2})");
    sim.addFault(R"({"function": "VoraHWMGetTemperature", "arg": "0x4", "status": 0})");
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    const JsonPtr hwm = CapabilityOf("Hardware Monitor");
    EXPECT_EQ("VCORE,V2.5,V3.3,V5,V12,V5SB,V3SB,VBAT,VN50,VN120,VTT,VCORE2,V1.05,V1.5,V1.8,V24",
              GroupNames(hwm.get(), "Voltage"));
    EXPECT_EQ("CPU,System,CPU2", GroupNames(hwm.get(), "Temperature"));  // AUX answered 0
    EXPECT_EQ("CPU,System,Other,CPU2", GroupNames(hwm.get(), "Fan Speed"));  // AUX2 answered 2
}

TEST(Vora3Hwm, ReadsFollowTheItemIdAlone) {
    SimControl sim = Initialised(Generation::Vora3, R"({"board": {"name": "VB-1"}, "sensors": {
        "temperature": [{"index": 0, "value": 30}],
        "voltage": [{"index": 15, "value": 3.3049}, {"index": 31, "value": 24.5}],
        "fan": [{"index": 5, "value": 2000}]},
        "faults": [{"function": "VoraHWMGetVoltage", "arg": "0x8000", "status": 0, "times": 1}]})");
    sim.startLog();
    EXPECT_DOUBLE_EQ(3.304, ReadReal(0x1020210));  // not published: it failed at build time
    EXPECT_DOUBLE_EQ(24.5, ReadReal(0x1020200));   // item 0: the shift wraps to 31
    EXPECT_DOUBLE_EQ(2000.0, ReadReal(0x1020306));
    EXPECT_DOUBLE_EQ(30.0, ReadReal(0x1020121));  // item 33: bit 0 again
    EXPECT_EQ(
        "VoraHWMGetVoltage 0x8000\nVoraHWMGetVoltage 0x80000000\n"
        "VoraHWMGetFanSpeed 0x20\nVoraHWMGetTemperature 0x1\n",
        sim.log());
    // A failed library read still succeeds, with 0 rather than garbage.
    sim.addFault(R"({"function": "VoraHWMGetTemperature", "status": 0})");
    EXPECT_DOUBLE_EQ(0.0, ReadReal(0x1020101));
    // The current group, which this library lacks: the type is checked first.
    StdoutCapture quiet;
    uint32_t status = 0;
    ReadItem(0x1020401, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_INVALID_VALUE, status);
    ReadItem(0x1020401, JSON_REAL, &status);
    EXPECT_EQ(STATUS_NOT_FOUND, status);
}

TEST(Vora3Gpio, UnreadableMasksOrCountPublishUnknownRangesOrNothing) {
    UseSimulator(Generation::Vora3, R"({"board": {"name": "VB-1"}, "gpio": [
        {"pin": 0, "input": true, "output": true, "direction": "in"}],
        "faults": [{"function": "VoraIOQueryMask", "arg": 2, "status": 0}]})");
    SimControl sim(Generation::Vora3);
    sim.startLog();
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(
        R"({"n":"Dir","bv":1,"max":-1,"min":-2,"id":17039873,"u":"I/O","asm":"N/A","ui":"TextBox"})",
        Dump(FindElement(CapabilityOf("GPIO").get(), 0x1040201)));
    // Each of the six capability questions reads mask 32 after the failed
    // mask 2; the direction read adds one more.
    EXPECT_EQ(7, sim.count("VoraIOQueryMask 0x20"));
    EXPECT_EQ(13, sim.count("VoraIOQueryMask 0x2"));
    EXPECT_EQ(1u, VoraIoTUninitialize());  // the library's own result, passed back

    sim.addFault(R"({"function": "VoraIOCountEx", "status": 0})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(nullptr, CapabilityOf("GPIO"));
    VoraIoTUninitialize();

    // The two counts add up as 32-bit numbers (2^31 + 2^31 is 0), and no
    // more than 255 pins can be addressed.
    sim.clearFaults();
    sim.addFault(R"({"function": "VoraIOCountEx", "value": "0x80000000"})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(nullptr, CapabilityOf("GPIO"));
    VoraIoTUninitialize();
    sim.clearFaults();
    sim.addFault(R"({"function": "VoraIOCountEx", "value": 200})");
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    EXPECT_EQ(2u + 255u, json_object_size(CapabilityOf("GPIO").get()));
}

TEST(Vora3Gpio, ALevelBelowZeroIsPublishedAndReadAlike) {
    UseSimulator(Generation::Vora3, R"({"board": {"name": "VB-1"}, "gpio": [{"pin": 0}],
        "faults": [{"function": "VoraIOReadEx", "value": "0xFFFFFFFF"}]})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(-1, json_integer_value(json_object_get(
                      FindElement(CapabilityOf("GPIO").get(), 0x1040301), "bv")));
    EXPECT_EQ(-1, ReadInteger(0x1040301));
}

TEST(Vora3Gpio, ReadsTakeThePinFromTheIdAlone) {
    SimControl sim = Initialised(Generation::Vora3);
    sim.startLog();
    EXPECT_EQ(1, ReadInteger(0x1040301));
    EXPECT_EQ(0, ReadInteger(0x1040204));
    StdoutCapture quiet;
    uint32_t status = 0;
    ReadItem(0x1040300 + 40, JSON_INTEGER, &status);  // pin 39, not on the board
    ReadItem(0x1040300, JSON_INTEGER, &status);       // item 0: pin 255
    EXPECT_EQ(STATUS_ERROR, status);
    EXPECT_EQ("VoraIOReadEx 0x0\nVoraIOQueryMask 0x20\nVoraIOReadEx 0x27\nVoraIOReadEx 0xFF\n",
              sim.log());
    // Item 0 of the directions is bit 31 of the mask.
    sim.addFault(R"({"function": "VoraIOQueryMask", "arg": 32, "value": "0x80000000"})");
    EXPECT_EQ(1, ReadInteger(0x1040200));
    EXPECT_EQ(0, ReadInteger(0x1040201));
}

TEST(Vora3Gpio, WritesMapOneToSuccessAndPassOtherResults) {
    SimControl sim = Initialised(Generation::Vora3);
    EXPECT_EQ(0u, Write(0x1040304, json_integer(1)));
    EXPECT_EQ(1, ReadInteger(0x1040304));
    // A direction is written as its low 8 bits: 257 is 1 (input).
    EXPECT_EQ(0u, Write(0x1040206, json_integer(257)));
    EXPECT_EQ(1, ReadInteger(0x1040206));
    // The library refuses to drive an input with 0, which also reads as success.
    EXPECT_EQ(0u, Write(0x1040301, json_integer(0)));
    EXPECT_EQ(1, ReadInteger(0x1040301));
    sim.addFault(R"({"function": "VoraIOWriteEx", "status": "0x1234"})");
    EXPECT_EQ(0x1234u, Quietly([] { return Write(0x1040304, json_integer(0)); }));
}

// One panel "VGA" with its brightness, whose range's minimum (10) and
// maximum (255) in the golden file tell which output of the range call is
// which.
TEST(Vora3Bkl, AFailingRangeOrBrightnessCallPublishesNothing) {
    UseSimulator(Generation::Vora3);
    SimControl sim(Generation::Vora3);
    for (const char* fault : {R"({"function": "VoraVCGetBrightRange", "status": 0})",
                              R"({"function": "VoraVCGetBright", "status": 2, "times": 1})"}) {
        sim.loadProfile(R"({"board": {"name": "VB-1"},
            "backlight": [{"panel": 0, "brightness": 70, "min": 10, "max": 255}],
            "faults": [)" + std::string(fault) + "]}");
        StdoutCapture out;
        ASSERT_EQ(0u, VoraIoTInitialize());
        EXPECT_EQ("", out.finish());
        EXPECT_EQ(nullptr, CapabilityOf("Backlight")) << fault;
        EXPECT_EQ(70, ReadInteger(0x1050501));  // the block is there all the same
        VoraIoTUninitialize();
    }
}

TEST(Vora3Bkl, BrightnessByKindAsItsLowByte) {
    SimControl sim = Initialised(Generation::Vora3);
    sim.startLog();
    EXPECT_EQ(0u, Write(0x1050500, json_integer(300)));
    EXPECT_EQ(44, ReadInteger(0x1050501));
    // Refused by the library with 0, which also reads as success.
    EXPECT_EQ(0u, Write(0x1050501, json_integer(256)));
    EXPECT_EQ(44, ReadInteger(0x1050500));
    EXPECT_EQ(
        "VoraVCSetBright value=0x2C\nVoraVCGetBright\nVoraVCSetBright value=0x0\nVoraVCGetBright\n",
        sim.log());
}

TEST(Vora3Bkl, OnOffIsAWriteOnlyScreenCommand) {
    SimControl sim = Initialised(Generation::Vora3);
    sim.startLog();
    StdoutCapture quiet;
    uint32_t status = 0;
    ReadItem(0x1050401, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    EXPECT_EQ(0u, Write(0x1050401, json_integer(0)));
    EXPECT_EQ(0u, Write(0x1050401, json_integer(1)));
    EXPECT_EQ(STATUS_ERROR, Write(0x1050401, json_integer(2)));
    // Only the low 32 bits count: this is 0.
    EXPECT_EQ(0u, Write(0x1050401, json_integer(0x100000000)));
    EXPECT_EQ("VoraVCScreenOff\nVoraVCScreenOn\nVoraVCScreenOff\n", sim.log());
}
