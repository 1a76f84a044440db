# The one set of compiler and linker settings. Every target takes it by linking oam_flags.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set_property(GLOBAL PROPERTY GLOBAL_DEPENDS_NO_CYCLES ON)

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
# The libraries lie beside each other and the programs one directory over, built or installed.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR};$ORIGIN/../lib")

find_program(OAM_CCACHE ccache)
if(OAM_CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER ${OAM_CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${OAM_CCACHE})
endif()

add_library(oam_flags INTERFACE)
target_compile_options(oam_flags INTERFACE
    -Wall -Wextra -Werror -Wshadow -Wformat=2 -Wno-format-nonliteral -Wundef -Wpointer-arith
    $<$<COMPILE_LANGUAGE:CXX>:-Wmissing-declarations -Woverloaded-virtual>
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -Wno-gnu-zero-variadic-macro-arguments>
    -fstack-protector-strong -fno-omit-frame-pointer)
target_link_options(oam_flags INTERFACE -Wl,-z,relro -Wl,-z,now)
find_package(Threads REQUIRED)
target_link_libraries(oam_flags INTERFACE Threads::Threads ${CMAKE_DL_LIBS})

if(OAM_SANITIZE)
    add_compile_options(-fsanitize=${OAM_SANITIZE} -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${OAM_SANITIZE})
    add_compile_definitions(OAM_SANITIZED=1)
else()
    # Under a sanitizer its run-time library provides symbols that the linker cannot see.
    target_compile_definitions(oam_flags INTERFACE $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
    set(OAM_NO_UNDEFINED -Wl,-z,defs)
endif()

# Counted by threads and by processes at once: the counters are atomic, the files are merged.
add_library(oam_counted INTERFACE)
if(OAM_COVERAGE)
    target_compile_options(oam_counted INTERFACE --coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()

# The service and its platform throw nothing: every failure is a code.
add_library(oam_nothrow INTERFACE)
target_compile_options(oam_nothrow INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>)
# A few hundred bytes in all, which the loader has room for when a running process opens the library.
# Otherwise each look at what a thread holds is a call into the loader.
target_compile_options(oam_nothrow INTERFACE -ftls-model=initial-exec)
target_link_libraries(oam_nothrow INTERFACE oam_flags oam_counted)
