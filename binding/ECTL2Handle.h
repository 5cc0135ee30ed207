// Binding of a PICMG Embedded API library "libEApi".
//
// Same scheme as VORA4Handle: class-wide state, the library loaded and bound
// by the first instance(), one mName forwarder per function answering
// STATUS_SYMBOL_MISSING for a missing one, success reported as 0.
#pragma once

#include <cstdint>

#include "binding/EApiLibrary.h"

class ECTL2Handle {
public:
    static ECTL2Handle* instance();
    static bool Avaliable();

    // Returns the library's status; 0 makes Avaliable() true.
    static uint32_t mEApiLibInitialize();
    static uint32_t mEApiLibUnInitialize();
    static uint32_t mEApiBoardGetStringA(unsigned int id, char* buffer, unsigned int* length);
    static uint32_t mEApiBoardGetValue(unsigned int id, unsigned int* value);
    static uint32_t mEApiHWMGetCaps(unsigned int id, unsigned int* capability);
    static uint32_t mEApiGPIOGetDirectionCaps(unsigned int id, unsigned int* inputs, unsigned int* outputs);
    static uint32_t mEApiGPIOGetDirection(unsigned int id, unsigned int mask, unsigned int* direction);
    static uint32_t mEApiGPIOGetLevel(unsigned int id, unsigned int mask, unsigned int* level);
    static uint32_t mEApiGPIOSetDirection(unsigned int id, unsigned int mask, unsigned int direction);
    static uint32_t mEApiGPIOSetLevel(unsigned int id, unsigned int mask, unsigned int level);
    static uint32_t mEApiVgaGetBacklightBrightness(unsigned int id, unsigned int* brightness);
    static uint32_t mEApiVgaSetBacklightBrightness(unsigned int id, unsigned int brightness);
    static uint32_t mEApiVgaGetBacklightEnable(unsigned int id, unsigned int* enable);
    static uint32_t mEApiVgaSetBacklightEnable(unsigned int id, unsigned int enable);

    ECTL2Handle(const ECTL2Handle&) = delete;
    ECTL2Handle& operator=(const ECTL2Handle&) = delete;

private:
    ECTL2Handle();
    ~ECTL2Handle();

    static void* _handle;
    static bool _avaliable;
    static decltype(&::EApiLibInitialize) _EApiLibInitialize;
    static decltype(&::EApiLibUnInitialize) _EApiLibUnInitialize;
    static decltype(&::EApiBoardGetStringA) _EApiBoardGetStringA;
    static decltype(&::EApiBoardGetValue) _EApiBoardGetValue;
    static decltype(&::EApiHWMGetCaps) _EApiHWMGetCaps;
    static decltype(&::EApiGPIOGetDirectionCaps) _EApiGPIOGetDirectionCaps;
    static decltype(&::EApiGPIOGetDirection) _EApiGPIOGetDirection;
    static decltype(&::EApiGPIOGetLevel) _EApiGPIOGetLevel;
    static decltype(&::EApiGPIOSetDirection) _EApiGPIOSetDirection;
    static decltype(&::EApiGPIOSetLevel) _EApiGPIOSetLevel;
    static decltype(&::EApiVgaGetBacklightBrightness) _EApiVgaGetBacklightBrightness;
    static decltype(&::EApiVgaSetBacklightBrightness) _EApiVgaSetBacklightBrightness;
    static decltype(&::EApiVgaGetBacklightEnable) _EApiVgaGetBacklightEnable;
    static decltype(&::EApiVgaSetBacklightEnable) _EApiVgaSetBacklightEnable;
};
