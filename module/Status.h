// Status codes shared by every part of the module. The values are the ones
// the public host header publishes; this header gives them the short names
// the module's code uses.
#pragma once

#include <cstdint>

#include "voradrv.h"

constexpr uint32_t STATUS_SUCCESS = VORADRV_STATUS_SUCCESS;
constexpr uint32_t STATUS_UNSUPPORTED = VORADRV_STATUS_UNSUPPORTED;
constexpr uint32_t STATUS_NOT_FOUND = VORADRV_STATUS_NOT_FOUND;
constexpr uint32_t STATUS_READ_ERROR = VORADRV_STATUS_READ_ERROR;
constexpr uint32_t STATUS_MORE_DATA = VORADRV_STATUS_MORE_DATA;
constexpr uint32_t STATUS_INVALID_VALUE = VORADRV_STATUS_INVALID_VALUE;
constexpr uint32_t STATUS_ERROR = VORADRV_STATUS_ERROR;
constexpr uint32_t STATUS_ALREADY_INITIALIZED = VORADRV_STATUS_ALREADY_INITIALIZED;
constexpr uint32_t STATUS_SYMBOL_MISSING = VORADRV_STATUS_SYMBOL_MISSING;
