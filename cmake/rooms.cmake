# oam_room(NAME FILES...): one room of the service, an object library that sees the shared headers,
# the platform and its own folder. Another room's private header is "No such file or directory".
function(oam_room name)
    add_library(oam_${name} OBJECT ${ARGN})
    target_link_libraries(oam_${name} PUBLIC oam_house PRIVATE oam_nothrow)
    set_property(GLOBAL APPEND PROPERTY OAM_ROOMS oam_${name})
endfunction()

# oam_calls_out(FILES...): the few sources that call a plug-in or component directly. They alone
# are built with exceptions, to turn what foreign code throws into a failure code.
function(oam_calls_out)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -fexceptions)
endfunction()
