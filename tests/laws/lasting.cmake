# Threads of the service may still be in a library while the process's exit handlers run. So none of
# ours has anything that those would destroy.
foreach(library IN LISTS LIBRARIES)
    execute_process(COMMAND ${NM} -D --undefined-only ${library}
        OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
    if(NOT symbols MATCHES " U ")
        message(FATAL_ERROR "${library} has no symbols to look at")
    endif()
    if(symbols MATCHES "__cxa_atexit|[ \n]atexit")
        message(FATAL_ERROR "${library} has objects that are destroyed at the end of the process")
    endif()
endforeach()
