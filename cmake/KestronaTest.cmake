# Tests, benchmarks and fuzz targets: kestrona_fixtures, kestrona_test, kestrona_bench, kestrona_fuzz.

include(GoogleTest)

# Built by name where only these are wanted.
add_custom_target(thread_tests) # tests labelled "threads", for the thread sanitizer
add_custom_target(benchmarks)
add_custom_target(fuzzers)

# _kestrona_executable(<name> FILES ... LAYERS ... LIBS ... SHARED <bool>): an executable over the data module.
#   default  everything, by kestrona_internal
#   LAYERS   only the objects of the named folders of src/
#   SHARED   the shared library, as a user of it would
#   LIBS     more libraries, linked before the data module
function(_kestrona_executable name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "SHARED" "FILES;LAYERS;LIBS")
    add_executable(${name} ${arg_FILES})
    target_include_directories(${name} PRIVATE
        "${PROJECT_SOURCE_DIR}/tests" "${PROJECT_SOURCE_DIR}/include" "${PROJECT_BINARY_DIR}/include"
        "${PROJECT_SOURCE_DIR}/src")
    target_compile_definitions(${name} PRIVATE "KESTRONA_SOURCE_DIR=\"${PROJECT_SOURCE_DIR}\"")
    target_link_libraries(${name} PRIVATE kestrona_options ${arg_LIBS})
    if(arg_SHARED)
        target_link_libraries(${name} PRIVATE kestrona)
    elseif(arg_LAYERS)
        foreach(layer IN LISTS arg_LAYERS)
            string(REPLACE "/" "_" suffix "${layer}")
            target_link_libraries(${name} PRIVATE kestrona_${suffix})
        endforeach()
        target_link_libraries(${name} PRIVATE kestrona_external Boost::headers)
    else()
        target_link_libraries(${name} PRIVATE kestrona_internal)
    endif()
endfunction()

# kestrona_fixtures(<file>...): the static library of builders and fakes that tests name in LIBS.
function(kestrona_fixtures)
    if(NOT ARGN)
        return()
    endif()
    add_library(kestrona_fixtures STATIC EXCLUDE_FROM_ALL ${ARGN})
    target_include_directories(kestrona_fixtures PUBLIC
        "${PROJECT_SOURCE_DIR}/tests" "${PROJECT_SOURCE_DIR}/include" "${PROJECT_BINARY_DIR}/include"
        "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/host/include")
    target_link_libraries(kestrona_fixtures PRIVATE kestrona_options Boost::headers GTest::gmock)
endfunction()

# kestrona_test(<name> <file>... [LAYERS <folder>...] [SHARED] [LIBS <library>...] [LABELS <label>...]): a GoogleTest
# executable, each of its tests known to ctest with the folder below tests/ as label. Without files: nothing.
function(kestrona_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "SHARED" "" "LAYERS;LIBS;LABELS")
    if(NOT arg_UNPARSED_ARGUMENTS)
        return()
    endif()
    _kestrona_executable(${name} FILES ${arg_UNPARSED_ARGUMENTS} SHARED ${arg_SHARED}
        LAYERS ${arg_LAYERS} LIBS ${arg_LIBS} GTest::gmock_main)
    if(KESTRONA_SANITIZE)
        # The checks belong into the code under test; optimising them in the tests takes most of the build's time.
        target_compile_options(${name} PRIVATE -O0)
    endif()
    file(RELATIVE_PATH folder "${PROJECT_SOURCE_DIR}/tests" "${CMAKE_CURRENT_SOURCE_DIR}")
    gtest_discover_tests(${name}
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES LABELS "${folder}" TIMEOUT 300)
    if(arg_LABELS)
        # gtest_discover_tests cannot pass a list, so a second script that ctest reads sets several labels.
        set(script "${CMAKE_CURRENT_BINARY_DIR}/${name}_labels.cmake")
        file(CONFIGURE OUTPUT "${script}" @ONLY CONTENT [[
foreach(test IN LISTS @name@_TESTS)
    set_tests_properties("${test}" PROPERTIES LABELS "@folder@;@arg_LABELS@")
endforeach()
]])
        set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${script}")
    endif()
    if("threads" IN_LIST arg_LABELS)
        add_dependencies(thread_tests ${name})
    endif()
endfunction()

# kestrona_bench(<name> <file>... [LAYERS ...] [SHARED] [LIBS ...]): a Google Benchmark executable bench/<name>.
# Without files: nothing.
function(kestrona_bench name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "SHARED" "" "LAYERS;LIBS")
    if(NOT arg_UNPARSED_ARGUMENTS)
        return()
    endif()
    _kestrona_executable(${name} FILES ${arg_UNPARSED_ARGUMENTS} SHARED ${arg_SHARED}
        LAYERS ${arg_LAYERS} LIBS ${arg_LIBS} benchmark::benchmark_main)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bench")
    add_dependencies(benchmarks ${name})
endfunction()

# kestrona_fuzz(<name> <file>... [LAYERS ...] [LIBS ...]): a libFuzzer target fuzz/<name> whose corpus is
# fuzz/corpus/<name>/. In other builds than the fuzz one the same files become a test that replays the corpus.
function(kestrona_fuzz name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LAYERS;LIBS")
    if(NOT arg_UNPARSED_ARGUMENTS)
        return()
    endif()
    set(files ${arg_UNPARSED_ARGUMENTS})
    if(NOT KESTRONA_FUZZ)
        list(APPEND files "${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp")
    endif()
    _kestrona_executable(${name} FILES ${files} SHARED OFF LAYERS ${arg_LAYERS} LIBS ${arg_LIBS})
    add_dependencies(fuzzers ${name})
    if(KESTRONA_FUZZ)
        target_link_options(${name} PRIVATE -fsanitize=fuzzer)
        set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/fuzz")
    else()
        add_test(NAME ${name}.corpus COMMAND ${name} "${PROJECT_SOURCE_DIR}/fuzz/corpus/${name}")
        set_tests_properties(${name}.corpus PROPERTIES LABELS fuzz TIMEOUT 120)
    endif()
endfunction()
