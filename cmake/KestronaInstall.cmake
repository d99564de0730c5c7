# Installs the library, the default host, the tool and what others need to find them. The tree can be moved afterwards.

include(CMakePackageConfigHelpers)

set(kestrona_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kestrona")
set(kestrona_targets kestrona)
if(TARGET kestrona_host)
    list(APPEND kestrona_targets kestrona_host)
endif()

install(TARGETS ${kestrona_targets} EXPORT kestrona-targets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(EXPORT kestrona-targets NAMESPACE kestrona:: DESTINATION "${kestrona_package_dir}")
if(TARGET kestrona_cli)
    install(TARGETS kestrona_cli RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()

foreach(root IN ITEMS "${PROJECT_SOURCE_DIR}/include" "${PROJECT_SOURCE_DIR}/host/include" "${PROJECT_BINARY_DIR}/include")
    install(DIRECTORY "${root}/kestrona" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" FILES_MATCHING PATTERN "*.h")
endforeach()

configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/kestrona-config.cmake.in" "${PROJECT_BINARY_DIR}/kestrona-config.cmake"
    INSTALL_DESTINATION "${kestrona_package_dir}"
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kestrona-config-version.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kestrona-config.cmake" "${PROJECT_BINARY_DIR}/kestrona-config-version.cmake"
    DESTINATION "${kestrona_package_dir}")

# pkg-config: the paths are told from the place of the file itself.
file(RELATIVE_PATH kestrona_pc_prefix
    "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
foreach(name IN ITEMS kestrona kestrona-host)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
endforeach()
install(FILES "${PROJECT_BINARY_DIR}/kestrona.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(TARGET kestrona_host)
    install(FILES "${PROJECT_BINARY_DIR}/kestrona-host.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endif()

# A user's program builds and runs against an installed copy that was moved after installing. Not for instrumented
# builds: the user's program would need the same instruments.
if(KESTRONA_DEVELOPER AND KESTRONA_PLAIN_BUILD)
    add_test(NAME install.examples
        COMMAND "${CMAKE_COMMAND}"
            "-DBUILD_DIR=${PROJECT_BINARY_DIR}"
            "-DEXAMPLES_DIR=${PROJECT_SOURCE_DIR}/examples"
            "-DLIBDIR=${CMAKE_INSTALL_LIBDIR}"
            "-DGENERATOR=${CMAKE_GENERATOR}"
            "-DCXX=${CMAKE_CXX_COMPILER}"
            "-DPKG_CONFIG=${PKG_CONFIG_EXECUTABLE}"
            "-DLAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}"
            -P "${PROJECT_SOURCE_DIR}/cmake/InstallTest.cmake")
    set_tests_properties(install.examples PROPERTIES LABELS install TIMEOUT 600)
endif()
