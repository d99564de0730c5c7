# cmake -DSETTINGS=<build>/installed_copy_settings.cmake [-DDEBS=<folder>] -P PackageTest.cmake
# Makes the Debian packages, or takes those in DEBS, unpacks them into a scratch folder, compares them with what is
# installed, and uses them there. Needs no rights of the administrator.

include("${SETTINGS}")
include("${CMAKE_CURRENT_LIST_DIR}/InstalledCopy.cmake")

foreach(tool IN ITEMS dpkg-deb dpkg-shlibdeps file)
    find_program(found_${tool} ${tool})
    if(NOT found_${tool})
        message(STATUS "SKIPPED: ${tool} is not installed")
        return()
    endif()
endforeach()

set(scratch "${BUILD_DIR}/package_test")
file(REMOVE_RECURSE "${scratch}")
file(MAKE_DIRECTORY "${scratch}")
if(NOT DEBS)
    set(DEBS "${scratch}/debs")
    run("pack" "${CMAKE_CPACK_COMMAND}" -G DEB --config "${BUILD_DIR}/CPackConfig.cmake" -B "${DEBS}")
endif()

# Each package into a folder of its own, and all together.
set(root "${scratch}/root")
set(prefix "${root}/usr")
file(GLOB debs "${DEBS}/*.deb")
set(names)
set(packed)
foreach(deb IN LISTS debs)
    execute_process(COMMAND dpkg-deb --field "${deb}" Package
        OUTPUT_VARIABLE name OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND dpkg-deb --field "${deb}" Depends
        OUTPUT_VARIABLE depends_${name} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND names "${name}")
    run("unpack ${name}" dpkg-deb --extract "${deb}" "${scratch}/${name}")
    run("unpack ${name} beside the others" dpkg-deb --extract "${deb}" "${root}")
    file(GLOB_RECURSE files RELATIVE "${scratch}/${name}/usr" "${scratch}/${name}/usr/*")
    set(files_${name} "${files}")
    list(APPEND packed ${files})
endforeach()

# A library package is called after the name that programs look the library up by.
string(REGEX MATCH "libkestrona[0-9][0-9.]*" library "${names}")
if(NOT "${names}" STREQUAL "kestrona;libkestrona-dev;${library}" OR
        NOT EXISTS "${scratch}/${library}/usr/${LIBDIR}/libkestrona.so.${VERSION}")
    message(FATAL_ERROR "unexpected packages: ${names}")
endif()
string(REPLACE "libkestrona" "libkestrona.so." soname "${library}")
if(NOT EXISTS "${scratch}/${library}/usr/${LIBDIR}/${soname}")
    message(FATAL_ERROR "${library} holds no ${soname}")
endif()
foreach(name IN ITEMS kestrona libkestrona-dev)
    string(FIND "${depends_${name}}" "${library} (= ${VERSION}-" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "${name} does not ask for its ${library}: ${depends_${name}}")
    endif()
endforeach()
if(NOT depends_${library} MATCHES "libc6 .*libicu")
    message(FATAL_ERROR "${library} does not ask for the libraries that it uses: ${depends_${library}}")
endif()

# The packages hold together what is installed, each file once, and beside it only their papers.
run("install" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${scratch}/installed")
file(GLOB_RECURSE installed RELATIVE "${scratch}/installed" "${scratch}/installed/*")
set(papers)
foreach(name IN LISTS names)
    list(APPEND papers
        "share/doc/${name}/copyright" "share/doc/${name}/changelog.Debian.gz" "share/lintian/overrides/${name}")
endforeach()
list(REMOVE_ITEM packed ${papers})
list(SORT packed)
list(SORT installed)
if(NOT packed STREQUAL installed)
    message(FATAL_ERROR "packed and installed differ:\n${packed}\n${installed}")
endif()

check_paths("${root}" "${BUILD_DIR}" "${SOURCE_DIR}")
set(ENV{LD_LIBRARY_PATH} "${prefix}/${LIBDIR}")
check_tool("${prefix}")
use_copy("${prefix}" "${scratch}")
