# Installs the library, the default host, the tool and what others need to find them. The tree can be moved afterwards.
# Three components: library, development and tool; KestronaPackaging.cmake makes a package of each.

include(CMakePackageConfigHelpers)

set(kestrona_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kestrona")
set(kestrona_targets kestrona)
if(TARGET kestrona_host)
    list(APPEND kestrona_targets kestrona_host)
endif()

install(TARGETS ${kestrona_targets} EXPORT kestrona-targets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
install(EXPORT kestrona-targets NAMESPACE kestrona:: DESTINATION "${kestrona_package_dir}" COMPONENT development)
if(TARGET kestrona_cli)
    install(TARGETS kestrona_cli RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tool)
endif()

foreach(root IN ITEMS "${PROJECT_SOURCE_DIR}/include" "${PROJECT_SOURCE_DIR}/host/include" "${PROJECT_BINARY_DIR}/include")
    install(DIRECTORY "${root}/kestrona" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development
        FILES_MATCHING PATTERN "*.h")
endforeach()

configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/kestrona-config.cmake.in" "${PROJECT_BINARY_DIR}/kestrona-config.cmake"
    INSTALL_DESTINATION "${kestrona_package_dir}"
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kestrona-config-version.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kestrona-config.cmake" "${PROJECT_BINARY_DIR}/kestrona-config-version.cmake"
    DESTINATION "${kestrona_package_dir}" COMPONENT development)

# pkg-config: the paths are told from the place of the file itself.
file(RELATIVE_PATH kestrona_pc_prefix
    "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
foreach(name IN ITEMS kestrona kestrona-host)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
endforeach()
install(FILES "${PROJECT_BINARY_DIR}/kestrona.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
if(TARGET kestrona_host)
    install(FILES "${PROJECT_BINARY_DIR}/kestrona-host.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endif()

# The samples: plant definitions for the tool, programs for developers.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/plant" "${PROJECT_SOURCE_DIR}/examples/adventureworks"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/kestrona/examples" COMPONENT tool)
install(
    FILES "${PROJECT_SOURCE_DIR}/examples/CMakeLists.txt"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/libkestrona-dev/examples" COMPONENT development)
install(
    DIRECTORY "${PROJECT_SOURCE_DIR}/examples/embed" "${PROJECT_SOURCE_DIR}/examples/extract"
        "${PROJECT_SOURCE_DIR}/examples/plant_report"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/libkestrona-dev/examples" COMPONENT development)

# What the scripts that use an installed copy need to know of this build.
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/installed_copy_settings.cmake" @ONLY CONTENT [[
set(BUILD_DIR "@PROJECT_BINARY_DIR@")
set(SOURCE_DIR "@PROJECT_SOURCE_DIR@")
set(BUILD_TYPE "@CMAKE_BUILD_TYPE@")
set(VERSION "@PROJECT_VERSION@")
set(LIBDIR "@CMAKE_INSTALL_LIBDIR@")
set(GENERATOR "@CMAKE_GENERATOR@")
set(CXX "@CMAKE_CXX_COMPILER@")
set(LAUNCHER "@CMAKE_CXX_COMPILER_LAUNCHER@")
set(PKG_CONFIG "@PKG_CONFIG_EXECUTABLE@")
]])

# A user's program builds and runs against an installed copy that was moved after installing, and against the packages.
# Not for instrumented builds: the user's program would need the same instruments.
if(KESTRONA_DEVELOPER AND KESTRONA_PLAIN_BUILD)
    foreach(test IN ITEMS examples:InstallTest packages:PackageTest)
        string(REPLACE ":" ";" test "${test}")
        list(GET test 0 name)
        list(GET test 1 script)
        add_test(NAME install.${name}
            COMMAND "${CMAKE_COMMAND}" "-DSETTINGS=${PROJECT_BINARY_DIR}/installed_copy_settings.cmake"
                -P "${PROJECT_SOURCE_DIR}/cmake/${script}.cmake")
        set_tests_properties(install.${name} PROPERTIES
            LABELS install TIMEOUT 600 SKIP_REGULAR_EXPRESSION "-- SKIPPED: ")
    endforeach()
endif()
