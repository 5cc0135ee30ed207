# voradrv_count_allocations(<executable>)
#   Links the counting malloc replacements (tests/support/AllocationCounter.c)
#   into an executable and exports them, so that every library of the
#   process, those opened with dlopen included, allocates through them.
#   Sanitizer builds have an allocator of their own: do not use it there.
function(voradrv_count_allocations target)
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/AllocationCounter.c)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  foreach(name malloc calloc realloc free memalign aligned_alloc posix_memalign valloc pvalloc)
    target_link_options(${target} PRIVATE "LINKER:--export-dynamic-symbol=${name}")
  endforeach()
endfunction()
