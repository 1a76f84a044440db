# Installs the build tree BUILD into PREFIX, which is made anew.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX}
    RESULT_VARIABLE failed OUTPUT_QUIET)
if(failed)
    message(FATAL_ERROR "the package cannot be installed")
endif()
