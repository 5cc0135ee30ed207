// Small text and console utilities of the module.
#pragma once

// Copies the zero-terminated `source`, terminator included, into
// `destination` without a length check; returns `destination`.
char* StringCopy(char* destination, char const* source);

// Formats like vsprintf. `size` is accepted and deliberately ignored: callers
// size their buffers for the largest text they format. Returns the number of
// characters written.
int StringSprintf(char* buffer, unsigned long size, char const* format, ...)
    __attribute__((format(printf, 3, 4)));

// Placeholder for popping a system error message; intentionally does nothing.
void SysErrorMsgPoP(bool flag);
