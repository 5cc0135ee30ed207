// Binding of the fourth-generation board library "libVORA-4.00".
//
// All state is class-wide. The first instance() loads the library and binds
// its functions by name; each mName method forwards to the library function
// Name, or answers STATUS_SYMBOL_MISSING when the library lacks it.
// Avaliable() is true once the library's initialise has returned 0, and stays
// true for the rest of the process.
#pragma once

#include <cstdint>

#include "binding/Vora4Library.h"

class VORA4Handle {
public:
    static VORA4Handle* instance();
    static bool Avaliable();

    // Returns the library's status; 0 makes Avaliable() true.
    static uint32_t mVoraLibInitialize();
    static uint32_t mVoraLibUninitialize();
    static uint32_t mVoraBoardGetStringA(unsigned int id, char* buffer, unsigned int* length);
    static uint32_t mVoraBoardGetValue(unsigned int id, unsigned int* value);
    static uint32_t mVoraBoardSetValue(unsigned int id, unsigned int* value);
    static uint32_t mVoraGPIOGetCaps(unsigned int id, unsigned int item, unsigned int* value);
    static uint32_t mVoraGPIOGetDirection(unsigned int id, unsigned int mask, unsigned int* direction);
    static uint32_t mVoraGPIOSetDirection(unsigned int id, unsigned int mask, unsigned int direction);
    static uint32_t mVoraGPIOGetLevel(unsigned int id, unsigned int mask, unsigned int* level);
    static uint32_t mVoraGPIOSetLevel(unsigned int id, unsigned int mask, unsigned int level);
    static uint32_t mVoraVgaGetCaps(unsigned int id, unsigned int item, unsigned int* value);
    static uint32_t mVoraVgaGetFrequency(unsigned int id, unsigned int* frequency);
    static uint32_t mVoraVgaSetFrequency(unsigned int id, unsigned int frequency);
    static uint32_t mVoraVgaGetPolarity(unsigned int id, unsigned int* polarity);
    static uint32_t mVoraVgaSetPolarity(unsigned int id, unsigned int polarity);
    static uint32_t mVoraVgaGetBacklightEnable(unsigned int id, unsigned int* enable);
    static uint32_t mVoraVgaSetBacklightEnable(unsigned int id, unsigned int enable);
    static uint32_t mVoraVgaGetBacklightBrightness(unsigned int id, unsigned int* brightness);
    static uint32_t mVoraVgaSetBacklightBrightness(unsigned int id, unsigned int brightness);

    VORA4Handle(const VORA4Handle&) = delete;
    VORA4Handle& operator=(const VORA4Handle&) = delete;

private:
    VORA4Handle();
    ~VORA4Handle();

    static void* _handle;
    static bool _avaliable;
    static decltype(&::VoraLibInitialize) _VoraLibInitialize;
    static decltype(&::VoraLibUninitialize) _VoraLibUninitialize;
    static decltype(&::VoraBoardGetStringA) _VoraBoardGetStringA;
    static decltype(&::VoraBoardGetValue) _VoraBoardGetValue;
    static decltype(&::VoraBoardSetValue) _VoraBoardSetValue;
    static decltype(&::VoraGPIOGetCaps) _VoraGPIOGetCaps;
    static decltype(&::VoraGPIOGetDirection) _VoraGPIOGetDirection;
    static decltype(&::VoraGPIOSetDirection) _VoraGPIOSetDirection;
    static decltype(&::VoraGPIOGetLevel) _VoraGPIOGetLevel;
    static decltype(&::VoraGPIOSetLevel) _VoraGPIOSetLevel;
    static decltype(&::VoraVgaGetCaps) _VoraVgaGetCaps;
    static decltype(&::VoraVgaGetFrequency) _VoraVgaGetFrequency;
    static decltype(&::VoraVgaSetFrequency) _VoraVgaSetFrequency;
    static decltype(&::VoraVgaGetPolarity) _VoraVgaGetPolarity;
    static decltype(&::VoraVgaSetPolarity) _VoraVgaSetPolarity;
    static decltype(&::VoraVgaGetBacklightEnable) _VoraVgaGetBacklightEnable;
    static decltype(&::VoraVgaSetBacklightEnable) _VoraVgaSetBacklightEnable;
    static decltype(&::VoraVgaGetBacklightBrightness) _VoraVgaGetBacklightBrightness;
    static decltype(&::VoraVgaSetBacklightBrightness) _VoraVgaSetBacklightBrightness;
};
