// Hardware monitor on an Embedded API library.
#include <gtest/gtest.h>

#include <cstdio>

#include "SimHarness.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Dump;
using vtest::FindElement;
using vtest::Generation;
using vtest::ReadItem;

namespace {

std::string Board(const std::string& sensors, const std::string& faults = "") {
    return R"({"board": {"name": "VB-1"}, "sensors": {)" + sensors + R"(}, "faults": [)" + faults +
           "]}";
}

json_t* Hwm(vtest::JsonPtr& document) {
    document = vtest::ModuleCapability();
    return json_object_get(document.get(), "Hardware Monitor");
}

// "n" and "v" of every element of a group, in order.
std::string Entries(const json_t* hwm, const char* group) {
    std::string text;
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(json_object_get(hwm, group), "e"), i, element) {
        char entry[96];
        std::snprintf(entry, sizeof entry, "%s=%g@%llX ",
                      json_string_value(json_object_get(element, "n")),
                      json_real_value(json_object_get(element, "v")),
                      static_cast<unsigned long long>(json_integer_value(json_object_get(element, "id"))));
        text += entry;
    }
    return text;
}

double ReadReal(uint32_t id) { return json_real_value(ReadItem(id, JSON_REAL).get()); }

}  // namespace

TEST(EApiHwm, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = vtest::Own(nullptr);
    vtest::ExpectGolden(Hwm(document), "eapi-hwm.json");
}

TEST(EApiHwm, VoltageBlocksShareTheSlotsIdsAndReadsReachTheLastBlock) {
    vtest::UseSimulator(Generation::EApi, Board(R"("voltage": [
        {"index": 0, "raw": 1000}, {"index": 4, "raw": 12000}, {"index": 13, "raw": 3300},
        {"index": 15, "raw": 1800}])"));
    vtest::SimControl sim(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = vtest::Own(nullptr);
    const json_t* hwm = Hwm(document);
    // Indices 12 to 15 carry temperature names.
    EXPECT_EQ("VCORE=1@1020201 V5=12@1020201 ChipSet=3.3@1020202 CPU1=1.8@1020204 ",
              Entries(hwm, "Voltage"));
    EXPECT_EQ(R"({"n":"V5","v":12.0,"max":15.0,"min":0.0,"asm":"r","id":16908801,"sui":"Chart"})",
              Dump(json_array_get(json_object_get(json_object_get(hwm, "Voltage"), "e"), 1)));
    sim.startLog();
    EXPECT_DOUBLE_EQ(12.0, ReadReal(0x1020201));
    EXPECT_DOUBLE_EQ(3.3, ReadReal(0x1020202));
    EXPECT_EQ("EApiBoardGetValue 0x21014\nEApiBoardGetValue 0x21038\n", sim.log());
}

TEST(EApiHwm, TemperaturesStayInTheLibrarysUnits) {
    vtest::UseSimulator(Generation::EApi, Board(R"("temperature": [{"index": 0, "raw": 3231},
        {"index": 2, "raw": "0xFFFFFFFF"}], "fan": [{"index": 2, "raw": 2400}],
        "current": [{"index": 0, "raw": -1500}])"));
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = vtest::Own(nullptr);
    const json_t* hwm = Hwm(document);
    EXPECT_EQ("CPU=3231@1020101 System=4.29497e+09@1020103 ", Entries(hwm, "Temperature"));
    EXPECT_DOUBLE_EQ(3231.0, ReadReal(0x1020101));
    EXPECT_DOUBLE_EQ(4294967295.0, ReadReal(0x1020103));
    EXPECT_EQ("Other=2400@1020303 ", Entries(hwm, "Fan Speed"));
    EXPECT_EQ(R"({"n":"Current","v":-1.5,"max":3000.0,"min":0.0,"asm":"r","id":16909313,"sui":"Chart"})",
              Dump(FindElement(hwm, 0x1020401)));
    EXPECT_DOUBLE_EQ(-1.5, ReadReal(0x1020401));
    EXPECT_EQ(5u, json_object_size(hwm));  // id, bn, Temperature, Fan Speed, Current
}

TEST(EApiHwm, OnlyACapabilityAnswerOfExactlyOneMakesASensor) {
    vtest::UseSimulator(Generation::EApi, Board(R"(
        "voltage": [{"index": 0, "raw": 1}],
        "temperature": [{"index": 0, "value": 40}, {"index": 1, "value": 41}],
        "fan": [{"index": 0, "value": 1000}],
        "case_open": [{"index": 0, "value": 1}])", R"(
        {"function": "EApiHWMGetCaps", "arg": "0x20001", "value": 2},
        {"function": "EApiHWMGetCaps", "arg": "0x22000", "value": 0})"));
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr document = vtest::Own(nullptr);
    const json_t* hwm = Hwm(document);
    // The first voltage reads 1; the next, absent, sensor's capability call
    // fails without an answer and must not inherit it.
    EXPECT_EQ("VCORE=0.001@1020201 ", Entries(hwm, "Voltage"));
    EXPECT_EQ("CPU=3131@1020101 ", Entries(hwm, "Temperature"));
    EXPECT_EQ(nullptr, json_object_get(hwm, "Fan Speed"));
    EXPECT_EQ(nullptr, json_object_get(hwm, "Current"));
    EXPECT_EQ(nullptr, json_object_get(hwm, "Case Open"));
}

TEST(EApiHwm, ReadPathStatusesAndMessages) {
    vtest::UseSimulator(Generation::EApi);
    vtest::SimControl sim(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.addFault(R"({"function": "EApiBoardGetValue", "arg": "0x20000", "status": "0x1234"})");
    vtest::StdoutCapture out;
    uint32_t status = 0;
    ReadItem(0x1020301, JSON_INTEGER, &status);
    EXPECT_EQ(STATUS_INVALID_VALUE, status);
    ReadItem(0x1020202, JSON_REAL, &status);  // no sensor in slot 1
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    auto temperature = ReadItem(0x1020101, JSON_REAL, &status);
    EXPECT_EQ(STATUS_ERROR, status);
    EXPECT_DOUBLE_EQ(-12345.0, json_real_value(temperature.get()));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDValue(0x1020201, vtest::Own(json_real(1.0)).get()));
    EXPECT_EQ(0u, out.finish().find("VORADRV HWM Get Value: not a json real\n"));
}
