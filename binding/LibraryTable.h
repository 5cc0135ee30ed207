// What every board library's table (Vora4Library.h, Vora3Library.h,
// EApiLibrary.h) is turned into by more than one user: the C declarations
// of the library's functions.
#pragma once

#include <cstdint>

// result name(parameters);
#define VORADRV_DECLARE_FUNCTION(result, name, parameters, arguments) result name parameters;

// The library's functions, declared with C linkage.
#define VORADRV_DECLARE_LIBRARY(TABLE) \
    extern "C" {                       \
    TABLE(VORADRV_DECLARE_FUNCTION, VORADRV_DECLARE_FUNCTION)   \
    }
