// One item read through the module, and its JSON record.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "Items.h"
#include "Module.h"

namespace voractl {

using JsonPtr = std::unique_ptr<json_t, decltype(&json_decref)>;

// Takes over the reference of `json`.
inline JsonPtr Own(json_t* json) { return JsonPtr(json, &json_decref); }

struct Reading {
    const Item* item = nullptr;
    JsonPtr value{nullptr, &json_decref};  // null when the read failed
    uint32_t status = 0;                   // the module's answer
};

// Reads one item with the JSON type of its element.
Reading Read(const Module& module, const Item& item);

// Reads every item, in order.
std::vector<Reading> ReadAll(const Module& module, const std::vector<Item>& items);

// The value as people read it, or "N/A" when it could not be read.
std::string ShownValue(const Reading& reading);

// A new record {"id", "path", "block", "group", "name", "value", "unit",
// "access"}, with "value" null and an "error" beside it when the read
// failed. The caller owns it.
json_t* ReadingJson(const Reading& reading);

// Prints a JSON document indented, with a final newline.
void PrintJson(std::FILE* out, const json_t* json);

// Says on standard error which readings failed; returns 1 when one did, else 0.
int ReportFailures(const std::vector<Reading>& readings);

}  // namespace voractl
