#include "ECTL2Handle.h"

#include "binding/Forward.h"

using voradrv::Forward;

void* ECTL2Handle::_handle = nullptr;
bool ECTL2Handle::_avaliable = false;
decltype(&::EApiLibInitialize) ECTL2Handle::_EApiLibInitialize = nullptr;
decltype(&::EApiLibUnInitialize) ECTL2Handle::_EApiLibUnInitialize = nullptr;
decltype(&::EApiBoardGetStringA) ECTL2Handle::_EApiBoardGetStringA = nullptr;
decltype(&::EApiBoardGetValue) ECTL2Handle::_EApiBoardGetValue = nullptr;
decltype(&::EApiHWMGetCaps) ECTL2Handle::_EApiHWMGetCaps = nullptr;
decltype(&::EApiGPIOGetDirectionCaps) ECTL2Handle::_EApiGPIOGetDirectionCaps = nullptr;
decltype(&::EApiGPIOGetDirection) ECTL2Handle::_EApiGPIOGetDirection = nullptr;
decltype(&::EApiGPIOGetLevel) ECTL2Handle::_EApiGPIOGetLevel = nullptr;
decltype(&::EApiGPIOSetDirection) ECTL2Handle::_EApiGPIOSetDirection = nullptr;
decltype(&::EApiGPIOSetLevel) ECTL2Handle::_EApiGPIOSetLevel = nullptr;
decltype(&::EApiVgaGetBacklightBrightness) ECTL2Handle::_EApiVgaGetBacklightBrightness = nullptr;
decltype(&::EApiVgaSetBacklightBrightness) ECTL2Handle::_EApiVgaSetBacklightBrightness = nullptr;
decltype(&::EApiVgaGetBacklightEnable) ECTL2Handle::_EApiVgaGetBacklightEnable = nullptr;
decltype(&::EApiVgaSetBacklightEnable) ECTL2Handle::_EApiVgaSetBacklightEnable = nullptr;

ECTL2Handle* ECTL2Handle::instance() {
    static ECTL2Handle handle;
    return &handle;
}

// Loads the library and binds every function, in the library table's order.
ECTL2Handle::ECTL2Handle() {
    _handle = voradrv::LibLoad("libEApi");
    VORADRV_BIND(_handle, EApiLibInitialize);
    VORADRV_BIND(_handle, EApiLibUnInitialize);
    VORADRV_BIND(_handle, EApiBoardGetStringA);
    VORADRV_BIND(_handle, EApiBoardGetValue);
    VORADRV_BIND(_handle, EApiHWMGetCaps);
    VORADRV_BIND(_handle, EApiGPIOGetDirectionCaps);
    VORADRV_BIND(_handle, EApiGPIOGetDirection);
    VORADRV_BIND(_handle, EApiGPIOGetLevel);
    VORADRV_BIND(_handle, EApiGPIOSetDirection);
    VORADRV_BIND(_handle, EApiGPIOSetLevel);
    VORADRV_BIND(_handle, EApiVgaGetBacklightBrightness);
    VORADRV_BIND(_handle, EApiVgaSetBacklightBrightness);
    VORADRV_BIND(_handle, EApiVgaGetBacklightEnable);
    VORADRV_BIND(_handle, EApiVgaSetBacklightEnable);
}

// Closes the library at process exit (a null handle is not passed on).
ECTL2Handle::~ECTL2Handle() {
    if (_handle != nullptr) {
        voradrv::LibFree(_handle);
    }
}

bool ECTL2Handle::Avaliable() { return _avaliable; }

uint32_t ECTL2Handle::mEApiLibInitialize() {
    const uint32_t status = Forward(_EApiLibInitialize);
    if (status == 0) {
        _avaliable = true;
    }
    return status;
}

uint32_t ECTL2Handle::mEApiLibUnInitialize() { return Forward(_EApiLibUnInitialize); }

uint32_t ECTL2Handle::mEApiBoardGetStringA(unsigned int id, char* buffer, unsigned int* length) {
    return Forward(_EApiBoardGetStringA, id, buffer, length);
}
uint32_t ECTL2Handle::mEApiBoardGetValue(unsigned int id, unsigned int* value) {
    return Forward(_EApiBoardGetValue, id, value);
}
uint32_t ECTL2Handle::mEApiHWMGetCaps(unsigned int id, unsigned int* capability) {
    return Forward(_EApiHWMGetCaps, id, capability);
}
uint32_t ECTL2Handle::mEApiGPIOGetDirectionCaps(unsigned int id, unsigned int* inputs, unsigned int* outputs) {
    return Forward(_EApiGPIOGetDirectionCaps, id, inputs, outputs);
}
uint32_t ECTL2Handle::mEApiGPIOGetDirection(unsigned int id, unsigned int mask, unsigned int* direction) {
    return Forward(_EApiGPIOGetDirection, id, mask, direction);
}
uint32_t ECTL2Handle::mEApiGPIOGetLevel(unsigned int id, unsigned int mask, unsigned int* level) {
    return Forward(_EApiGPIOGetLevel, id, mask, level);
}
uint32_t ECTL2Handle::mEApiGPIOSetDirection(unsigned int id, unsigned int mask, unsigned int direction) {
    return Forward(_EApiGPIOSetDirection, id, mask, direction);
}
uint32_t ECTL2Handle::mEApiGPIOSetLevel(unsigned int id, unsigned int mask, unsigned int level) {
    return Forward(_EApiGPIOSetLevel, id, mask, level);
}
uint32_t ECTL2Handle::mEApiVgaGetBacklightBrightness(unsigned int id, unsigned int* brightness) {
    return Forward(_EApiVgaGetBacklightBrightness, id, brightness);
}
uint32_t ECTL2Handle::mEApiVgaSetBacklightBrightness(unsigned int id, unsigned int brightness) {
    return Forward(_EApiVgaSetBacklightBrightness, id, brightness);
}
uint32_t ECTL2Handle::mEApiVgaGetBacklightEnable(unsigned int id, unsigned int* enable) {
    return Forward(_EApiVgaGetBacklightEnable, id, enable);
}
uint32_t ECTL2Handle::mEApiVgaSetBacklightEnable(unsigned int id, unsigned int enable) {
    return Forward(_EApiVgaSetBacklightEnable, id, enable);
}
