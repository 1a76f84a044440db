# What is installed: the library and the platform beside it, the headers, a CMake package (OamSdk)
# and a pkg-config file (oamsuper). Programs and plug-ins install themselves. Each file belongs to one
# component, which is a Debian package (cmake/packages.cmake): library, development, daemon, tool, kit.

include(CMakePackageConfigHelpers)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/OamSdk)

install(TARGETS oamsuper zol korcore oam_sdk EXPORT OamSdk
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)
install(DIRECTORY api/oam/headers/oam DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT OamSdk NAMESPACE OamSdk:: DESTINATION ${package} FILE OamSdkTargets.cmake
    COMPONENT development)

configure_package_config_file(cmake/OamSdkConfig.cmake.in
    ${CMAKE_BINARY_DIR}/OamSdkConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/OamSdkConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/OamSdkConfig.cmake
    ${CMAKE_BINARY_DIR}/OamSdkConfigVersion.cmake
    cmake/OamPlugins.cmake cmake/bpi.map cmake/emc.map
    DESTINATION ${package} COMPONENT development)

# The file finds its prefix from where it lies, so that the package may be moved.
file(RELATIVE_PATH OAM_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/oamsuper.pc.in ${CMAKE_BINARY_DIR}/oamsuper.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/oamsuper.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
