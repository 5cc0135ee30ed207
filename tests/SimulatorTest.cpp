// The board simulator and the path redirection, where a module test would
// not show a fault.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "SimHarness.h"
#include "binding/EApiLibrary.h"
#include "binding/Vora3Library.h"
#include "binding/Vora4Library.h"

using vtest::Generation;

namespace {

// A simulated library's function, looked up in the library itself.
#define SIM_FN(sim, name) (sim).function<decltype(::name)>(#name)

}  // namespace

TEST(Profile, ErrorsNameThePlaceAndTheProblem) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    EXPECT_EQ("profile: sensors.voltage[1]: unknown key \"vale\"",
              sim.loadProfileError(
                  R"({"sensors": {"voltage": [{"index": 0, "value": 1}, {"index": 1, "vale": 1}]}})"));
    EXPECT_EQ("profile: line 1, column 1: string or '}' expected near end of file",
              sim.loadProfileError("{"));
    EXPECT_EQ("profile: gpio[0].direction: expected \"in\" or \"out\" within the pin's abilities",
              sim.loadProfileError(R"({"gpio": [{"pin": 1, "input": false, "direction": "in"}]})"));
    EXPECT_EQ("profile: network.mac: expected a MAC address such as 00:0B:AB:12:34:5F",
              sim.loadProfileError(R"({"network": {"mac": "00-0B-AB-12-34-5F"}})"));
    // A refused profile leaves the board as it was.
    auto getValue = SIM_FN(sim, VoraBoardGetValue);
    unsigned int boots = 0;
    EXPECT_EQ(0u, getValue(1, &boots));
    EXPECT_EQ(1342u, boots);
}

TEST(Profile, UnusableProfileFileMakesInitialiseFail) {
    vtest::UseSimulator(Generation::Vora3, R"({"board": {"name": 7}})");
    vtest::SimControl sim(Generation::Vora3);
    EXPECT_EQ(0u, SIM_FN(sim, VoraDllInit)());
    vtest::UseSimulator(Generation::EApi, R"({"board": {"name": 7}})");
}

TEST(Vora4Sim, ReadsInLibraryUnitsAndTextsFollowTheLengthProtocol) {
    vtest::UseSimulator(Generation::Vora4, R"({
        "board": {"spec_version": "1.2", "driver_version": "4.0.12",
                  "pnp_id": {"vendor": "VOR", "product": "0x441"}},
        "sensors": {"temperature": [{"index": 0, "name": "CPU", "value": 48.5}],
                    "voltage": [{"index": 2, "value": -1.0}],
                    "fan": [{"index": 0, "raw": "0xFFFFFFFF"}]},
        "network": {"mac": "00:0B:AB:12:34:5F", "server": "10.1.2.3:623"}})");
    vtest::SimControl sim(Generation::Vora4);
    auto getValue = SIM_FN(sim, VoraBoardGetValue);
    unsigned int v = 0;
    EXPECT_EQ(0u, getValue(0, &v));
    EXPECT_EQ(0x01020000u, v);
    EXPECT_EQ(0u, getValue(0x10000, &v));
    EXPECT_EQ(0x0400000Cu, v);
    EXPECT_EQ(0u, getValue(3, &v));
    // Decoded the way the module reads it: "VOR", 0x441.
    EXPECT_EQ('V', static_cast<char>(((v >> 14) & 0x3F) + 0x40));
    EXPECT_EQ('O', static_cast<char>(((((v >> 12) & 3) << 3) | ((v >> 25) & 7)) + 0x40));
    EXPECT_EQ('R', static_cast<char>(((v >> 20) & 0x1F) + 0x40));
    EXPECT_EQ(0x441u, v & 0xFFF);
    EXPECT_EQ(0u, getValue(0x20000, &v));
    EXPECT_EQ(3216u, v);  // tenths of a kelvin
    EXPECT_EQ(0u, getValue(0x21002, &v));
    EXPECT_EQ(0xFFFFFC18u, v);  // -1000 mV
    EXPECT_EQ(0u, getValue(0x22000, &v));
    EXPECT_EQ(0xFFFFFFFFu, v);
    EXPECT_EQ(0xFFFFFCFFu, getValue(0x21000, &v));
    unsigned int words[8] = {};
    EXPECT_EQ(0u, getValue(0x1200F, words));
    EXPECT_EQ(10u, words[0]);
    EXPECT_EQ(623u, words[4]);

    auto getString = SIM_FN(sim, VoraBoardGetStringA);
    char name[8];
    std::memset(name, 'x', sizeof name);
    unsigned int length = 3;
    EXPECT_EQ(0xFFFFF9FFu, getString(0x20000, name, &length));
    EXPECT_STREQ("CP", name);
    length = sizeof name;
    EXPECT_EQ(0u, getString(0x20000, name, &length));
    EXPECT_STREQ("CPU", name);
    EXPECT_EQ(3u, length);
}

TEST(Vora4Sim, WritesChangeWhatLaterReadsSee) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    unsigned int v = 0;
    // Output-only pin 2 (DO0) can be driven; input-only pin 0 cannot.
    EXPECT_EQ(0u, SIM_FN(sim, VoraGPIOSetLevel)(2, 1, 1));
    EXPECT_EQ(0u, SIM_FN(sim, VoraGPIOGetLevel)(2, 1, &v));
    EXPECT_EQ(1u, v);
    EXPECT_EQ(0xFFFFFCFFu, SIM_FN(sim, VoraGPIOSetLevel)(0, 1, 0));
    EXPECT_EQ(0u, SIM_FN(sim, VoraGPIOSetDirection)(4, 1, 0));
    EXPECT_EQ(0u, SIM_FN(sim, VoraGPIOGetDirection)(4, 1, &v));
    EXPECT_EQ(0u, v);

    EXPECT_EQ(0u, SIM_FN(sim, VoraVgaSetBacklightBrightness)(0, 50));
    EXPECT_EQ(0xFFFFFEFFu, SIM_FN(sim, VoraVgaSetBacklightBrightness)(0, 101));
    EXPECT_EQ(0u, SIM_FN(sim, VoraVgaGetBacklightBrightness)(0, &v));
    EXPECT_EQ(50u, v);
    EXPECT_EQ(0u, SIM_FN(sim, VoraVgaSetBacklightEnable)(1, 0));
    EXPECT_EQ(0u, SIM_FN(sim, VoraVgaGetBacklightEnable)(1, &v));
    EXPECT_EQ(0u, v);

    unsigned int ip[64] = {10, 0, 0, 7};
    EXPECT_EQ(0u, SIM_FN(sim, VoraBoardSetValue)(0x12004, ip));
    unsigned int read[64] = {};
    EXPECT_EQ(0u, SIM_FN(sim, VoraBoardGetValue)(0x12004, read));
    EXPECT_EQ(7u, read[3]);
    // Current settings are the controller's own: refused.
    EXPECT_EQ(0xFFFFFCFFu, SIM_FN(sim, VoraBoardSetValue)(0x12008, ip));
}

TEST(Vora3Sim, MasksFloatsAndTheNullBufferLengthQuery) {
    vtest::UseSimulator(Generation::Vora3);
    vtest::SimControl sim(Generation::Vora3);
    unsigned short mask = 0;
    float t = 0;
    EXPECT_EQ(1u, SIM_FN(sim, VoraHWMGetTemperature)(0, &t, &mask));
    EXPECT_EQ(0x0005, mask);
    EXPECT_EQ(1u, SIM_FN(sim, VoraHWMGetTemperature)(4, &t, nullptr));
    EXPECT_FLOAT_EQ(38.04f, t);
    EXPECT_EQ(0u, SIM_FN(sim, VoraHWMGetTemperature)(2, &t, nullptr));

    unsigned int length = 1;
    EXPECT_EQ(1u, SIM_FN(sim, VoraCoreGetPlatformName)(nullptr, &length));
    EXPECT_EQ(8u, length);  // "VB-3200" and its terminator
    char name[16];
    length = sizeof name;
    EXPECT_EQ(1u, SIM_FN(sim, VoraCoreGetPlatformName)(name, &length));
    EXPECT_STREQ("VB-3200", name);
    EXPECT_EQ(8u, length);

    EXPECT_EQ(1u, SIM_FN(sim, VoraVCSetBright)(200));
    unsigned char b = 0;
    EXPECT_EQ(1u, SIM_FN(sim, VoraVCGetBright)(&b));
    EXPECT_EQ(200, b);
    EXPECT_EQ(0u, SIM_FN(sim, VoraVCSetBright)(5));  // below the range's minimum 10
    unsigned int directions = 0;
    EXPECT_EQ(1u, SIM_FN(sim, VoraIOSetDirection)(6, 0, &directions));
    EXPECT_EQ(0u, directions & (1u << 6));
    EXPECT_EQ(1u, SIM_FN(sim, VoraIOWriteEx)(6, 1));
    int level = 0;
    EXPECT_EQ(1u, SIM_FN(sim, VoraIOReadEx)(6, &level));
    EXPECT_EQ(1, level);
}

TEST(EApiSim, CapabilitiesVoltageSlotsAndBacklightConvention) {
    vtest::UseSimulator(Generation::EApi);
    vtest::SimControl sim(Generation::EApi);
    unsigned int caps = 7;
    EXPECT_EQ(0u, SIM_FN(sim, EApiHWMGetCaps)(0x21014, &caps));  // block 1, slot 0
    EXPECT_EQ(1u, caps);
    caps = 7;
    EXPECT_NE(0u, SIM_FN(sim, EApiHWMGetCaps)(0x21008, &caps));  // no sensor: untouched
    EXPECT_EQ(7u, caps);
    unsigned int v = 0;
    EXPECT_EQ(0u, SIM_FN(sim, EApiBoardGetValue)(0x21014, &v));
    EXPECT_EQ(5034u, v);

    EXPECT_EQ(0u, SIM_FN(sim, EApiVgaGetBacklightEnable)(0, &v));
    EXPECT_EQ(0u, v);  // on
    EXPECT_EQ(0u, SIM_FN(sim, EApiVgaGetBacklightEnable)(1, &v));
    EXPECT_EQ(0xFFFFFFFFu, v);  // off
    EXPECT_EQ(0u, SIM_FN(sim, EApiVgaSetBacklightEnable)(1, 0));
    EXPECT_EQ(0u, SIM_FN(sim, EApiVgaGetBacklightEnable)(1, &v));
    EXPECT_EQ(0u, v);
    EXPECT_EQ(0xFFFFFEFFu, SIM_FN(sim, EApiVgaSetBacklightEnable)(1, 1));

    // The board name ends in a line feed; the reported length points at it.
    char text[32];
    unsigned int length = sizeof text;
    EXPECT_EQ(0u, SIM_FN(sim, EApiBoardGetStringA)(1, text, &length));
    EXPECT_EQ('\n', text[length - 1]);
}

TEST(Faults, MatchTheKeyArgumentCountDownAndBendOutputs) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    sim.startLog();
    sim.addFault(R"({"function": "VoraBoardGetValue", "arg": "0x21000", "status": "0xFFFFF0FF", "times": 2})");
    sim.addFault(R"({"function": "VoraGPIOGetCaps", "value": "0xFFFFFFFF"})");
    sim.addFault(R"({"function": "VoraBoardGetStringA", "arg": 1, "unterminated": true, "length": 99})");
    auto getValue = SIM_FN(sim, VoraBoardGetValue);
    unsigned int v = 5;
    EXPECT_EQ(0xFFFFF0FFu, getValue(0x21000, &v));
    EXPECT_EQ(5u, v);
    EXPECT_EQ(0u, getValue(0x21003, &v));
    EXPECT_EQ(0xFFFFF0FFu, getValue(0x21000, &v));
    EXPECT_EQ(0u, getValue(0x21000, &v));
    EXPECT_EQ(0u, SIM_FN(sim, VoraGPIOGetCaps)(0x10002, 1, &v));
    EXPECT_EQ(0xFFFFFFFFu, v);
    char text[4];
    unsigned int length = sizeof text;
    EXPECT_EQ(0u, SIM_FN(sim, VoraBoardGetStringA)(1, text, &length));
    EXPECT_EQ(99u, length);
    EXPECT_EQ(0, std::memcmp(text, "VB-4", 4));
    EXPECT_EQ(4, sim.count("VoraBoardGetValue 0x2100"));
    EXPECT_EQ(1, sim.count("VoraGPIOGetCaps 0x10002 item=0x1"));
    sim.clearLog();
    EXPECT_EQ("", sim.log());
}

TEST(Redirect, MapsOnlyListedPathsAndKeepsTheCallersView) {
    vtest::Redirect({{"/usr/lib/libEApi.so", vtest::SimLibraryPath(Generation::EApi)}});
    struct stat status {};
    EXPECT_EQ(0, ::stat("/usr/lib/libEApi.so", &status));
    EXPECT_EQ(-1, ::stat("/usr/lib64/libEApi.so", &status));
    EXPECT_EQ(ENOENT, errno);
    EXPECT_EQ(0, ::stat("/tmp", &status));  // not listed: untouched
    EXPECT_EQ(nullptr, dlopen("/usr/lib64/libVORA-3.02.so", RTLD_LAZY));

    // RTLD_NEXT is resolved relative to this program, not to the redirection:
    // the next "stat" after the program is the redirection's own.
    Dl_info info{};
    ASSERT_NE(0, dladdr(dlsym(RTLD_NEXT, "stat"), &info));
    EXPECT_NE(nullptr, std::strstr(info.dli_fname, "libvoraredirect"));

    vtest::HideSymbols("EApiLibInitialize,EApiHWMGetCaps");
    void* eapi = dlopen("/usr/lib/libEApi.so", RTLD_LAZY);
    ASSERT_NE(nullptr, eapi);
    EXPECT_EQ(nullptr, dlsym(eapi, "EApiHWMGetCaps"));
    EXPECT_EQ(nullptr, dlsym(eapi, "EApiLibInitialize"));
    EXPECT_NE(nullptr, dlsym(eapi, "EApiBoardGetValue"));
}
