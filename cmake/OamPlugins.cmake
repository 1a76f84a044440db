# Building board plug-ins and components, in this tree and from an installed package alike.
#
#   oam_add_board_plugin(NAME SOURCES...)   makes NAME.bpi, target NAME_bpi
#   oam_add_component(NAME SOURCES...)      makes NAME.emc, target NAME_emc
#
# Their entry names are very general words ("Init", "OpenObject"). So a module exports exactly its
# entries, and its own functions are bound to itself (-Bsymbolic): it can never be bound to the
# host's copy of something, nor the host to its. What stays undefined is an error at link time, not
# in a running host.

function(oam_plugin name suffix)
    set(target ${name}_${suffix})
    set(map ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${suffix}.map)
    add_library(${target} MODULE ${ARGN})
    set_target_properties(${target} PROPERTIES
        PREFIX "" OUTPUT_NAME ${name} SUFFIX .${suffix}
        POSITION_INDEPENDENT_CODE ON
        C_VISIBILITY_PRESET hidden
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_link_libraries(${target} PRIVATE OamSdk::oamsuper)
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic -Wl,--version-script=${map})
    if(NOT OAM_SANITIZE)
        # A sanitizer's run-time library provides symbols that the linker cannot see.
        target_link_options(${target} PRIVATE -Wl,-z,defs)
    endif()
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
endfunction()

function(oam_add_board_plugin name)
    oam_plugin(${name} bpi ${ARGN})
endfunction()

function(oam_add_component name)
    oam_plugin(${name} emc ${ARGN})
endfunction()
