# The service is for two compilers. The other one takes it without a warning too, and its analysis
# finds a lock that is taken or given back against what is written of it.
file(GLOB_RECURSE sources ${ROOT}/api/*.cpp ${ROOT}/platform/*.cpp)
list(LENGTH sources count)
if(count LESS 50)
    message(FATAL_ERROR "there are only ${count} sources to look at")
endif()
execute_process(
    COMMAND ${CLANG} -fsyntax-only -std=c++20 -Wall -Wextra -Werror -Wshadow -Wthread-safety
        -DOAM_BUILDING_SUPER -DOAM_TYPES_ONLY -DOAM_DEFAULT_DIR="/opt/oam"
        -I${ROOT}/platform -I${ROOT}/api/oam/headers ${sources}
    RESULT_VARIABLE result ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${errors}")
endif()
