# The daemon exports nothing of its own: a plug-in in its process must not be bound to the daemon's
# copy of anything. What a program has to show are copies of the C++ library's own data.
execute_process(COMMAND ${NM} -D --defined-only -C ${PROGRAM} OUTPUT_VARIABLE symbols
    RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "nm failed")
endif()
foreach(name grpc absl protobuf google:: sqlite3 oam:: SSL_ deflate ares_ upb)
    if(symbols MATCHES "[^\n]*${name}[^\n]*")
        message(FATAL_ERROR "exported: ${CMAKE_MATCH_0}")
    endif()
endforeach()
