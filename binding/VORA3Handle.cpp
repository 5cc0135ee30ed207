#include "VORA3Handle.h"

#include "binding/Forward.h"

using voradrv::Forward;

void* VORA3Handle::_handle = nullptr;
bool VORA3Handle::_avaliable = false;
decltype(&::VoraDllInit) VORA3Handle::_VoraDllInit = nullptr;
decltype(&::VoraDllUnInit) VORA3Handle::_VoraDllUnInit = nullptr;
decltype(&::VoraCoreGetPlatformName) VORA3Handle::_VoraCoreGetPlatformName = nullptr;
decltype(&::VoraCoreGetBIOSVersion) VORA3Handle::_VoraCoreGetBIOSVersion = nullptr;
decltype(&::VoraDllGetVersion) VORA3Handle::_VoraDllGetVersion = nullptr;
decltype(&::VoraHWMGetVoltage) VORA3Handle::_VoraHWMGetVoltage = nullptr;
decltype(&::VoraHWMGetFanSpeed) VORA3Handle::_VoraHWMGetFanSpeed = nullptr;
decltype(&::VoraHWMGetTemperature) VORA3Handle::_VoraHWMGetTemperature = nullptr;
decltype(&::VoraIOQueryMask) VORA3Handle::_VoraIOQueryMask = nullptr;
decltype(&::VoraIOCountEx) VORA3Handle::_VoraIOCountEx = nullptr;
decltype(&::VoraIOReadEx) VORA3Handle::_VoraIOReadEx = nullptr;
decltype(&::VoraIOWriteEx) VORA3Handle::_VoraIOWriteEx = nullptr;
decltype(&::VoraIOSetDirection) VORA3Handle::_VoraIOSetDirection = nullptr;
decltype(&::VoraVCGetBrightRange) VORA3Handle::_VoraVCGetBrightRange = nullptr;
decltype(&::VoraVCGetBright) VORA3Handle::_VoraVCGetBright = nullptr;
decltype(&::VoraVCScreenOn) VORA3Handle::_VoraVCScreenOn = nullptr;
decltype(&::VoraVCScreenOff) VORA3Handle::_VoraVCScreenOff = nullptr;
decltype(&::VoraVCSetBright) VORA3Handle::_VoraVCSetBright = nullptr;

VORA3Handle* VORA3Handle::instance() {
    static VORA3Handle handle;
    return &handle;
}

// Loads the library and binds every function, in the library table's order.
VORA3Handle::VORA3Handle() {
    _handle = voradrv::LibLoad("libVORA-3.02");
    VORADRV_BIND(_handle, VoraDllInit);
    VORADRV_BIND(_handle, VoraDllUnInit);
    VORADRV_BIND(_handle, VoraCoreGetPlatformName);
    VORADRV_BIND(_handle, VoraCoreGetBIOSVersion);
    VORADRV_BIND(_handle, VoraDllGetVersion);
    VORADRV_BIND(_handle, VoraHWMGetVoltage);
    VORADRV_BIND(_handle, VoraHWMGetFanSpeed);
    VORADRV_BIND(_handle, VoraHWMGetTemperature);
    VORADRV_BIND(_handle, VoraIOQueryMask);
    VORADRV_BIND(_handle, VoraIOCountEx);
    VORADRV_BIND(_handle, VoraIOReadEx);
    VORADRV_BIND(_handle, VoraIOWriteEx);
    VORADRV_BIND(_handle, VoraIOSetDirection);
    VORADRV_BIND(_handle, VoraVCGetBrightRange);
    VORADRV_BIND(_handle, VoraVCGetBright);
    VORADRV_BIND(_handle, VoraVCScreenOn);
    VORADRV_BIND(_handle, VoraVCScreenOff);
    VORADRV_BIND(_handle, VoraVCSetBright);
}

// Closes the library at process exit (a null handle is not passed on).
VORA3Handle::~VORA3Handle() {
    if (_handle != nullptr) {
        voradrv::LibFree(_handle);
    }
}

bool VORA3Handle::Avaliable() { return _avaliable; }

uint32_t VORA3Handle::mVoraDllInit() {
    const uint32_t result = Forward(_VoraDllInit);
    if (result == 1) {
        _avaliable = true;
    }
    return result;
}

uint32_t VORA3Handle::mVoraDllUnInit() { return Forward(_VoraDllUnInit); }

uint32_t VORA3Handle::mVoraCoreGetPlatformName(char* buffer, unsigned int* length) {
    return Forward(_VoraCoreGetPlatformName, buffer, length);
}
uint32_t VORA3Handle::mVoraCoreGetBIOSVersion(char* buffer, unsigned int* length) {
    return Forward(_VoraCoreGetBIOSVersion, buffer, length);
}
void VORA3Handle::mVoraDllGetVersion(unsigned int* major, unsigned int* minor) {
    if (_VoraDllGetVersion != nullptr) {
        _VoraDllGetVersion(major, minor);
    }
}
uint32_t VORA3Handle::mVoraHWMGetVoltage(unsigned int id, float* value, unsigned int* mask) {
    return Forward(_VoraHWMGetVoltage, id, value, mask);
}
uint32_t VORA3Handle::mVoraHWMGetFanSpeed(unsigned short id, unsigned short* value, unsigned short* mask) {
    return Forward(_VoraHWMGetFanSpeed, id, value, mask);
}
uint32_t VORA3Handle::mVoraHWMGetTemperature(unsigned short id, float* value, unsigned short* mask) {
    return Forward(_VoraHWMGetTemperature, id, value, mask);
}
uint32_t VORA3Handle::mVoraIOQueryMask(unsigned int selector, unsigned int* mask) {
    return Forward(_VoraIOQueryMask, selector, mask);
}
uint32_t VORA3Handle::mVoraIOCountEx(unsigned int* first, unsigned int* second) {
    return Forward(_VoraIOCountEx, first, second);
}
uint32_t VORA3Handle::mVoraIOReadEx(unsigned char pin, int* level) {
    return Forward(_VoraIOReadEx, pin, level);
}
uint32_t VORA3Handle::mVoraIOWriteEx(unsigned char pin, int level) {
    return Forward(_VoraIOWriteEx, pin, level);
}
uint32_t VORA3Handle::mVoraIOSetDirection(unsigned char pin, unsigned char direction, unsigned int* mask) {
    return Forward(_VoraIOSetDirection, pin, direction, mask);
}
uint32_t VORA3Handle::mVoraVCGetBrightRange(unsigned char* minimum, unsigned char* maximum, unsigned char* step) {
    return Forward(_VoraVCGetBrightRange, minimum, maximum, step);
}
uint32_t VORA3Handle::mVoraVCGetBright(unsigned char* brightness) {
    return Forward(_VoraVCGetBright, brightness);
}
uint32_t VORA3Handle::mVoraVCScreenOn() { return Forward(_VoraVCScreenOn); }
uint32_t VORA3Handle::mVoraVCScreenOff() { return Forward(_VoraVCScreenOff); }
uint32_t VORA3Handle::mVoraVCSetBright(unsigned char brightness) {
    return Forward(_VoraVCSetBright, brightness);
}
