#include "StringUtil.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

char* StringCopy(char* destination, char const* source) {
    return std::strcpy(destination, source);
}

int StringSprintf(char* buffer, unsigned long /*size*/, char const* format, ...) {
    va_list args;
    va_start(args, format);
    const int written = std::vsprintf(buffer, format, args);
    va_end(args);
    return written;
}

void SysErrorMsgPoP(bool /*flag*/) {}
