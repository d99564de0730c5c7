# One object library for each folder of src/, and the two libraries that are linked from all of them.

define_property(GLOBAL PROPERTY KESTRONA_LAYERS BRIEF_DOCS "Object libraries of the data module, in the order of declaration")

# kestrona_layer(<folder> <file>...): the object library kestrona_<folder>, with "_" for "/".
# A folder without files declares nothing.
function(kestrona_layer name)
    if(NOT ARGN)
        return()
    endif()
    string(REPLACE "/" "_" suffix "${name}")
    set(target "kestrona_${suffix}")
    add_library(${target} OBJECT ${ARGN})
    target_include_directories(${target} PUBLIC
        "${PROJECT_SOURCE_DIR}/include" "${PROJECT_BINARY_DIR}/include" "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(${target} PRIVATE kestrona_options Boost::headers)
    if(name STREQUAL "platform")
        target_link_libraries(${target} PRIVATE kestrona_external)
    endif()
    set_property(GLOBAL APPEND PROPERTY KESTRONA_LAYERS ${target})
endfunction()

# The version, as a public header and as a function of the library itself.
function(_kestrona_version)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/version.h.in" "${PROJECT_BINARY_DIR}/include/kestrona/version.h" @ONLY)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/version.cpp.in" "${PROJECT_BINARY_DIR}/version.cpp" COPYONLY)
    add_library(kestrona_version OBJECT "${PROJECT_BINARY_DIR}/version.cpp")
    target_include_directories(kestrona_version PUBLIC
        "${PROJECT_SOURCE_DIR}/include" "${PROJECT_BINARY_DIR}/include")
    target_link_libraries(kestrona_version PRIVATE kestrona_options)
endfunction()

# The version script of the shared library.
function(_kestrona_version_script map)
    set(list "${PROJECT_SOURCE_DIR}/cmake/exported_globals.txt")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list}")
    file(STRINGS "${list}" names REGEX "^[A-Za-z_]")
    set(kestrona_global_patterns "")
    foreach(name IN LISTS names)
        # A name alone, with parameters, with members, and what a class brings along.
        foreach(pattern IN ITEMS
                "${name}" "${name}[!A-Za-z0-9_]*" "typeinfo?for?${name}" "typeinfo?name?for?${name}"
                "vtable?for?${name}" "VTT?for?${name}" "*thunk?to?${name}::*")
            string(APPEND kestrona_global_patterns "        ${pattern};\n")
        endforeach()
    endforeach()
    configure_file("${PROJECT_SOURCE_DIR}/cmake/kestrona.map.in" "${map}" @ONLY)
endfunction()

# kestrona_link_libraries(): the shared library `kestrona` and, for tests, benchmarks and fuzz targets that reach
# internals, the static `kestrona_internal`. Both hold the objects of every layer.
function(kestrona_link_libraries)
    _kestrona_version()
    get_property(layers GLOBAL PROPERTY KESTRONA_LAYERS)
    set(objects)
    foreach(layer IN LISTS layers ITEMS kestrona_version)
        list(APPEND objects $<TARGET_OBJECTS:${layer}>)
    endforeach()

    set(map "${PROJECT_BINARY_DIR}/kestrona.map")
    _kestrona_version_script("${map}")
    add_library(kestrona SHARED ${objects})
    add_library(kestrona::kestrona ALIAS kestrona)
    target_include_directories(kestrona PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
        $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_compile_features(kestrona INTERFACE cxx_std_20)
    target_link_libraries(kestrona PRIVATE $<BUILD_INTERFACE:kestrona_options> $<BUILD_INTERFACE:kestrona_external>)
    target_link_options(kestrona PRIVATE
        "LINKER:--version-script=${map}" $<$<BOOL:${KESTRONA_PLAIN_BUILD}>:LINKER:--no-undefined>)
    # docs/abi.md: below 1.0 each minor release has an ABI of its own.
    set(soversion ${PROJECT_VERSION_MAJOR})
    if(soversion EQUAL 0)
        set(soversion "0.${PROJECT_VERSION_MINOR}")
    endif()
    set_target_properties(kestrona PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${soversion}
        LINKER_LANGUAGE CXX
        LINK_DEPENDS "${map}")

    if(KESTRONA_DEVELOPER)
        add_library(kestrona_internal STATIC EXCLUDE_FROM_ALL ${objects})
        target_include_directories(kestrona_internal PUBLIC
            "${PROJECT_SOURCE_DIR}/include" "${PROJECT_BINARY_DIR}/include" "${PROJECT_SOURCE_DIR}/src")
        target_link_libraries(kestrona_internal PUBLIC kestrona_external Boost::headers)
        set_target_properties(kestrona_internal PROPERTIES LINKER_LANGUAGE CXX)
    endif()
endfunction()

# kestrona_host_library(<file>...): the static library kestrona_host. It sees the public headers only and does not name
# the data module itself: who links it chooses `kestrona` or `kestrona_internal`. Without files: nothing.
function(kestrona_host_library)
    if(NOT ARGN)
        return()
    endif()
    add_library(kestrona_host STATIC ${ARGN})
    add_library(kestrona::host ALIAS kestrona_host)
    set_target_properties(kestrona_host PROPERTIES EXPORT_NAME host)
    target_include_directories(kestrona_host
        PUBLIC
            $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/host/include>
            $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
            $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
        PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    target_compile_features(kestrona_host INTERFACE cxx_std_20)
    target_link_libraries(kestrona_host PRIVATE $<BUILD_INTERFACE:kestrona_options>)
endfunction()

# kestrona_tool(<main file> <file>...): the command-line tool, `kestrona` on disk, and the static library
# kestrona_tool_parts of all its files but the first, for tests. The library does not name the data module itself.
function(kestrona_tool main)
    add_library(kestrona_tool_parts STATIC ${ARGN})
    target_include_directories(kestrona_tool_parts PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
    # GCC 12 sees overlapping copies in std::string assignments where there are none.
    target_compile_options(kestrona_tool_parts PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
    target_link_libraries(kestrona_tool_parts
        PRIVATE kestrona_options
        PUBLIC kestrona_host CLI11::CLI11 nlohmann_json::nlohmann_json libcsv::libcsv fmt::fmt PkgConfig::utf8proc)

    add_executable(kestrona_cli "${main}")
    set_target_properties(kestrona_cli PROPERTIES
        OUTPUT_NAME kestrona
        RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin"
        INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    target_link_libraries(kestrona_cli PRIVATE kestrona_options kestrona_tool_parts kestrona)
endfunction()
