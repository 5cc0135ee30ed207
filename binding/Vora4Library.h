// C interface of the fourth-generation board library "libVORA-4.00", as the
// module binds it by name. The simulator implements exactly these functions.
// Every function returns a status: 0 on success, else the library's code.
#pragma once

#include <cstdint>

extern "C" {
uint32_t VoraLibInitialize(void);
uint32_t VoraLibUninitialize(void);
// length: in the buffer's size in bytes; out the text's length.
uint32_t VoraBoardGetStringA(unsigned int id, char* buffer, unsigned int* length);
// value: one word, or the word array of a network value.
uint32_t VoraBoardGetValue(unsigned int id, unsigned int* value);
uint32_t VoraBoardSetValue(unsigned int id, unsigned int* value);
uint32_t VoraGPIOGetCaps(unsigned int id, unsigned int item, unsigned int* value);
uint32_t VoraGPIOGetDirection(unsigned int id, unsigned int mask, unsigned int* direction);
uint32_t VoraGPIOSetDirection(unsigned int id, unsigned int mask, unsigned int direction);
uint32_t VoraGPIOGetLevel(unsigned int id, unsigned int mask, unsigned int* level);
uint32_t VoraGPIOSetLevel(unsigned int id, unsigned int mask, unsigned int level);
uint32_t VoraVgaGetCaps(unsigned int id, unsigned int item, unsigned int* value);
uint32_t VoraVgaGetFrequency(unsigned int id, unsigned int* frequency);
uint32_t VoraVgaSetFrequency(unsigned int id, unsigned int frequency);
uint32_t VoraVgaGetPolarity(unsigned int id, unsigned int* polarity);
uint32_t VoraVgaSetPolarity(unsigned int id, unsigned int polarity);
uint32_t VoraVgaGetBacklightEnable(unsigned int id, unsigned int* enable);
uint32_t VoraVgaSetBacklightEnable(unsigned int id, unsigned int enable);
uint32_t VoraVgaGetBacklightBrightness(unsigned int id, unsigned int* brightness);
uint32_t VoraVgaSetBacklightBrightness(unsigned int id, unsigned int brightness);
}
