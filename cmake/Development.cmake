# What host authors build against: the public header, a pkg-config file and
# a CMake package config. Hosts load the module at run time, so neither
# links it; both say where it is installed.

include(CMakePackageConfigHelpers)

# The header, as the examples use it in the build tree (the package config
# gives host projects the same target).
add_library(voradrv_headers INTERFACE)
add_library(VORADrv::headers ALIAS voradrv_headers)
target_include_directories(voradrv_headers INTERFACE ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(voradrv_headers INTERFACE PkgConfig::JANSSON ${CMAKE_DL_LIBS})

install(FILES include/voradrv.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

# pkg-config: paths relative to the .pc file, so an installed tree can be
# moved (a path given absolute stays absolute).
set(pc_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
voradrv_full_path(pc_full "${pc_dir}")
file(RELATIVE_PATH pc_to_prefix "${pc_full}" "${CMAKE_INSTALL_PREFIX}")
if(pc_to_prefix STREQUAL "")
  set(pc_to_prefix ".")
endif()
foreach(var INCLUDEDIR MODULE)
  if(var STREQUAL "MODULE")
    set(dir "${VORADRV_MODULE_DIR}")
  else()
    set(dir "${CMAKE_INSTALL_${var}}")
  endif()
  if(IS_ABSOLUTE "${dir}")
    set(PC_${var} "${dir}")
  else()
    set(PC_${var} "\${prefix}/${dir}")
  endif()
endforeach()
configure_file(cmake/voradrv.pc.in ${PROJECT_BINARY_DIR}/voradrv.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/voradrv.pc DESTINATION ${pc_dir} COMPONENT dev)

# CMake: find_package(VORADrv) gives VORADrv::headers, VORADRV_MODULE and
# VORADRV_MODULE_DIR.
set(config_dir "${CMAKE_INSTALL_LIBDIR}/cmake/VORADrv")
configure_package_config_file(cmake/VORADrvConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VORADrvConfig.cmake
  INSTALL_DESTINATION ${config_dir}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR VORADRV_MODULE_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VORADrvConfigVersion.cmake
  COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES ${PROJECT_BINARY_DIR}/VORADrvConfig.cmake
  ${PROJECT_BINARY_DIR}/VORADrvConfigVersion.cmake
  DESTINATION ${config_dir} COMPONENT dev)
