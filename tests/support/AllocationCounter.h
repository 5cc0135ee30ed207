/*
 * Counting heap allocations: a program that links AllocationCounter.c
 * replaces the C library's malloc family with wrappers that count every
 * allocation and the bytes in use, then pass the call on to the C library.
 * Every allocation of the process goes through them: the program's own,
 * the module's (operator new ends in malloc) and jansson's.
 *
 * Link it with voradrv_count_allocations() (cmake/AllocationCounter.cmake),
 * which also exports the wrappers so that shared libraries and libraries
 * opened with dlopen reach them. Not for sanitizer builds: the sanitizers
 * bring an allocator of their own.
 */
#ifndef VORADRV_ALLOCATION_COUNTER_H
#define VORADRV_ALLOCATION_COUNTER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Allocations since the program started: malloc, calloc, the aligned
 *  forms, and every realloc that returned storage. */
uint64_t vcount_allocations(void);

/** Bytes in use on the heap (usable sizes of the blocks not freed yet). */
int64_t vcount_bytes_in_use(void);

#ifdef __cplusplus
}
#endif

#endif
