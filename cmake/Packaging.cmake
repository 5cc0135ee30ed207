# Debian packages, one per install component (cpack -G DEB):
#   voradrv        the module
#   voradrv-tools  voractl with the board simulator, man page and completion
#   voradrv-dev    the header, pkg-config file and CMake package config
# Configure with -DCMAKE_INSTALL_PREFIX=/usr for packages, so the module
# goes to Debian's multiarch library directory (see scripts/package.sh).

set(VORADRV_PACKAGE_CONTACT "VORADrv developers <voradrv@localhost>" CACHE STRING
  "Maintainer named in the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME voradrv)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${VORADRV_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Board driver module for device-management hosts")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_COMPONENTS_ALL module tools dev)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_MODULE_PACKAGE_NAME voradrv)
set(CPACK_DEBIAN_MODULE_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_MODULE_DESCRIPTION
  "Board driver module for device-management hosts\n libVORADrv.so, loaded by a host framework at run time, finds the board\n maker's support library and publishes the board's platform information,\n hardware monitor, GPIO, backlight and management network as one JSON\n capability document.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME voradrv-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION admin)
set(CPACK_COMPONENT_TOOLS_DEPENDS module)
# The textfile export's user and node_exporter's link to the export.
set(CPACK_DEBIAN_TOOLS_PACKAGE_CONTROL_EXTRA
  "${PROJECT_SOURCE_DIR}/tools/monitoring/postinst;${PROJECT_SOURCE_DIR}/tools/monitoring/postrm")
set(CPACK_DEBIAN_TOOLS_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
  "Command-line tool and board simulator for the VORADrv module\n voractl lists, reads, writes and watches the board's items through the\n module and exports them for SenML consumers and Prometheus. The board\n simulator (under the libexec directory, never where the module looks for\n a real board library) lets it run without a board: voractl --sim list.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME voradrv-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS module)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libjansson-dev")
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "Development files for hosts of the VORADrv module\n The host header voradrv.h, a pkg-config file (voradrv) and a CMake package\n config (find_package(VORADrv)) that say where the module is installed.")

include(CPack)
