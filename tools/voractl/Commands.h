// The voractl commands, run on an initialised module.
#pragma once

#include <jansson.h>

#include <cstdio>
#include <string>
#include <vector>

#include "Items.h"
#include "Module.h"
#include "Style.h"

namespace voractl {

struct Context {
    Module& module;
    json_t* document;           // the capability document
    std::vector<Item> items;    // its items
    std::FILE* out;             // voractl's own output
    bool json = false;          // machine-readable output
    Style style;                // colour, for people
};

// Each returns the exit status: 0, or 1 when the module or board failed.
int Caps(Context& context);
int List(Context& context);
int Get(Context& context, const std::vector<std::string>& selectors, const char* type);
int Set(Context& context, const std::string& selector, const std::string& value, const char* type);

}  // namespace voractl
