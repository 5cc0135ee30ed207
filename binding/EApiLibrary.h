// A PICMG Embedded API library "libEApi": every function the module binds,
// in the order it binds them, written once (see Vora4Library.h for what is
// made from the table). Every function returns an Embedded API status, 0 on
// success; texts follow the length protocol of the fourth generation.
#pragma once

#define EAPI_LIBRARY(INIT, X)                                                                    \
    INIT(uint32_t, EApiLibInitialize, (), ())                                                    \
    X(uint32_t, EApiLibUnInitialize, (), ())                                                     \
    X(uint32_t, EApiBoardGetStringA, (unsigned int id, char* buffer, unsigned int* length),      \
      (id, buffer, length))                                                                      \
    X(uint32_t, EApiBoardGetValue, (unsigned int id, unsigned int* value), (id, value))          \
    X(uint32_t, EApiHWMGetCaps, (unsigned int id, unsigned int* capability), (id, capability))   \
    X(uint32_t, EApiGPIOGetDirectionCaps,                                                        \
      (unsigned int id, unsigned int* inputs, unsigned int* outputs), (id, inputs, outputs))     \
    X(uint32_t, EApiGPIOGetDirection, (unsigned int id, unsigned int mask, unsigned int* direction), \
      (id, mask, direction))                                                                     \
    X(uint32_t, EApiGPIOGetLevel, (unsigned int id, unsigned int mask, unsigned int* level),     \
      (id, mask, level))                                                                         \
    X(uint32_t, EApiGPIOSetDirection, (unsigned int id, unsigned int mask, unsigned int direction), \
      (id, mask, direction))                                                                     \
    X(uint32_t, EApiGPIOSetLevel, (unsigned int id, unsigned int mask, unsigned int level),      \
      (id, mask, level))                                                                         \
    X(uint32_t, EApiVgaGetBacklightBrightness, (unsigned int id, unsigned int* brightness),      \
      (id, brightness))                                                                          \
    X(uint32_t, EApiVgaSetBacklightBrightness, (unsigned int id, unsigned int brightness),       \
      (id, brightness))                                                                          \
    X(uint32_t, EApiVgaGetBacklightEnable, (unsigned int id, unsigned int* enable), (id, enable)) \
    X(uint32_t, EApiVgaSetBacklightEnable, (unsigned int id, unsigned int enable), (id, enable))

#ifndef VORADRV_TABLES_ONLY
#include "binding/LibraryTable.h"
VORADRV_DECLARE_LIBRARY(EAPI_LIBRARY)
#endif
