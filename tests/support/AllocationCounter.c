/* Counting replacements of the malloc family; see AllocationCounter.h. The
 * C library keeps its allocator under the __libc_ names for exactly this
 * use. */
#define _GNU_SOURCE
#include "AllocationCounter.h"

#include <errno.h>
#include <malloc.h>
#include <stdatomic.h>
#include <stddef.h>
#include <unistd.h>

extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);
extern void* __libc_realloc(void* block, size_t size);
extern void __libc_free(void* block);
extern void* __libc_memalign(size_t alignment, size_t size);
extern void* __libc_valloc(size_t size);
extern void* __libc_pvalloc(size_t size);

static atomic_uint_fast64_t allocations;
static atomic_int_fast64_t bytesInUse;

static void* Took(void* block) {
    if (block != NULL) {
        atomic_fetch_add_explicit(&allocations, 1, memory_order_relaxed);
        atomic_fetch_add_explicit(&bytesInUse, (int64_t)malloc_usable_size(block),
                                  memory_order_relaxed);
    }
    return block;
}

uint64_t vcount_allocations(void) {
    return atomic_load_explicit(&allocations, memory_order_relaxed);
}

int64_t vcount_bytes_in_use(void) {
    return atomic_load_explicit(&bytesInUse, memory_order_relaxed);
}

void* malloc(size_t size) { return Took(__libc_malloc(size)); }

void* calloc(size_t count, size_t size) { return Took(__libc_calloc(count, size)); }

void free(void* block) {
    if (block != NULL) {
        atomic_fetch_sub_explicit(&bytesInUse, (int64_t)malloc_usable_size(block),
                                  memory_order_relaxed);
    }
    __libc_free(block);
}

void* realloc(void* block, size_t size) {
    const int64_t before = block != NULL ? (int64_t)malloc_usable_size(block) : 0;
    void* moved = __libc_realloc(block, size);
    if (moved != NULL) {
        atomic_fetch_add_explicit(&allocations, 1, memory_order_relaxed);
        atomic_fetch_add_explicit(&bytesInUse, (int64_t)malloc_usable_size(moved) - before,
                                  memory_order_relaxed);
    } else if (size == 0 && block != NULL) {
        atomic_fetch_sub_explicit(&bytesInUse, before, memory_order_relaxed);  // freed
    }
    return moved;
}

void* memalign(size_t alignment, size_t size) {
    return Took(__libc_memalign(alignment, size));
}

void* aligned_alloc(size_t alignment, size_t size) {
    return Took(__libc_memalign(alignment, size));
}

int posix_memalign(void** out, size_t alignment, size_t size) {
    if (alignment % sizeof(void*) != 0 || (alignment & (alignment - 1)) != 0) {
        return EINVAL;
    }
    void* block = Took(__libc_memalign(alignment, size));
    if (block == NULL) {
        return ENOMEM;
    }
    *out = block;
    return 0;
}

void* valloc(size_t size) { return Took(__libc_valloc(size)); }

void* pvalloc(size_t size) { return Took(__libc_pvalloc(size)); }
