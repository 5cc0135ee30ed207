// The platform-information items shared by the blocks of the three
// libraries: labels and entry packing for all of them; value texts, group
// builders and the read path for the fourth-generation and EApi blocks,
// whose libraries answer board values and strings the same way.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <map>
#include <string>

namespace voradrv::info {

using GetValueFn = uint32_t (*)(unsigned int id, unsigned int* value);
using GetStringFn = uint32_t (*)(unsigned int id, char* buffer, unsigned int* length);

// Labels by position.
extern const char* const kValueLabels[7];
extern const char* const kStringLabels[9];
extern const char* const kVersionLabels[3];

constexpr uint32_t kValueGroup = 0x1010100;    // board values, 0x1010101 + position
constexpr uint32_t kVersionGroup = 0x1010200;  // versions, 0x1010201 + position
constexpr uint32_t kStringGroup = 0x1010400;   // board and customer strings
constexpr uint32_t kPnpId = 0x1010104;
constexpr uint32_t kVersionLibraryBase = 0x10000;

// "%u,%u" of the top byte and the next byte ("1,2" for 0x01020000).
std::string PairText(uint32_t value);
// The Plug-and-Play id: three letters and a number, "%c%c%c, 0x%X".
std::string PnpText(uint32_t value);
// "%u.%u.%u" of the top byte, the next byte and the low 16 bits.
std::string VersionText(uint32_t value);

// {"n", "sv", "asm": "r", "id"}.
json_t* TextEntry(const char* label, const char* text, uint32_t id);
// {"n", "v", "asm": "r", "id"}, plus "u" for the two counters. The value goes
// through the "i" conversion, so 0x80000000 and above show negative.
json_t* IntegerEntry(const char* label, uint32_t value, uint32_t id);

// Appends `entry` to `array`, taking it over. On failure prints (without a
// line end) "VORADrv Info <builder>: json_pack array failed" for a missing or
// empty entry, "... unable to append new value" for a failed append, and
// returns false.
bool AppendEntry(json_t* array, json_t* entry, const char* builder);

// The board values at positions 0..count-1 (ids 0x1010101 + position) and
// the three versions (0x1010201 + position). Each maps the item ids it
// publishes in `map` and returns 0 when it appended an entry, 1 when none,
// -1 after a packing or appending failure.
int BuildValues(json_t* array, std::map<uint32_t, uint32_t>& map, GetValueFn getValue,
                unsigned count);
int BuildVersions(json_t* array, std::map<uint32_t, uint32_t>& map, GetValueFn getValue);

// How a library's board strings are taken in while building.
struct StringRules {
    // Size the library is told the buffer has (at most kStringSize).
    unsigned int bufferSize;
    // A string too long for the buffer (STATUS_MORE_DATA) is not published
    // but counts as found for the result.
    bool countCutStrings;
    // The text "Unknown" means the board does not know the value.
    bool rejectUnknown;
    // A line feed at index length - 1 is dropped.
    bool trimLineFeed;
};

// The board strings at positions 0..count-1 (ids 0x1010401 + position, the
// library id the position), empty ones left out. Maps the ids it publishes
// and returns 0 when it found a string, 1 when none, -1 after a packing or
// appending failure.
int BuildStrings(json_t* array, std::map<uint32_t, uint32_t>& map, GetStringFn getString,
                 unsigned count, const StringRules& rules);

// Size of the buffer a string is read into.
constexpr unsigned int kStringSize = 64;

// Ends the text at index `length` - 1 when a line feed stands there; a
// length of 0 or beyond `size` (the buffer's size) is left alone.
void TrimLineFeed(char* buffer, unsigned int length, unsigned int size);

// Reads item `id` (library id `libraryId`) into the host's `value`: a JSON
// integer gets the board value; a JSON string gets the item's text by its
// group. `trimLineFeed` drops a line feed at index length - 1 of a string
// read. Statuses of the library pass through unchanged.
uint32_t ReadItem(uint32_t id, uint32_t libraryId, json_t* value, GetValueFn getValue,
                  GetStringFn getString, bool trimLineFeed);

}  // namespace voradrv::info
