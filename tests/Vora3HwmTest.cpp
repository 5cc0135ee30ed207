// Hardware monitor on the third-generation library.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::FindElement;
using vtest::Generation;
using vtest::ReadItem;

namespace {

double ReadReal(uint32_t id) { return json_real_value(ReadItem(id, JSON_REAL).get()); }

}  // namespace

TEST(Vora3Hwm, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    vtest::ExpectGolden(json_object_get(document.get(), "Hardware Monitor"), "vora3-hwm.json");
}

TEST(Vora3Hwm, MasksDecideTheSensorsAndBitsTheirNames) {
    vtest::UseSimulator(Generation::Vora3, R"({"board": {"name": "VB-1"}, "sensors": {
        "temperature": [{"index": 0, "value": -12.38}, {"index": 2, "value": 20}],
        "voltage": [{"index": 15, "value": 2.017}, {"index": 12, "value": 1.05},
                    {"index": 16, "value": 1}],
        "fan": [{"index": 4, "value": 1000}, {"index": 5, "value": 2000}]},
        "faults": [{"function": "VoraHWMGetVoltage", "arg": "0x1000", "status": 0}]})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    const json_t* hwm = json_object_get(document.get(), "Hardware Monitor");
    std::string published;  // item number and name of every entry
    const char* group;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(hwm), group, member) {
        const json_t* entries = json_object_get(member, "e");
        for (size_t i = 0; i < json_array_size(entries); ++i) {
            const json_t* entry = json_array_get(entries, i);
            published += std::to_string(json_integer_value(json_object_get(entry, "id")) & 0xFF) +
                         json_string_value(json_object_get(entry, "n")) + " ";
        }
    }
    // Voltage bit 12 does not answer and bit 16 is beyond the table; fan bit
    // 5 is never published; temperature mask 0x0005 gives items 1 and 3.
    EXPECT_EQ("16V24 1CPU 3AUX 5AUX2 ", published);
    // Cut in single precision (2.017 stays 2.017, not 2.016) and towards zero.
    const json_t* volts = FindElement(hwm, 0x1020210);
    EXPECT_DOUBLE_EQ(2.017, json_real_value(json_object_get(volts, "v")));
    EXPECT_DOUBLE_EQ(15.0, json_real_value(json_object_get(volts, "max")));
    EXPECT_DOUBLE_EQ(-12.3, json_real_value(json_object_get(FindElement(hwm, 0x1020101), "v")));
}

TEST(Vora3Hwm, ReadsFollowTheItemIdAlone) {
    vtest::UseSimulator(Generation::Vora3, R"({"board": {"name": "VB-1"}, "sensors": {
        "temperature": [{"index": 0, "value": 30}],
        "voltage": [{"index": 15, "value": 3.3049}, {"index": 31, "value": 24.5}],
        "fan": [{"index": 5, "value": 2000}]},
        "faults": [{"function": "VoraHWMGetVoltage", "arg": "0x8000", "status": 0, "times": 1}]})");
    vtest::SimControl sim(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
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
    uint32_t status = 1;
    EXPECT_DOUBLE_EQ(0.0, json_real_value(ReadItem(0x1020101, JSON_REAL, &status).get()));
    EXPECT_EQ(STATUS_SUCCESS, status);

    vtest::StdoutCapture out;
    ReadItem(0x1020401, JSON_INTEGER, &status);  // the type is checked before the group
    EXPECT_EQ(STATUS_INVALID_VALUE, status);
    ReadItem(0x1020401, JSON_REAL, &status);
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    EXPECT_EQ(0u, out.finish().rfind("VORADRV HWM Get Value: not a json real\n", 0));
}
