# What is installed: the library and the platform beside it, the headers, a CMake package (OamSdk)
# and a pkg-config file (oamsuper). Programs and plug-ins install themselves.

include(CMakePackageConfigHelpers)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/OamSdk)

install(TARGETS oamsuper zol korcore oam_sdk EXPORT OamSdk
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY api/oam/headers/oam DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT OamSdk NAMESPACE OamSdk:: DESTINATION ${package} FILE OamSdkTargets.cmake)

configure_package_config_file(cmake/OamSdkConfig.cmake.in
    ${CMAKE_BINARY_DIR}/OamSdkConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/OamSdkConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/OamSdkConfig.cmake
    ${CMAKE_BINARY_DIR}/OamSdkConfigVersion.cmake
    cmake/OamPlugins.cmake cmake/bpi.map cmake/emc.map
    DESTINATION ${package})

configure_file(cmake/oamsuper.pc.in ${CMAKE_BINARY_DIR}/oamsuper.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/oamsuper.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
