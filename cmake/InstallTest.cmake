# cmake -DSETTINGS=<build>/installed_copy_settings.cmake -P InstallTest.cmake
# Installs the built project into a scratch prefix, moves the prefix, and uses the moved copy.

include("${SETTINGS}")
include("${CMAKE_CURRENT_LIST_DIR}/InstalledCopy.cmake")

set(scratch "${BUILD_DIR}/install_test")
set(prefix "${scratch}/moved")
file(REMOVE_RECURSE "${scratch}")
run("install" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${scratch}/first")
file(RENAME "${scratch}/first" "${prefix}")

check_paths("${prefix}" "${BUILD_DIR}" "${SOURCE_DIR}")
check_tool("${prefix}")
use_copy("${prefix}" "${scratch}")
