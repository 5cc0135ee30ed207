// C interface of a PICMG Embedded API library "libEApi", as the module binds
// it by name. The simulator implements exactly these functions. Every
// function returns an Embedded API status, 0 on success.
#pragma once

#include <cstdint>

extern "C" {
uint32_t EApiLibInitialize(void);
uint32_t EApiLibUnInitialize(void);
// length: in the buffer's size in bytes; out the text's length.
uint32_t EApiBoardGetStringA(unsigned int id, char* buffer, unsigned int* length);
uint32_t EApiBoardGetValue(unsigned int id, unsigned int* value);
uint32_t EApiHWMGetCaps(unsigned int id, unsigned int* capability);
uint32_t EApiGPIOGetDirectionCaps(unsigned int id, unsigned int* inputs, unsigned int* outputs);
uint32_t EApiGPIOGetDirection(unsigned int id, unsigned int mask, unsigned int* direction);
uint32_t EApiGPIOGetLevel(unsigned int id, unsigned int mask, unsigned int* level);
uint32_t EApiGPIOSetDirection(unsigned int id, unsigned int mask, unsigned int direction);
uint32_t EApiGPIOSetLevel(unsigned int id, unsigned int mask, unsigned int level);
uint32_t EApiVgaGetBacklightBrightness(unsigned int id, unsigned int* brightness);
uint32_t EApiVgaSetBacklightBrightness(unsigned int id, unsigned int brightness);
uint32_t EApiVgaGetBacklightEnable(unsigned int id, unsigned int* enable);
uint32_t EApiVgaSetBacklightEnable(unsigned int id, unsigned int enable);
}
