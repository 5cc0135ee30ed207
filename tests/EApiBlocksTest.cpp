// Platform information, hardware monitor, GPIO and backlight on an Embedded
// API library. The default board's documents are golden files
// (GoldenCapability); each block's status and message rules for any id and
// value are held by the hostile-input and fault-sweep checks.
#include <gtest/gtest.h>

#include <cstdio>

#include "SimHarness.h"
#include "binding/ECTL2Handle.h"
#include "info/eCtl2INFO.h"
#include "module/Status.h"
#include "voradrv.h"

using namespace vtest;

namespace {

// Longer than the 32 bytes a string is built through.
const char kLong[] = "VB2150-0000000000000000000000000000001";

std::string Text(const json_t* info, uint32_t id) {
    return json_string_value(json_object_get(FindElement(info, id), "sv"));
}

}  // namespace

TEST(EApiInfo, UnknownLineFeedAndTooLongStringsWhileBuilding) {
    Initialised(Generation::EApi, std::string(R"({"board": {"manufacturer": "Unknown",
        "name": "ABC\n", "revision": "", "serial_number": ")") + kLong + R"(",
        "bios_revision": "Unknown\n", "boot_count": 5}})");
    const JsonPtr info = CapabilityOf("Platform Information");
    EXPECT_EQ(nullptr, FindElement(info.get(), 0x1010401));  // "Unknown"
    EXPECT_EQ(R"({"n":"Board name","sv":"ABC","asm":"r","id":16843778})",
              Dump(FindElement(info.get(), 0x1010402)));
    EXPECT_EQ(nullptr, FindElement(info.get(), 0x1010403));  // empty
    EXPECT_EQ(nullptr, FindElement(info.get(), 0x1010404));  // too long for 32 bytes
    // "Unknown" is compared before the line feed goes.
    EXPECT_EQ("Unknown", Text(info.get(), 0x1010405));
    EXPECT_EQ("ABC", ReadText(0x1010402));
    // Not published, so not found; nor are customer strings, which this
    // library has none of.
    StdoutCapture quiet;
    for (uint32_t id : {0x1010401u, 0x1010411u}) {
        uint32_t status = 0;
        ReadItem(id, JSON_STRING, &status);
        EXPECT_EQ(STATUS_NOT_FOUND, status) << Hex(id);
    }
}

TEST(EApiInfo, AStringTooLongToPublishStillCounts) {
    UseSimulator(Generation::EApi, std::string(R"({"board": {"serial_number": ")") + kLong +
                                       R"("}})");
    ASSERT_EQ(0u, ECTL2Handle::instance()->mEApiLibInitialize());
    eCtl2INFO block;
    auto array = Own(json_array());
    EXPECT_EQ(0, block.getStringInfo(array.get()));
    EXPECT_EQ(1, block.getValueInfo(array.get()));
    EXPECT_EQ(1, block.getVersion(array.get()));
    EXPECT_EQ(0u, json_array_size(array.get()));
    // "Unknown" and empty strings do not count.
    SimControl sim(Generation::EApi);
    sim.loadProfile(R"({"board": {"manufacturer": "Unknown", "name": ""}})");
    eCtl2INFO other;
    EXPECT_EQ(1, other.getStringInfo(array.get()));
}

TEST(EApiInfo, ReadsUseTheFullBufferAndKeepUnknown) {
    SimControl sim = Initialised(Generation::EApi, R"({"board": {"name": "VB", "revision": "A"}})");
    sim.loadProfile(std::string(R"({"board": {"name": ")") + kLong +
                    R"(\n", "revision": "Unknown"}})");
    EXPECT_EQ(kLong, ReadText(0x1010402));
    EXPECT_EQ("Unknown", ReadText(0x1010403));
}

TEST(EApiInfo, LengthsTheLibraryReportsStayWithinTheBuffer) {
    Initialised(Generation::EApi, R"({"board": {"manufacturer": "Vora\n",
        "name": "VB-2150\n", "revision": "C"}, "faults": [
        {"function": "EApiBoardGetStringA", "arg": 0, "length": 100000},
        {"function": "EApiBoardGetStringA", "arg": 1, "length": 0},
        {"function": "EApiBoardGetStringA", "arg": 2, "unterminated": true}]})");
    const JsonPtr info = CapabilityOf("Platform Information");
    // A length outside the buffer (or none) leaves the text as it is.
    EXPECT_EQ("Vora\n", Text(info.get(), 0x1010401));
    EXPECT_EQ("VB-2150\n", Text(info.get(), 0x1010402));
    // A text that fills the 32 bytes is ended after them.
    EXPECT_EQ(std::string(32, 'C'), Text(info.get(), 0x1010403));
    EXPECT_EQ(std::string(64, 'C'), ReadText(0x1010403));
    EXPECT_EQ("Vora\n", ReadText(0x1010401));
}

namespace {

std::string Board(const std::string& sensors, const std::string& faults = "") {
    return R"({"board": {"name": "VB-1"}, "sensors": {)" + sensors + R"(}, "faults": [)" + faults +
           "]}";
}

// "name=value@id " of every element of a group, in order.
std::string Entries(const json_t* hwm, const char* group) {
    std::string text;
    ForEachElement(json_object_get(hwm, group), [&](const json_t* element) {
        char entry[96];
        std::snprintf(entry, sizeof entry, "%s=%g@%llX ",
                      json_string_value(json_object_get(element, "n")),
                      json_real_value(json_object_get(element, "v")),
                      static_cast<unsigned long long>(json_integer_value(json_object_get(element, "id"))));
        text += entry;
    });
    return text;
}

}  // namespace

TEST(EApiHwm, VoltageBlocksShareTheSlotsIdsAndReadsReachTheLastBlock) {
    SimControl sim = Initialised(Generation::EApi, Board(R"("voltage": [
        {"index": 0, "raw": 1000}, {"index": 4, "raw": 12000}, {"index": 13, "raw": 3300},
        {"index": 15, "raw": 1800}])"));
    const JsonPtr hwm = CapabilityOf("Hardware Monitor");
    // Indices 12 to 15 carry temperature names.
    EXPECT_EQ("VCORE=1@1020201 V5=12@1020201 ChipSet=3.3@1020202 CPU1=1.8@1020204 ",
              Entries(hwm.get(), "Voltage"));
    EXPECT_EQ(R"({"n":"V5","v":12.0,"max":15.0,"min":0.0,"asm":"r","id":16908801,"sui":"Chart"})",
              Dump(json_array_get(json_object_get(json_object_get(hwm.get(), "Voltage"), "e"), 1)));
    sim.startLog();
    EXPECT_DOUBLE_EQ(12.0, ReadReal(0x1020201));
    EXPECT_DOUBLE_EQ(3.3, ReadReal(0x1020202));
    EXPECT_EQ("EApiBoardGetValue 0x21014\nEApiBoardGetValue 0x21038\n", sim.log());
}

TEST(EApiHwm, TemperaturesStayInTheLibrarysUnits) {
    Initialised(Generation::EApi, Board(R"("temperature": [{"index": 0, "raw": 3231},
        {"index": 2, "raw": "0xFFFFFFFF"}], "fan": [{"index": 2, "raw": 2400}],
        "current": [{"index": 0, "raw": -1500}])"));
    const JsonPtr hwm = CapabilityOf("Hardware Monitor");
    EXPECT_EQ("CPU=3231@1020101 System=4.29497e+09@1020103 ", Entries(hwm.get(), "Temperature"));
    EXPECT_DOUBLE_EQ(3231.0, ReadReal(0x1020101));
    EXPECT_DOUBLE_EQ(4294967295.0, ReadReal(0x1020103));
    EXPECT_EQ("Other=2400@1020303 ", Entries(hwm.get(), "Fan Speed"));
    EXPECT_EQ(R"({"n":"Current","v":-1.5,"max":3000.0,"min":0.0,"asm":"r","id":16909313,"sui":"Chart"})",
              Dump(FindElement(hwm.get(), 0x1020401)));
    EXPECT_DOUBLE_EQ(-1.5, ReadReal(0x1020401));
    EXPECT_EQ(5u, json_object_size(hwm.get()));  // id, bn, Temperature, Fan Speed, Current
}

TEST(EApiHwm, OnlyACapabilityAnswerOfExactlyOneMakesASensor) {
    Initialised(Generation::EApi, Board(R"(
        "voltage": [{"index": 0, "raw": 1}],
        "temperature": [{"index": 0, "value": 40}, {"index": 1, "value": 41}],
        "fan": [{"index": 0, "value": 1000}],
        "case_open": [{"index": 0, "value": 1}])", R"(
        {"function": "EApiHWMGetCaps", "arg": "0x20001", "value": 2},
        {"function": "EApiHWMGetCaps", "arg": "0x22000", "value": 0})"));
    const JsonPtr hwm = CapabilityOf("Hardware Monitor");
    // The first voltage reads 1; the next, absent, sensor's capability call
    // fails without an answer and must not inherit it.
    EXPECT_EQ("VCORE=0.001@1020201 ", Entries(hwm.get(), "Voltage"));
    EXPECT_EQ("CPU=3131@1020101 ", Entries(hwm.get(), "Temperature"));
    for (const char* group : {"Fan Speed", "Current", "Case Open"}) {
        EXPECT_EQ(nullptr, json_object_get(hwm.get(), group)) << group;
    }
}

TEST(EApiHwm, DiscoveryLooksAtTheAnswersNotTheStatuses) {
    // Both calls fail but write: the sensor is there, with the value written.
    Initialised(Generation::EApi, Board(R"("fan": [{"index": 0, "value": 1000}])", R"(
        {"function": "EApiHWMGetCaps", "arg": "0x22000", "status": "0xFFFFF0FF", "value": 1},
        {"function": "EApiBoardGetValue", "arg": "0x22000", "status": "0xFFFFF0FF", "value": 77})"));
    EXPECT_EQ("CPU=77@1020301 ", Entries(CapabilityOf("Hardware Monitor").get(), "Fan Speed"));
}

TEST(EApiHwm, NamesOfEveryPosition) {
    Initialised(Generation::EApi, LargestBoard(Generation::EApi));
    const JsonPtr hwm = CapabilityOf("Hardware Monitor");
    // Four blocks of four slots, named by 4 x block + slot.
    EXPECT_EQ("VCORE,V2.5,V3.3,VBAT,V5,V5SB,V12,DC,DCSB,BAT,V3.35,VCOREB,CPU,ChipSet,System,CPU1",
              GroupNames(hwm.get(), "Voltage"));
    EXPECT_EQ("CPU,ChipSet,System", GroupNames(hwm.get(), "Temperature"));
    EXPECT_EQ("CPU,System,Other", GroupNames(hwm.get(), "Fan Speed"));
    EXPECT_EQ("Current", GroupNames(hwm.get(), "Current"));
}

namespace {

const char kPins[] = R"("gpio": [
    {"pin": 0, "input": true, "output": false, "level": 1},
    {"pin": 1, "input": false, "output": true, "level": 0},
    {"pin": 2, "input": true, "output": true, "direction": "out", "level": 1},
    {"pin": 3, "input": true, "output": true},
    {"pin": 7, "input": true, "output": true},
    {"pin": 8, "input": true, "output": true}])";

// The pins above, with these faults.
std::string Pins(const std::string& faults = "") {
    return std::string(R"({"board": {"name": "VB-1"}, )") + kPins + R"(, "faults": [)" + faults +
           "]}";
}

}  // namespace

TEST(EApiGpio, PinsZeroToSevenWhoseDirectionReads) {
    UseSimulator(Generation::EApi, Pins(R"(
        {"function": "EApiGPIOGetDirection", "arg": 3, "status": "0xFFFFF0FF", "times": 1})"));
    SimControl sim(Generation::EApi);
    sim.startLog();
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(0, sim.count("EApiGPIOGetDirection 0x8"));
    const JsonPtr gpio = CapabilityOf("GPIO");
    // id, bn and pins 0, 1, 2 and 7; pin 3 failed its direction read.
    EXPECT_EQ(6u, json_object_size(gpio.get()));
    EXPECT_EQ(0x1040108,
              json_integer_value(json_object_get(json_object_get(gpio.get(), "GPIO7"), "id")));
    EXPECT_EQ(nullptr, json_object_get(gpio.get(), "GPIO3"));
    uint32_t status = 0;
    Quietly([&] { return ReadItem(0x1040204, JSON_INTEGER, &status); });
    EXPECT_EQ(STATUS_NOT_FOUND, status);
}

TEST(EApiGpio, TheMasksGiveRangesAndAccessModes) {
    Initialised(Generation::EApi, Pins(R"(
        {"function": "EApiGPIOGetDirectionCaps", "arg": 2, "value": 6},
        {"function": "EApiGPIOGetDirectionCaps", "arg": 3, "status": "0xFFFFF0FF"})"));
    const JsonPtr gpio = CapabilityOf("GPIO");
    auto access = [&](uint32_t id) {
        return std::string(json_string_value(json_object_get(FindElement(gpio.get(), id), "asm")));
    };
    // Input only (masks 1 and 0): direction fixed at 1, level read-only.
    EXPECT_EQ(R"({"n":"Dir","bv":1,"max":1,"min":1,"id":17039873,"u":"I/O","asm":"r","ui":"label"})",
              Dump(FindElement(gpio.get(), 0x1040201)));
    EXPECT_EQ("r", access(0x1040301));
    // Output only: direction fixed at 0, level writable.
    EXPECT_EQ("r", access(0x1040202));
    EXPECT_EQ("rw", access(0x1040302));
    // The masks as the library gives them, not one bit of them.
    EXPECT_EQ(R"({"n":"Dir","bv":0,"max":6,"min":7,"id":17039875,"u":"I/O","asm":"rw","ui":"TextBox"})",
              Dump(FindElement(gpio.get(), 0x1040203)));
    // A failed call leaves the masks at 0: a pin that can be neither.
    EXPECT_EQ(R"({"n":"Dir","bv":1,"max":0,"min":1,"id":17039876,"u":"I/O","asm":"rw","ui":"TextBox"})",
              Dump(FindElement(gpio.get(), 0x1040204)));
}

TEST(EApiGpio, ReadsAndWritesReachTheLibraryWithMaskOne) {
    SimControl sim = Initialised(Generation::EApi, Pins());
    sim.startLog();
    EXPECT_EQ(0u, Write(0x1040303, json_integer(0)));
    EXPECT_EQ(0, ReadInteger(0x1040303));
    EXPECT_EQ(0u, Write(0x1040203, json_integer(1)));
    EXPECT_EQ(1, ReadInteger(0x1040203));
    // An input cannot be driven: the library's status comes back.
    EXPECT_EQ(0xFFFFFCFFu, Quietly([] { return Write(0x1040301, json_integer(1)); }));
    EXPECT_EQ(
        "EApiGPIOSetLevel 0x2 mask=0x1 level=0x0\n"
        "EApiGPIOGetLevel 0x2 mask=0x1\n"
        "EApiGPIOSetDirection 0x2 mask=0x1 direction=0x1\n"
        "EApiGPIOGetDirection 0x2 mask=0x1\n"
        "EApiGPIOSetLevel 0x0 mask=0x1 level=0x1\n",
        sim.log());
}

TEST(EApiBkl, PanelsWithoutBrightnessAreSkippedSilently) {
    UseSimulator(Generation::EApi, R"({"board": {"name": "VB-1"}, "backlight": [
        {"panel": 0, "enable": true}, {"panel": 2, "brightness": 7, "max": 100}]})");
    StdoutCapture out;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("", out.finish());
    // Panel 2 is numbered 3; its on/off cannot be read and publishes 0.
    EXPECT_EQ(
        R"({"id":327680,"bn":"Backlight","Backlight 3":{"e":[)"
        R"({"n":"Backlight","bv":0,"max":1,"min":0,"id":17105923,"u":"ON/OFF","asm":"rw","ui":"TextBox"},)"
        R"({"n":"Brightness","v":7,"max":100,"min":0,"id":17106179,"u":"Step","asm":"rw","ui":"TextBox"}],)"
        R"("bn":"Backlight 3","bt":1276020076,"bu":"info","ver":1,"id":17105155}})",
        Dump(CapabilityOf("Backlight").get()));
}

TEST(EApiBkl, OnOffWritesAndReadsMapDifferently) {
    // Panel 0 on (library 0), panel 1 off (library 0xFFFFFFFF).
    SimControl sim = Initialised(Generation::EApi);
    EXPECT_EQ(0, ReadInteger(0x1050401));
    EXPECT_EQ(1, ReadInteger(0x1050402));
    sim.startLog();
    // Any non-zero value sends 0, zero sends 0xFFFFFFFF; written every time.
    EXPECT_EQ(0u, Write(0x1050402, json_integer(5)));
    EXPECT_EQ(0u, Write(0x1050402, json_integer(1)));
    EXPECT_EQ(0u, Write(0x1050401, json_integer(0)));
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
    SimControl sim = Initialised(Generation::EApi);
    sim.startLog();
    EXPECT_EQ(0u, Write(0x1050501, json_integer(55)));
    EXPECT_EQ(55, ReadInteger(0x1050501));
    StdoutCapture quiet;
    // No check against "max" 100: the library refuses on its own.
    EXPECT_EQ(0xFFFFFEFFu, Write(0x1050501, json_integer(150)));
    EXPECT_EQ(1, sim.count("EApiVgaSetBacklightBrightness 0x0 value=0x96"));
    // Frequency and polarity kinds, and the third panel, which is not there.
    for (uint32_t id : {0x1050201u, 0x1050301u, 0x1050403u}) {
        uint32_t status = 0;
        ReadItem(id, JSON_INTEGER, &status);
        EXPECT_EQ(STATUS_NOT_FOUND, status) << Hex(id);
        EXPECT_EQ(STATUS_NOT_FOUND, Write(id, json_integer(1))) << Hex(id);
    }
}
