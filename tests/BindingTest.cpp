// The three bindings against the simulated libraries.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "binding/ECTL2Handle.h"
#include "binding/VORA3Handle.h"
#include "binding/VORA4Handle.h"
#include "module/Status.h"

using vtest::Generation;

namespace {
constexpr unsigned int kUntouched = 0xDEADBEEF;
}

TEST(Bindings, WithoutLibrariesForwardersAnswerSymbolMissingAndTouchNothing) {
    vtest::Redirect();
    ASSERT_NE(nullptr, VORA4Handle::instance());
    EXPECT_EQ(VORA4Handle::instance(), VORA4Handle::instance());
    EXPECT_FALSE(VORA4Handle::Avaliable());
    unsigned int value = kUntouched;
    EXPECT_EQ(STATUS_SYMBOL_MISSING, VORA4Handle::instance()->mVoraBoardGetValue(0, &value));
    EXPECT_EQ(kUntouched, value);
    EXPECT_EQ(STATUS_SYMBOL_MISSING, VORA4Handle::instance()->mVoraLibInitialize());
    EXPECT_FALSE(VORA4Handle::Avaliable());

    ASSERT_NE(nullptr, VORA3Handle::instance());
    unsigned char brightness = 0x5A;
    EXPECT_EQ(STATUS_SYMBOL_MISSING, VORA3Handle::instance()->mVoraVCGetBright(&brightness));
    EXPECT_EQ(0x5A, brightness);
    unsigned int major = kUntouched, minor = kUntouched;
    VORA3Handle::instance()->mVoraDllGetVersion(&major, &minor);
    EXPECT_EQ(kUntouched, major);
    EXPECT_EQ(kUntouched, minor);
    EXPECT_EQ(STATUS_SYMBOL_MISSING, VORA3Handle::instance()->mVoraDllInit());
    EXPECT_FALSE(VORA3Handle::Avaliable());

    ASSERT_NE(nullptr, ECTL2Handle::instance());
    unsigned int caps = kUntouched;
    EXPECT_EQ(STATUS_SYMBOL_MISSING, ECTL2Handle::instance()->mEApiHWMGetCaps(0x20000, &caps));
    EXPECT_EQ(kUntouched, caps);
    EXPECT_EQ(STATUS_SYMBOL_MISSING, ECTL2Handle::instance()->mEApiLibInitialize());
    EXPECT_FALSE(ECTL2Handle::Avaliable());
}

TEST(Bindings, Vora4AvailableOnlyAfterInitialiseReturnsZeroAndForUsAfterwards) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    sim.addFault(R"({"function": "VoraLibInitialize", "status": "0x12345678", "times": 1})");
    EXPECT_EQ(0x12345678u, VORA4Handle::instance()->mVoraLibInitialize());
    EXPECT_FALSE(VORA4Handle::Avaliable());
    EXPECT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    EXPECT_TRUE(VORA4Handle::Avaliable());
    EXPECT_EQ(0u, VORA4Handle::instance()->mVoraLibUninitialize());
    EXPECT_TRUE(VORA4Handle::Avaliable());
}

TEST(Bindings, Vora3AvailableOnlyWhenInitialiseReturnsExactlyOne) {
    vtest::UseSimulator(Generation::Vora3);
    vtest::SimControl sim(Generation::Vora3);
    sim.addFault(R"({"function": "VoraDllInit", "status": 0, "times": 1})");
    sim.addFault(R"({"function": "VoraDllInit", "status": 2, "times": 1})");
    EXPECT_EQ(0u, VORA3Handle::instance()->mVoraDllInit());
    EXPECT_FALSE(VORA3Handle::Avaliable());
    EXPECT_EQ(2u, VORA3Handle::instance()->mVoraDllInit());
    EXPECT_FALSE(VORA3Handle::Avaliable());
    EXPECT_EQ(1u, VORA3Handle::instance()->mVoraDllInit());
    EXPECT_TRUE(VORA3Handle::Avaliable());
    EXPECT_EQ(1u, VORA3Handle::instance()->mVoraDllUnInit());
    EXPECT_TRUE(VORA3Handle::Avaliable());
}

TEST(Bindings, EApiAvailableOnlyAfterInitialiseReturnsZero) {
    vtest::UseSimulator(Generation::EApi);
    vtest::SimControl sim(Generation::EApi);
    sim.addFault(R"({"function": "EApiLibInitialize", "status": "0xFFFFFFFE", "times": 1})");
    EXPECT_EQ(STATUS_ALREADY_INITIALIZED, ECTL2Handle::instance()->mEApiLibInitialize());
    EXPECT_FALSE(ECTL2Handle::Avaliable());
    EXPECT_EQ(0u, ECTL2Handle::instance()->mEApiLibInitialize());
    EXPECT_TRUE(ECTL2Handle::Avaliable());
    EXPECT_EQ(0u, ECTL2Handle::instance()->mEApiLibUnInitialize());
    EXPECT_TRUE(ECTL2Handle::Avaliable());
}

TEST(Bindings, HiddenSymbolFailsOnlyItsOwnForwarder) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::HideSymbols("VoraBoardSetValue");
    EXPECT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    unsigned int words[64] = {1};
    EXPECT_EQ(STATUS_SYMBOL_MISSING, VORA4Handle::instance()->mVoraBoardSetValue(0x12000, words));
    unsigned int value = 0;
    EXPECT_EQ(0u, VORA4Handle::instance()->mVoraBoardGetValue(0x12000, &value));
    EXPECT_EQ(1u, value);
}

TEST(Bindings, EApiWithoutHwmCapsStillInitialises) {
    vtest::UseSimulator(Generation::EApi);
    vtest::HideSymbols("EApiHWMGetCaps");
    EXPECT_EQ(0u, ECTL2Handle::instance()->mEApiLibInitialize());
    EXPECT_TRUE(ECTL2Handle::Avaliable());
    unsigned int caps = kUntouched;
    EXPECT_EQ(STATUS_SYMBOL_MISSING, ECTL2Handle::instance()->mEApiHWMGetCaps(0x20000, &caps));
    EXPECT_EQ(kUntouched, caps);
    unsigned int value = 0;
    EXPECT_EQ(0u, ECTL2Handle::instance()->mEApiBoardGetValue(0x20000, &value));
}

TEST(Bindings, ArgumentsAndStatusesPassUnchanged) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    sim.startLog();
    sim.addFault(R"({"function": "VoraGPIOSetLevel", "arg": 3, "status": "0x87654321"})");
    EXPECT_EQ(0x87654321u, VORA4Handle::instance()->mVoraGPIOSetLevel(3, 1, 5));
    EXPECT_EQ(1, sim.count("VoraGPIOSetLevel 0x3 mask=0x1 level=0x5"));
}

TEST(Bindings, Vora3NarrowArgumentsKeepTheirLowBits) {
    vtest::UseSimulator(Generation::Vora3);
    vtest::SimControl sim(Generation::Vora3);
    sim.startLog();
    unsigned int fan = 0x10001;  // only the low 16 bits reach the library
    unsigned short speed = 0;
    EXPECT_EQ(1u, VORA3Handle::instance()->mVoraHWMGetFanSpeed(fan, &speed, nullptr));
    EXPECT_EQ(2650, speed);
    unsigned int pin = 0x105;
    EXPECT_EQ(1u, VORA3Handle::instance()->mVoraIOWriteEx(pin, 1));
    EXPECT_NE(std::string::npos, sim.log().find("VoraHWMGetFanSpeed 0x1\n"));
    EXPECT_EQ(1, sim.count("VoraIOWriteEx 0x5 level=0x1"));
}
