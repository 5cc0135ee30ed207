// GPIO pin and panel brightness behaviour shared by the simulated
// fourth-generation and Embedded API libraries, whose calls for them have the
// same shape and statuses. Each helper answers one call already begun (and
// recorded) by the library function.
#pragma once

#include <cstdint>

#include "Sim.h"

namespace vorasim {

// Pin `id`, bit 0 of `mask`: direction 1 input, 0 output.
uint32_t GetPinDirection(Call& call, unsigned int id, unsigned int mask, unsigned int* direction);
uint32_t SetPinDirection(Call& call, unsigned int id, unsigned int mask, unsigned int direction);
uint32_t GetPinLevel(Call& call, unsigned int id, unsigned int mask, unsigned int* level);
// Only a pin set as an output can be driven.
uint32_t SetPinLevel(Call& call, unsigned int id, unsigned int mask, unsigned int level);

// Panel `id`; a brightness outside the panel's range is refused.
uint32_t GetPanelBrightness(Call& call, unsigned int id, unsigned int* brightness);
uint32_t SetPanelBrightness(Call& call, unsigned int id, unsigned int brightness);

}  // namespace vorasim
