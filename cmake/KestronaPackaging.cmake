# Debian packages of the three components, made by `cpack -G DEB`; scripts/package does it with the right options.
# A machine without Debian's tools has none of this.

find_program(KESTRONA_DPKG_DEB dpkg-deb)
mark_as_advanced(KESTRONA_DPKG_DEB)
if(NOT KESTRONA_DPKG_DEB OR NOT TARGET kestrona_cli)
    return()
endif()

set(kestrona_debian_dir "${PROJECT_SOURCE_DIR}/packaging/debian")
get_target_property(kestrona_soversion kestrona SOVERSION)
set(kestrona_library_package "libkestrona${kestrona_soversion}")

# The newest entry of the changelog is this version; its revision is that of the packages.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${kestrona_debian_dir}/changelog")
file(STRINGS "${kestrona_debian_dir}/changelog" kestrona_changelog_head LIMIT_COUNT 1)
if(NOT kestrona_changelog_head MATCHES "^kestrona \\(([0-9.]+)-([0-9]+)\\) " OR
        NOT CMAKE_MATCH_1 VERSION_EQUAL PROJECT_VERSION)
    message(FATAL_ERROR "packaging/debian/changelog does not begin with an entry for ${PROJECT_VERSION}")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE "${CMAKE_MATCH_2}")
set(kestrona_debian_version "${PROJECT_VERSION}-${CMAKE_MATCH_2}")

# kestrona_compress(<file> <result>): gzip without name and time, so that the same input gives the same bytes.
function(kestrona_compress file result)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    execute_process(COMMAND "${KESTRONA_GZIP}" -9nc "${file}" OUTPUT_FILE "${result}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(kestrona_packaging_dir "${PROJECT_BINARY_DIR}/packaging")
file(MAKE_DIRECTORY "${kestrona_packaging_dir}")
kestrona_compress("${kestrona_debian_dir}/changelog" "${kestrona_packaging_dir}/changelog.Debian.gz")

# kestrona_package_files(<component> <package>): what only the package has, not an installed tree.
function(kestrona_package_files component package)
    install(FILES "${kestrona_debian_dir}/copyright" "${kestrona_packaging_dir}/changelog.Debian.gz"
        DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}" COMPONENT ${component} EXCLUDE_FROM_ALL)
    set(overrides "${kestrona_debian_dir}/${component}.lintian-overrides")
    if(EXISTS "${overrides}")
        configure_file("${overrides}" "${kestrona_packaging_dir}/${package}" @ONLY)
        install(FILES "${kestrona_packaging_dir}/${package}"
            DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides" COMPONENT ${component} EXCLUDE_FROM_ALL)
    endif()
endfunction()

kestrona_package_files(library "${kestrona_library_package}")
kestrona_package_files(development libkestrona-dev)
kestrona_package_files(tool kestrona)

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL library development tool)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# Empty, since each package has a summary of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE kestrona)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Kestrona developers <developers@kestrona.invalid>" CACHE STRING
    "Who answers for the Debian packages")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME "${kestrona_library_package}")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# A patch release may add names: what is linked with it needs it or a later one.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${kestrona_debian_dir}/triggers")
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "data module of a production scheduling application
Kestrona holds a whole plant model in memory: tables, fields, references
between records, classifications and calculated fields come from a definition
text, and records are kept in typed, indexed columns.
.
This package contains the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkestrona-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${kestrona_library_package} (= ${kestrona_debian_version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "cmake, pkg-config, libboost1.81-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "data module of a production scheduling application - development files
Kestrona holds a whole plant model in memory: tables, fields, references
between records, classifications and calculated fields come from a definition
text, and records are kept in typed, indexed columns.
.
This package contains the headers, the static library of the default host, the
CMake package, the pkg-config files and programs as examples.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME kestrona)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${kestrona_library_package} (= ${kestrona_debian_version})")
set(CPACK_DEBIAN_TOOL_DESCRIPTION "checks, draws and shows plant models of a production scheduling application
The command-line tool of kestrona. It checks definitions of plant models and
tells mistakes with their places, draws and documents them, and shows, selects
and calculates records.
.
A sample plant lies in the documentation folder.")

include(CPack)
