# Builds the benchmarks and runs every row once, as short as can be: what is measured on request only
# must not rot. The answers of the operations are checked by the rows themselves.
#   BUILD, BENCH: the build directory and the program
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD} --target oam_bench
    RESULT_VARIABLE failed OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(failed)
    message(FATAL_ERROR "the benchmarks cannot be built:\n${output}")
endif()
set(ENV{TMPDIR} /tmp)  # the paths of data files are limited
execute_process(COMMAND ${BENCH} --json --rounds 1 --min-time 0.001 --most 20
    RESULT_VARIABLE failed OUTPUT_VARIABLE json ERROR_VARIABLE output)
execute_process(COMMAND ${BENCH} --growth --most 10
    RESULT_VARIABLE grown OUTPUT_VARIABLE table ERROR_VARIABLE more)
if(failed OR grown)
    message(FATAL_ERROR "the benchmarks fail:\n${output}\n${more}")
endif()
string(JSON rows LENGTH "${json}")
if(rows LESS 15)
    message(FATAL_ERROR "only ${rows} rows:\n${json}")
endif()
math(EXPR last "${rows} - 1")
foreach(row RANGE ${last})
    string(JSON id GET "${json}" ${row} id)
    string(JSON median ERROR_VARIABLE missing GET "${json}" ${row} sides 0 nanoseconds median)
    if(missing OR NOT median GREATER 0)
        message(FATAL_ERROR "no time for ${id}:\n${json}")
    endif()
endforeach()
if(NOT table MATCHES "\n\\| 10 \\|")
    message(FATAL_ERROR "no growth table:\n${table}")
endif()
