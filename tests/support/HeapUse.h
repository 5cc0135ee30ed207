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

// Resident set size of the process, in KiB.
size_t ResidentKiB();

}  // namespace vtest
