#include "AllocationWatch.h"

#include <jansson.h>

#include <cstdlib>
#include <new>

namespace vtest::alloc {

namespace {

long liveBytes = 0;
size_t largest = 0;
bool (*newFails)() = nullptr;
bool (*jsonFails)() = nullptr;

// Each block carries its size in front, so that releasing it counts right.
constexpr size_t kHeader = alignof(std::max_align_t);

void* Counted(size_t size) {
    void* block = std::malloc(size + kHeader);
    if (block == nullptr) {
        return nullptr;
    }
    *static_cast<size_t*>(block) = size;
    liveBytes += static_cast<long>(size);
    largest = size > largest ? size : largest;
    return static_cast<char*>(block) + kHeader;
}

void* JsonBlock(size_t size) {
    return jsonFails != nullptr && jsonFails() ? nullptr : Counted(size);
}

}  // namespace

void* NewBlock(size_t size) {
    if (newFails != nullptr && newFails()) {
        throw std::bad_alloc();
    }
    void* p = Counted(size);
    if (p == nullptr) {
        throw std::bad_alloc();
    }
    return p;
}

void Release(void* p) {
    if (p != nullptr) {
        char* block = static_cast<char*>(p) - kHeader;
        liveBytes -= static_cast<long>(*reinterpret_cast<size_t*>(block));
        std::free(block);
    }
}

namespace {

// Every JSON value of the program is counted: set before the first exists.
const bool jsonWatched = [] {
    json_set_alloc_funcs(JsonBlock, Release);
    return true;
}();

}  // namespace

long LiveBytes() { return liveBytes; }
size_t Largest() { return largest; }
void ResetLargest() { largest = 0; }
void SetNewFailure(bool (*fails)()) { newFails = fails; }
void SetJsonFailure(bool (*fails)()) { jsonFails = fails; }

}  // namespace vtest::alloc

void* operator new(size_t size) { return vtest::alloc::NewBlock(size); }
void* operator new[](size_t size) { return vtest::alloc::NewBlock(size); }
void operator delete(void* p) noexcept { vtest::alloc::Release(p); }
void operator delete[](void* p) noexcept { vtest::alloc::Release(p); }
void operator delete(void* p, size_t) noexcept { vtest::alloc::Release(p); }
void operator delete[](void* p, size_t) noexcept { vtest::alloc::Release(p); }
