# The Debian packages: one for each component that is installed (scripts/package makes them).
#
# They hold what `cmake --install` installs, under /usr; what a daemon reads lies under /etc. What the
# programs need of other packages dpkg-shlibdeps finds out; ours need each other in the same version,
# since they share internals.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME oam)
set(CPACK_PACKAGE_VENDOR "OA&M core")
set(CPACK_PACKAGE_CONTACT "OA&M core maintainers <oam@localhost.localdomain>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "operations, administration and maintenance of board hosts")
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL library development daemon tool console fleet kit)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)

# oam_package(COMPONENT NAME DESCRIPTION [OURS...]): a component's package and which of ours it needs.
function(oam_package component name description)
    string(TOUPPER ${component} key)
    list(TRANSFORM ARGN APPEND " (= ${PROJECT_VERSION})")
    list(JOIN ARGN ", " needs)
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
    set(CPACK_COMPONENT_${key}_DESCRIPTION "${description}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${needs}" PARENT_SCOPE)
    install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
endfunction()

oam_package(library liboamsuper
    "The service as a shared library, and the board plug-ins and components that ship with it.")
oam_package(development liboamsuper-dev
    "Headers, CMake package and pkg-config file for clients, plug-ins and components, and the\n interface of the daemon."
    liboamsuper)
oam_package(daemon oamd
    "Runs the service of a host and serves it to its clients."
    liboamsuper)
oam_package(tool oam
    "Looks after an installation, with a daemon or without one, and reads the board shadow."
    liboamsuper)
oam_package(console oam-console
    "A page for those who would rather look, and the daemon's interface as JSON."
    liboamsuper)
oam_package(fleet oam-fleet
    "Brings a host into a fleet, looks at the fleet, and asks many hosts at once."
    liboamsuper oam)
oam_package(kit oam-sdk
    "Templates, the guide, and the judge of plug-ins and components."
    liboamsuper liboamsuper-dev)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS "bash-completion, oamd")
set(CPACK_DEBIAN_KIT_PACKAGE_SUGGESTS "oam, cmake, g++")
foreach(script postinst prerm postrm conffiles)
    list(APPEND CPACK_DEBIAN_DAEMON_PACKAGE_CONTROL_EXTRA
        ${PROJECT_SOURCE_DIR}/packaging/debian/${script})
endforeach()
set(CPACK_DEBIAN_CONSOLE_PACKAGE_SUGGESTS oamd)
set(CPACK_DEBIAN_CONSOLE_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/debian/console/conffiles)
foreach(script postinst prerm postrm conffiles)
    list(APPEND CPACK_DEBIAN_FLEET_PACKAGE_CONTROL_EXTRA
        ${PROJECT_SOURCE_DIR}/packaging/debian/fleet/${script})
endforeach()
set(CPACK_DEBIAN_FLEET_PACKAGE_SUGGESTS "oamd, nats-server")
set(CPACK_DEBIAN_DAEMON_PACKAGE_RECOMMENDS "oam, systemd")

include(CPack)
