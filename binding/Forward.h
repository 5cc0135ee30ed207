// Helpers shared by the three bindings: binding a library function to its
// pointer by name, and forwarding a call through a pointer that may be null.
#pragma once

#include <cstdint>

#include "module/LibLoader.h"
#include "module/Status.h"

namespace voradrv {

// pointer = the address of `name` in `handle`, or null when it is missing.
template <typename Fn>
void BindSymbol(void* handle, Fn& pointer, const char* name) {
    pointer = reinterpret_cast<Fn>(LibGetSymbol(handle, name));
}

// Calls `pointer` with `args` and returns its status unchanged; an unbound
// function answers STATUS_SYMBOL_MISSING without touching any output.
template <typename Fn, typename... Args>
uint32_t Forward(Fn pointer, Args... args) {
    if (pointer == nullptr) {
        return STATUS_SYMBOL_MISSING;
    }
    return pointer(args...);
}

}  // namespace voradrv

// Binds the library function `name` to the binding's static `_name`.
#define VORADRV_BIND(handle, name) ::voradrv::BindSymbol(handle, _##name, #name)
