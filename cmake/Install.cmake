# Where things are installed. Included after GNUInstallDirs.

set(VORADRV_MODULE_DIR "${CMAKE_INSTALL_LIBDIR}" CACHE STRING
  "Directory the host framework loads modules from (relative to the prefix, or absolute)")
set(VORADRV_SIM_DIR "${CMAKE_INSTALL_LIBEXECDIR}/voradrv" CACHE STRING
  "Directory for the board simulator's libraries and run-simulated")

# voradrv_full_path(<out> <path>): <path> made absolute under the prefix.
function(voradrv_full_path out path)
  if(IS_ABSOLUTE "${path}")
    set(${out} "${path}" PARENT_SCOPE)
  else()
    set(${out} "${CMAKE_INSTALL_PREFIX}/${path}" PARENT_SCOPE)
  endif()
endfunction()

# voradrv_path_from_bindir(<out> <path>)
#   How an installed program finds <path>: relative to the bin directory when
#   both are given relative to the prefix, else absolute.
function(voradrv_path_from_bindir out path)
  if(IS_ABSOLUTE "${path}" OR IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}")
    voradrv_full_path(full "${path}")
    set(${out} "${full}" PARENT_SCOPE)
  else()
    file(RELATIVE_PATH relative "/prefix/${CMAKE_INSTALL_BINDIR}" "/prefix/${path}")
    set(${out} "${relative}" PARENT_SCOPE)
  endif()
endfunction()

# The simulated board libraries carry the real libraries' file names. In a
# directory the module probes they would stand in for a real board library,
# so they never go there.
voradrv_full_path(sim_full "${VORADRV_SIM_DIR}")
get_filename_component(sim_full "${sim_full}" ABSOLUTE)
foreach(probed /usr/lib /usr/lib64 /lib /lib64)
  if(sim_full STREQUAL probed)
    message(FATAL_ERROR "VORADRV_SIM_DIR must not be ${probed}: the simulated board "
      "libraries would take the place of a real board library there")
  endif()
endforeach()
