// Binding of the third-generation board library "libVORA-3.02".
//
// Same scheme as VORA4Handle: class-wide state, the library loaded and bound
// by the first instance(), one mName forwarder per function answering
// STATUS_SYMBOL_MISSING for a missing one. This library reports success as 1:
// Avaliable() becomes true only when its initialise returns exactly 1.
#pragma once

#include <cstdint>

#include "binding/Vora3Library.h"

class VORA3Handle {
public:
    static VORA3Handle* instance();
    static bool Avaliable();

    // Returns the library's result; exactly 1 makes Avaliable() true.
    static uint32_t mVoraDllInit();
    static uint32_t mVoraDllUnInit();
    static uint32_t mVoraCoreGetPlatformName(char* buffer, unsigned int* length);
    static uint32_t mVoraCoreGetBIOSVersion(char* buffer, unsigned int* length);
    // Without the library function this does nothing and leaves both outputs.
    static void mVoraDllGetVersion(unsigned int* major, unsigned int* minor);
    static uint32_t mVoraHWMGetVoltage(unsigned int id, float* value, unsigned int* mask);
    static uint32_t mVoraHWMGetFanSpeed(unsigned short id, unsigned short* value, unsigned short* mask);
    static uint32_t mVoraHWMGetTemperature(unsigned short id, float* value, unsigned short* mask);
    static uint32_t mVoraIOQueryMask(unsigned int selector, unsigned int* mask);
    static uint32_t mVoraIOCountEx(unsigned int* first, unsigned int* second);
    static uint32_t mVoraIOReadEx(unsigned char pin, int* level);
    static uint32_t mVoraIOWriteEx(unsigned char pin, int level);
    static uint32_t mVoraIOSetDirection(unsigned char pin, unsigned char direction, unsigned int* mask);
    static uint32_t mVoraVCGetBrightRange(unsigned char* minimum, unsigned char* maximum, unsigned char* step);
    static uint32_t mVoraVCGetBright(unsigned char* brightness);
    static uint32_t mVoraVCScreenOn();
    static uint32_t mVoraVCScreenOff();
    static uint32_t mVoraVCSetBright(unsigned char brightness);

    VORA3Handle(const VORA3Handle&) = delete;
    VORA3Handle& operator=(const VORA3Handle&) = delete;

private:
    VORA3Handle();
    ~VORA3Handle();

    static void* _handle;
    static bool _avaliable;
    static decltype(&::VoraDllInit) _VoraDllInit;
    static decltype(&::VoraDllUnInit) _VoraDllUnInit;
    static decltype(&::VoraCoreGetPlatformName) _VoraCoreGetPlatformName;
    static decltype(&::VoraCoreGetBIOSVersion) _VoraCoreGetBIOSVersion;
    static decltype(&::VoraDllGetVersion) _VoraDllGetVersion;
    static decltype(&::VoraHWMGetVoltage) _VoraHWMGetVoltage;
    static decltype(&::VoraHWMGetFanSpeed) _VoraHWMGetFanSpeed;
    static decltype(&::VoraHWMGetTemperature) _VoraHWMGetTemperature;
    static decltype(&::VoraIOQueryMask) _VoraIOQueryMask;
    static decltype(&::VoraIOCountEx) _VoraIOCountEx;
    static decltype(&::VoraIOReadEx) _VoraIOReadEx;
    static decltype(&::VoraIOWriteEx) _VoraIOWriteEx;
    static decltype(&::VoraIOSetDirection) _VoraIOSetDirection;
    static decltype(&::VoraVCGetBrightRange) _VoraVCGetBrightRange;
    static decltype(&::VoraVCGetBright) _VoraVCGetBright;
    static decltype(&::VoraVCScreenOn) _VoraVCScreenOn;
    static decltype(&::VoraVCScreenOff) _VoraVCScreenOff;
    static decltype(&::VoraVCSetBright) _VoraVCSetBright;
};
