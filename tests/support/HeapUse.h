// Memory figures of the running process, for the leak and soak checks.
#pragma once

#include <cstddef>

namespace vtest {

// Bytes of heap handed out and not yet released. In sanitizer builds the
// sanitizer's allocator answers; otherwise glibc's (mallinfo2), which counts
// blocks parked in its per-thread cache as in use: run with
// GLIBC_TUNABLES=glibc.malloc.tcache_count=0 for figures that do not depend
// on the cache.
size_t HeapInUse();

// True when the test runs under Valgrind's memcheck (VTEST_MEMCHECK=1, see
// tests/run-test.sh), whose allocator takes the place of the program's.
bool UnderMemcheck();

// Resident set size of the process, in KiB.
size_t ResidentKiB();

// For a program that compares heap figures: unless they are exact already
// (a sanitizer build, or glibc's cache turned off), runs the program again
// (`argv` its arguments) with GLIBC_TUNABLES=glibc.malloc.tcache_count=0;
// programs it starts inherit the setting. Returns only when no restart was
// needed or it failed.
void ExactHeapFigures(char** argv);

}  // namespace vtest
