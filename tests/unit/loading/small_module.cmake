# Modules that link nothing: each entry notes its call and answers success. One is complete, the
# others lack one entry or the three optional ones of a plug-in.
include_guard(GLOBAL)

set_property(GLOBAL PROPERTY SMALL_MODULES ${CMAKE_BINARY_DIR}/lib/small-modules)

function(small_module name)
    get_property(built GLOBAL PROPERTY SMALL_MODULES)
    add_library(${name} MODULE ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/small_module_entries.cpp)
    set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".so"
        LIBRARY_OUTPUT_DIRECTORY ${built})
    target_compile_definitions(${name} PRIVATE ${ARGN})
    target_link_libraries(${name} PRIVATE oam_flags)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/api/oam/headers)
endfunction()

small_module(small_complete)
small_module(small_without_options WITHOUT_OPTIONS)
small_module(small_without_test_board WITHOUT_TEST_BOARD)
small_module(small_without_get_qualifier WITHOUT_GET_QUALIFIER)

# Gives a program SmallModule (small_module.h), which puts them into an installation.
function(uses_small_modules program)
    get_property(built GLOBAL PROPERTY SMALL_MODULES)
    target_compile_definitions(${program} PRIVATE SMALL_MODULES="${built}")
    target_sources(${program} PRIVATE ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/small_module.cpp)
    target_include_directories(${program} PRIVATE ${CMAKE_CURRENT_FUNCTION_LIST_DIR})
    add_dependencies(${program} small_complete small_without_options small_without_test_board
        small_without_get_qualifier)
endfunction()
