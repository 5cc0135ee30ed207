// C interface of the third-generation board library "libVORA-3.02", as the
// module binds it by name. The simulator implements exactly these functions.
// Unless noted, a function returns 1 on success.
#pragma once

#include <cstdint>

extern "C" {
uint32_t VoraDllInit(void);
uint32_t VoraDllUnInit(void);
// buffer may be null: the call then reports the length the text needs.
uint32_t VoraCoreGetPlatformName(char* buffer, unsigned int* length);
uint32_t VoraCoreGetBIOSVersion(char* buffer, unsigned int* length);
// Returns nothing.
void VoraDllGetVersion(unsigned int* major, unsigned int* minor);
// id: a sensor mask (one bit per sensor); mask: the support mask, may be null.
uint32_t VoraHWMGetVoltage(unsigned int id, float* value, unsigned int* mask);
uint32_t VoraHWMGetFanSpeed(unsigned short id, unsigned short* value, unsigned short* mask);
uint32_t VoraHWMGetTemperature(unsigned short id, float* value, unsigned short* mask);
uint32_t VoraIOQueryMask(unsigned int selector, unsigned int* mask);
uint32_t VoraIOCountEx(unsigned int* first, unsigned int* second);
uint32_t VoraIOReadEx(unsigned char pin, int* level);
uint32_t VoraIOWriteEx(unsigned char pin, int level);
uint32_t VoraIOSetDirection(unsigned char pin, unsigned char direction, unsigned int* mask);
uint32_t VoraVCGetBrightRange(unsigned char* minimum, unsigned char* maximum, unsigned char* step);
uint32_t VoraVCGetBright(unsigned char* brightness);
uint32_t VoraVCScreenOn(void);
uint32_t VoraVCScreenOff(void);
uint32_t VoraVCSetBright(unsigned char brightness);
}
