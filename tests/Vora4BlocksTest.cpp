// Platform information, hardware monitor, GPIO and backlight on the
// fourth-generation library. The default board's documents are golden files
// (GoldenCapability); each block's status and message rules for any id and
// value are held by the hostile-input and fault-sweep checks.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "binding/VORA4Handle.h"
#include "gpio/Vora4GPIO.h"
#include "info/Vora4INFO.h"
#include "module/Status.h"
#include "voradrv.h"

using namespace vtest;

TEST(Vora4Info, ValueTextsAndTheirEdges) {
    SimControl sim = Initialised(Generation::Vora4, R"({"board": {
        "spec_version": "0x01020000", "boot_count": "0x80000000", "pnp_id": 0,
        "platform_revision": "0xFFFF0000", "driver_version": "0x01020003",
        "library_version": "0xFFFFFFFF"}})");
    const JsonPtr info = CapabilityOf("Platform Information");
    EXPECT_EQ(R"({"n":"Spec version","sv":"1,2","asm":"r","id":16843009})",
              Dump(FindElement(info.get(), 0x1010101)));
    // The "i" conversion shows the counter negative; a read shows it as is.
    EXPECT_EQ(R"({"n":"Boot up times","v":-2147483648,"asm":"r","id":16843010,"u":"times"})",
              Dump(FindElement(info.get(), 0x1010102)));
    EXPECT_EQ(2147483648, ReadInteger(0x1010102));
    EXPECT_EQ("@@@, 0x0", ReadText(0x1010104));
    EXPECT_EQ("255,255", ReadText(0x1010105));
    EXPECT_EQ("1.2.3", ReadText(0x1010201));
    EXPECT_EQ("255.255.65535", ReadText(0x1010202));
    // A counter read into a string gives the "%u,%u" text, not its number.
    EXPECT_EQ("128,0", ReadText(0x1010102));
    // The Plug-and-Play id in the library's byte order.
    sim.loadProfile(R"({"board": {"pnp_id": {"vendor": "VOR", "product": "0x441"}}})");
    EXPECT_EQ("VOR, 0x441", ReadText(0x1010104));
}

TEST(Vora4Info, AnyItemReadsIntoAnIntegerAsTheBoardValueOfItsPosition) {
    Initialised(Generation::Vora4);
    EXPECT_EQ(18766, ReadInteger(0x1010403));  // a board string's id: board value 3
}

TEST(Vora4Info, GroupsReportWhatTheyAppended) {
    UseSimulator(Generation::Vora4, R"({"board": {"manufacturer": "Vora"}})");
    ASSERT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    Vora4INFO block;
    auto array = Own(json_array());
    EXPECT_EQ(1, block.getValueInfo(array.get()));
    EXPECT_EQ(0, block.getStringInfo(array.get()));
    EXPECT_EQ(1, block.getCustomizeString(array.get()));
    EXPECT_EQ(1, block.getVersion(array.get()));
    EXPECT_EQ(R"([{"n":"Board manufacturer","sv":"Vora","asm":"r","id":16843777}])",
              Dump(array.get()));
}

TEST(Vora4Info, AbsentAndEmptyStringsAreNotPublished) {
    UseSimulator(Generation::Vora4,
                 R"({"board": {"manufacturer": "Vora", "name": "", "revision": "A"}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    const JsonPtr info = CapabilityOf("Platform Information");
    EXPECT_EQ(2u, json_array_size(json_object_get(info.get(), "e")));
    EXPECT_EQ(nullptr, FindElement(info.get(), 0x1010402));
    uint32_t status = 0;
    Quietly([&] { return ReadItem(0x1010402, JSON_STRING, &status); });
    EXPECT_EQ(STATUS_NOT_FOUND, status);
}

TEST(Vora4Info, CustomerStringsTakeTheirLabelsFromTheLibrary) {
    Initialised(Generation::Vora4, R"({"board": {"customer_strings": [
        {"label": "Asset tag", "value": "LINE3"}, {"label": "Site", "value": ""},
        {"label": "Owner", "value": "Ops"}]}, "faults": [
        {"function": "VoraBoardGetStringA", "arg": "0x90000012", "status": "0xFFFFF0FF"}]})");
    const JsonPtr info = CapabilityOf("Platform Information");
    EXPECT_EQ(R"({"n":"Asset tag","sv":"LINE3","asm":"r","id":16843793})",
              Dump(FindElement(info.get(), 0x1010411)));
    EXPECT_EQ(nullptr, FindElement(info.get(), 0x1010412));
    // A label the library cannot give is published empty.
    EXPECT_EQ(R"({"n":"","sv":"Ops","asm":"r","id":16843795})",
              Dump(FindElement(info.get(), 0x1010413)));
    EXPECT_EQ("LINE3", ReadText(0x1010411));
}

TEST(Vora4Hwm, OnlyGroupsWithASensorArePublished) {
    Initialised(Generation::Vora4, R"({"board": {"name": "VB-1"},
        "sensors": {"temperature": [{"index": 0, "raw": 3231}]}})");
    EXPECT_EQ(
        R"({"id":131072,"bn":"Hardware Monitor","Temperature":{"e":[{"n":"CPU","v":50.0,"max":100.0,)"
        R"("min":0.0,"asm":"r","id":16908545,"sui":"Chart"}],"bn":"Temperature","bt":1276020076,)"
        R"("bu":"Cel","ver":1,"id":131328}})",
        Dump(CapabilityOf("Hardware Monitor").get()));
}

// No sensor, no capable pin, no panel: the blocks are there, without members.
TEST(Vora4Blocks, BlocksWithNothingToOfferHaveNoMember) {
    Initialised(Generation::Vora4, R"({"board": {"name": "VB-1"}})");
    const JsonPtr document = ModuleCapability();
    for (const char* block : {"Hardware Monitor", "GPIO", "Backlight"}) {
        EXPECT_EQ(nullptr, json_object_get(document.get(), block)) << block;
    }
    uint32_t status = 0;
    Quietly([&] { return ReadItem(0x1020201, JSON_REAL, &status); });
    EXPECT_EQ(STATUS_NOT_FOUND, status);
}

TEST(Vora4Hwm, ConversionsAtTheirEdges) {
    Initialised(Generation::Vora4, R"({"board": {"name": "VB-1"}, "sensors": {
        "temperature": [{"index": 0, "raw": 0}, {"index": 1, "raw": "0xFFFFFFFF"}],
        "voltage": [{"index": 0, "raw": "0xFFFFFC18"}, {"index": 23, "raw": 12096}],
        "fan": [{"index": 12, "raw": "0xFFFFFFFF"}],
        "current": [{"index": 2, "raw": -1500}],
        "case_open": [{"index": 0, "raw": 1}]}})");
    const JsonPtr hwm = CapabilityOf("Hardware Monitor");
    const struct {
        uint32_t id;
        double value;
        double max;
    } expected[] = {{0x1020101, -273.1, 100.0},       {0x1020102, 429496456.4, 100.0},
                    {0x1020201, -1.0, 50.0},          {0x1020218, 12.096, 50.0},
                    {0x102030D, 4294967295.0, 8000.0}, {0x1020403, -1.5, 3000.0},
                    {0x1020501, 1.0, 1.0}};
    for (const auto& e : expected) {
        const json_t* element = FindElement(hwm.get(), e.id);
        EXPECT_DOUBLE_EQ(e.value, json_real_value(json_object_get(element, "v"))) << Hex(e.id);
        EXPECT_DOUBLE_EQ(e.max, json_real_value(json_object_get(element, "max"))) << Hex(e.id);
        EXPECT_DOUBLE_EQ(e.value, ReadReal(e.id)) << Hex(e.id);
    }
    EXPECT_EQ(R"({"n":"VCORE","v":-1.0,"max":50.0,"min":0.0,"asm":"r","id":16908801,"sui":"Chart"})",
              Dump(FindElement(hwm.get(), 0x1020201)));
    const json_t* current = json_object_get(hwm.get(), "Current");
    EXPECT_STREQ("A", json_string_value(json_object_get(current, "bu")));
    EXPECT_EQ(0x20400, json_integer_value(json_object_get(current, "id")));
}

TEST(Vora4Hwm, NamesFromTheLibraryCutOrDefault) {
    Initialised(Generation::Vora4, R"({"board": {"name": "VB-1"}, "sensors": {
        "voltage": [{"index": 0, "name": "Main rail behind the isolated DC/DC converter",
                     "value": 1}, {"index": 20, "name": "x", "value": 1}, {"index": 1, "value": 1}],
        "temperature": [{"index": 10, "value": 20}, {"index": 11, "value": 20}]},
        "faults": [{"function": "VoraBoardGetStringA", "arg": "0x21014", "status": "0xFFFFF0FF"}]})");
    const JsonPtr hwm = CapabilityOf("Hardware Monitor");
    auto name = [&](uint32_t id) {
        return std::string(json_string_value(json_object_get(FindElement(hwm.get(), id), "n")));
    };
    EXPECT_EQ("Main rail behind the isolated *", name(0x1020201));
    EXPECT_EQ("VCORE2", name(0x1020202));  // no name on the board
    EXPECT_EQ("V1.05", name(0x1020215));   // the name call failed
    EXPECT_EQ("System 2Graphic", name(0x102010B));
    EXPECT_EQ("", name(0x102010C));  // the one position without a default
}

TEST(Vora4Hwm, DefaultNamesOfEveryPosition) {
    UseSimulator(Generation::Vora4, LargestBoard(Generation::Vora4));
    SimControl(Generation::Vora4).addFault(R"({"function": "VoraBoardGetStringA", "status": 1})");
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    const JsonPtr hwm = CapabilityOf("Hardware Monitor");
    EXPECT_EQ("VCORE,VCORE2,V2.5,V3.3,V5,V12,V5SB,V3SB,VBAT,VN50,VN120,VTT,V24,DC,DCSB,VBATLI,"
              "OEM0,OEM1,OEM2,OEM3,V1.05,V1.5,V1.8,12VS5",
              GroupNames(hwm.get(), "Voltage"));
    EXPECT_EQ("CPU,Chipset,System,CPU2,OEM0,OEM1,OEM2,OEM3,OEM4,OEM5,System 2Graphic,",
              GroupNames(hwm.get(), "Temperature"));
    EXPECT_EQ("CPU,System,CPU2,OEM0,OEM1,OEM2,OEM3,OEM4,OEM5,OEM6,System 2,System 3,System 4",
              GroupNames(hwm.get(), "Fan Speed"));
    EXPECT_EQ("OEM0,OEM1,OEM2", GroupNames(hwm.get(), "Current"));
    EXPECT_EQ("OEM0,OEM1,OEM2", GroupNames(hwm.get(), "Case Open"));
}

namespace {

const char kPins[] = R"({"board": {"name": "VB-1"}, "gpio": [
    {"pin": 0, "name": "IN", "input": true, "output": false, "level": 1},
    {"pin": 1, "name": "OUT", "input": false, "output": true, "level": 0},
    {"pin": 2, "input": true, "output": true, "direction": "out", "level": 1},
    {"pin": 40, "name": "SAME", "input": true, "output": false},
    {"pin": 127, "name": "SAME", "input": false, "output": true}]})";

std::string Access(const json_t* gpio, uint32_t id) {
    return json_string_value(json_object_get(FindElement(gpio, id), "asm"));
}

}  // namespace

TEST(Vora4Gpio, CapabilitiesGiveRangesAndAccessModes) {
    Initialised(Generation::Vora4, kPins);
    const JsonPtr gpio = CapabilityOf("GPIO");
    // Input only: direction fixed at 1, level read-only.
    EXPECT_EQ(
        R"({"e":[{"n":"Dir","bv":1,"max":1,"min":1,"id":17039873,"u":"I/O","asm":"r","ui":"label"},)"
        R"({"n":"Level","bv":1,"max":1,"min":0,"id":17040129,"u":"H/L","asm":"r","ui":"label"}],)"
        R"("bn":"IN","bt":1276020076,"bu":"info","ver":1,"id":17039617})",
        Dump(json_object_get(gpio.get(), "IN")));
    // Output only: direction fixed at 0, level writable.
    EXPECT_EQ(R"({"n":"Dir","bv":0,"max":0,"min":0,"id":17039874,"u":"I/O","asm":"r","ui":"label"})",
              Dump(FindElement(gpio.get(), 0x1040202)));
    EXPECT_EQ("rw", Access(gpio.get(), 0x1040302));
    // Both: either direction.
    EXPECT_EQ(
        R"({"n":"Dir","bv":0,"max":1,"min":0,"id":17039875,"u":"I/O","asm":"rw","ui":"TextBox"})",
        Dump(FindElement(gpio.get(), 0x1040203)));
    EXPECT_TRUE(json_is_object(json_object_get(gpio.get(), "GPIO2")));
    // Two pins named alike: the later one stands in the document, both work.
    EXPECT_EQ(0x1040180,
              json_integer_value(json_object_get(json_object_get(gpio.get(), "SAME"), "id")));
    EXPECT_EQ(1, ReadInteger(0x1040229));  // pin 40
    EXPECT_EQ(0, ReadInteger(0x1040280));  // pin 127
}

TEST(Vora4Gpio, FailedCapabilityCallsPublishUnknownRanges) {
    UseSimulator(Generation::Vora4, kPins);
    SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    Vora4GPIO block;  // finds the pins first
    sim.addFault(R"({"function": "VoraGPIOGetCaps", "arg": "0x10000", "status": "0xFFFFF0FF"})");
    ASSERT_EQ(0u, block.VoraIoTInitialize());
    auto gpio = Own(json_object());
    ASSERT_EQ(0u, block.VoraIoTGetMDCapability(gpio.get()));
    EXPECT_EQ(
        R"({"n":"Dir","bv":1,"max":-1,"min":-2,"id":17039873,"u":"I/O","asm":"N/A","ui":"TextBox"})",
        Dump(FindElement(gpio.get(), 0x1040201)));
    EXPECT_EQ("N/A", Access(gpio.get(), 0x1040301));
    EXPECT_EQ("r", Access(gpio.get(), 0x1040280));  // pins of the other banks
}

TEST(Vora4Gpio, UnreadableBanksHaveNoPinsAndUnreadableValuesPublishZero) {
    UseSimulator(Generation::Vora4, kPins);
    SimControl sim(Generation::Vora4);
    // Bank 1's inputs cannot be read, so its outputs are not asked for.
    sim.addFault(R"({"function": "VoraGPIOGetCaps", "arg": "0x10001", "status": 1, "times": 1})");
    sim.addFault(R"({"function": "VoraGPIOGetDirection", "arg": 0, "status": 1, "times": 1})");
    sim.addFault(R"({"function": "VoraGPIOGetLevel", "arg": 0, "status": 1, "times": 1})");
    sim.startLog();
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(0, sim.count("VoraGPIOGetCaps 0x10001 item=0x1")) << sim.log();
    const JsonPtr gpio = CapabilityOf("GPIO");
    EXPECT_EQ(nullptr, FindElement(gpio.get(), 0x1040229));  // pin 40
    EXPECT_NE(nullptr, FindElement(gpio.get(), 0x1040280));  // pin 127
    // Pin 0 is an input at level 1, but both reads failed.
    for (uint32_t id : {0x1040201u, 0x1040301u}) {
        EXPECT_EQ(0, json_integer_value(json_object_get(FindElement(gpio.get(), id), "bv")));
    }
}

TEST(Vora4Gpio, ReadsAndWritesReachTheLibraryWithMaskOne) {
    SimControl sim = Initialised(Generation::Vora4, kPins);
    sim.startLog();
    EXPECT_EQ(0u, Write(0x1040303, json_integer(0)));
    EXPECT_EQ(0, ReadInteger(0x1040303));
    // Values go through unchecked; the library decides.
    EXPECT_EQ(0u, Write(0x1040203, json_integer(5)));
    EXPECT_EQ(1, ReadInteger(0x1040203));
    // An input cannot be driven: the library's status comes back.
    EXPECT_EQ(0xFFFFFCFFu, Quietly([] { return Write(0x1040301, json_integer(1)); }));
    EXPECT_EQ(
        "VoraGPIOSetLevel 0x2 mask=0x1 level=0x0\n"
        "VoraGPIOGetLevel 0x2 mask=0x1\n"
        "VoraGPIOSetDirection 0x2 mask=0x1 direction=0x5\n"
        "VoraGPIOGetDirection 0x2 mask=0x1\n"
        "VoraGPIOSetLevel 0x0 mask=0x1 level=0x1\n",
        sim.log());
}

TEST(Vora4Bkl, PanelWithAllControlsInTheirOrder) {
    Initialised(Generation::Vora4, R"({"board": {"name": "VB-1"}, "backlight": [
        {"panel": 0, "name": "LVDS", "brightness": 80, "min": 5, "max": 90, "frequency": 200,
         "polarity": 1, "enable": true}]})");
    EXPECT_EQ(
        R"({"id":327680,"bn":"Backlight","LVDS":{"e":[)"
        R"({"n":"Brightness","v":80,"max":90,"min":5,"id":17106177,"u":"Step","asm":"rw","ui":"TextBox"},)"
        R"({"n":"Frequency","v":200,"max":65535,"min":0,"id":17105409,"u":"Hz","asm":"rw","ui":"TextBox"},)"
        R"({"n":"Polarity","bv":1,"max":1,"min":0,"id":17105665,"u":"ON/OFF","asm":"rw","ui":"TextBox"},)"
        R"({"n":"Backlight","bv":1,"max":1,"min":0,"id":17105921,"u":"ON/OFF","asm":"rw","ui":"TextBox"}],)"
        R"("bn":"LVDS","bt":1276020076,"bu":"info","ver":1,"id":17105153}})",
        Dump(CapabilityOf("Backlight").get()));
}

TEST(Vora4Bkl, OnlyBrightnessOrOnOffStartAPanel) {
    UseSimulator(Generation::Vora4, R"({"board": {"name": "VB-1"}, "backlight": [
        {"panel": 0, "frequency": 300, "polarity": 0},
        {"panel": 1, "enable": false},
        {"panel": 2}]})");
    StdoutCapture out;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(
        "VORADrv BKL : cap frequency unable to append new value\n"
        "VORADrv BKL : cap polarity unable to append new value\n",
        out.take());
    const JsonPtr backlight = CapabilityOf("Backlight");
    // Panel 1 has only its on/off item and the default name; 0 and 2 are absent.
    EXPECT_EQ(3u, json_object_size(backlight.get()));
    EXPECT_EQ(
        R"({"e":[{"n":"Backlight","bv":0,"max":1,"min":0,"id":17105922,"u":"ON/OFF","asm":"rw","ui":"TextBox"}],)"
        R"("bn":"BackLight1","bt":1276020076,"bu":"info","ver":1,"id":17105154})",
        Dump(json_object_get(backlight.get(), "BackLight1")));
    // Panel 0's frequency stays readable by id although it is not published.
    EXPECT_EQ(300, ReadInteger(0x1050201));
    uint32_t status = 0;
    ReadItem(0x1050403, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_NOT_FOUND, status);
}

TEST(Vora4Bkl, RangeAndNameLengthCarryOverFromTheEarlierPanel) {
    Initialised(Generation::Vora4, R"({"board": {"name": "VB-1"}, "backlight": [
        {"panel": 0, "name": "eDP", "brightness": 50, "min": 10, "max": 70},
        {"panel": 1, "name": "LVDS-B", "brightness": 20, "min": 0, "max": 100}],
        "faults": [{"function": "VoraVgaGetCaps", "arg": 1, "status": "0xFFFFF0FF"}]})");
    const JsonPtr backlight = CapabilityOf("Backlight");
    const json_t* brightness = FindElement(backlight.get(), 0x1050502);
    EXPECT_EQ(70, json_integer_value(json_object_get(brightness, "max")));
    EXPECT_EQ(10, json_integer_value(json_object_get(brightness, "min")));
    // The name call of panel 1 gets the length the first call left (3): the
    // longer name does not fit and the default name is used.
    EXPECT_TRUE(json_is_object(json_object_get(backlight.get(), "BackLight1")));
}

TEST(Vora4Bkl, OnOffIsWrittenOnlyWhenItChanges) {
    SimControl sim = Initialised(Generation::Vora4);
    sim.startLog();
    EXPECT_EQ(0u, Write(0x1050402, json_integer(1)));
    EXPECT_EQ(0, sim.count("VoraVgaSetBacklightEnable"));
    EXPECT_EQ(0u, Write(0x1050402, json_integer(0)));
    EXPECT_EQ(1, sim.count("VoraVgaSetBacklightEnable 0x1 value=0x0"));
    EXPECT_EQ(0, ReadInteger(0x1050402));
    // The present state cannot be read: its status comes back, nothing written.
    sim.addFault(R"({"function": "VoraVgaGetBacklightEnable", "status": "0x4321"})");
    EXPECT_EQ(0x4321u, Quietly([] { return Write(0x1050402, json_integer(1)); }));
    EXPECT_EQ(1, sim.count("VoraVgaSetBacklightEnable"));
}

TEST(Vora4Bkl, WritesReachTheLibraryUnchecked) {
    SimControl sim = Initialised(Generation::Vora4);
    sim.startLog();
    EXPECT_EQ(0u, Write(0x1050501, json_integer(55)));
    EXPECT_EQ(55, ReadInteger(0x1050501));
    EXPECT_EQ(0u, Write(0x1050301, json_integer(1)));
    // No range check against "max": the library refuses on its own.
    EXPECT_EQ(0xFFFFFEFFu, Quietly([] { return Write(0x1050201, json_integer(100000)); }));
    EXPECT_EQ(
        "VoraVgaSetBacklightBrightness 0x0 value=0x37\nVoraVgaGetBacklightBrightness 0x0\n"
        "VoraVgaSetPolarity 0x0 value=0x1\nVoraVgaSetFrequency 0x0 value=0x186A0\n",
        sim.log());
}
