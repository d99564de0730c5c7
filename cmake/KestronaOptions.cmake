# What every target of this project is compiled with: kestrona_options is linked by all of them.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(KESTRONA_CCACHE ccache)
    if(KESTRONA_CCACHE)
        set(CMAKE_CXX_COMPILER_LAUNCHER "${KESTRONA_CCACHE}")
    endif()
endif()

add_library(kestrona_options INTERFACE)
target_compile_options(kestrona_options INTERFACE
    -Wall -Wextra -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
    $<$<BOOL:${KESTRONA_WERROR}>:-Werror>
    # A call inside the library goes straight to its target: nobody replaces our functions at run time.
    -fno-semantic-interposition)

if(KESTRONA_SANITIZE)
    string(REPLACE ";" "," kestrona_sanitizers "${KESTRONA_SANITIZE}")
    target_compile_options(kestrona_options INTERFACE
        -fsanitize=${kestrona_sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # The checks that they put in lead GCC to see uninitialised uses in its own headers.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(kestrona_options INTERFACE -fsanitize=${kestrona_sanitizers})
endif()

if(KESTRONA_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "KESTRONA_FUZZ needs Clang: its libFuzzer drives the targets")
    endif()
    target_compile_options(kestrona_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(KESTRONA_COVERAGE)
    target_compile_options(kestrona_options INTERFACE --coverage)
    target_link_options(kestrona_options INTERFACE --coverage)
endif()

# Sanitizer, coverage and fuzz builds leave symbols to be found at run time.
set(KESTRONA_PLAIN_BUILD ON)
if(KESTRONA_SANITIZE OR KESTRONA_COVERAGE OR KESTRONA_FUZZ)
    set(KESTRONA_PLAIN_BUILD OFF)
endif()
