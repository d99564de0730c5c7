# Installs the built project into a scratch prefix, moves the prefix, and builds and runs the examples against it: all
# of them by find_package, the embedding program also by pkg-config.

set(scratch "${BUILD_DIR}/install_test")
set(prefix "${scratch}/moved")

function(run what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    message(STATUS "${what}\n${output}")
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${what}: failed (${result})")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${scratch}")
run("install" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${scratch}/first")
file(RENAME "${scratch}/first" "${prefix}")

file(GLOB package_files "${prefix}/${LIBDIR}/cmake/kestrona/*.cmake" "${prefix}/${LIBDIR}/pkgconfig/*.pc")
foreach(file IN LISTS package_files)
    file(READ "${file}" text)
    string(FIND "${text}" "${scratch}" position)
    if(NOT position EQUAL -1)
        message(FATAL_ERROR "${file} names the place where it was first installed")
    endif()
endforeach()

run("configure the examples" "${CMAKE_COMMAND}" -G "${GENERATOR}" -S "${EXAMPLES_DIR}" -B "${scratch}/build"
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${CXX}" "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}")
run("build the examples" "${CMAKE_COMMAND}" --build "${scratch}/build" --parallel 2)
run("run examples/embed" "${scratch}/build/embed/embed")
set(by_package "${output}")

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
set(module kestrona)
if(EXISTS "${prefix}/${LIBDIR}/pkgconfig/kestrona-host.pc")
    set(module kestrona-host)
endif()
execute_process(COMMAND "${PKG_CONFIG}" --cflags --libs ${module}
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
file(GLOB sources "${EXAMPLES_DIR}/embed/*.cpp")
run("build examples/embed by pkg-config" "${CXX}" -std=c++20 ${sources} -o "${scratch}/embed_pc" ${flags}
    "-Wl,-rpath,${prefix}/${LIBDIR}")
run("run it" "${scratch}/embed_pc")
if(NOT output STREQUAL by_package)
    message(FATAL_ERROR "the two builds of examples/embed print different texts")
endif()
