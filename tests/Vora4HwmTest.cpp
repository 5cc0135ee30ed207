// Hardware monitor on the fourth-generation library.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Dump;
using vtest::FindElement;
using vtest::Generation;
using vtest::ReadItem;

namespace {

const char kBoard[] = R"("board": {"name": "VB-1"})";

double ReadReal(uint32_t id) { return json_real_value(ReadItem(id, JSON_REAL).get()); }

}  // namespace

TEST(Vora4Hwm, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    vtest::ExpectGolden(json_object_get(document.get(), "Hardware Monitor"), "vora4-hwm.json");
}

TEST(Vora4Hwm, OnlyGroupsWithASensorArePublished) {
    vtest::UseSimulator(Generation::Vora4, std::string("{") + kBoard + R"(,
        "sensors": {"temperature": [{"index": 0, "raw": 3231}]}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    const json_t* hwm = json_object_get(document.get(), "Hardware Monitor");
    EXPECT_EQ(
        R"({"id":131072,"bn":"Hardware Monitor","Temperature":{"e":[{"n":"CPU","v":50.0,"max":100.0,)"
        R"("min":0.0,"asm":"r","id":16908545,"sui":"Chart"}],"bn":"Temperature","bt":1276020076,)"
        R"("bu":"Cel","ver":1,"id":131328}})",
        Dump(hwm));
}

TEST(Vora4Hwm, NoSensorsMeansNoBlockMember) {
    vtest::UseSimulator(Generation::Vora4, std::string("{") + kBoard + "}");
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    EXPECT_EQ(nullptr, json_object_get(document.get(), "Hardware Monitor"));
    // The block is there, with no item.
    uint32_t status = 0;
    vtest::StdoutCapture out;
    ReadItem(0x1020201, JSON_REAL, &status);
    out.finish();
    EXPECT_EQ(STATUS_NOT_FOUND, status);
}

TEST(Vora4Hwm, ConversionsAtTheirEdges) {
    vtest::UseSimulator(Generation::Vora4, std::string("{") + kBoard + R"(, "sensors": {
        "temperature": [{"index": 0, "raw": 0}, {"index": 1, "raw": "0xFFFFFFFF"}],
        "voltage": [{"index": 0, "raw": "0xFFFFFC18"}, {"index": 23, "raw": 12096}],
        "fan": [{"index": 12, "raw": "0xFFFFFFFF"}],
        "current": [{"index": 2, "raw": -1500}],
        "case_open": [{"index": 0, "raw": 1}]}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    const json_t* hwm = json_object_get(document.get(), "Hardware Monitor");
    const struct {
        uint32_t id;
        double value;
    } expected[] = {{0x1020101, -273.1},   {0x1020102, 429496456.4}, {0x1020201, -1.0},
                    {0x1020218, 12.096},   {0x102030D, 4294967295.0}, {0x1020403, -1.5},
                    {0x1020501, 1.0}};
    for (const auto& e : expected) {
        EXPECT_DOUBLE_EQ(e.value, json_real_value(json_object_get(FindElement(hwm, e.id), "v")))
            << std::hex << e.id;
        EXPECT_DOUBLE_EQ(e.value, ReadReal(e.id)) << std::hex << e.id;
    }
    // Limits of each group.
    EXPECT_EQ(R"({"n":"VCORE","v":-1.0,"max":50.0,"min":0.0,"asm":"r","id":16908801,"sui":"Chart"})",
              Dump(FindElement(hwm, 0x1020201)));
    EXPECT_DOUBLE_EQ(8000.0, json_real_value(json_object_get(FindElement(hwm, 0x102030D), "max")));
    EXPECT_DOUBLE_EQ(3000.0, json_real_value(json_object_get(FindElement(hwm, 0x1020403), "max")));
    EXPECT_DOUBLE_EQ(1.0, json_real_value(json_object_get(FindElement(hwm, 0x1020501), "max")));
    const json_t* current = json_object_get(hwm, "Current");
    EXPECT_STREQ("A", json_string_value(json_object_get(current, "bu")));
    EXPECT_EQ(0x20400, json_integer_value(json_object_get(current, "id")));
}

TEST(Vora4Hwm, NamesFromTheLibraryCutOrDefault) {
    vtest::UseSimulator(Generation::Vora4, std::string("{") + kBoard + R"(, "sensors": {
        "voltage": [{"index": 0, "name": "Main rail behind the isolated DC/DC converter",
                     "value": 1}, {"index": 20, "name": "x", "value": 1}, {"index": 1, "value": 1}],
        "temperature": [{"index": 10, "value": 20}, {"index": 11, "value": 20}]},
        "faults": [{"function": "VoraBoardGetStringA", "arg": "0x21014", "status": "0xFFFFF0FF"}]})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    const json_t* hwm = json_object_get(document.get(), "Hardware Monitor");
    auto name = [&](uint32_t id) {
        return std::string(json_string_value(json_object_get(FindElement(hwm, id), "n")));
    };
    EXPECT_EQ("Main rail behind the isolated *", name(0x1020201));
    EXPECT_EQ("VCORE2", name(0x1020202));  // no name on the board
    EXPECT_EQ("V1.05", name(0x1020215));   // the name call failed
    EXPECT_EQ("System 2Graphic", name(0x102010B));
    EXPECT_EQ("", name(0x102010C));        // the one position without a default
}

TEST(Vora4Hwm, ReadPathStatusesAndMessages) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::StdoutCapture out;
    uint32_t status = 0;
    auto integer = ReadItem(0x1020201, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_INVALID_VALUE, status);
    EXPECT_EQ(STATUS_INVALID_VALUE, VoraIoTGetMDValue(0x1020201, nullptr));
    ReadItem(0x1020202, JSON_REAL, &status);  // no sensor at voltage position 1
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    auto real = vtest::Own(json_real(1.0));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDValue(0x1020201, real.get()));
    EXPECT_EQ(
        "VORADRV HWM Get Value: not a json real\n"
        "VORADrv get value: function:Hardware Monitor get value failed fffff8ff\n"
        "VORADRV HWM Get Value: not a json real\n"
        "VORADrv get value: function:Hardware Monitor get value failed fffff8ff\n"
        "VORADrv get value: function:Hardware Monitor get value failed fffffbff\n"
        "VORADrv set value: function:Hardware Monitor set value failed\n",
        out.finish());
    EXPECT_EQ(-12345, json_integer_value(integer.get()));

    // A failing library read is an error; its own status is not passed on.
    sim.addFault(R"({"function": "VoraBoardGetValue", "arg": "0x20000", "status": "0x1234"})");
    vtest::StdoutCapture quiet;
    auto temperature = ReadItem(0x1020101, JSON_REAL, &status);
    quiet.finish();
    EXPECT_EQ(STATUS_ERROR, status);
    EXPECT_DOUBLE_EQ(-12345.0, json_real_value(temperature.get()));
    sim.clearFaults();
    EXPECT_DOUBLE_EQ(48.5, ReadReal(0x1020101));
}
