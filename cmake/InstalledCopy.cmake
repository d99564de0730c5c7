# What the tests of the installed tree and of the packages do alike.

# run(<what> <command>...): fails loudly; leaves the output in `output`.
function(run what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    message(STATUS "${what}\n${output}")
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${what}: failed (${result})")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

# check_paths(<folder> <path>...): no file names a path of this machine. Binaries of builds with assertions and debug
# information name the sources, so there only the texts count.
function(check_paths folder)
    set(options --recursive --files-with-matches --fixed-strings)
    if(NOT BUILD_TYPE STREQUAL "Release")
        list(APPEND options --binary-files=without-match)
    endif()
    foreach(path IN LISTS ARGN)
        execute_process(COMMAND grep ${options} -e "${path}" "${folder}" RESULT_VARIABLE result OUTPUT_VARIABLE found)
        if(NOT result EQUAL 1)
            message(FATAL_ERROR "files that name ${path} (grep: ${result}):\n${found}")
        endif()
    endforeach()
endfunction()

# check_tool(<prefix>): the tool runs and finds nothing wrong with the sample that came along.
function(check_tool prefix)
    run("kestrona --version" "${prefix}/bin/kestrona" --version)
    run("kestrona check" "${prefix}/bin/kestrona" check "${prefix}/share/doc/kestrona/examples/plant/plant.ksdef")
endfunction()

# use_copy(<prefix> <scratch>): builds the examples that were installed against the copy, all of them by find_package
# and the embedding program also by pkg-config, and runs them.
function(use_copy prefix scratch)
    set(examples "${prefix}/share/doc/libkestrona-dev/examples")
    run("configure the examples" "${CMAKE_COMMAND}" -G "${GENERATOR}" -S "${examples}" -B "${scratch}/build"
        "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${CXX}" "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}")
    file(STRINGS "${scratch}/build/CMakeCache.txt" found REGEX "^kestrona_DIR:")
    if(NOT found STREQUAL "kestrona_DIR:PATH=${prefix}/${LIBDIR}/cmake/kestrona")
        message(FATAL_ERROR "the examples were built against another copy: ${found}")
    endif()
    run("build the examples" "${CMAKE_COMMAND}" --build "${scratch}/build" --parallel 2)
    run("run examples/plant_report" "${scratch}/build/plant_report/plant_report"
        "${prefix}/share/doc/kestrona/examples/plant/plant.ksdef")
    run("run examples/embed" "${scratch}/build/embed/embed")
    set(by_package "${output}")
    string(FIND "${output}" "kestrona ${VERSION}\n" position)
    if(NOT position EQUAL 0 OR NOT output MATCHES "order 2: 62.50 .changed." OR NOT output MATCHES "order 3: 75.00\n")
        message(FATAL_ERROR "examples/embed does not print what it should")
    endif()

    # A snapshot that the tool writes, read by the program that needs the library alone. The sample has encrypted fields.
    set(plant "${prefix}/share/doc/kestrona/examples/plant")
    set(ENV{KESTRONA_KEY} "a key for this test")
    run("kestrona import" "${prefix}/bin/kestrona" import "${plant}/plant.ksdef" --data "${plant}/data"
        -o "${scratch}/plant.kes")
    unset(ENV{KESTRONA_KEY})
    run("run examples/extract" "${scratch}/build/extract/extract" "${scratch}/plant.kes")
    if(NOT output MATCHES "^written by kestrona ${VERSION}" OR NOT output MATCHES "\nOrders: 10 records, 20 fields\n")
        message(FATAL_ERROR "examples/extract does not list the tables")
    endif()
    run("run examples/extract on a table" "${scratch}/build/extract/extract" "${scratch}/plant.kes" Customers)
    if(NOT output MATCHES "Name=Lindqvist & Daughters, City=Ravensholm,")
        message(FATAL_ERROR "examples/extract does not print the records")
    endif()

    set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
    execute_process(COMMAND "${PKG_CONFIG}" --cflags --libs kestrona-host
        OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(flags UNIX_COMMAND "${flags}")
    run("build examples/embed by pkg-config" "${CXX}" -std=c++20 "${examples}/embed/main.cpp"
        -o "${scratch}/embed_pc" ${flags} "-Wl,-rpath,${prefix}/${LIBDIR}")
    run("run it" "${scratch}/embed_pc")
    if(NOT output STREQUAL by_package)
        message(FATAL_ERROR "the two builds of examples/embed print different texts")
    endif()
endfunction()
