// One item read through the module, and how it is shown.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "Items.h"
#include "Truth.h"
#include "json/JsonPtr.h"

namespace voractl {

struct Reading {
    const Item* item = nullptr;
    vorajson::JsonPtr value;  // the true value; null when the read failed
    vorajson::JsonPtr raw;    // the module's, when it differs from `value`
    uint32_t status = 0;                   // the module's answer
    bool bare = false;                     // shown as the module's number (--raw)
    bool libraryUnit = false;              // the module's number is in the library's unit
    bool alarm = false;                    // the true value lies outside the published range
};

// The value as people read it, or "N/A" when it could not be read; a bare
// reading as the module's value alone, without unit or words.
std::string ShownValue(const Reading& reading);

// A new record {"id", "path", "block", "group", "name", "unit", "access",
// "value"}, with "min" and "max" when the element publishes them, "raw"
// (the module's value) when it differs from the true value, "shares_id_with"
// for an id other sensors were published with, "alarm" (true when the value
// lies outside min..max) beside a published range, and, when the read
// failed, "value" null with an "error" beside it. The caller owns it.
json_t* ReadingJson(const Reading& reading);
// An array of the readings' records. The caller owns it.
json_t* RecordsJson(const std::vector<Reading>& readings);
// The same, each record with what a page needs to show it as voractl does:
// "text" (the value as voractl shows it), "limits" (as voractl list shows
// them) for a ranged number, and for drawing its history "two_state" for a
// two-state item, else "symbol" (its unit's, when it shows one) and
// "decimals" (when its unit has a fixed number of them). The caller owns it.
json_t* ShownRecordsJson(const std::vector<Reading>& readings);

// A JSON document on one line; throws ToolError when jansson cannot write it.
std::string JsonText(const json_t* json);

// Prints a JSON document indented, with a final newline.
void PrintJson(std::FILE* out, const json_t* json);

// Says on standard error which readings failed; returns 1 when one did, else 0.
int ReportFailures(const std::vector<Reading>& readings);

}  // namespace voractl
