// The board simulator and the path redirection, where a module test would
// not show a fault: profile errors, the fault machinery the module tests rely
// on, and the redirection's own rules. What the simulated boards answer, and
// that writes change what later reads see, the module's tests show through
// the module (golden files, conversions, write-and-read-back tests).
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "SimHarness.h"
#include "binding/EApiLibrary.h"
#include "binding/Vora3Library.h"
#include "binding/Vora4Library.h"

using namespace vtest;

TEST(Profile, ErrorsNameThePlaceAndTheProblem) {
    UseSimulator(Generation::Vora4);
    SimControl sim(Generation::Vora4);
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
    auto getValue = sim.function<decltype(VoraBoardGetValue)>("VoraBoardGetValue");
    unsigned int boots = 0;
    EXPECT_EQ(0u, getValue(1, &boots));
    EXPECT_EQ(1342u, boots);
}

TEST(Profile, UnusableProfileFileMakesInitialiseFail) {
    UseSimulator(Generation::Vora3, R"({"board": {"name": 7}})");
    SimControl vora3(Generation::Vora3);
    SimControl eapi(Generation::EApi);
    EXPECT_EQ(0u, vora3.function<decltype(VoraDllInit)>("VoraDllInit")());
    EXPECT_NE(0u, eapi.function<decltype(EApiLibInitialize)>("EApiLibInitialize")());
}

TEST(Faults, MatchTheKeyArgumentCountDownAndBendOutputs) {
    UseSimulator(Generation::Vora4);
    SimControl sim(Generation::Vora4);
    sim.startLog();
    sim.addFault(R"({"function": "VoraBoardGetValue", "arg": "0x21000", "status": "0xFFFFF0FF", "times": 2})");
    sim.addFault(R"({"function": "VoraGPIOGetCaps", "value": "0xFFFFFFFF"})");
    sim.addFault(R"({"function": "VoraBoardGetStringA", "arg": 1, "unterminated": true, "length": 99})");
    auto getValue = sim.function<decltype(VoraBoardGetValue)>("VoraBoardGetValue");
    auto getCaps = sim.function<decltype(VoraGPIOGetCaps)>("VoraGPIOGetCaps");
    auto getString = sim.function<decltype(VoraBoardGetStringA)>("VoraBoardGetStringA");
    unsigned int v = 5;
    EXPECT_EQ(0xFFFFF0FFu, getValue(0x21000, &v));
    EXPECT_EQ(5u, v);
    EXPECT_EQ(0u, getValue(0x21003, &v));
    EXPECT_EQ(0xFFFFF0FFu, getValue(0x21000, &v));
    EXPECT_EQ(0u, getValue(0x21000, &v));
    EXPECT_EQ(0u, getCaps(0x10002, 1, &v));
    EXPECT_EQ(0xFFFFFFFFu, v);
    char text[4];
    unsigned int length = sizeof text;
    EXPECT_EQ(0u, getString(1, text, &length));
    EXPECT_EQ(99u, length);
    EXPECT_EQ(0, std::memcmp(text, "VB-4", 4));
    EXPECT_EQ(4, sim.count("VoraBoardGetValue 0x2100"));
    EXPECT_EQ(1, sim.count("VoraGPIOGetCaps 0x10002 item=0x1"));
    sim.clearLog();
    EXPECT_EQ("", sim.log());
}

TEST(Redirect, MapsOnlyListedPathsAndKeepsTheCallersView) {
    Redirect({{"/usr/lib/libEApi.so", SimLibraryPath(Generation::EApi)}});
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

    HideSymbols("EApiLibInitialize,EApiHWMGetCaps");
    void* eapi = dlopen("/usr/lib/libEApi.so", RTLD_LAZY);
    ASSERT_NE(nullptr, eapi);
    EXPECT_EQ(nullptr, dlsym(eapi, "EApiHWMGetCaps"));
    EXPECT_EQ(nullptr, dlsym(eapi, "EApiLibInitialize"));
    EXPECT_NE(nullptr, dlsym(eapi, "EApiBoardGetValue"));
}
