// What the three bindings share. Each binding is a class of static members
// only: a singleton whose first instance() loads its board library and binds
// every function of the library's table by name, one pointer per function
// (`_Name`, null when the library lacks it) and one forwarder (`mName`).
// `Avaliable()` tells whether the library's initialise has answered its
// success value; nothing makes it false again.
#pragma once

#include <cstdint>
#include <type_traits>

#include "module/LibLoader.h"
#include "module/Status.h"

namespace voradrv {

// Calls a library function through a pointer that may be null: the status
// comes back unchanged, and an unbound function answers
// STATUS_SYMBOL_MISSING (a function without a result does nothing) and
// touches no output.
template <typename Result, typename... Args>
struct Forwarder {
    Result (*function)(Args...);

    Result operator()(Args... args) const {
        if (function == nullptr) {
            if constexpr (std::is_void_v<Result>) {
                return;
            } else {
                return STATUS_SYMBOL_MISSING;
            }
        }
        return function(args...);
    }
};

template <typename Result, typename... Args>
Forwarder<Result, Args...> Forward(Result (*function)(Args...)) {
    return {function};
}

// The state every binding has. `Handle` is the binding class, whose
// constructor loads and binds its library; `Initialised` the result of the
// library's initialise that makes it available.
template <typename Handle, uint32_t Initialised>
class Binding {
public:
    // The one object, constructed on first use (its destructor runs at
    // process exit and closes the library, without shutting it down).
    static Handle* instance() {
        static Handle handle;
        return &handle;
    }
    static bool Avaliable() { return _avaliable; }

    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;

protected:
    Binding() = default;
    ~Binding() {
        if (_handle != nullptr) {
            LibFree(_handle);
        }
    }

    static constexpr uint32_t kInitialised = Initialised;
    static inline void* _handle = nullptr;
    static inline bool _avaliable = false;
};

}  // namespace voradrv

// Made from a library's table inside its binding class:
// the pointer a function is bound to,
#define VORADRV_POINTER(result, name, parameters, arguments) \
    static inline decltype(&::name) _##name = nullptr;
// its forwarder,
#define VORADRV_FORWARDER(result, name, parameters, arguments) \
    static result m##name parameters { return ::voradrv::Forward(_##name) arguments; }
// the initialise's forwarder, which also makes the library available,
#define VORADRV_INIT_FORWARDER(result, name, parameters, arguments) \
    static result m##name parameters {                               \
        const result status = ::voradrv::Forward(_##name) arguments; \
        if (status == kInitialised) {                                \
            _avaliable = true;                                       \
        }                                                            \
        return status;                                               \
    }
// and, in its constructor, the lookup by name (made even when the library
// could not be loaded; a null handle is passed on as it is).
#define VORADRV_BIND(result, name, parameters, arguments) \
    _##name = reinterpret_cast<decltype(_##name)>(::voradrv::LibGetSymbol(_handle, #name));
