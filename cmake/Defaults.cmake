# Compiler settings shared by every target of the project.

# voradrv_defaults(<target> [NO_SANITIZE])
#   Warnings, hardening and (when enabled) sanitizers for one target.
function(voradrv_defaults target)
  cmake_parse_arguments(ARG "NO_SANITIZE" "" "" ${ARGN})
  target_compile_options(${target} PRIVATE
    -Wall -Wextra
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
    -fstack-protector-strong)
  if(VORADRV_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  # _FORTIFY_SOURCE needs optimisation; it is left out of -O0 builds.
  target_compile_definitions(${target} PRIVATE
    $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "SHARED_LIBRARY" OR type STREQUAL "MODULE_LIBRARY"
     OR type STREQUAL "EXECUTABLE")
    target_link_options(${target} PRIVATE
      -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
  endif()
  if(VORADRV_SANITIZE AND NOT ARG_NO_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=address,undefined -fno-sanitize-recover=undefined
      -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
endfunction()

# voradrv_version_script(<target> <file>)
#   Export from a shared library exactly the symbols listed in <file>.
function(voradrv_version_script target file)
  target_link_options(${target} PRIVATE "-Wl,--version-script=${file}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${file}")
endfunction()
