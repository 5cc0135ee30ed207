// Statuses and raw units shared by the simulated libraries.
#pragma once

#include <cmath>
#include <cstdint>

#include "Board.h"
#include "Sim.h"

namespace vorasim {

// Statuses of the fourth-generation and Embedded API libraries.
constexpr uint32_t kOk = 0x00000000;
constexpr uint32_t kUnsupported = 0xFFFFFCFF;       // no such item on this board
constexpr uint32_t kMoreData = 0xFFFFF9FF;          // buffer too small, text cut
constexpr uint32_t kInvalidParameter = 0xFFFFFEFF;  // value refused
constexpr uint32_t kError = 0xFFFFF0FF;             // any other failure
// Results of the third-generation library.
constexpr uint32_t kV3Ok = 1;
constexpr uint32_t kV3Failed = 0;

// A sensor's raw answer in the units of the fourth-generation and Embedded
// API libraries: tenths of a kelvin, millivolts, RPM, milliamperes, 0/1.
inline uint32_t RawReading(SensorKind kind, const Sensor& sensor, double value) {
    if (sensor.raw) {
        return *sensor.raw;
    }
    switch (kind) {
        case kTemperature:
            return static_cast<uint32_t>(std::lround(value * 10.0 + 2731.0));
        case kVoltage:
        case kCurrent:
            return static_cast<uint32_t>(static_cast<int32_t>(std::lround(value * 1000.0)));
        default:
            return static_cast<uint32_t>(std::lround(value));
    }
}

}  // namespace vorasim
