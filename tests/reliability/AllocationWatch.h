// Watching a program's allocations: the program's operator new and delete
// and jansson's allocation functions are replaced (AllocationWatch.cpp, to be
// compiled into the test program itself), so that a test can count the bytes
// in use exactly, see the largest single request, and make allocations fail.
#pragma once

#include <cstddef>

namespace vtest::alloc {

// Bytes allocated through operator new or jansson and not yet released.
// Exact, unlike the C library's figures, which depend on how its free blocks
// happen to be split.
long LiveBytes();

// The largest single request through operator new or jansson since the last
// ResetLargest().
size_t Largest();
void ResetLargest();

// Asked before each allocation through operator new (throwing std::bad_alloc
// when it answers true) and through jansson (answering null); null: never.
void SetNewFailure(bool (*fails)());
void SetJsonFailure(bool (*fails)());

}  // namespace vtest::alloc
