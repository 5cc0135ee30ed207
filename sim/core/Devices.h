// Behaviour shared by the simulated fourth-generation and Embedded API
// libraries, whose calls for it have the same shape and statuses: the
// library's initialise, board texts and values, GPIO pins and panels. Each
// helper answers one call already begun (and recorded) by the library
// function.
#pragma once

#include <cstdint>
#include <string>

#include "Sim.h"

namespace vorasim {

// The library's initialise: `failed` when the board profile could not be used.
uint32_t Initialise(Call& call, uint32_t ok, uint32_t failed);

// A board text through the length protocol; a null `text` is one the board
// does not have.
uint32_t BoardText(Call& call, const std::string* text, char* buffer, unsigned int* length);

// Board value `id`: positions 0 to `values` - 1 and the versions
// 0x10000..0x10002. Null when it is neither, or the board has none.
const uint32_t* BoardValue(const Board& board, unsigned int id, unsigned values);

// Pin `id`, bit 0 of `mask`: direction 1 input, 0 output.
uint32_t GetPinDirection(Call& call, unsigned int id, unsigned int mask, unsigned int* direction);
uint32_t SetPinDirection(Call& call, unsigned int id, unsigned int mask, unsigned int direction);
uint32_t GetPinLevel(Call& call, unsigned int id, unsigned int mask, unsigned int* level);
// Only a pin set as an output can be driven.
uint32_t SetPinLevel(Call& call, unsigned int id, unsigned int mask, unsigned int level);

// Panel `id`; a brightness outside the panel's range is refused.
uint32_t GetPanelBrightness(Call& call, unsigned int id, unsigned int* brightness);
uint32_t SetPanelBrightness(Call& call, unsigned int id, unsigned int brightness);
// The panel's on/off as the library's values `on` and `off`; any other
// value is refused.
uint32_t GetPanelEnable(Call& call, unsigned int id, unsigned int* enable, uint32_t on, uint32_t off);
uint32_t SetPanelEnable(Call& call, unsigned int id, unsigned int enable, uint32_t on, uint32_t off);

}  // namespace vorasim
