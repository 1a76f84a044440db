# Makes the packages of the build tree BUILD in PACKAGES, which is made anew. Nothing is compiled.
file(REMOVE_RECURSE ${PACKAGES})
execute_process(COMMAND ${CPACK} -G DEB -B ${PACKAGES} WORKING_DIRECTORY ${BUILD}
    RESULT_VARIABLE failed OUTPUT_VARIABLE told ERROR_VARIABLE told)
if(failed)
    message(FATAL_ERROR "the packages cannot be made:\n${told}")
endif()
file(REMOVE_RECURSE ${PACKAGES}/_CPack_Packages)
