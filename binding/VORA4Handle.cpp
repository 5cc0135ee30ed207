#include "VORA4Handle.h"

#include "binding/Forward.h"

using voradrv::Forward;

void* VORA4Handle::_handle = nullptr;
bool VORA4Handle::_avaliable = false;
decltype(&::VoraLibInitialize) VORA4Handle::_VoraLibInitialize = nullptr;
decltype(&::VoraLibUninitialize) VORA4Handle::_VoraLibUninitialize = nullptr;
decltype(&::VoraBoardGetStringA) VORA4Handle::_VoraBoardGetStringA = nullptr;
decltype(&::VoraBoardGetValue) VORA4Handle::_VoraBoardGetValue = nullptr;
decltype(&::VoraBoardSetValue) VORA4Handle::_VoraBoardSetValue = nullptr;
decltype(&::VoraGPIOGetCaps) VORA4Handle::_VoraGPIOGetCaps = nullptr;
decltype(&::VoraGPIOGetDirection) VORA4Handle::_VoraGPIOGetDirection = nullptr;
decltype(&::VoraGPIOSetDirection) VORA4Handle::_VoraGPIOSetDirection = nullptr;
decltype(&::VoraGPIOGetLevel) VORA4Handle::_VoraGPIOGetLevel = nullptr;
decltype(&::VoraGPIOSetLevel) VORA4Handle::_VoraGPIOSetLevel = nullptr;
decltype(&::VoraVgaGetCaps) VORA4Handle::_VoraVgaGetCaps = nullptr;
decltype(&::VoraVgaGetFrequency) VORA4Handle::_VoraVgaGetFrequency = nullptr;
decltype(&::VoraVgaSetFrequency) VORA4Handle::_VoraVgaSetFrequency = nullptr;
decltype(&::VoraVgaGetPolarity) VORA4Handle::_VoraVgaGetPolarity = nullptr;
decltype(&::VoraVgaSetPolarity) VORA4Handle::_VoraVgaSetPolarity = nullptr;
decltype(&::VoraVgaGetBacklightEnable) VORA4Handle::_VoraVgaGetBacklightEnable = nullptr;
decltype(&::VoraVgaSetBacklightEnable) VORA4Handle::_VoraVgaSetBacklightEnable = nullptr;
decltype(&::VoraVgaGetBacklightBrightness) VORA4Handle::_VoraVgaGetBacklightBrightness = nullptr;
decltype(&::VoraVgaSetBacklightBrightness) VORA4Handle::_VoraVgaSetBacklightBrightness = nullptr;

VORA4Handle* VORA4Handle::instance() {
    static VORA4Handle handle;
    return &handle;
}

// Loads the library and binds every function, in the library table's order.
// The lookups run even when the load failed; what is not found stays null.
VORA4Handle::VORA4Handle() {
    _handle = voradrv::LibLoad("libVORA-4.00");
    VORADRV_BIND(_handle, VoraLibInitialize);
    VORADRV_BIND(_handle, VoraLibUninitialize);
    VORADRV_BIND(_handle, VoraBoardGetStringA);
    VORADRV_BIND(_handle, VoraBoardGetValue);
    VORADRV_BIND(_handle, VoraBoardSetValue);
    VORADRV_BIND(_handle, VoraGPIOGetCaps);
    VORADRV_BIND(_handle, VoraGPIOGetDirection);
    VORADRV_BIND(_handle, VoraGPIOSetDirection);
    VORADRV_BIND(_handle, VoraGPIOGetLevel);
    VORADRV_BIND(_handle, VoraGPIOSetLevel);
    VORADRV_BIND(_handle, VoraVgaGetCaps);
    VORADRV_BIND(_handle, VoraVgaGetFrequency);
    VORADRV_BIND(_handle, VoraVgaSetFrequency);
    VORADRV_BIND(_handle, VoraVgaGetPolarity);
    VORADRV_BIND(_handle, VoraVgaSetPolarity);
    VORADRV_BIND(_handle, VoraVgaGetBacklightEnable);
    VORADRV_BIND(_handle, VoraVgaSetBacklightEnable);
    VORADRV_BIND(_handle, VoraVgaGetBacklightBrightness);
    VORADRV_BIND(_handle, VoraVgaSetBacklightBrightness);
}

// Runs at process exit. The library is not shut down here, only closed; a
// null handle (library never found) is not passed to the loader.
VORA4Handle::~VORA4Handle() {
    if (_handle != nullptr) {
        voradrv::LibFree(_handle);
    }
}

bool VORA4Handle::Avaliable() { return _avaliable; }

uint32_t VORA4Handle::mVoraLibInitialize() {
    const uint32_t status = Forward(_VoraLibInitialize);
    if (status == 0) {
        _avaliable = true;
    }
    return status;
}

uint32_t VORA4Handle::mVoraLibUninitialize() { return Forward(_VoraLibUninitialize); }

uint32_t VORA4Handle::mVoraBoardGetStringA(unsigned int id, char* buffer, unsigned int* length) {
    return Forward(_VoraBoardGetStringA, id, buffer, length);
}
uint32_t VORA4Handle::mVoraBoardGetValue(unsigned int id, unsigned int* value) {
    return Forward(_VoraBoardGetValue, id, value);
}
uint32_t VORA4Handle::mVoraBoardSetValue(unsigned int id, unsigned int* value) {
    return Forward(_VoraBoardSetValue, id, value);
}
uint32_t VORA4Handle::mVoraGPIOGetCaps(unsigned int id, unsigned int item, unsigned int* value) {
    return Forward(_VoraGPIOGetCaps, id, item, value);
}
uint32_t VORA4Handle::mVoraGPIOGetDirection(unsigned int id, unsigned int mask, unsigned int* direction) {
    return Forward(_VoraGPIOGetDirection, id, mask, direction);
}
uint32_t VORA4Handle::mVoraGPIOSetDirection(unsigned int id, unsigned int mask, unsigned int direction) {
    return Forward(_VoraGPIOSetDirection, id, mask, direction);
}
uint32_t VORA4Handle::mVoraGPIOGetLevel(unsigned int id, unsigned int mask, unsigned int* level) {
    return Forward(_VoraGPIOGetLevel, id, mask, level);
}
uint32_t VORA4Handle::mVoraGPIOSetLevel(unsigned int id, unsigned int mask, unsigned int level) {
    return Forward(_VoraGPIOSetLevel, id, mask, level);
}
uint32_t VORA4Handle::mVoraVgaGetCaps(unsigned int id, unsigned int item, unsigned int* value) {
    return Forward(_VoraVgaGetCaps, id, item, value);
}
uint32_t VORA4Handle::mVoraVgaGetFrequency(unsigned int id, unsigned int* frequency) {
    return Forward(_VoraVgaGetFrequency, id, frequency);
}
uint32_t VORA4Handle::mVoraVgaSetFrequency(unsigned int id, unsigned int frequency) {
    return Forward(_VoraVgaSetFrequency, id, frequency);
}
uint32_t VORA4Handle::mVoraVgaGetPolarity(unsigned int id, unsigned int* polarity) {
    return Forward(_VoraVgaGetPolarity, id, polarity);
}
uint32_t VORA4Handle::mVoraVgaSetPolarity(unsigned int id, unsigned int polarity) {
    return Forward(_VoraVgaSetPolarity, id, polarity);
}
uint32_t VORA4Handle::mVoraVgaGetBacklightEnable(unsigned int id, unsigned int* enable) {
    return Forward(_VoraVgaGetBacklightEnable, id, enable);
}
uint32_t VORA4Handle::mVoraVgaSetBacklightEnable(unsigned int id, unsigned int enable) {
    return Forward(_VoraVgaSetBacklightEnable, id, enable);
}
uint32_t VORA4Handle::mVoraVgaGetBacklightBrightness(unsigned int id, unsigned int* brightness) {
    return Forward(_VoraVgaGetBacklightBrightness, id, brightness);
}
uint32_t VORA4Handle::mVoraVgaSetBacklightBrightness(unsigned int id, unsigned int brightness) {
    return Forward(_VoraVgaSetBacklightBrightness, id, brightness);
}
