// The third-generation board library "libVORA-3.02": every function the
// module binds, in the order it binds them, written once (see
// Vora4Library.h for what is made from the table).
//
// Unless noted, a function returns 1 on success. A text call with a null
// buffer reports the length the text needs. Parameters are named as in
// Vora4Library.h; a pointer may be null where noted there. The sensor calls take a sensor
// mask (one bit per sensor) and fill the support mask when that pointer is
// not null. VoraDllGetVersion returns nothing. Arguments declared unsigned
// short or unsigned char reach the library at that width.
#pragma once

#define VORA3_LIBRARY(INIT, X)                                                                   \
    INIT(uint32_t, VoraDllInit, (), ())                                                          \
    X(uint32_t, VoraDllUnInit, (), ())                                                           \
    X(uint32_t, VoraCoreGetPlatformName, (char* buffer, unsigned int* length), (buffer, length)) \
    X(uint32_t, VoraCoreGetBIOSVersion, (char* buffer, unsigned int* length), (buffer, length))  \
    X(void, VoraDllGetVersion, (unsigned int* major, unsigned int* minor), (major, minor))       \
    X(uint32_t, VoraHWMGetVoltage, (unsigned int id, float* value, unsigned int* mask),          \
      (id, value, mask))                                                                         \
    X(uint32_t, VoraHWMGetFanSpeed, (unsigned short id, unsigned short* value, unsigned short* mask), \
      (id, value, mask))                                                                         \
    X(uint32_t, VoraHWMGetTemperature, (unsigned short id, float* value, unsigned short* mask),  \
      (id, value, mask))                                                                         \
    X(uint32_t, VoraIOQueryMask, (unsigned int selector, unsigned int* mask), (selector, mask))  \
    X(uint32_t, VoraIOCountEx, (unsigned int* first, unsigned int* second), (first, second))     \
    X(uint32_t, VoraIOReadEx, (unsigned char pin, int* level), (pin, level))                     \
    X(uint32_t, VoraIOWriteEx, (unsigned char pin, int level), (pin, level))                     \
    X(uint32_t, VoraIOSetDirection, (unsigned char pin, unsigned char direction, unsigned int* mask), \
      (pin, direction, mask))                                                                    \
    X(uint32_t, VoraVCGetBrightRange,                                                            \
      (unsigned char* minimum, unsigned char* maximum, unsigned char* step),                     \
      (minimum, maximum, step))                                                                  \
    X(uint32_t, VoraVCGetBright, (unsigned char* brightness), (brightness))                      \
    X(uint32_t, VoraVCScreenOn, (), ())                                                          \
    X(uint32_t, VoraVCScreenOff, (), ())                                                         \
    X(uint32_t, VoraVCSetBright, (unsigned char brightness), (brightness))

#ifndef VORADRV_TABLES_ONLY
#include "binding/LibraryTable.h"
VORADRV_DECLARE_LIBRARY(VORA3_LIBRARY)
#endif
