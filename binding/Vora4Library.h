// The fourth-generation board library "libVORA-4.00": every function the
// module binds, in the order it binds them, written once. The binding's
// pointers and forwarders, the C declarations below, the simulator's export
// list and the recording stand-in are all made from this table.
//
//   VORA4_LIBRARY(INIT, X): INIT(result, name, (parameters), (arguments)) for
//   the library's initialise, then X(...) for every other function.
//
// Every function returns a status: 0 on success, else the library's code.
// The parameters' names say what they carry, for the recorder: `buffer` a
// text, whose `length` is in the buffer's size in bytes and out the text's
// length; `words` one word, or the word array of a network value
// (0x12000..0x1200F, which the module always passes as 64 words); any other
// pointer one output.
#pragma once

#define VORA4_LIBRARY(INIT, X)                                                                   \
    INIT(uint32_t, VoraLibInitialize, (), ())                                                    \
    X(uint32_t, VoraLibUninitialize, (), ())                                                     \
    X(uint32_t, VoraBoardGetStringA, (unsigned int id, char* buffer, unsigned int* length),      \
      (id, buffer, length))                                                                      \
    X(uint32_t, VoraBoardGetValue, (unsigned int id, unsigned int* words), (id, words))          \
    X(uint32_t, VoraBoardSetValue, (unsigned int id, unsigned int* words), (id, words))          \
    X(uint32_t, VoraGPIOGetCaps, (unsigned int id, unsigned int item, unsigned int* value),      \
      (id, item, value))                                                                         \
    X(uint32_t, VoraGPIOGetDirection, (unsigned int id, unsigned int mask, unsigned int* direction), \
      (id, mask, direction))                                                                     \
    X(uint32_t, VoraGPIOSetDirection, (unsigned int id, unsigned int mask, unsigned int direction), \
      (id, mask, direction))                                                                     \
    X(uint32_t, VoraGPIOGetLevel, (unsigned int id, unsigned int mask, unsigned int* level),     \
      (id, mask, level))                                                                         \
    X(uint32_t, VoraGPIOSetLevel, (unsigned int id, unsigned int mask, unsigned int level),      \
      (id, mask, level))                                                                         \
    X(uint32_t, VoraVgaGetCaps, (unsigned int id, unsigned int item, unsigned int* value),       \
      (id, item, value))                                                                         \
    X(uint32_t, VoraVgaGetFrequency, (unsigned int id, unsigned int* frequency), (id, frequency)) \
    X(uint32_t, VoraVgaSetFrequency, (unsigned int id, unsigned int frequency), (id, frequency)) \
    X(uint32_t, VoraVgaGetPolarity, (unsigned int id, unsigned int* polarity), (id, polarity))   \
    X(uint32_t, VoraVgaSetPolarity, (unsigned int id, unsigned int polarity), (id, polarity))    \
    X(uint32_t, VoraVgaGetBacklightEnable, (unsigned int id, unsigned int* enable), (id, enable)) \
    X(uint32_t, VoraVgaSetBacklightEnable, (unsigned int id, unsigned int enable), (id, enable)) \
    X(uint32_t, VoraVgaGetBacklightBrightness, (unsigned int id, unsigned int* brightness),      \
      (id, brightness))                                                                          \
    X(uint32_t, VoraVgaSetBacklightBrightness, (unsigned int id, unsigned int brightness),       \
      (id, brightness))

#ifndef VORADRV_TABLES_ONLY
#include "binding/LibraryTable.h"
VORADRV_DECLARE_LIBRARY(VORA4_LIBRARY)
#endif
